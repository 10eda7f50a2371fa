#include "io/import/MotorolaS_InFile.hpp"

#include <array>
#include <boost/bind/bind.hpp>
#include <utility>

#include "io/import/HexRecordSyntax.hpp"
#include "util/Report.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io::Import {

namespace {

constexpr std::string_view readerName = "MotorolaS_InFile";
constexpr std::uint64_t mostElements = 0xFFFFFFFF;
/// Stands for the size of a field that cannot be known.
constexpr std::size_t unknownSize = 255;
/// Module name, version and revision in front of the description of an S0 record.
constexpr std::size_t moduleNameSize = 10;
constexpr std::size_t headerSize = moduleNameSize + 2;

SRecordType typeOfDigit(std::uint32_t digit) {
    constexpr std::array types{SRecordType::S0,      SRecordType::S1,      SRecordType::S2,
                               SRecordType::S3,      SRecordType::Unknown, SRecordType::S5,
                               SRecordType::Unknown, SRecordType::S7,      SRecordType::S8,
                               SRecordType::S9};
    return digit < types.size() ? types[digit] : SRecordType::Unknown;
}

std::size_t addressSizeOf(SRecordType type) {
    constexpr std::array<std::size_t, 9> sizes{2, 2, 3, 4, 2, 4, 3, 2, unknownSize};
    return sizes[static_cast<std::size_t>(type)];
}

}  // namespace

MotorolaS_InFile::MotorolaS_InFile(const std::string& path)
    : MotorolaS_InFile(path, TextLines(path)) {}

MotorolaS_InFile::MotorolaS_InFile(const std::string& path, TextLines lines, FormatWatch watch)
    : RecordInFile(path, std::move(lines), readerName) {
    isComplete = parseFile(watch);
    if (!isComplete) return;
    limitData();
    parsedData.finish();
    close();
}

bool MotorolaS_InFile::parseFile(FormatWatch watch) {
    if (watch.isOn()) return parseRecords(watch);
    if (!lastHead())
        Util::reportLine("file: ", fileName,
                         " was empty. Execution aboarded. The file was not parsed.");
    else
        parseRecords(watch);
    return true;
}

bool MotorolaS_InFile::parseRecords(FormatWatch watch) {
    using Spirit::ch_p;
    using Digit = Spirit::uint_parser<std::uint32_t, 16, 1, 1>;
    using boost::placeholders::_1;
    RecordBytes bytes;
    const auto address = [this] { return record.addressSize; };
    const auto data = [this] { return record.dataSize; };
    const auto one = [] { return std::size_t{1}; };
    const auto syntax =
        ch_p('S') >> Digit()[boost::bind(&MotorolaS_InFile::storeParsedType, this, _1)] >>
        HexBytes(
            one,
            bytes)[boost::bind(&MotorolaS_InFile::storeParsedSize, this, boost::cref(bytes))] >>
        HexBytes(address, bytes) >> HexBytes(data, bytes) >> HexBytes(one, bytes);
    const auto take = [&](std::string_view line) {
        record = {};
        const bool isRecord = matchesLine(line, syntax, bytes);
        if (record.lowCount && watch.isOn()) return false;
        if (record.lowCount) reportLowCount();
        const std::span<const std::uint8_t> parsed(bytes.bytes.data(), bytes.size);
        if (isRecord && isConsistent(parsed)) {
            storeRecord(parsed);
            return true;
        }
        if (!watch.isOn()) giveUp(line, isRecord);
        return false;
    };
    return forLines([&watch](std::string_view line) { return watch.look(line); }, take);
}

void MotorolaS_InFile::storeParsedType(std::uint32_t digit) {
    record.type = typeOfDigit(digit);
    switch (record.type) {
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            ++dataRecordCount;
            break;
        case SRecordType::S5:
            lastRecordCount = std::exchange(dataRecordCount, 0);
            break;
        default:
            break;
    }
}

void MotorolaS_InFile::storeParsedSize(const RecordBytes& bytes) {
    const std::uint32_t counter = bytes.bytes.front();
    record.addressSize = addressSizeOf(record.type);
    if (record.addressSize < counter) {
        record.dataSize = counter - record.addressSize - 1;
        return;
    }
    record.dataSize = unknownSize;
    record.lowCount = counter;
}

void MotorolaS_InFile::reportLowCount() const {
    Util::reportLine("MotorolaS_InFile(storeParsedSize-Operation). Logical error");
    Util::reportLine("The value of counter is : (int)", *record.lowCount,
                     ". This is to low, because the addressSize is already : (int)",
                     record.addressSize);
    Util::reportLine(
        "This error could be also generated, if the SRecord Type was unknown or the counter was "
        "to less.");
}

bool MotorolaS_InFile::isConsistent(std::span<const std::uint8_t> bytes) const {
    using Util::Crc::GenericCrc::crc8OnesComplementSum;
    // Field by field, as the bytes came in: a sum across fields waits for the stores before it.
    std::uint8_t checksum = crc8OnesComplementSum(bytes.first(1), 0xFF);
    checksum = crc8OnesComplementSum(addressOf(bytes), checksum);
    if (crc8OnesComplementSum(dataOf(bytes), checksum) != bytes.back()) return false;
    switch (record.type) {
        case SRecordType::S0:
            return record.dataSize >= headerSize;
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            return true;
        case SRecordType::S5:
            return bigEndian(dataOf(bytes)) == lastRecordCount;
        case SRecordType::S7:
        case SRecordType::S8:
        case SRecordType::S9:
            return record.dataSize == 0;
        case SRecordType::Unknown:
            break;
    }
    return false;
}

void MotorolaS_InFile::storeRecord(std::span<const std::uint8_t> bytes) {
    const std::uint64_t address = bigEndian(addressOf(bytes));
    const auto data = dataOf(bytes);
    switch (record.type) {
        case SRecordType::S0:
            moduleName.assign(data.begin(), data.begin() + moduleNameSize);
            version = data[moduleNameSize];
            revision = data[moduleNameSize + 1];
            description.assign(data.begin() + headerSize, data.end());
            break;
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            parsedData.append(address, data);
            break;
        case SRecordType::S7:
        case SRecordType::S8:
        case SRecordType::S9:
            isStartAddressSet = true;
            startAddress = address;
            break;
        case SRecordType::S5:
        case SRecordType::Unknown:
            break;
    }
}

void MotorolaS_InFile::limitData() {
    const std::uint64_t last = parsedData.minAddress() + mostElements - 1;
    if (parsedData.empty() || parsedData.maxAddress() <= last) return;
    Util::reportLine(
        "MotorolaS_InFile(constructor-Operation). The information extracted from output file, "
        "contains too much DataElements.");
    Util::reportLine("  The max possible amount of Elements is : (int)", mostElements);
    Util::reportLine("  The max Address is changed from: (int)", parsedData.maxAddress(),
                     " to: (int)", last);
    parsedData.limitTo(last);
}

/// @param isRecord  the line is a record, but a contradictory one
void MotorolaS_InFile::giveUp(std::string_view line, bool isRecord) {
    if (!isRecord) {
        reportLine(line, " did not match parsing pattern.");
        return;
    }
    parsedData.clear();
    reportLine(line,
               " contains logical error. Please check line for Crc or Address/Type conflicts.");
}

void MotorolaS_InFile::reportLine(std::string_view line, std::string_view fault) const {
    Util::reportLine("file: ", fileName, " line: ", line, fault,
                     " Execution aboarded. The file was not parsed.");
}

}  // namespace Io::Import
