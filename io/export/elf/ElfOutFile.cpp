#include "io/export/elf/ElfOutFile.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "buffer/Area.hpp"
#include "facts/Listener.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "platform/Memory.hpp"

namespace Io::Export {

namespace {

using Buffer::Area;
using Facts::TemplateFault;
using Import::ElfFile;
using Import::ElfSegment;

/// A segment of the template, and the parts of images that lie in its addresses.
struct Part {
    ElfSegment segment;
    std::vector<ImageView> layers = {};  ///< in the order in which they are laid
    bool areApart = false;               ///< no two of them have an address in common

    std::uint64_t fileEnd() const { return segment.fileOffset + segment.length; }
    Area area() const { return {segment.address, segment.length}; }

    /// Where a stretch of a layer lies in the file.
    std::uint64_t offsetOf(const ImageView& stretch) const {
        return segment.fileOffset + (stretch.startAddress - segment.address);
    }

    /// Whether the bytes of a stretch of a layer are written from the image: they are many, and no
    /// other layer has their addresses.
    bool isInPlace(const ImageView& stretch) const {
        constexpr std::size_t shortest = std::size_t{1} << 16U;
        return areApart && stretch.elements.size() >= shortest;
    }

    /// Hands `take` the stretches that are written from images, ascending.
    template <class Take>
    void forThoseInPlace(Take take) const {
        if (!areApart) return;
        for (const ImageView& layer : layers)
            forStretches(layer, [&](const ImageView& stretch) {
                if (isInPlace(stretch)) take(stretch);
            });
    }

    /// Adds an image as far as the segment has its addresses.
    void lay(const ImageView& image) {
        const auto common = area().clippedTo({image.startAddress, image.elements.size()});
        if (!common) return;
        const ImageView layer =
            image.part(static_cast<std::size_t>(common->start - image.startAddress),
                       static_cast<std::size_t>(common->length));
        if (isComplete(layer)) layers.clear();
        layers.push_back(layer);
    }

    /// All layers are laid. Those that have no address in common ascend from now on.
    void finish() {
        std::vector<ImageView> sorted = layers;
        std::ranges::sort(sorted, {}, &ImageView::startAddress);
        const auto overlap = [](const ImageView& one, const ImageView& next) {
            return next.startAddress - one.startAddress < one.elements.size();
        };
        areApart = std::ranges::adjacent_find(sorted, overlap) == sorted.end();
        if (areApart) layers = std::move(sorted);
    }

private:
    bool isComplete(const ImageView& layer) const {
        const std::size_t size = layer.elements.size();
        return size == segment.length &&
               (layer.unwritten == Unwritten::Filled || layer.elements.findUnwritten(0) >= size);
    }
};

/// A stretch of the output: bytes of an image, or those in memory from `at` on.
struct Run {
    std::uint64_t fileOffset;
    std::size_t length;
    std::optional<ImageView> image = {};
    std::size_t at = 0;
};

/// All of the output: what it takes from images, and in memory what it takes from the template.
class Copy {
public:
    /// @param style  by which the file was opened
    /// @throws GivenUp  after a report
    Copy(const ElfFile& file, const ElfOutputStyle& style, std::span<const ImageView> images)
        : path_(style.templatePath),
          likelyUnit_(style.addressUnit == 1 ? file.addressUnitOfMachine() : 1) {
        for (const ElfSegment& segment : file.segments()) parts_.push_back({segment});
        refuseShared(&ElfSegment::fileOffset);
        // Without a shared address the ends ascend as the starts do.
        refuseShared(&ElfSegment::address);
        for (const ImageView& image : images) {
            refuseOutside(image);
            for (auto part = partFrom(image.startAddress);
                 part != parts_.end() &&
                 part->segment.address < image.startAddress + image.elements.size();
                 ++part)
                part->lay(image);
        }
        const bool isFilled = std::ranges::none_of(
            images, [](const ImageView& image) { return image.unwritten == Unwritten::Skipped; });
        if (isFilled)
            for (const Part& part : parts_) refuseMissing(part);
        read(file);
    }

    void write(PieceWriter& out) const {
        constexpr std::size_t pieceSize = std::size_t{1} << 16U;
        for (const Run& run : runs_) {
            if (!run.image)
                out.append(bytesAt(run.at, run.length));
            else
                forEffectiveBytes(
                    run.image->elements, pieceSize,
                    [&out](std::span<const std::uint8_t> bytes) { out.append(bytes); });
        }
    }

private:
    std::span<std::uint8_t> bytesAt(std::size_t at, std::size_t length) const {
        return std::span(reinterpret_cast<std::uint8_t*>(rest_.data()), rest_.size())
            .subspan(at, length);
    }

