#include "io/field/SRecordFieldParser.hpp"

#include "util/BigEndian.hpp"

namespace Io::Field {

using Facts::RecordFault;
using Facts::Tolerance;

namespace {

bool isCountDigit(char digit) {
    return digit == '5' || digit == '6';
}

/// "  name $address", as binutils write it between lines of "$$".
bool isSymbol(std::string_view line) {
    constexpr std::string_view digits = "0123456789ABCDEFabcdef";
    const std::size_t dollar = line.rfind(" $");
    return line.starts_with("  ") && dollar != std::string_view::npos && dollar > 2 &&
           dollar + 2 < line.size() &&
           line.find_first_not_of(digits, dollar + 2) == std::string_view::npos;
}

}  // namespace

FieldParser::RunForm SRecordFieldParser::formOf(std::string_view text) const {
    const auto digit = static_cast<std::uint8_t>(text[1] - '0');
    return {{2, 1, 1 + sRecordAddressSize(sRecordType(digit))}, digit};
}

bool SRecordFieldParser::takeRecord(std::string_view line) {
    if (line.size() < 2 || line[0] != 'S' || line[1] < '0' || line[1] > '9') return false;
    // A damaged record is one of those that were counted.
    if (line[1] >= '1' && line[1] <= '3') {
        ++records_;
        isCounted_ = false;
    }
    const auto kind = static_cast<std::uint8_t>(line[1] - '0');
    const SRecordType type = sRecordType(kind);
    const bool isCount = isCountDigit(line[1]);
    // All of a count record is the number, so its bytes count as data.
    const std::size_t addressSize = isCount ? 0 : sRecordAddressSize(type);
    const auto bytes = bytesOf(line, {2, 1, 1 + addressSize});
    if (bytes.empty()) return true;
    const SRecord record{bytes, addressSize};
    const std::size_t lowest = addressSize + (isCount ? 2 : 1);
    if (record.count() < lowest)
        damage(RecordFault::CountTooLow, record.count(), lowest);
    else if (const std::uint8_t checksum = record.computedChecksum(); checksum != record.checksum())
        damage(RecordFault::Checksum, record.checksum(), checksum);
    else if (isCount)
        useCount(record, kind);
    else if (type == SRecordType::Unknown)
        damage(RecordFault::Type, static_cast<unsigned char>(line[1]));
    else
        use(type, kind, record);
    return true;
}

bool SRecordFieldParser::takeOther(std::string_view line) {
    if (line.size() > 1 && line[0] == 's' && line[1] >= '0' && line[1] <= '9') {
        damage(RecordFault::Type, static_cast<unsigned char>(line[0]));
        return true;
    }
    const bool isFrame = line.starts_with("$$");
    if (!isFrame && !(isInSymbols_ && isSymbol(line))) return false;
    isInSymbols_ = isFrame ? !isInSymbols_ : isInSymbols_;
    tolerate(Tolerance::SymbolTable);
    return true;
}

void SRecordFieldParser::use(SRecordType type, std::uint8_t kind, const SRecord& record) {
    const std::uint64_t address = Util::bigEndian(record.address());
    const std::size_t size = record.data().size();
    switch (type) {
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            if (cutsWord(size) || passesEnd(address, size)) return;
            noteBorder(address + addressesOf(size), record.addressSize);
            visitData(kind, address, size);
            store(address, record.data());
            return;
        case SRecordType::S7:
        case SRecordType::S8:
        case SRecordType::S9:
            if (!record.data().empty()) {
                damage(RecordFault::DataSize, record.data().size(), 0);
                return;
            }
            visit(kind);
            setStartAddress(address);
            end();
            return;
        case SRecordType::S0:
            setHeader(record.data());
            [[fallthrough]];
        case SRecordType::S5:
        case SRecordType::Unknown:
            visit(kind);
            noteEmptyRecord();
            break;
    }
}

void SRecordFieldParser::noteBorder(std::uint64_t end, std::size_t addressSize) {
    if (end > std::uint64_t{1} << (8 * addressSize)) tolerate(Tolerance::SegmentBorder);
}

std::uint64_t SRecordFieldParser::useRun(const Util::Records::DataRun& run, std::string_view text) {
    records_ += run.count;
    const auto digit = static_cast<std::uint32_t>(text[1] - '0');
    if (passesEnd(run.address, run.dataSize)) return run.address;
    noteBorder(run.address + run.dataSize, sRecordAddressSize(sRecordType(digit)));
    return run.address;
}

void SRecordFieldParser::useCount(const SRecord& record, std::uint8_t kind) {
    const std::uint64_t count = Util::bigEndian(record.data());
    if (count != records_ && count != records_ - countedRecords_) {
        damage(RecordFault::RecordCount, count, records_);
    } else {
        visit(kind);
        noteEmptyRecord();
    }
    countedRecords_ = records_;
    isCounted_ = count == records_ && count != 0;
}

}  // namespace Io::Field
