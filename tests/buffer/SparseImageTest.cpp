#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "buffer/Difference.hpp"
#include "buffer/ImageSpace.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "tests/ExpectedFacts.hpp"

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::ImageSpace;
using Buffer::ImageSpaceScope;
using Buffer::MemoryBuffer;
using SparseBytes = std::vector<std::uint8_t>;

constexpr std::uint64_t all = std::uint64_t{1} << 32U;
constexpr std::uint64_t mebi = std::uint64_t{1} << 20U;
constexpr ImageSpace everySparse{all + 1, 0};

/// The same image twice: sparse, and with memory for each address.
class Twins {
public:
    Twins(std::uint64_t start, std::uint64_t length)
        : dense_(start, length), sparse_([&] {
              const ImageSpaceScope scope(everySparse);
              return MemoryBuffer(start, length);
          }()) {}

    const MemoryBuffer& dense() const { return dense_; }
    const MemoryBuffer& sparse() const { return sparse_; }

    template <class Work>
    void forBoth(Work work) {
        work(dense_);
        work(sparse_);
    }

    /// Compares all that an image can be asked for.
    void check() const {
        const Area area = dense_.getArea();
        const AreaList written = writtenAreas(dense_, area);
        ASSERT_EQ(writtenAreas(sparse_, area), written);
        ASSERT_TRUE(differences(dense_, sparse_).empty());
        SparseBytes one;
        SparseBytes other;
        dense_.appendBytes(one, area.start, area.length);
        sparse_.appendBytes(other, area.start, area.length);
        ASSERT_TRUE(one == other);
        const auto wanted = dense_.viewElements();
        const auto found = sparse_.viewElements();
        ASSERT_TRUE(effectiveDifferences(wanted, found, 0).empty());
        for (std::size_t at = 0; at < wanted.size(); at += wanted.size() / 1000 + 1) {
            ASSERT_EQ(found[at], wanted[at]) << at;
            ASSERT_EQ(found.findWritten(at), wanted.findWritten(at)) << at;
            ASSERT_EQ(found.findUnwritten(at), wanted.findUnwritten(at)) << at;
        }
    }

private:
    MemoryBuffer dense_;
    MemoryBuffer sparse_;
};

/// Changes images at random. Lengths are short or pass some borders of blocks.
class Changes {
public:
    void change(Twins& image, const Twins& source) {
        const Area area = part(image.dense().getArea());
        const SparseBytes pattern = bytes();
        // Either kind of image is laid over either kind.
        const bool isSwapped = number(2) == 0;
        const auto other = [&](const MemoryBuffer& target) -> const MemoryBuffer& {
            const bool isDense = &target == &image.dense();
            return isDense != isSwapped ? source.dense() : source.sparse();
        };
        switch (number(7)) {
            case 0:
                image.forBoth([&](auto& to) { to.writePattern(pattern, area.start, area.length); });
                break;
            case 1:
                image.forBoth([&](auto& to) { to.fillPattern(pattern, area.start, area.length); });
                break;
            case 2:
                image.forBoth([&](auto& to) { to.overlayBytes(pattern, area.start); });
                break;
            case 3:
                image.forBoth([&](auto& to) { to.overlay(other(to)); });
                break;
            case 4: {
                const bool keeps = number(2) == 0;
                image.forBoth([&](auto& to) { to.merge(other(to), keeps); });
                break;
            }
            case 5: {
                const Area taken = part(source.dense().getArea());
                const std::uint64_t room = image.dense().getArea().end() - area.start;
                const std::uint64_t length = std::min(taken.length, room);
                image.forBoth([&](auto& to) {
                    to.fillFrom(other(to).viewRange(taken.start, length), area.start);
                });
                break;
            }
            default:
                image.forBoth([&](auto& to) {
                    const MemoryBuffer copy = to;
                    to.overlay(copy.extractMemory(area.start, area.length));
                });
        }
    }

private:
    std::uint64_t number(std::uint64_t end) { return random_() % end; }

    Area part(const Area& range) {
        const std::uint64_t start = number(range.length);
        const std::uint64_t most = number(2) == 0 ? 200 : range.length;
        return {range.start + start, 1 + number(std::min(most, range.length - start))};
    }

