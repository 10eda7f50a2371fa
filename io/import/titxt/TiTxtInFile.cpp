#include "io/import/titxt/TiTxtInFile.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "io/InFile.hpp"
#include "io/TextLines.hpp"
#include "io/import/LinedData.hpp"
#include "io/import/Malformed.hpp"

namespace Io::Import {

namespace {

using Facts::FormatFault;

constexpr std::uint8_t noDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
    for (std::uint8_t i = 10; i < 16; ++i) values['A' + i - 10] = values['a' + i - 10] = i;
    return values;
}();

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

/// Takes the lines of a file one after the other.
class Parser final : public TextInFile {
public:
    Parser(const std::string& path, Platform::InputFile file, RecordVisitor* visitor,
           std::uint32_t addressUnit)
        : TextInFile(path),
          lines_(std::move(file)),
          visitor_(visitor),
          addressUnit_(addressUnit),
          data_(Facts::InputFormat::TiTxt, static_cast<std::size_t>(lines_.fileSize() / 2 + 1)) {}

    LinedData parse() {
        while (lines_.next()) take(lines_.line());
        close(lines_);
        if (!isEnded_) refuseLine(FormatFault::EndMissing);
        refuseCutWord();
        if (data_.bytes().empty())
            refuse(Facts::InputFormat::TiTxt, fileName_, FormatFault::NothingToLoad, 0);
        data_.bytes().finish();
        return std::move(data_);
    }

private:
    [[noreturn]] void refuseLine(FormatFault fault, std::uint64_t number = 0) const {
        refuse(Facts::InputFormat::TiTxt, fileName_, fault, lines_.number(), number);
    }

    void take(std::string_view line) {
        if (lines_.number() == 1 && line.starts_with(utf8Mark)) line.remove_prefix(utf8Mark.size());
        while (!line.empty() && isBlank(line.back())) line.remove_suffix(1);
        while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
        if (line.empty()) return;
        if (isEnded_) refuseLine(FormatFault::AfterEnd);
        if (line == "q" || line == "Q")
            isEnded_ = true;
        else if (line.front() == '@')
            takeAddress(line.substr(1));
        else
            takeBytes(line);
    }

    void takeAddress(std::string_view digits) {
        std::uint32_t address = 0;
        const char* const end = digits.data() + digits.size();
        constexpr int base = 16;
        const auto [stop, error] = std::from_chars(digits.data(), end, address, base);
        if (error != std::errc() || stop != end) refuseLine(FormatFault::LineUnknown);
        refuseCutWord();
        address_ = std::uint64_t{address} * addressUnit_;
    }

    /// What follows an address is a whole number of words.
    void refuseCutWord() const {
        if (address_ && *address_ % addressUnit_ != 0)
            refuseLine(FormatFault::WordCut, addressUnit_);
    }

    void takeBytes(std::string_view line) {
        if (!address_) refuseLine(FormatFault::AddressMissing);
        bytes_.resize(line.size() / 2 + 1);
        std::size_t count = 0;
        for (std::size_t at = 0; at < line.size();) {
            if (isBlank(line[at])) {
                ++at;
                continue;
            }
            if (line.size() - at < 2) refuseLine(FormatFault::LineUnknown);
            const std::uint8_t high = digitValues[static_cast<unsigned char>(line[at])];
            const std::uint8_t low = digitValues[static_cast<unsigned char>(line[at + 1])];
            const bool isWhole = line.size() - at == 2 || isBlank(line[at + 2]);
            if ((high | low) > 0xF || !isWhole) refuseLine(FormatFault::LineUnknown);
            bytes_[count++] = static_cast<std::uint8_t>(high << 4U | low);
            at += 3;
        }
        const std::uint64_t addressSpaceEnd = (std::uint64_t{1} << 32U) * addressUnit_;
        if (count > addressSpaceEnd - *address_) refuseLine(FormatFault::AddressTooHigh, *address_);
        data_.append(*address_, std::span(bytes_).first(count), lines_.number());
        if (visitor_ != nullptr) visitor_->visit({lines_.number(), 1, 0, true, *address_, count});
        *address_ += count;
    }

    TextLines lines_;
    RecordVisitor* visitor_;
    std::uint32_t addressUnit_;
    LinedData data_;
    std::optional<std::uint64_t> address_;  ///< of the next byte, in bytes
    bool isEnded_ = false;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace

TiTxtInFile::TiTxtInFile(LinedData data)
    : AddressedData(std::move(data.bytes()), std::nullopt, data.takeSources()) {}

TiTxtInFile::TiTxtInFile(const std::string& path) : TiTxtInFile(path, openInput(path)) {}

TiTxtInFile::TiTxtInFile(const std::string& path, Platform::InputFile file, RecordVisitor* visitor,
                         std::uint32_t addressUnit)
    : TiTxtInFile(Parser(path, std::move(file), visitor, addressUnit).parse()) {}

bool TiTxtInFile::looksLike(std::string_view head) {
    static constexpr std::string_view blanks = " \t\r\n\f\v";
    const auto isDigit = [](char c) {
        return digitValues[static_cast<unsigned char>(c)] != noDigit;
    };
    const auto skipBlanks = [&head] {
        head.remove_prefix(std::min(head.find_first_not_of(blanks), head.size()));
    };
    const auto skipDigits = [&] {
        const auto* const end = std::ranges::find_if_not(head, isDigit);
        const auto count = static_cast<std::size_t>(end - head.begin());
        head.remove_prefix(count);
        return count;
    };
    if (head.starts_with(utf8Mark)) head.remove_prefix(utf8Mark.size());
    skipBlanks();
    if (!head.starts_with('@')) return false;
    head.remove_prefix(1);
    if (skipDigits() == 0) return false;
    skipBlanks();
    return head.starts_with('q') || skipDigits() == 2;
}

}  // namespace Io::Import
