#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "facts/InputFormat.hpp"
#include "io/import/RecordVisitor.hpp"

namespace Inspect {

/// What a text file consists of.
struct RecordCounts {
    struct Kind {
        std::string name;  ///< "data", "extended linear address", "S3 data"
        std::uint64_t count;
    };
    std::vector<Kind> kinds;  ///< those that occur, by their number in the format
    /// How many data records have how many data bytes.
    std::map<std::size_t, std::uint64_t> dataLengths;

    std::uint64_t total() const;
};

/// Counts the sound records of a file while it is read.
class RecordCounter final : public Io::Import::RecordVisitor {
public:
    void visit(const Io::Import::RecordLines& records) override;

    /// What was counted; nothing of a format whose records have no names.
    RecordCounts result(Facts::InputFormat format) const;

private:
    static constexpr std::size_t byteValues = 256;

    std::array<std::uint64_t, byteValues> counts_{};   ///< by the number of the kind
    std::array<std::uint64_t, byteValues> lengths_{};  ///< of data records
};

}  // namespace Inspect