    SparseBytes bytes() {
        SparseBytes pattern(1 + number(5));
        // Fillers of zeros alone are none.
        const bool isZero = number(4) == 0;
        for (std::uint8_t& byte : pattern) byte = static_cast<std::uint8_t>(isZero ? 0 : random_());
        return pattern;
    }

    std::mt19937 random_{7};
};

TEST(SparseImageTest, HoldsWhatADenseOneDoes) {
    Changes changes;
    for (int round = 0; round < 4; ++round) {
        // Blocks of one begin within those of the other.
        Twins image(1000, 3 * mebi + 17);
        Twins source(1000 + mebi / 3, 2 * mebi + 90);
        for (int i = 0; i < 10; ++i) {
            changes.change(image, source);
            changes.change(source, image);
            image.check();
            ASSERT_EQ(overlaps(image.sparse(), source.sparse()),
                      overlaps(image.dense(), source.dense()));
            ASSERT_EQ(wipedAreas(image.sparse(), source.sparse()),
                      wipedAreas(image.dense(), source.dense()));
            ASSERT_EQ(differences(image.sparse(), source.sparse()),
                      differences(image.dense(), source.dense()));
            if (HasFatalFailure()) return;
        }
    }
}

TEST(SparseImageTest, MayHaveAllAddresses) {
    const ImageSpaceScope scope({all + 1, 1});
    MemoryBuffer image(0, all);
    ASSERT_EQ(image.getDataLength(), all);
    const SparseBytes bytes{1, 2, 3};
    image.overlayBytes(bytes, all - 2);
    image.overlayBytes(bytes, 0);
    image.overlayBytes(bytes, 0x10001014);
    const AreaList areas{{0, 3}, {0x10001014, 3}, {all - 2, 2}};
    EXPECT_EQ(writtenAreas(image, image.getArea()), areas);
    EXPECT_EQ(image.viewElements()[all - 1].effectiveByte(), 2);
    EXPECT_EQ(image.viewElements().findUnwritten(all - 2), all);

    const SparseBytes filler{0xFF};
    MemoryBuffer other = image;
    other.fillPattern(filler, 0x80000000, 5);
    other.writePattern(filler, 0x10001016, 2);
    EXPECT_EQ(differences(image, other), (AreaList{{0x10001016, 2}}));
    EXPECT_EQ(effectiveDifferences(image.viewElements(), other.viewElements(), 0),
              (AreaList{{0x10001016, 2}, {0x80000000, 5}}));
    EXPECT_EQ(wipedAreas(other, image), (AreaList{{0x10001017, 1}}));

    MemoryBuffer moved = std::move(other);
    moved.merge(image, false);
    EXPECT_EQ(writtenAreas(moved, moved.getArea()),
              (AreaList{{0, 3}, {0x10001014, 4}, {all - 2, 2}}));
    EXPECT_EQ(moved.viewElements()[0x80000004].effectiveByte(), 0xFF);
    EXPECT_EQ(other.getDataLength(), 0U);  // NOLINT(bugprone-use-after-move)
}

TEST(SparseImageTest, TheBytesOfAWrittenRangeAreInPlace) {
    const ImageSpaceScope scope(everySparse);
    MemoryBuffer image(0, 4 * mebi);
    const SparseBytes pattern{7};
    image.writePattern(pattern, mebi - 1, mebi + 2);
    const auto written = image.viewRange(mebi - 1, mebi + 2).bytes();
    ASSERT_TRUE(written);
    EXPECT_EQ((*written)[mebi + 1], 7);
    EXPECT_FALSE(image.viewRange(0, 4 * mebi).bytes());
}

TEST(ImageSpaceTest, HoldsForItsScopeAlone) {
    const auto lengthOf = [](std::uint64_t length) {
        return MemoryBuffer(0, length).getDataLength();
    };
    {
        const ImageSpaceScope scope({all + 1, 1});
        const Tests::ExpectedFacts expected({Facts::ImageTooLong{all + 1, all + 1}});
        EXPECT_EQ(lengthOf(all), all);
        EXPECT_EQ(lengthOf(all + 1), 0U);
    }
    EXPECT_EQ(Buffer::imageSpace().lengthEnd, Buffer::MAX_ALLOWED_MEMORY_BUFFER_SIZE);
}

}  // namespace
