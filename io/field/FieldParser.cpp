#include "io/field/FieldParser.hpp"

#include <algorithm>
#include <cstring>

#include "facts/Listener.hpp"
#include "io/TextLines.hpp"
#include "io/field/RecordLine.hpp"
#include "util/Hex.hpp"

namespace Io::Field {

namespace {

using Facts::RecordFault;
using Facts::Tolerance;

constexpr char endMark = 0x1A;

/// The last line of a text that ends with a line end, without it.
std::string_view lastLine(std::string_view text) {
    text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text.substr(text.rfind('\n') + 1);
}

/// Of hexadecimal digits only the lower-case ones have the bits 0x40 and 0x20. They are looked at
/// eight at a time, the last eight among them, which saves a tenth of the time that a file takes.
bool hasLowerCase(std::string_view digits) {
    constexpr std::size_t step = 8;
    constexpr std::uint64_t bit = 0x2020202020202020;
    std::uint64_t seen = 0;
    const auto look = [&seen](const char* from, std::size_t size) {
        std::uint64_t some = 0;
        std::memcpy(&some, from, size);
        seen |= some & (some >> 1U);
    };
    if (digits.size() < step) {
        look(digits.data(), digits.size());
        return (seen & bit) != 0;
    }
    for (std::size_t i = 0; i + step < digits.size(); i += step) look(digits.data() + i, step);
    look(digits.data() + digits.size() - step, step);
    return (seen & bit) != 0;
}

}  // namespace

FieldParser::FieldParser(const std::string& file, Facts::InputFormat format, std::uint64_t fileSize)
    : reports_(file, format),
      // Two digits make a byte, so there are no more bytes than half the characters.
      data_(format, static_cast<std::size_t>(fileSize / 2)) {}

void FieldParser::parse(FieldLines& lines, Import::RecordVisitor* visitor) {
    visitor_ = visitor;
    takeAll(lines);
    reports_.finish();
    if (!isEnded_ && !isWhole())
        Facts::report(Facts::EndMissing{reports_.file(), reports_.format()});
    if (isDamaged()) data_.clear();
    data_.bytes().finish();
}

void FieldParser::walk(FieldLines& lines, Import::RecordVisitor& visitor) {
    visitor_ = &visitor;
    keepsData_ = false;
    takeAll(lines);
}

void FieldParser::takeAll(FieldLines& lines) {
    while (lines.next()) {
        line_ = lines.line();
        number_ = lines.number();
        if (lines.endsWithReturn()) tolerate(Tolerance::LoneReturn);
        takeLine(line_);
        takeAhead(lines);
    }
    line_ = {};
}

void FieldParser::takeLine(std::string_view line) {
    if (number_ == 1 && line.starts_with(utf8Mark)) {
        tolerate(Tolerance::Utf8Mark);
        line.remove_prefix(utf8Mark.size());
    }
    const auto last = line.empty() ? ' ' : line.back();
    if (static_cast<unsigned char>(last) <= ' ') line = trimmed(line);
    if (line.empty()) return;
    if (textEndLine_ != 0 && textEndLine_ != number_) {
        damage(RecordFault::ForeignText, static_cast<unsigned char>(textEnd_), textEndLine_);
        textEndLine_ = 0;
    }
    if (!takeRecord(line)) takeText(line);
}

/// Takes the perfect data records that follow the current line and have been read already. About
/// these there is nothing to report, unless data is out of place or follows what is wrong.
void FieldParser::takeAhead(FieldLines& lines) {
    // The first data record reserves the memory.
    if (isEnded_ || !keepsData_ || isDamaged() || textEndLine_ != 0 || data_.bytes().empty() ||
        !ahead_.isDue())
        return;
    // What follows a record counts bytes.
    if (data_.bytes().addressUnit() != 1) return;
    const std::uint64_t before = number_;
    for (;;) {
        const std::string_view text = lines.textAhead();
        const Util::Records::DataRun run = decodeRun(text, data_.bytes().room());
        if (run.count == 0) break;
        lines.skip(run.textSize, run.count);
        const std::uint64_t first = number_ + 1;
        number_ = lines.number();
        line_ = lastLine(text.substr(0, run.textSize));
        const std::uint64_t address = useRun(run, text);
        if (visitor_ != nullptr) visitRun(run, text, first, address);
        data_.appendInPlace(address, run.dataSize, first, number_);
    }
    ahead_.note(number_ != before);
}

/// Hands the records of a run to the visitor, those of equal size together. All of them are
/// perfect, so that the count of one says where the next one begins.
void FieldParser::visitRun(const Util::Records::DataRun& run, std::string_view text,
                           std::uint64_t firstLine, std::uint64_t address) {
    const RunForm form = formOf(text);
    const std::size_t others = form.frame.headSize + 1;
    Import::RecordLines records{firstLine, 0, form.kind, true, address, 0};
    const char* at = text.data();
    std::array<char, 2> digits{};
    std::size_t textSize = 0;
    for (std::size_t i = 0; i < run.count; ++i) {
        const char* const count = at + form.frame.digitsAt;
        if (i == 0 || count[0] != digits[0] || count[1] != digits[1]) {
            if (i != 0) visitor_->visit(records);
            std::uint8_t number = 0;
            Util::readHex(&number, count, 1);
            digits = {count[0], count[1]};
            const std::size_t bytes = number + form.frame.uncounted;
            textSize = form.frame.digitsAt + 2 * bytes;
            records = {
                firstLine + i, 0, form.kind, true, records.address + records.count * records.size,
                bytes - others};
        }
        ++records.count;
        at += textSize;
        at += *at == '\r' ? 2 : 1;
    }
    visitor_->visit(records);
}

void FieldParser::setStartAddress(std::uint64_t address) {
    address *= data_.bytes().addressUnit();
    if (startAddress_.value_or(address) != address)
        Facts::report(Facts::StartAddressesDiffer{reports_.file(), *startAddress_, startLine_,
                                                  address, number_});
    startAddress_ = address;
    startLine_ = number_;
}

/// Removes what may be at the end of a line, and notes what it was.
std::string_view FieldParser::trimmed(std::string_view line) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    const auto isEnd = [](char c) { return c == '\0' || c == endMark; };
    const std::size_t size = line.size();
    bool hasEnd = false;
    for (; !line.empty() && (isBlank(line.back()) || isEnd(line.back())); line.remove_suffix(1)) {
        if (isBlank(line.back())) continue;
        textEnd_ = line.back();
        hasEnd = true;
    }
    if (hasEnd)
        tolerate(textEnd_ == '\0' ? Tolerance::NulBytes : Tolerance::TextEndMark);
    else if (line.empty())
        tolerate(Tolerance::BlankLine);
    else if (line.size() != size)
        tolerate(Tolerance::TrailingBlank);
    if (hasEnd && textEndLine_ == 0) textEndLine_ = number_;
    return line;
}