    [[noreturn]] void refuse(TemplateFault fault, std::uint64_t start, std::uint64_t end) const {
        Facts::report(Facts::ElfTemplateUnfit{path_, fault, start, end, likelyUnit_});
        throw GivenUp();
    }

    /// Sorts the segments by a number of theirs, and refuses two that share a byte by it.
    void refuseShared(std::uint64_t ElfSegment::*start) {
        const auto startOf = [start](const Part& part) { return part.segment.*start; };
        std::ranges::sort(parts_, {}, startOf);
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            const ElfSegment& earlier = parts_[i - 1].segment;
            const ElfSegment& later = parts_[i].segment;
            if (later.*start - earlier.*start < earlier.length)
                refuse(TemplateFault::SegmentsShared, earlier.address, later.address);
        }
    }

    /// The first segment that ends after the address.
    std::vector<Part>::iterator partFrom(std::uint64_t address) {
        return std::ranges::partition_point(
            parts_, [address](const Part& part) { return part.area().end() <= address; });
    }

    /// Refuses an image with a written byte that no segment has.
    void refuseOutside(const ImageView& image) {
        forStretches({image.startAddress, image.elements, Unwritten::Skipped},
                     [this](const ImageView& stretch) {
                         const std::uint64_t end = stretch.startAddress + stretch.elements.size();
                         std::uint64_t at = stretch.startAddress;
                         for (auto part = partFrom(at); at < end; ++part) {
                             const bool isLast = part == parts_.end();
                             if (isLast || part->segment.address > at)
                                 refuse(TemplateFault::ByteOutside, at,
                                        isLast ? end : std::min(end, part->segment.address));
                             at = part->area().end();
                         }
                     });
    }

    /// Refuses a segment with a byte that no image has.
    void refuseMissing(const Part& part) const {
        std::vector<Area> areas;
        for (const ImageView& layer : part.layers)
            areas.push_back({layer.startAddress, layer.elements.size()});
        std::ranges::sort(areas, {}, &Area::start);
        std::uint64_t at = part.segment.address;
        for (const Area& area : areas) {
            if (area.start > at) refuse(TemplateFault::ByteMissing, at, area.start);
            at = std::max(at, area.end());
        }
        if (at < part.area().end()) refuse(TemplateFault::ByteMissing, at, part.area().end());
    }

    /// Divides the file into runs, and reads those that are not of an image.
    void read(const ElfFile& file) {
        std::ranges::sort(parts_, {}, [](const Part& part) { return part.segment.fileOffset; });
        std::size_t held = 0;
        std::uint64_t at = 0;
        const auto hold = [&](std::uint64_t to) {
            if (at == to) return;
            runs_.push_back({at, static_cast<std::size_t>(to - at), {}, held});
            held += runs_.back().length;
            at = to;
        };
        for (Part& part : parts_) {
            part.finish();
            hold(part.segment.fileOffset);
            part.forThoseInPlace([&](const ImageView& stretch) {
                hold(part.offsetOf(stretch));
                runs_.push_back({at, stretch.elements.size(), stretch});
                at += stretch.elements.size();
            });
            hold(part.fileEnd());
        }
        hold(file.size());
        rest_ = Platform::PageBlock(held);
        for (const Run& run : runs_)
            if (!run.image) file.readAll(run.fileOffset, bytesAt(run.at, run.length));
        for (const Part& part : parts_) lay(part);
    }

    /// Lays the layers of a part over its bytes in memory.
    void lay(const Part& part) const {
        for (const ImageView& layer : part.layers)
            forStretches(layer, [&](const ImageView& stretch) {
                if (part.isInPlace(stretch)) return;
                const std::uint64_t offset = part.offsetOf(stretch);
                const Run& run =
                    *std::prev(std::ranges::upper_bound(runs_, offset, {}, &Run::fileOffset));
                const auto at = run.at + static_cast<std::size_t>(offset - run.fileOffset);
                stretch.elements.copyBytes(bytesAt(at, stretch.elements.size()).data());
            });
    }

    std::string_view path_;
    std::uint32_t likelyUnit_;  ///< that the addresses count; 1 if the statement gives one
    std::vector<Part> parts_;
    std::vector<Run> runs_;  ///< in the order of the file
    Platform::PageBlock rest_;
};

/// The template is closed again when this returns.
Copy copyOf(const ElfOutputStyle& style, std::span<const ImageView> images) {
    const std::string& path = style.templatePath;
    try {
        return Copy(ElfFile(path, openInput(path), style.addressUnit), style, images);
    } catch (const bad_open&) {
        Facts::report(Facts::FileNotOpened{path});
    } catch (const Import::Malformed&) {
    }
    throw GivenUp();
}

}  // namespace

void ElfOutFile::saveToFile() {
    const Copy copy = copyOf(style_, images_);
    PieceWriter out = startOutput();
    copy.write(out);
    out.finish();
}

}  // namespace Io::Export
