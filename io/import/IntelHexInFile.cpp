#include "io/import/IntelHexInFile.hpp"

#include <utility>

#include "io/import/HexRecordSyntax.hpp"
#include "util/Report.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io::Import {

namespace {

constexpr std::string_view readerName = "IntelHexInFile";

/// The type digits of an end-of-file record stand at their place, whatever else the line says.
bool isEndOfFile(std::string_view line) {
    constexpr std::size_t typePosition = 7;
    return line.starts_with(':') && line.substr(std::min(typePosition, line.size()), 2) == "01";
}

}  // namespace

IntelHexInFile::IntelHexInFile(const std::string& path) : IntelHexInFile(path, TextLines(path)) {}

IntelHexInFile::IntelHexInFile(const std::string& path, TextLines lines, FormatWatch watch)
    : RecordInFile(path, std::move(lines), readerName) {
    isComplete = parseFile(watch);
    if (!isComplete) return;
    parsedData.finish();
    close();
}

bool IntelHexInFile::parseFile(FormatWatch watch) {
    if (watch.isOn()) return parseRecords(watch) && isEndOfFile(lastHead().value_or(""));
    if (!lastHead())
        Util::reportLine("file: ", fileName,
                         " was empty. Execution aboarded. The file was not parsed.");
    else if (!isEndOfFile(*lastHead()))
        Util::reportLine("file: ", fileName,
                         " has no intel format (last line mismatched). Execution aboarded. The "
                         "file was not parsed.");
    else
        parseRecords(watch);
    return true;
}

bool IntelHexInFile::parseRecords(FormatWatch watch) {
    using Spirit::ch_p;
    RecordBytes record;
    const auto head = [] { return std::size_t{4}; };
    const auto counted = [&record] { return std::size_t{record.bytes[0]}; };
    const auto checksum = [] { return std::size_t{1}; };
    const auto syntax = ch_p(':') >> HexBytes(head, record) >> HexBytes(counted, record) >>
                        HexBytes(checksum, record);
    const auto take = [&](std::string_view line) {
        if (!matchesLine(line, syntax, record)) return true;
        const std::span<const std::uint8_t> bytes(record.bytes.data(), record.size - 1);
        const Record parsed{bytes, record.bytes[record.size - 1]};
        if (!isConsistent(parsed) || checksumOf(parsed) != parsed.checksum) {
            if (!watch.isOn()) reportLogicalError(line);
            return false;
        }
        storeRecord(parsed);
        return true;
    };
    return forLines([&watch](std::string_view line) { return watch.look(line); }, take);
}

std::uint8_t IntelHexInFile::checksumOf(const Record& record) {
    using Util::Crc::GenericCrc::crc8TwosComplementSum;
    // Field by field, as the bytes came in: a sum across fields waits for the stores before it.
    return crc8TwosComplementSum(record.data(), crc8TwosComplementSum(record.head(), 0));
}

bool IntelHexInFile::isConsistent(const Record& record) {
    switch (record.type()) {
        case IntelRecordType::Data:
            return true;
        case IntelRecordType::ExtendedSegmentAddress:
        case IntelRecordType::ExtendedLinearAddress:
            return record.address() == 0 && record.length() == 2;
        case IntelRecordType::StartSegmentAddress:
        case IntelRecordType::StartLinearAddress:
            return record.address() == 0 && record.length() == 4;
        case IntelRecordType::EndOfFile:
        case IntelRecordType::Unknown:
            break;
    }
    return false;
}

void IntelHexInFile::storeRecord(const Record& record) {
    constexpr std::uint64_t paragraph = 16;
    constexpr std::uint64_t page = 65536;
    const auto data = record.data();
    switch (record.type()) {
        case IntelRecordType::Data:
            parsedData.append(segmentBase + record.address(), data);
            break;
        case IntelRecordType::ExtendedSegmentAddress:
            segmentBase = bigEndian(data) * paragraph;
            break;
        case IntelRecordType::ExtendedLinearAddress:
            segmentBase = bigEndian(data) * page;
            break;
        case IntelRecordType::StartSegmentAddress:
            isStartAddressSet = true;
            startAddress = bigEndian(data.first(2)) * paragraph + bigEndian(data.last(2));
            break;
        case IntelRecordType::StartLinearAddress:
            isStartAddressSet = true;
            startAddress = bigEndian(data);
            break;
        case IntelRecordType::EndOfFile:
        case IntelRecordType::Unknown:
            break;
    }
}

void IntelHexInFile::reportLogicalError(std::string_view line) {
    segmentBase = 0;
    parsedData.clear();
    Util::reportLine("file: ", fileName, " line: ", line,
                     " contains logical error. Please check line for Crc or Address/Type "
                     "conflicts. Execution aboarded. The file was not parsed.");
}

}  // namespace Io::Import
