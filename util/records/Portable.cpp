#include <algorithm>
#include <array>
#include <numeric>

#include "util/records/Steps.hpp"

namespace Util::Records {

namespace {

template <DigitCase Case>
class PortableLanes {
public:
    template <std::size_t Bytes>
    std::uint64_t readFields(const char* digits, const char* checksumDigits) {
        std::array<std::uint8_t, Bytes> bytes{};
        std::uint8_t checksum = 0;
        read(bytes.data(), digits, Bytes);
        read(&checksum, checksumDigits, 1);
        add(bytes);
        add({&checksum, 1});
        std::uint64_t fields = 0;
        for (const std::uint8_t byte : bytes) fields = fields << 8U | byte;
        return fields;
    }

    void readData(std::uint8_t* out, const char* digits, std::size_t size) {
        read(out, digits, size);
        add({out, size});
    }

    char* writeFields(char* out, std::uint64_t fields, std::size_t bytes) {
        while (bytes-- != 0) {
            const auto byte = static_cast<std::uint8_t>(fields >> (8 * bytes));
            add({&byte, 1});
            out = writeHex(out, byte);
        }
        return out;
    }

    char* writeData(char* out, std::span<const std::uint8_t> data) {
        add(data);
        return writeHex(out, data);
    }

    bool areDigits() const { return areDigits_; }
    std::uint8_t sum() const { return static_cast<std::uint8_t>(sum_); }

private:
    void read(std::uint8_t* out, const char* digits, std::size_t count) {
        const auto isLower = [](char digit) { return digit >= 'a'; };
        areDigits_ = areDigits_ && readHex(out, digits, count) &&
                     (Case == DigitCase::Any || std::none_of(digits, digits + 2 * count, isLower));
    }

    void add(std::span<const std::uint8_t> bytes) {
        sum_ = std::accumulate(bytes.begin(), bytes.end(), sum_);
    }

    unsigned sum_ = 0;
    bool areDigits_ = true;
};

}  // namespace

DataRun Portable::decodeIntel(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return decodeIntelBy<PortableLanes>(text, out, digits);
}

DataRun Portable::decodeS(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return decodeSBy<PortableLanes>(text, out, digits);
}

char* Portable::encodeIntel(char* out, std::uint16_t address, std::uint8_t typeByte,
                            std::span<const std::uint8_t> data) {
    return encodeIntelBy<PortableLanes<DigitCase::Upper>>(out, address, typeByte, data);
}

char* Portable::encodeS(char* out, char typeDigit, std::uint32_t address, std::size_t addressSize,
                        std::span<const std::uint8_t> data) {
    return encodeSBy<PortableLanes<DigitCase::Upper>>(out, typeDigit, address, addressSize, data);
}

}  // namespace Util::Records
