#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "facts/FieldFacts.hpp"

namespace Io::Field {

/// What was found wrong and odd in one file. Damaged lines are reported at once, the first of them
/// one by one; the rest is counted until `finish`.
class FieldReports {
public:
    /// Lines and ranges that are reported one by one.
    static constexpr std::uint64_t mostListed = 20;

    FieldReports(std::string file, Facts::InputFormat format)
        : file_(std::move(file)), format_(format) {}

    /// A line is damaged. See Facts::RecordFault for `found` and `expected`.
    void damage(std::uint64_t number, std::string_view line, Facts::RecordFault fault,
                std::uint64_t found = 0, std::uint64_t expected = 0);

    /// Line `number` has something that costs no data.
    void tolerate(Facts::Tolerance tolerance, std::uint64_t number) {
        Tally& tally = tallies_[static_cast<std::size_t>(tolerance)];
        if (tally.count++ == 0) tally.firstLine = number;
    }

    bool isDamaged() const { return damaged_ != 0; }

    /// Reports what was counted.
    void finish() const;

    const std::string& file() const { return file_; }
    Facts::InputFormat format() const { return format_; }

private:
    struct Tally {
        std::uint64_t count = 0;
        std::uint64_t firstLine = 0;
    };

    std::string file_;
    Facts::InputFormat format_;
    std::uint64_t damaged_ = 0;
    Facts::RecordFault firstUnlisted_{};
    std::array<Tally, Facts::toleranceCount> tallies_{};
};

}  // namespace Io::Field
