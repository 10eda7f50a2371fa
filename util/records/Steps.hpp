#pragma once

#include <cstring>

#include "util/Hex.hpp"
#include "util/records/Records.hpp"

/// The layout of the two formats, for the two sources of this folder. `Lanes` does the work on
/// digits and bytes and keeps what they add up to and, when decoding, whether all were digits. It
/// is a template over the case of the digits.
namespace Util::Records {

/// Where the fields in front of the data are: count, address and, in Intel HEX, the type.
struct Layout {
    std::size_t fieldsAt;      ///< characters in front of the count
    std::size_t addressSize;   ///< in bytes
    std::size_t typeSize;      ///< in bytes
    std::size_t countedExtra;  ///< bytes that the count counts beyond those of the data
    std::uint8_t sum;          ///< of all bytes of the record

    constexpr std::size_t fieldBytes() const { return 1 + addressSize + typeSize; }
    constexpr std::uint32_t addressIn(std::uint64_t fields) const {
        const std::uint64_t mask = (std::uint64_t{1} << (8 * addressSize)) - 1;
        return static_cast<std::uint32_t>(fields >> (8 * typeSize) & mask);
    }
};

inline constexpr Layout intelLayout{1, 2, 1, 0, 0x00};
constexpr Layout sLayout(std::size_t addressSize) {
    return {2, addressSize, 0, addressSize + 1, 0xFF};
}

/// The byte that two digits mean. Any other characters give any byte, and fail the check later.
inline std::uint8_t byteAt(const char* digits) {
    const auto valueOf = [](char digit) {
        const auto code = static_cast<unsigned char>(digit);
        return (code & 0xFU) + 9U * (code >> 6U);
    };
    return static_cast<std::uint8_t>(valueOf(digits[0]) << 4U | valueOf(digits[1]));
}

/// Characters of the end of a line at `end`, 0 if there is none.
inline std::size_t lineEndSize(const char* end) {
    if (end[0] == '\n') return 1;
    return end[0] == '\r' && end[1] == '\n' ? 2 : 0;
}

/// The count of the last record. Most records have that of the one before, which a processor
/// predicts, so that it need not wait for the digits.
struct LastCount {
    std::uint16_t digits = 0;
    std::size_t value = 0;

