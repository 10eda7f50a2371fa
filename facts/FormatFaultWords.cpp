#include "facts/FormatFaultWords.hpp"

#include <array>
#include <charconv>
#include <utility>

namespace Facts {

namespace {

std::string hexadecimal(std::uint64_t number) {
    constexpr int base = 16;
    std::array<char, 16> digits{};
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
    return "0x" + std::string(std::as_const(digits).data(), end);
}

}  // namespace

std::string textOf(const FileMalformed& fact) {
    const std::string where = std::to_string(fact.where);
    const std::string number = std::to_string(fact.number);
    switch (fact.fault) {
        case FormatFault::MagicMissing:
            return "the mark of the format is missing at byte " + where;
        case FormatFault::VariantUnknown:
            return "byte " + where + " is " + number + ", which names no variant of the format";
        case FormatFault::Truncated:
            return "the file ends before byte " + where + " and the " + number + " after it";
        case FormatFault::EntryTooShort:
            return "the entries of the table at byte " + where + " have only " + number + " bytes";
        case FormatFault::NothingToLoad:
            return "there is no data to load";
        case FormatFault::DataRepeated:
            return "parts of the file count several times, " + number + " bytes in total";
        case FormatFault::SegmentTooLong:
            return "segment " + where + " has " + number + " bytes in the file and fewer in memory";
        case FormatFault::AddressTooHigh:
            return "the data at " + hexadecimal(fact.number) +
                   " passes the end of the address space";
        case FormatFault::SizeNotWhole:
            return "the size of the file, " + where + ", is no multiple of " + number;
        case FormatFault::PayloadTooLong:
            return "block " + where + " has " + number + " bytes, more than there is room for";
        case FormatFault::BlockNumberWrong:
            return "block " + where + " has the number " + number +
                   ", which is there already or beyond the count";
        case FormatFault::BlockCountWrong:
            return "there are " + where + " blocks, not " + number;
        case FormatFault::LineUnknown:
            return "line " + where + " is neither an address nor bytes";
        case FormatFault::AddressMissing:
            return "line " + where + " has bytes without an address before them";
        case FormatFault::EndMissing:
            return "there is no end after line " + where;
        case FormatFault::WordCut:
            return "the data before line " + where + " does not end with a whole word of " +
                   number + " bytes";
        case FormatFault::AfterEnd:
            return "line " + where + " comes after the end";
        case FormatFault::WordUneven:
            return "line " + where + " has a word of " + number +
                   " digits, which are not whole bytes";
        case FormatFault::WordsDiffer:
            return "line " + where + " has a word of " + number +
                   " digits, and the words before it have another number of them";
        case FormatFault::BitsUnknown:
            return "line " + where + " has a digit x or z, whose bits have no value";
        case FormatFault::CommentOpen:
            return "the comment that begins in line " + where + " does not end";
        case FormatFault::LengthWrong:
            return "the length at byte " + where + " is " + number +
                   ", which is not that of the data after it";
        case FormatFault::ChecksumWrong:
            break;
    }
    return "the checksum is " + hexadecimal(fact.where) + ", the bytes of the file give " +
           hexadecimal(fact.number);
}

}  // namespace Facts
