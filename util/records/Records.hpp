#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// Whole records of Intel HEX and of the S-record format, as text and as bytes.
///
/// The idea: nearly all of a file is data records without a fault, one after the other, so a record
/// is handled as a whole instead of digit by digit. Decoding has four steps. *Locate*: the count
/// says where the checksum and the end of the line must be. *Fields*: the digits in front of the
/// data and those of the checksum are one vector. *Data*: 32 digits become 16 bytes, which go
/// straight to their destination. *Check*: the same pass has collected whether all characters are
/// digits and what the bytes add up to, so one comparison accepts or rejects the record. Encoding
/// is the way back: fields, data, and a checksum of what was added up on the way. Whatever is not
/// perfect is rejected here and left to the grammar of its format, so that no rule exists twice.
namespace Util::Records {

/// Characters beyond a record that a decoder may read and an encoder may overwrite.
inline constexpr std::size_t textSlack = 32;
/// Bytes beyond the data that a decoder may overwrite.
inline constexpr std::size_t dataSlack = 16;

/// Which hexadecimal digits a record may have.
enum class DigitCase : std::uint8_t {
    Upper,  ///< no lower-case ones
    Any     ///< upper-case and lower-case ones
};

/// Data records at the front of a text, each at the address one past the data of the one before.
struct DataRun {
    std::uint32_t address = 0;  ///< of the first one: 16 bits in Intel HEX, up to 32 in S-records
    std::size_t dataSize = 0;
    std::size_t textSize = 0;  ///< with the ends of their lines
    std::size_t count = 0;     ///< of records
};

/// The functions in portable C++, the reference for those in vectors.
///
/// `decodeIntel` takes records of type 00 off the front of `text`, `decodeS` records of one of the
/// types S1, S2 and S3. Each of them is perfect: digits of the case that is asked for, a count that
/// fits, at least one byte of data, a correct checksum, a line feed or a carriage return and a line
/// feed right after it, and at least `textSlack` characters after its checksum. Their data goes to
/// `out`, which has room for half the text and for `dataSlack` more; beyond the data, its content
/// is unspecified.
///
/// `encodeIntel` and `encodeS` write a record and a line feed to `out`, which has room for it and
/// for `textSlack` more, and return the position after it. The count field takes the low eight bits
/// of the count.
struct Portable {
    static DataRun decodeIntel(std::string_view text, std::uint8_t* out, DigitCase digits);
    static DataRun decodeS(std::string_view text, std::uint8_t* out, DigitCase digits);

    /// @param typeByte  00 to 05, as in the file
    static char* encodeIntel(char* out, std::uint16_t address, std::uint8_t typeByte,
                             std::span<const std::uint8_t> data);

    /// @param typeDigit    the second character of the record
    /// @param addressSize  bytes of the address field, at most 4
    static char* encodeS(char* out, char typeDigit, std::uint32_t address, std::size_t addressSize,
                         std::span<const std::uint8_t> data);
};

#if defined(__x86_64__) && defined(__SSE2__)

/// The same functions in vectors of 16 bytes. Every x86-64 processor has SSE2, so nothing is
/// detected at run time.
struct Sse2 {
    static DataRun decodeIntel(std::string_view text, std::uint8_t* out, DigitCase digits);
    static DataRun decodeS(std::string_view text, std::uint8_t* out, DigitCase digits);
    static char* encodeIntel(char* out, std::uint16_t address, std::uint8_t typeByte,
                             std::span<const std::uint8_t> data);
    static char* encodeS(char* out, char typeDigit, std::uint32_t address, std::size_t addressSize,
                         std::span<const std::uint8_t> data);
};

using Codec = Sse2;

#else

using Codec = Portable;

#endif

}  // namespace Util::Records
