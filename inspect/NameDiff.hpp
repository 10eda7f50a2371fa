#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "inspect/Diff.hpp"
#include "inspect/Names.hpp"

namespace Inspect {

/// A function or variable that one of two programs lacks, or that is not the same in both.
struct NameChange {
    enum class What : std::uint8_t {
        Changed,  ///< other bytes, or another size
        Added,
        Removed,
        Moved  ///< the same bytes at another address
    };
    What what;
    const Name* left;   ///< null if it was added
    const Name* right;  ///< null if it was removed

    const Name& name() const { return right == nullptr ? *left : *right; }
    std::uint64_t leftSize() const { return left == nullptr ? 0 : left->area.length; }
    std::uint64_t rightSize() const { return right == nullptr ? 0 : right->area.length; }
};

/// What has changed between the programs of a comparison, those first whose size changed most,
/// and those last that have moved only.
/// Names that several parts of a program share are paired by their order.
///
/// @param left, right  borrowed by the result
std::vector<NameChange> changesOf(const Diff& diff, const Names& left, const Names& right);

/// A table with a line for each change but those that have moved only, which are counted.
std::vector<std::string> linesOf(const std::vector<NameChange>& changes);

/// "changed", "added", "removed" or "moved".
const char* wordFor(NameChange::What what);

}  // namespace Inspect