void FieldParser::takeText(std::string_view text) {
    if (const std::size_t mark = remarkMark(text)) {
        if (isMarkedRecord(text.substr(mark)))
            damage(RecordFault::InRemark);
        else
            tolerate(Tolerance::Remark);
        return;
    }
    if (recordFormatOf(text).value_or(reports_.format()) != reports_.format())
        damage(RecordFault::OtherFormat);
    else if (!takeOther(text))
        damage(RecordFault::NotARecord);
}

std::span<const std::uint8_t> FieldParser::bytesOf(std::string_view line, const Frame& frame) {
    const std::string_view digits = line.substr(frame.digitsAt);
    const std::size_t size = digits.size() / 2;
    const std::size_t headSize = std::min(frame.headSize, size);
    // The data apart from the head: a sum across two stores would stall on store forwarding.
    const bool isRecord =
        size != 0 && size <= mostBytes && digits.size() % 2 == 0 &&
        Util::readHex(bytes_.data(), digits.data(), headSize) &&
        bytes_[0] + frame.uncounted == size &&
        Util::readHex(bytes_.data() + headSize, digits.data() + 2 * headSize, size - headSize);
    if (!isRecord) {
        explainDigits(line, frame);
        return {};
    }
    if (hasLowerCase(digits)) tolerate(Tolerance::LowerCase);
    return {bytes_.data(), size};
}

void FieldParser::explainDigits(std::string_view line, const Frame& frame) {
    constexpr std::string_view allDigits = "0123456789ABCDEFabcdef";
    const std::size_t wrong = line.find_first_not_of(allDigits, frame.digitsAt);
    if (wrong != std::string_view::npos) {
        const auto column = static_cast<std::size_t>(line.data() - line_.data()) + wrong + 1;
        damage(RecordFault::Digit, static_cast<unsigned char>(line[wrong]), column);
        return;
    }
    const std::string_view digits = line.substr(frame.digitsAt);
    std::uint8_t count = 0;
    if (digits.size() >= 2) Util::readHex(&count, digits.data(), 1);
    damage(RecordFault::Digits, digits.size(), 2 * (count + frame.uncounted));
}

/// Data that is not kept: there is none, or it comes after the end record or a damaged line.
void FieldParser::refuse(std::size_t size) {
    if (size == 0)
        noteEmptyRecord();
    else if (isEnded_)
        damage(RecordFault::AfterEnd, size);
}

}  // namespace Io::Field
