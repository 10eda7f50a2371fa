#include "io/field/IntelHexFieldParser.hpp"

namespace Io::Field {

using Facts::RecordFault;
using Facts::Tolerance;

bool IntelHexFieldParser::takeRecord(std::string_view line) {
    if (line.front() != ':') return false;
    const auto bytes = bytesOf(line, frame);
    if (bytes.empty()) return true;
    const IntelRecord record{bytes.first(bytes.size() - 1), bytes.back()};
    const std::uint8_t checksum = record.computedChecksum();
    if (checksum != record.checksum)
        damage(RecordFault::Checksum, record.checksum, checksum);
    else if (record.type() == IntelRecordType::Data)
        useData(record);
    else if (isSound(record))
        use(record);
    return true;
}

void IntelHexFieldParser::useData(const IntelRecord& record) {
    const std::uint64_t address = base_ + record.address();
    if (cutsWord(record.length())) return;
    noteBorder(record.address() + addressesOf(record.length()));
    if (passesEnd(address, record.length())) return;
    visitData(record.bytes[3], address, record.length());
    store(address, record.data());
}

void IntelHexFieldParser::noteBorder(std::uint64_t end) {
    constexpr std::uint64_t segmentSize = 0x10000;
    if (isSegment_ && end > segmentSize) tolerate(Tolerance::SegmentBorder);
}

std::uint64_t IntelHexFieldParser::useRun(const Util::Records::DataRun& run,
                                          std::string_view /*text*/) {
    noteBorder(run.address + run.dataSize);
    passesEnd(base_ + run.address, run.dataSize);
    return base_ + run.address;
}

/// The fields of a record that is not a data record are as its type wants them.
bool IntelHexFieldParser::isSound(const IntelRecord& record) {
    const IntelRecordType type = record.type();
    const auto size = intelDataSize(type);
    // Some tools put their symbols after the end, in records of a type of their own.
    if (!size && hasEnded())
        noteEmptyRecord();
    else if (!size)
        damage(RecordFault::Type, record.bytes[3]);
    else if (record.length() != *size)
        damage(RecordFault::DataSize, record.length(), *size);
    else if (type != IntelRecordType::EndOfFile && record.address() != 0)
        damage(RecordFault::Address, record.address());
    else
        return true;
    return false;
}

void IntelHexFieldParser::use(const IntelRecord& record) {
    visit(record.bytes[3]);
    switch (record.type()) {
        case IntelRecordType::EndOfFile:
            if (record.address() != 0) tolerate(Tolerance::EndAddress);
            end();
            return;
        case IntelRecordType::ExtendedSegmentAddress:
        case IntelRecordType::ExtendedLinearAddress:
            base_ = record.base();
            isSegment_ = record.type() == IntelRecordType::ExtendedSegmentAddress;
            break;
        case IntelRecordType::StartSegmentAddress:
        case IntelRecordType::StartLinearAddress:
            setStartAddress(record.startAddress());
            break;
        case IntelRecordType::Data:
        case IntelRecordType::Unknown:
            break;
    }
    noteEmptyRecord();
}

}  // namespace Io::Field
