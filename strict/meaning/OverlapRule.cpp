#include "strict/meaning/OverlapRule.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "buffer/Difference.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/OutputFormat.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

/// An image of the statement, the part that names it, and the family of devices that it is for.
struct Written {
    const Part* part;
    const MemoryBuffer* image;
    std::uint32_t family = 0;  ///< 0 if all images are for the same one

    std::string name() const { return std::string(part->text); }
};

/// What two images have at the addresses that both have.
struct Common {
    Area area;  ///< from the first to the last of them
    std::uint64_t different = 0;
    std::uint64_t first = 0;  ///< the first one with different bytes
};

std::vector<Written> imagesOf(const Step& step) {
    const Part* const format = step.statement.last(Role::Format);
    const bool hasList = format != nullptr && format->numberCount > 1;
    std::vector<Written> images;
    std::size_t index = 0;
    for (const Part& part : step.statement.all(Role::UsesImage)) {
        const auto image = step.context->buffers.find(std::string(part.text));
        if (image == step.context->buffers.end()) return {};
        Written written{&part, &image->second};
        if (hasList && index < format->numberCount)
            written.family = step.statement.numbersOf(*format)[index].value();
        ++index;
        if (image->second.getDataLength() != 0) images.push_back(written);
    }
    return images;
}

Common compared(const MemoryBuffer& one, const MemoryBuffer& other, bool onlyWritten) {
    Common common;
    const auto range = one.getArea().clippedTo(other.getArea());
    if (!range) return common;
    if (onlyWritten) {
        for (const Buffer::Overlap& overlap : Buffer::overlaps(one, other)) {
            if (common.area.length == 0) common.area.start = overlap.area.start;
            common.area.length = overlap.area.end() - common.area.start;
            if (common.different == 0) common.first = overlap.firstDifference;
            common.different += overlap.differences;
        }
        return common;
    }
    common.area = *range;
    const AreaList areas =
        Buffer::effectiveDifferences(one.viewRange(range->start, range->length),
                                     other.viewRange(range->start, range->length), range->start);
    if (!areas.empty()) common.first = areas.front().start;
    common.different = Inspect::byteCount(areas);
    return common;
}

Note originOf(const Step& step, const std::string& which, const std::string& image,
              std::uint64_t address) {
    const Note note =
        step.provenance->noteOf(("the " + which + " byte comes from").c_str(), image, address);
    return note.place ? note : Note{"nothing wrote the " + which + " byte, so it is a filler"};
}

void report(const Step& step, const Written& earlier, const Written& later, const Common& common) {
    const std::string names = earlier.name() + " and " + later.name();
    const bool isConflict = common.different != 0;
    const std::uint64_t address = isConflict ? common.first : common.area.start;
    std::string text = names + " both have " + Inspect::addressesText(common.area);
    if (isConflict) {
        const auto byte = [address](const Written& written) {
            return Util::hexByte(written.image->viewRange(address, 1)[0].effectiveByte());
        };
        text += ", with other bytes at " + Inspect::grouped(common.different) +
                " of them: " + Inspect::addressText(address) + " has " + byte(earlier) +
                " and then " + byte(later);
    } else {
        text += ", with the same bytes";
    }
    step.findings.report(isConflict ? Kind::Conflict : Kind::Overlap, std::move(text),
                         later.part->text, "-onOverlap= says which byte counts",
                         {originOf(step, "earlier", earlier.name(), address),
                          originOf(step, "later", later.name(), address)});
}

}  // namespace

void checkOutputOverlaps(const Step& step) {
    const Statement& statement = step.statement;
    if (step.context == nullptr) return;
    if (step.has(Role::Overlap) || !outputFormatOf(statement).hasAddresses) return;
    std::vector<Written> images = imagesOf(step);
    std::ranges::stable_sort(images, {}, [](const Written& written) {
        return std::pair(written.family, written.image->getStartAddress());
    });
    // An image that overlaps any before it also overlaps the one of these that ends last.
    for (std::size_t i = 1, longest = 0; i < images.size(); ++i) {
        const Written& one = images[longest];
        const Written& other = images[i];
        const bool isOtherDevice = one.family != other.family;
        const bool onlyWritten = step.statement.roles.hasAny({Role::Gaps, Role::ShortGaps});
        const Common common =
            isOtherDevice ? Common{} : compared(*one.image, *other.image, onlyWritten);
        const bool isInOrder = one.part < other.part;
        if (common.area.length != 0)
            report(step, isInOrder ? one : other, isInOrder ? other : one, common);
        if (isOtherDevice || other.image->getArea().end() > one.image->getArea().end()) longest = i;
    }
}

}  // namespace Strict
