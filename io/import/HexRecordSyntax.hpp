#pragma once

#include <array>
#include <boost/spirit/include/classic_core.hpp>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "util/Hex.hpp"

/// The syntax of a record, for the sources of the two parsers only: Spirit is heavy.
namespace Io::Import {

namespace Spirit = boost::spirit::classic;

/// The bytes of one record as they come in.
struct RecordBytes {
    /// More than any record has: an S-record of unknown type is matched against 511 bytes.
    std::array<std::uint8_t, 512> bytes;
    std::size_t size = 0;
};

/// Exactly `count` bytes of two hexadecimal digits each, appended to the record. The count is read
/// when the match begins, so that it may come from the record itself.
template <class Count>
class HexBytes : public Spirit::parser<HexBytes<Count>> {
public:
    HexBytes(Count count, RecordBytes& record) : count_(count), record_(&record) {}

    template <class Scanner>
    typename Spirit::parser_result<HexBytes, Scanner>::type parse(const Scanner& scan) const {
        const std::size_t count = count_();
        const char* const first = scan.first;
        if (static_cast<std::size_t>(scan.last - first) < 2 * count ||
            record_->size + count > record_->bytes.size())
            return scan.no_match();
        if (!Util::readHex(record_->bytes.data() + record_->size, first, count))
            return scan.no_match();
        record_->size += count;
        scan.first = first + 2 * count;
        return scan.create_match(2 * count, Spirit::nil_t(), first, scan.first);
    }

private:
    Count count_;
    RecordBytes* record_;
};

/// Matches the whole of `line`, or all of it before a zero byte, which is not part of any record.
template <class Syntax>
bool matchesLine(std::string_view line, const Syntax& syntax, RecordBytes& record) {
    record.size = 0;
    const auto info = Spirit::parse(line.data(), line.data() + line.size(), syntax);
    return info.hit && (info.full || *info.stop == '\0');
}

}  // namespace Io::Import
