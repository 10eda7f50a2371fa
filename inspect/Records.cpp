#include "inspect/Records.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "io/InFile.hpp"
#include "io/field/FieldLines.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

/// A kind of record that a format has.
struct KnownKind {
    const char* name;
    bool isData;
    unsigned otherBytes;  ///< that the count includes, beside the data
};

constexpr std::array intelKinds{
    KnownKind{"data", true, 0},
    KnownKind{"end of file", false, 0},
    KnownKind{"extended segment address", false, 0},
    KnownKind{"start segment address", false, 0},
    KnownKind{"extended linear address", false, 0},
    KnownKind{"start linear address", false, 0},
};
constexpr std::array motorolaKinds{
    KnownKind{"S0 header", false, 3}, KnownKind{"S1 data", true, 3},
    KnownKind{"S2 data", true, 4},    KnownKind{"S3 data", true, 5},
    KnownKind{"S4", false, 0},        KnownKind{"S5 count", false, 3},
    KnownKind{"S6 count", false, 4},  KnownKind{"S7 end", false, 5},
    KnownKind{"S8 end", false, 4},    KnownKind{"S9 end", false, 3},
};

/// The kind and the count of one record, by its digits.
struct Digits {
    unsigned kind;
    unsigned count;
};

std::optional<unsigned> byteAt(std::string_view line, std::size_t at) {
    std::uint8_t byte = 0;
    if (line.size() < at + 2 || !Util::readHex(&byte, line.data() + at, 1)) return std::nullopt;
    return byte;
}

std::optional<Digits> intelDigits(std::string_view line) {
    constexpr std::size_t kindPosition = 7;
    const auto count = byteAt(line, 1);
    const auto kind = byteAt(line, kindPosition);
    if (line.front() != ':' || !count || !kind) return std::nullopt;
    return Digits{*kind, *count};
}

std::optional<Digits> motorolaDigits(std::string_view line) {
    const auto count = byteAt(line, 2);
    if (line.front() != 'S' || !count || line[1] < '0' || line[1] > '9') return std::nullopt;
    return Digits{static_cast<unsigned>(line[1] - '0'), *count};
}

template <class DigitsOf>
Records count(const std::string& path, std::span<const KnownKind> known, DigitsOf digitsOf) {
    constexpr std::size_t mostBytes = 256;
    std::vector<std::uint64_t> counts(known.size() + 1);
    std::array<std::uint64_t, mostBytes> lengths{};
    for (Io::Field::FieldLines lines(Io::openInput(path)); lines.next();) {
        const std::string_view line = lines.line();
        const auto digits = line.empty() ? std::nullopt : digitsOf(line);
        if (!digits) continue;
        const std::size_t kind = std::min<std::size_t>(digits->kind, known.size());
        ++counts[kind];
        if (kind < known.size() && known[kind].isData && digits->count >= known[kind].otherBytes)
            ++lengths[digits->count - known[kind].otherBytes];
    }
    Records records;
    for (std::size_t kind = 0; kind < counts.size(); ++kind)
        if (counts[kind] != 0)
            records.kinds.push_back(
                {kind < known.size() ? known[kind].name : "of unknown type", counts[kind]});
    for (unsigned length = 0; length < mostBytes; ++length)
        if (lengths[length] != 0) records.dataLengths.emplace(length, lengths[length]);
    return records;
}

}  // namespace

std::uint64_t Records::total() const {
    std::uint64_t sum = 0;
    for (const Kind& kind : kinds) sum += kind.count;
    return sum;
}

Records countRecords(const std::string& path, const std::string& format) {
    if (format == "Intel HEX") return count(path, intelKinds, intelDigits);
    if (format == "S-records") return count(path, motorolaKinds, motorolaDigits);
    return {};
}

}  // namespace Inspect
