#include "io/import/MotorolaS_Parser.hpp"

#include <span>

#include "io/SRecord.hpp"
#include "io/import/HexRecordSyntax.hpp"
#include "util/BigEndian.hpp"
#include "util/records/Records.hpp"

namespace Io::Import {

namespace {

/// The size of a field that cannot be known.
constexpr std::size_t unknownSize = 255;
/// What an S0 record must hold: ten characters of module name, version and revision.
constexpr std::size_t headerSize = 12;

/// Bytes of the address field, by which a record of an unknown kind is matched as well.
std::size_t addressSizeOf(SRecordType type) {
    return type == SRecordType::Unknown ? unknownSize : sRecordAddressSize(type);
}

/// The big-endian number that `bytes` form, however many they are, is `number`.
bool isNumber(std::span<const std::uint8_t> bytes, std::uint64_t number) {
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number >>= 8U)
        if (*byte != (number & 0xFFU)) return false;
    return number == 0;
}

}  // namespace

/// A record, and the sizes of its fields while it is being matched.
struct MotorolaS_Parser::Record {
    SRecordType type = SRecordType::Unknown;
    std::size_t addressSize = 0;
    std::size_t dataSize = 0;
    RecordBytes all;  ///< count, address, data and checksum

    SRecord view() const { return {{all.bytes.data(), all.size}, addressSize}; }
    std::uint8_t count() const { return all.bytes.front(); }

    /// The count leaves no room for data.
    bool isCountLow() const { return count() <= addressSize; }

    void setSizes() {
        addressSize = addressSizeOf(type);
        // With a low count the line may match all the same, so that this alone is not a fault.
        dataSize = isCountLow() ? unknownSize : count() - addressSize - 1;
    }
};

namespace {

Util::Records::DataRun decode(std::string_view text, std::uint8_t* out) {
    return Util::Records::Codec::decodeS(text, out, Util::Records::DigitCase::Any);
}

template <class Record>
auto recordSyntax(Record& record) {
    using Digit = Spirit::uint_parser<std::uint32_t, 16, 1, 1>;
    const auto count = [] { return std::size_t{1}; };
    const auto address = [&record] { return record.addressSize; };
    // Together, since a call for a single byte costs as much as one for sixteen.
    const auto dataAndChecksum = [&record] { return record.dataSize + 1; };
    const auto setType = [&record](std::uint32_t digit) { record.type = sRecordType(digit); };
    const auto setSizes = [&record](const char* /*first*/, const char* /*last*/) {
        record.setSizes();
    };
    return Spirit::ch_p('S') >> Digit()[setType] >> HexBytes(count, record.all)[setSizes] >>
           HexBytes(address, record.all) >> HexBytes(dataAndChecksum, record.all);
}

}  // namespace

/// The syntax of a record and the record that it has matched. To build it takes as long as to match
/// a line, so it is built once.
class MotorolaS_Parser::Syntax {
public:
    /// False if `line` is not a record; the fields that were matched up to there are set.
    bool matches(std::string_view line) {
        record_.addressSize = 0;
        return matchesLine(line, syntax_, record_.all);
    }

    const Record& record() const { return record_; }

private:
    Record record_;
    decltype(recordSyntax(record_)) syntax_ = recordSyntax(record_);
};

MotorolaS_Parser::MotorolaS_Parser(std::uint64_t fileSize)
    : RecordParser(Facts::InputFormat::MotorolaS, fileSize), syntax_(std::make_unique<Syntax>()) {}

MotorolaS_Parser::~MotorolaS_Parser() = default;
MotorolaS_Parser::MotorolaS_Parser(MotorolaS_Parser&& other) noexcept = default;

void MotorolaS_Parser::takeRecord(const TextLines& lines) {
    takeLine(lines, [this](std::string_view line) { return parseRecord(line); });
}

std::uint64_t MotorolaS_Parser::takeAhead(TextLines& lines) {
    const std::uint64_t count = takeDataAhead(lines, &decode, 0);
    dataRecordCount_ += static_cast<std::uint32_t>(count);
    return count;
}

LineFault MotorolaS_Parser::parseRecord(std::string_view line) {
    const bool isRecord = syntax_->matches(line);
    const Record& record = syntax_->record();
    if (record.addressSize != 0 && record.isCountLow())
        parsed_.lowCounts.push_back({record.count(), record.addressSize});
    if (!isRecord) return LineFault::NotARecord;
    if (!isConsistent(record)) return LineFault::Contradictory;
    storeRecord(record);
    return LineFault::None;
}

bool MotorolaS_Parser::isConsistent(const Record& record) const {
    const SRecord bytes = record.view();
    if (bytes.computedChecksum() != bytes.checksum()) return false;
    switch (record.type) {
        case SRecordType::S0:
            return record.dataSize >= headerSize;
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            return isOfWords(record.dataSize);
        case SRecordType::S5:
            return isNumber(bytes.data(), dataRecordCount_);
        case SRecordType::S7:
        case SRecordType::S8:
        case SRecordType::S9:
            return record.dataSize == 0;
        case SRecordType::Unknown:
            break;
    }
    return false;
}

void MotorolaS_Parser::storeRecord(const Record& record) {
    const SRecord bytes = record.view();
    switch (record.type) {
        case SRecordType::S1:
        case SRecordType::S2:
        case SRecordType::S3:
            ++dataRecordCount_;
            parsed_.data.append(Util::bigEndian(bytes.address()), bytes.data());
            break;
        case SRecordType::S7:
        case SRecordType::S8:
        case SRecordType::S9:
            parsed_.startAddress = Util::bigEndian(bytes.address());
            break;
        case SRecordType::S5:
            dataRecordCount_ = 0;
            break;
        case SRecordType::S0:
        case SRecordType::Unknown:
            break;
    }
}

}  // namespace Io::Import
