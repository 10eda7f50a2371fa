#include "util/records/Records.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

/// The two implementations under the same tests. The expected text comes from printf and from the
/// rules for checksums: the bytes of a record of Intel HEX add up to 0 modulo 256 (Intel,
/// "Hexadecimal Object File Format Specification", revision A), those of an S-record to 0xFF
/// (Motorola, M68000 Family Programmer's Reference Manual, appendix C).
namespace {

using Util::Records::DataRun;
using Util::Records::DigitCase;
using Bytes = std::vector<std::uint8_t>;

std::string digitsOf(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

/// A format: its start of a record, the size of its address field, and the sum of its records.
struct Form {
    const char* start;
    std::size_t addressSize;
    bool isIntel;

    std::size_t longestData() const { return isIntel ? 255 : 254 - addressSize; }
    std::uint32_t address() const { return 0x89ABCDEFU >> (8 * (4 - addressSize)); }

    std::string record(const Bytes& data) const {
        Bytes all{static_cast<std::uint8_t>(data.size() + (isIntel ? 0 : addressSize + 1))};
        for (std::size_t i = addressSize; i-- != 0;)
            all.push_back(static_cast<std::uint8_t>(address() >> (8 * i)));
        if (isIntel) all.push_back(0);
        all.insert(all.end(), data.begin(), data.end());
        const unsigned sum = std::accumulate(all.begin(), all.end(), 0U);
        all.push_back(static_cast<std::uint8_t>((isIntel ? 0x100U : 0xFFU) - sum));
        return start + digitsOf(all);
    }

    template <class Codec>
    DataRun decode(std::string_view text, std::uint8_t* out, DigitCase digits) const {
        return isIntel ? Codec::decodeIntel(text, out, digits) : Codec::decodeS(text, out, digits);
    }

    template <class Codec>
    char* encode(char* out, const Bytes& data) const {
        return isIntel ? Codec::encodeIntel(out, static_cast<std::uint16_t>(address()), 0, data)
                       : Codec::encodeS(out, start[1], address(), addressSize, data);
    }
};

constexpr Form forms[] = {{":", 2, true}, {"S1", 2, false}, {"S2", 3, false}, {"S3", 4, false}};

/// Bytes whose digits come in all combinations.
Bytes dataOf(std::size_t size) {
    Bytes data(size);
    for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<std::uint8_t>(37 * (i + size));
    return data;
}

/// The record with lower-case digits.
std::string lowerCase(std::string record) {
    for (std::size_t i = 1; i < record.size(); ++i)
        record[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(record[i])));
    return record;
}

const std::string following(Util::Records::textSlack, ':');

template <class Codec>
class Records : public testing::Test {
protected:
    /// Decodes from and to places with nothing beyond what the functions may touch, so that
    /// sanitizers see them reach further.
    DataRun decode(const Form& form, const std::string& text, DigitCase digits = DigitCase::Upper) {
        const std::vector<char> exact(text.begin(), text.end());
        data_.assign(exact.size() / 2 + Util::Records::dataSlack, 0);
        const DataRun run = form.decode<Codec>({exact.data(), exact.size()}, data_.data(), digits);
        data_.resize(run.dataSize);
        return run;
    }

    void expectDecoded(const Form& form, const Bytes& data, const std::string& line,
                       DigitCase digits = DigitCase::Upper) {
        const DataRun run = decode(form, line + following, digits);
        EXPECT_EQ(run.textSize, line.size()) << line;
        EXPECT_EQ(run.address, form.address()) << line;
        EXPECT_EQ(data_, data) << line;
    }