    std::size_t at(const char* text) {
        std::uint16_t found = 0;
        std::memcpy(&found, text, sizeof found);
        if (found != digits) {
            digits = found;
            value = byteAt(text);
        }
        return value;
    }
};

struct DataRecord {
    std::uint32_t address = 0;
    std::size_t dataSize = 0;
    std::size_t textSize = 0;  ///< 0 if there is no perfect record
};

/// A record whose first characters are those of a data record.
template <class Lanes, Layout Form>
[[gnu::always_inline]] inline DataRecord decode(std::string_view text, LastCount& lastCount,
                                                std::uint8_t* out) {
    // Locate
    const std::size_t count = lastCount.at(text.data() + Form.fieldsAt);
    if (count <= Form.countedExtra) return {};
    const std::size_t dataSize = count - Form.countedExtra;
    const std::size_t dataAt = Form.fieldsAt + 2 * Form.fieldBytes();
    const std::size_t checksumAt = dataAt + 2 * dataSize;
    const std::size_t end = checksumAt + 2;
    if (text.size() < end + textSlack) return {};
    const std::size_t lineEnd = lineEndSize(text.data() + end);
    if (lineEnd == 0) return {};
    // Fields, data, check
    Lanes lanes;
    const std::uint64_t fields = lanes.template readFields<Form.fieldBytes()>(
        text.data() + Form.fieldsAt, text.data() + checksumAt);
    lanes.readData(out, text.data() + dataAt, dataSize);
    if (!lanes.areDigits() || lanes.sum() != Form.sum) return {};
    return {Form.addressIn(fields), dataSize, end + lineEnd};
}

/// Everything is inlined: each call in the loop costs a tenth of the time of reading.
///
/// @param isData  the characters at the front of a text are those of a data record
template <class Lanes, Layout Form, class IsData>
[[gnu::flatten]] DataRun decodeRun(std::string_view text, std::uint8_t* out, IsData isData) {
    DataRun run;
    LastCount lastCount;
    while (text.size() >= textSlack && isData(text.data())) {
        const DataRecord record = decode<Lanes, Form>(text, lastCount, out + run.dataSize);
        if (record.textSize == 0) break;
        if (run.count == 0) run.address = record.address;
        if (run.address + run.dataSize != record.address) break;
        run.dataSize += record.dataSize;
        run.textSize += record.textSize;
        ++run.count;
        text.remove_prefix(record.textSize);
    }
    return run;
}

template <class Lanes>
DataRun decodeIntelWith(std::string_view text, std::uint8_t* out) {
    constexpr std::size_t typeAt = 7;
    return decodeRun<Lanes, intelLayout>(text, out, [](const char* record) {
        return record[0] == ':' && record[typeAt] == '0' && record[typeAt + 1] == '0';
    });
}

template <class Lanes, std::size_t AddressSize>
DataRun decodeSOf(std::string_view text, std::uint8_t* out) {
    // S1 has two bytes of address, S3 four.
    constexpr char typeDigit = '0' + AddressSize - 1;
    return decodeRun<Lanes, sLayout(AddressSize)>(
        text, out, [](const char* record) { return record[0] == 'S' && record[1] == typeDigit; });
}

template <class Lanes>
DataRun decodeSWith(std::string_view text, std::uint8_t* out) {
    switch (text.size() < 2 ? '\0' : text[1]) {
        case '1':
            return decodeSOf<Lanes, 2>(text, out);
        case '2':
            return decodeSOf<Lanes, 3>(text, out);
        case '3':
            return decodeSOf<Lanes, 4>(text, out);
        default:
            return {};
    }
}

template <template <DigitCase> class Lanes>
DataRun decodeIntelBy(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return digits == DigitCase::Upper ? decodeIntelWith<Lanes<DigitCase::Upper>>(text, out)
                                      : decodeIntelWith<Lanes<DigitCase::Any>>(text, out);
}

template <template <DigitCase> class Lanes>
DataRun decodeSBy(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return digits == DigitCase::Upper ? decodeSWith<Lanes<DigitCase::Upper>>(text, out)
                                      : decodeSWith<Lanes<DigitCase::Any>>(text, out);
}

/// The digits of a record after its first characters: fields, data, checksum and a line feed.
template <class Lanes>
[[gnu::always_inline]] inline char* encode(char* out, const Layout& form, std::uint64_t fields,
                                           std::span<const std::uint8_t> data) {
    Lanes lanes;
    out = lanes.writeFields(out, fields, form.fieldBytes());
    out = lanes.writeData(out, data);
    out = writeHex(out, static_cast<std::uint8_t>(form.sum - lanes.sum()));
    *out++ = '\n';
    return out;
}

template <class Lanes>
char* encodeIntelBy(char* out, std::uint16_t address, std::uint8_t typeByte,
                    std::span<const std::uint8_t> data) {
    const std::uint64_t count = static_cast<std::uint8_t>(data.size());
    *out++ = ':';
    return encode<Lanes>(out, intelLayout, count << 24U | std::uint64_t{address} << 8U | typeByte,
                         data);
}

template <class Lanes>
char* encodeSBy(char* out, char typeDigit, std::uint32_t address, std::size_t addressSize,
                std::span<const std::uint8_t> data) {
    const std::uint64_t count = static_cast<std::uint8_t>(addressSize + data.size() + 1);
    *out++ = 'S';
    *out++ = typeDigit;
    return encode<Lanes>(out, sLayout(addressSize), count << (8 * addressSize) | address, data);
}

}  // namespace Util::Records
