#pragma once

#include <cstdint>
#include <optional>

#include "buffer/Overlap.hpp"

namespace Io::Import {

/// What a statement says on how a file is read.
struct ReadOptions {
    /// For addresses that the file gives more than once; a reader that reports them does so only
    /// without a rule.
    Buffer::OverlapRule rule = Buffer::OverlapRule::NotSet;
    /// The addresses of the file count words of that many bytes. Those of what is read count bytes.
    std::uint32_t addressUnit = 1;
    /// Of a file for several families of devices, the blocks for this one are read. Nothing: for
    /// all of them, unless they share addresses. Formats without families have no use for it.
    std::optional<std::uint32_t> family = std::nullopt;
};

}  // namespace Io::Import
