#include "inspect/Records.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
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
struct Head {
    unsigned kind;
    unsigned count;
};

constexpr unsigned noByte = 0x100;

/// The byte of two digits at `at` of `line`, or at least `noByte`.
unsigned byteAt(std::string_view line, std::size_t at) {
    static constexpr auto values = [] {
        std::array<std::uint16_t, noByte> all{};
        all.fill(noByte);
        for (unsigned value = 0; value < 16; ++value) {
            const auto digit = static_cast<unsigned char>(Util::hexDigit(value));
            all[digit] = static_cast<std::uint16_t>(value);
            if (value > 9) all[digit | 0x20U] = static_cast<std::uint16_t>(value);
        }
        return all;
    }();
    if (line.size() < at + 2) return noByte;
    const auto valueAt = [line](std::size_t i) -> unsigned {
        return values[static_cast<unsigned char>(line[i])];
    };
    return valueAt(at) << 4U | valueAt(at + 1);
}

struct IntelForm {
    static constexpr std::span<const KnownKind> kinds = intelKinds;
    static constexpr std::size_t shortest = 11;

    static std::optional<Head> headOf(std::string_view line) {
        constexpr std::size_t kindPosition = 7;
        const Head head{byteAt(line, kindPosition), byteAt(line, 1)};
        if (line.front() != ':' || head.kind >= noByte || head.count >= noByte) return std::nullopt;
        return head;
    }
};

struct MotorolaForm {
    static constexpr std::span<const KnownKind> kinds = motorolaKinds;
    static constexpr std::size_t shortest = 4;

    static std::optional<Head> headOf(std::string_view line) {
        const unsigned count = byteAt(line, 2);
        if (line.front() != 'S' || count >= noByte || line[1] < '0' || line[1] > '9')
            return std::nullopt;
        return Head{static_cast<unsigned>(line[1] - '0'), count};
    }
};

template <class Form>
class Counter {
public:
    void takeLine(std::string_view line) {
        if (line.empty()) return;
        if (const auto head = Form::headOf(line)) take(*head);
    }

    /// Takes the records that follow the current line and end where their counts say, which spares
    /// the search for their ends.
    void takeAhead(Io::Field::FieldLines& lines) {
        const std::string_view text = lines.textAhead();
        std::size_t at = 0;
        std::uint64_t number = 0;
        while (at < text.size()) {
            const auto head = Form::headOf(text.substr(at));
            if (!head) break;
            std::size_t end = at + Form::shortest + 2 * std::size_t{head->count};
            if (end < text.size() && text[end] == '\r') ++end;
            if (end >= text.size() || text[end] != '\n') break;
            take(*head);
            at = end + 1;
            ++number;
        }
        lines.skip(at, number);
    }

    Records result() const {
        Records records;
        for (std::size_t kind = 0; kind < counts_.size(); ++kind)
            if (counts_[kind] != 0)
                records.kinds.push_back(
                    {kind < Form::kinds.size() ? Form::kinds[kind].name : "of unknown type",
                     counts_[kind]});
        for (unsigned length = 0; length < lengths_.size(); ++length)
            if (lengths_[length] != 0) records.dataLengths.emplace(length, lengths_[length]);
        return records;
    }

private:
    void take(Head head) {
        const std::size_t kind = std::min<std::size_t>(head.kind, Form::kinds.size());
        ++counts_[kind];
        if (kind == Form::kinds.size()) return;
        const KnownKind& known = Form::kinds[kind];
        if (known.isData && head.count >= known.otherBytes)
            ++lengths_[head.count - known.otherBytes];
    }

    std::array<std::uint64_t, Form::kinds.size() + 1> counts_{};
    std::array<std::uint64_t, noByte> lengths_{};
};

template <class Form>
Records count(const std::string& path) {
    Counter<Form> counter;
    for (Io::Field::FieldLines lines(Io::openInput(path)); lines.next();) {
        counter.takeLine(lines.line());
        counter.takeAhead(lines);
    }
    return counter.result();
}

}  // namespace

std::uint64_t Records::total() const {
    std::uint64_t sum = 0;
    for (const Kind& kind : kinds) sum += kind.count;
    return sum;
}

Records countRecords(const std::string& path, const std::string& format) {
    if (format == "Intel HEX") return count<IntelForm>(path);
    if (format == "S-records") return count<MotorolaForm>(path);
    return {};
}

}  // namespace Inspect
