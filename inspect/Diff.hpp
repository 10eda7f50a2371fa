#pragma once

#include <cstddef>
#include <string>

#include "buffer/Area.hpp"
#include "buffer/Difference.hpp"
#include "inspect/Image.hpp"
#include "inspect/Names.hpp"

namespace Inspect {

/// Two images and where they differ. The images are borrowed.
struct Diff {
    const Image* left;
    const Image* right;
    Buffer::Differences where;
    /// Both files say what the start address is, and it is not the same. None counts as 0.
    bool hasOtherStart = false;
    Buffer::AreaList ignored;  ///< ascending, without overlap
    /// What is at the addresses of each image, borrowed; null if nobody knows.
    const Names* leftNames = nullptr;
    const Names* rightNames = nullptr;

    bool isEqual() const {
        return where.changed.empty() && where.onlyLeft.empty() && where.onlyRight.empty() &&
               !hasOtherStart;
    }
};

/// Compares the written bytes outside the areas `ignored`.
Diff compare(const Image& left, const Image& right, const Buffer::AreaList& ignored);

/// How a comparison is printed.
struct DiffStyle {
    std::size_t context = 1;      ///< rows around a changed range
    std::size_t mostLines = 200;  ///< 0 for all
    std::size_t width = 80;  ///< of the terminal: from 144 on a row has sixteen bytes, not eight
    bool hasColor = false;
};

/// What has changed by names, if they are known, the areas that only one image has, and a dump of
/// the changed ranges, both images side by side.
std::string textOf(const Diff& diff, const DiffStyle& style);

/// One JSON object.
std::string jsonOf(const Diff& diff);

}  // namespace Inspect