    Bytes data_;
};

#if defined(__x86_64__)
using Codecs = testing::Types<Util::Records::Portable, Util::Records::Sse2>;
#else
using Codecs = testing::Types<Util::Records::Portable>;
#endif
TYPED_TEST_SUITE(Records, Codecs);

TYPED_TEST(Records, AreDecodedInEveryLengthWithBothLineEnds) {
    for (const Form& form : forms) {
        for (std::size_t size = 1; size <= form.longestData(); ++size) {
            const Bytes data = dataOf(size);
            const std::string record = form.record(data);
            this->expectDecoded(form, data, record + "\n");
            this->expectDecoded(form, data, record + "\r\n");
            this->expectDecoded(form, data, record + "\n", DigitCase::Any);
            this->expectDecoded(form, data, lowerCase(record) + "\n", DigitCase::Any);
        }
    }
}

/// A gap and the end of the address field end a run, an imperfect record ends it as well.
TYPED_TEST(Records, AreDecodedAsLongAsTheirAddressesFollow) {
    const std::string text =
        ":10FFE000000102030405060708090A0B0C0D0E0F99\n:04FFF0000102030403\n"
        ":0CFFF40005060708090A0B0C0D0E0F1083\n:020000001112DB\n:0200030013140000\n";
    const DataRun first = this->decode(forms[0], text + following);
    EXPECT_EQ(first.count, 3U);
    EXPECT_EQ(first.address, 0xFFE0U);
    EXPECT_EQ(this->data_.size(), 32U);
    EXPECT_EQ(this->data_.back(), 0x10);
    const DataRun second = this->decode(forms[0], text.substr(first.textSize) + following);
    EXPECT_EQ(second.count, 1U);
    EXPECT_EQ(second.address, 0U);
    EXPECT_EQ(this->data_, (Bytes{0x11, 0x12}));
}

TYPED_TEST(Records, AreEncodedInEveryLength) {
    for (const Form& form : forms) {
        for (std::size_t size = 0; size <= form.longestData(); ++size) {
            const Bytes data = dataOf(size);
            const std::string expected = form.record(data) + "\n";
            std::vector<char> out(expected.size() + Util::Records::textSlack);
            char* const end = form.encode<TypeParam>(out.data(), data);
            EXPECT_EQ(std::string_view(out.data(), end), expected);
        }
    }
}

/// All these characters make a record imperfect wherever they are, in the place of any digit: they
/// are neighbours of digits in the character set, or digits with the highest bit. Lower-case digits
/// do so unless they are asked for: then they are the wrong digits for the checksum. The last one
/// is the digit with its lowest bit changed, which the checksum reveals as well.
TYPED_TEST(Records, AreRejectedWithADamagedCharacter) {
    constexpr std::string_view others{"/:@G`afg \n\r\0\xB0\xC1\xE6\xFF", 16};
    for (const Form& form : forms) {
        for (std::size_t size = 0; size <= form.longestData(); size += size < 40 ? 1 : 43) {
            std::string text = form.record(dataOf(size)) + "\n";
            const std::size_t firstDigit = form.isIntel ? 1 : 2;
            for (std::size_t at = firstDigit; at + 1 < text.size(); ++at) {
                const char right = text[at];
                for (const char other : others) {
                    text[at] = other;
                    EXPECT_EQ(this->decode(form, text + following).textSize, 0U) << at << text;
                    // The lower-case form of the right digit is not a fault then.
                    if (std::toupper(static_cast<unsigned char>(other)) == right) continue;
                    EXPECT_EQ(this->decode(form, text + following, DigitCase::Any).textSize, 0U)
                        << at << text;
                }
                text[at] = right == '9' ? '8' : static_cast<char>(right ^ 1);
                if (text[at] != '@' && text[at] != 'G') {
                    EXPECT_EQ(this->decode(form, text + following).textSize, 0U) << at << text;
                }
                text[at] = right;
            }
        }
    }
}

TYPED_TEST(Records, AreRejectedWithAnotherStartOrLineEnd) {
    for (const Form& form : forms) {
        const std::string record = form.record(dataOf(20));
        for (const char* end : {"", " \n", "\r", "\r\r\n", "0\n"})
            EXPECT_EQ(this->decode(form, record + end + following).textSize, 0U) << end;
        for (const char* start : {";", "s", "T", " ", "S0", "S4", "S5", "S7"})
            EXPECT_EQ(
                this->decode(form, start + record.substr(form.isIntel ? 1 : 2) + "\n" + following)
                    .textSize,
                0U)
                << start;
    }
}

/// Records with correct checksums that are not of data, without data, and an S1 record without an
/// address.
TYPED_TEST(Records, AreRejectedIfTheyAreNotOfData) {
    for (const char* intel : {":020000021200EA\n", ":00000001FF\n", ":0400000500000CBD2E\n",
                              ":02000004FFFFFC\n", ":0400000300003800C1\n", ":0000000000\n"})
        EXPECT_EQ(this->decode(forms[0], intel + following).textSize, 0U) << intel;
    for (const char* s :
         {"S00600004844521B\n", "S5030003F9\n", "S9030000FC\n", "S10200FD\n", "S1030000FC\n"})
        EXPECT_EQ(this->decode(forms[1], s + following).textSize, 0U) << s;
}

TYPED_TEST(Records, AreRejectedWhereTheTextIsCut) {
    for (const Form& form : forms) {
        for (const std::size_t size : {1U, 16U, 17U, 250U}) {
            const std::string line = form.record(dataOf(size)) + "\n";
            for (std::size_t length = 0; length + 1 < line.size() + following.size(); ++length)
                EXPECT_EQ(this->decode(form, (line + following).substr(0, length)).textSize, 0U);
        }
    }
}

}  // namespace
