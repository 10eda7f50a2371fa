#include "io/import/IntelHexParser.hpp"

#include <algorithm>
#include <optional>

#include "io/import/HexRecordSyntax.hpp"
#include "util/records/Records.hpp"

namespace Io::Import {

namespace {

Util::Records::DataRun decode(std::string_view text, std::uint8_t* out) {
    return Util::Records::Codec::decodeIntel(text, out, Util::Records::DigitCase::Any);
}

/// The type digits of an end-of-file record are in their place, whatever else the line holds.
bool isEndOfFile(std::string_view line) {
    constexpr std::size_t typePosition = 7;
    return line.starts_with(':') && line.substr(std::min(typePosition, line.size()), 2) == "01";
}

auto recordSyntax(RecordBytes& bytes) {
    const auto head = [] { return std::size_t{4}; };
    // Together, since a call for a single byte costs as much as one for sixteen.
    const auto dataAndChecksum = [&bytes] { return std::size_t{bytes.bytes[0]} + 1; };
    return Spirit::ch_p(':') >> HexBytes(head, bytes) >> HexBytes(dataAndChecksum, bytes);
}

}  // namespace

/// The syntax of a record and the bytes that it has matched. To build it takes as long as to match
/// a line, so it is built once.
class IntelHexParser::Syntax {
public:
    /// The record that `line` is, or nothing.
    std::optional<IntelRecord> match(std::string_view line) {
        if (!matchesLine(line, syntax_, bytes_)) return std::nullopt;
        const std::span<const std::uint8_t> all(bytes_.bytes.data(), bytes_.size);
        return IntelRecord{all.first(all.size() - 1), all.back()};
    }

private:
    RecordBytes bytes_;
    decltype(recordSyntax(bytes_)) syntax_ = recordSyntax(bytes_);
};

IntelHexParser::IntelHexParser(std::uint64_t fileSize)
    : RecordParser(Facts::InputFormat::IntelHex, fileSize), syntax_(std::make_unique<Syntax>()) {}

IntelHexParser::~IntelHexParser() = default;
IntelHexParser::IntelHexParser(IntelHexParser&& other) noexcept = default;

void IntelHexParser::takeLast(std::string_view line) {
    if (isEndOfFile(line)) return;
    parsed_.data.clear();
    parsed_.startAddress.reset();
    parsed_.fault = LineFault::LastLineMismatched;
}

void IntelHexParser::takeRecord(const TextLines& lines) {
    takeLine(lines, [this](std::string_view line) { return parseRecord(line); });
}

void IntelHexParser::takeAhead(TextLines& lines) {
    takeDataAhead(lines, &decode, segmentBase_);
}

LineFault IntelHexParser::parseRecord(std::string_view line) {
    const std::optional<IntelRecord> record = syntax_->match(line);
    if (!record) return LineFault::None;
    if (!isConsistent(*record) || record->computedChecksum() != record->checksum)
        return LineFault::Contradictory;
    storeRecord(*record);
    return LineFault::None;
}

bool IntelHexParser::isConsistent(const IntelRecord& record) const {
    if (record.type() == IntelRecordType::Data) return isOfWords(record.length());
    // An end-of-file record is the last line, which does not come here.
    if (record.type() == IntelRecordType::EndOfFile) return false;
    return record.address() == 0 && record.length() == intelDataSize(record.type());
}

void IntelHexParser::storeRecord(const IntelRecord& record) {
    switch (record.type()) {
        case IntelRecordType::Data:
            parsed_.data.append(segmentBase_ + record.address(), record.data());
            break;
        case IntelRecordType::ExtendedSegmentAddress:
        case IntelRecordType::ExtendedLinearAddress:
            segmentBase_ = record.base();
            break;
        case IntelRecordType::StartSegmentAddress:
        case IntelRecordType::StartLinearAddress:
            parsed_.startAddress = record.startAddress();
            break;
        case IntelRecordType::EndOfFile:
        case IntelRecordType::Unknown:
            break;
    }
}

}  // namespace Io::Import
