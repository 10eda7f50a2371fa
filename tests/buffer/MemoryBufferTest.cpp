#include "buffer/MemoryBuffer.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/ExpectedFacts.hpp"

namespace {

using Buffer::MemoryBuffer;
using Elements = std::vector<Buffer::MemoryElement>;

/// An image at `start`: '.' an unwritten address, every other character a written byte.
MemoryBuffer image(std::uint64_t start, const std::string& text) {
    MemoryBuffer buffer(start, text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '.')
            buffer.fillMemory(Elements{{static_cast<std::uint8_t>(text[i]), 0, 1}}, start + i, 1);
    return buffer;
}

std::string text(const MemoryBuffer& buffer) {
    std::string shown;
    for (const auto& element : buffer.getElements())
        shown += element.hasValue != 0 ? static_cast<char>(element.value) : '.';
    return shown;
}

struct Refusal {
    const char* name;
    std::function<void()> work;
    std::vector<Facts::Fact> facts;
};

class Refusals : public testing::TestWithParam<Refusal> {};

TEST_P(Refusals, AreReportedWithTheirNumbers) {
    const Tests::ExpectedFacts expected(GetParam().facts);
    GetParam().work();
}

const std::vector<std::uint8_t> one{'x'};
constexpr std::uint64_t top = 0xFFFFFFFFFFFFFFFF;

INSTANTIATE_TEST_SUITE_P(
    Operations, Refusals,
    testing::Values(
        Refusal{"SumTooBig",
                [] { EXPECT_EQ(MemoryBuffer(top, 1).getStartAddress(), top); },
                {Facts::ImageNotAddressable{top, 1}}},
        Refusal{"TooLong",
                [] { EXPECT_EQ(MemoryBuffer(5, 0xFFFFFFFF).getDataLength(), 0U); },
                {Facts::ImageTooLong{0xFFFFFFFF, 0xFFFFFFFF}}},
        Refusal{"LongestAndLast",
                [] {
                    EXPECT_EQ(MemoryBuffer(0, 0xFFFFFFFE).getDataLength(), 0xFFFFFFFEU);
                    EXPECT_EQ(MemoryBuffer(top, 0).getDataLength(), 0U);
                },
                {}},
        Refusal{"EmptyPattern",
                [] {
                    image(0x20, "ab").fillMemory({}, 0x20, 1);
                    image(0x20, "ab").writePattern({}, 0x20, 1);
                    image(0x20, "ab").fillPattern({}, 0, 9);
                },
                {Facts::FillPatternEmpty{}, Facts::FillPatternEmpty{}, Facts::FillPatternEmpty{}}},
        Refusal{
            "FillBelowAndAbove",
            [] {
                image(0x20, "ab").writePattern(one, 0x1F, 1);
                image(0x20, "ab").fillPattern(one, 0x23, 0);
            },
            {Facts::FillStartOutside{0x1F, 0x20, 0x22}, Facts::FillStartOutside{0x23, 0x20, 0x22}}},
        Refusal{"FillTooMany",
                [] {
                    MemoryBuffer buffer = image(0x20, "a.");
                    buffer.writePattern(one, 0x21, 0x2A);
                    buffer.fillMemory(Elements{{'x', 0, 1}}, 0x21, 2);
                    EXPECT_EQ(text(buffer), "a.");
                },
                {Facts::FillTooLong{0x21, 0x2A, 0x22}, Facts::FillTooLong{0x21, 2, 0x22}}},
        Refusal{"FillNothingAtTheEnd", [] { image(0x20, "ab").writePattern(one, 0x22, 0); }, {}},
        Refusal{"MoveTooFar",
                [] {
                    MemoryBuffer buffer = image(0x20, "ab");
                    buffer.setStartingAddress(top - 1);
                    EXPECT_EQ(buffer.getStartAddress(), 0x20U);
                    buffer.setStartingAddress(top - 2);
                    EXPECT_EQ(buffer.getStartAddress(), top - 2);
                },
                {Facts::MoveTooFar{top - 1, top - 2}}},
        Refusal{"ExtractBelow",
                [] { EXPECT_EQ(image(0x20, "ab").extractMemory(0x1F, 1).getStartAddress(), 0U); },
                {Facts::ExtractStartOutside{0x1F, 0x20, 0x22}}},
        Refusal{"ExtractTooLong",
                [] { image(0x20, "ab").extractMemory(0x21, 0x1B); },
                {Facts::ExtractTooLong{0x21, 0x1B, 0x22}}},
        Refusal{
            "ExtractNothing",
            [] { EXPECT_EQ(image(0x20, "ab").extractMemory(0x22, 0).getStartAddress(), 0x22U); },
            {Facts::FillPatternEmpty{}}},
        Refusal{"AppendOneTooMany",
                [] {
                    std::vector<std::uint8_t> bytes{1};
                    image(0x20, "ab").appendBytes(bytes, 0x20, 3);
                    image(0x20, "ab").appendBytes(bytes, 0x1F, 1);
                    EXPECT_EQ(bytes.size(), 1U);
                },
                {}}),
    [](const auto& refusal) { return refusal.param.name; });

struct Clip {
    Buffer::Area area;
    Buffer::Area range;
    std::optional<Buffer::Area> part;
};

TEST(AreaTest, ClipsAtBordersAndWrapsForNoLength) {
    for (const Clip& row : {
             Clip{{0x10, 4}, {0x10, 4}, {{0x10, 4}}},
             Clip{{0x0E, 4}, {0x10, 4}, {{0x10, 2}}},
             Clip{{0x12, 9}, {0x10, 4}, {{0x12, 2}}},
             Clip{{0, 0x100}, {0x10, 4}, {{0x10, 4}}},
             Clip{{0x0C, 4}, {0x10, 4}, std::nullopt},
             Clip{{0x14, 4}, {0x10, 4}, std::nullopt},
             Clip{{0x10, 0}, {0x10, 4}, std::nullopt},
             Clip{{0x11, 0}, {0x10, 4}, {{0x11, 0}}},
             Clip{{0x14, 0}, {0x10, 4}, std::nullopt},
             // The last address of no addresses at 0 is the highest of all.
             Clip{{0, 0}, {0x10, 4}, {{0x10, top - 0xF}}},
             Clip{{0, 0}, {0, 4}, {{0, 0}}},
             Clip{{0x10, 4}, {0, 0}, {{0x10, top - 0xF}}},
             Clip{{top - 3, 3}, {top - 1, 1}, {{top - 1, 1}}},
         })
        EXPECT_EQ(row.area.clippedTo(row.range), row.part)
            << row.area.start << "+" << row.area.length << " in " << row.range.start;
    const Buffer::Area range{0x10, 4};
    for (const Buffer::Area& inside : {Buffer::Area{0x10, 4}, {0x13, 1}, {0x14, 0}})
        EXPECT_TRUE(range.contains(inside)) << inside.start;
    for (const Buffer::Area& outside :
         {Buffer::Area{0x0F, 1}, {0x13, 2}, {0x15, 0}, {0x11, top}, {0x10, 5}})
        EXPECT_FALSE(range.contains(outside)) << outside.start;
}

TEST(MemoryBufferTest, ThrowsForALengthThatNoArrayHolds) {
    EXPECT_THROW(MemoryBuffer(0, top), std::length_error);
}

TEST(MemoryBufferTest, FillerLiesUnderDataAndADefaultElementIsAHole) {
    MemoryBuffer buffer = image(0, "a..d");
    buffer.fillMemory(Elements{{0, 0xEE, 0}}, 0, 4);
    EXPECT_EQ(buffer.getElements(),
              (Elements{{'a', 0xEE, 1}, {0, 0xEE, 0}, {0, 0xEE, 0}, {'d', 0xEE, 1}}));
    buffer.fillMemory(Elements{{'x', 9, 1}, {}}, 0, 3);
    EXPECT_EQ(buffer.getElements(),
              (Elements{{'x', 0xEE, 1}, {0, 0, 0}, {'x', 0xEE, 1}, {'d', 0xEE, 1}}));
    std::vector<std::uint8_t> bytes{7};
    buffer.appendBytes(bytes, 0, 4);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{7, 'x', 0, 'x', 'd'}));
}

TEST(MemoryBufferTest, AnExtractForgetsWhatDoesNotApply) {
    MemoryBuffer buffer = image(0x40, "ab.d");
    buffer.fillMemory(Elements{{0, 0x11, 0}}, 0x40, 4);
    buffer.setByteOrder(Buffer::ByteOrder::LittleEndian);
    const MemoryBuffer extract = buffer.extractMemory(0x41, 2);
    EXPECT_EQ(extract.getStartAddress(), 0x41U);
    EXPECT_EQ(extract.getByteOrder(), Buffer::ByteOrder::BigEndian);
    EXPECT_EQ(extract.getElements(), (Elements{{'b', 0, 1}, {0, 0x11, 0}}));
}

struct Placement {
    std::uint64_t start;
    const char* other;
    const char* result;
};

TEST(MemoryBufferTest, OverlayAndWrittenBytesAreCutToTheImage) {
    for (const Placement& row :
         {Placement{0x10, "AB", "ABcd"}, Placement{0x0E, "ABC.E", "C.Ed"},
          Placement{0x12, "ABCDE", "abAB"}, Placement{0x0E, "ABCDEFGH", "CDEF"},
          Placement{0x0E, "AB", "abcd"}, Placement{0x14, "AB", "abcd"},
          Placement{0x11, "..", "a..d"}, Placement{0x12, "", "abcd"}}) {
        MemoryBuffer buffer = image(0x10, "abcd");
        buffer.overlay(image(row.start, row.other));
        EXPECT_EQ(text(buffer), row.result) << row.other;
        const std::string bytes = row.other;
        if (bytes.find('.') != std::string::npos) continue;
        MemoryBuffer written = image(0x10, "abcd");
        written.overlayBytes({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                             row.start);
        EXPECT_EQ(text(written), row.result) << row.other;
    }
}

/// An image kept as plainly as can be: one element after the other.
struct PlainImage {
    std::uint64_t start;
    Elements elements;

    void fill(const Elements& pattern, std::size_t at, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto& source = pattern[i % pattern.size()];
            auto& destination = elements[at + i];
            if (source.hasValue != 0)
                destination = {source.value, destination.filler, 1};
            else
                destination.filler = source.filler;
        }
    }

    void overlay(const PlainImage& other) {
        for (std::size_t i = 0; i < other.elements.size(); ++i) {
            const std::uint64_t at = other.start + i - start;
            if (at < elements.size()) elements[at] = other.elements[i];
        }
    }

    std::vector<std::uint8_t> bytes(std::size_t at, std::size_t count) const {
        std::vector<std::uint8_t> result;
        for (std::size_t i = at; i < at + count; ++i)
            result.push_back(elements[i].hasValue != 0 ? elements[i].value : elements[i].filler);
        return result;
    }
};

Elements elementsOf(const std::vector<std::uint8_t>& bytes, bool isWritten) {
    Elements elements;
    for (const std::uint8_t byte : bytes)
        elements.push_back(isWritten ? Buffer::MemoryElement{byte, 0, 1}
                                     : Buffer::MemoryElement{0, byte, 0});
    return elements;
}

class RandomImages {
public:
    explicit RandomImages(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t end) { return random_() % end; }

    /// Stretches of written elements, of fillers and of holes, of any length.
    Elements elements(std::size_t count) {
        Elements result;
        while (result.size() < count) {
            const std::size_t kind = below(4);
            const std::size_t length = 1 + below(kind == 0 ? 3 : 150);
            for (std::size_t i = 0; i < length; ++i) {
                const auto byte = static_cast<std::uint8_t>(below(256));
                result.push_back(kind == 1   ? Buffer::MemoryElement{0, byte, 0}
                                 : kind == 2 ? Buffer::MemoryElement{}
                                             : Buffer::MemoryElement{byte, 0, 1});
            }
        }
        result.resize(count);
        return result;
    }

    /// Zeros now and then: fillers of zeros have a path of their own.
    std::vector<std::uint8_t> bytes(std::size_t count) {
        std::vector<std::uint8_t> result(count);
        const std::size_t values = below(4) == 0 ? 1 : 256;
        for (std::uint8_t& byte : result) byte = static_cast<std::uint8_t>(below(values));
        return result;
    }

private:
    std::mt19937 random_;
};

TEST(MemoryBufferTest, AnyOperationsGiveWhatAPlainArrayGives) {
    constexpr std::uint64_t start = 1000;
    for (unsigned seed = 0; seed < 200; ++seed) {
        RandomImages random(seed);
        const std::size_t size = 1 + random.below(random.below(20) == 0 ? 20000 : 700);
        MemoryBuffer image(start, size);
        PlainImage plain{start, Elements(size)};
        for (int step = 0; step < 8; ++step) {
            const std::size_t at = random.below(size + 1);
            const std::size_t count = random.below(size - at + 1);
            // Now and then longer than what is repeated at once.
            const Elements pattern =
                random.elements(1 + random.below(random.below(9) == 0 ? 9000 : 300));
            if (random.below(2) == 0) {
                image.fillMemory(pattern, start + at, count);
                plain.fill(pattern, at, count);
            } else {
                const std::vector<std::uint8_t> bytes = random.bytes(1 + random.below(300));
                const bool isWritten = random.below(2) == 0;
                isWritten ? image.writePattern(bytes, start + at, count)
                          : image.fillPattern(bytes, start + at, count);
                plain.fill(elementsOf(bytes, isWritten), at, count);
            }
            const PlainImage other{start - 200 + random.below(size + 400),
                                   random.elements(1 + random.below(400))};
            MemoryBuffer otherImage(other.start, other.elements.size());
            otherImage.fillMemory(other.elements, other.start, other.elements.size());
            image.overlay(otherImage);
            plain.overlay(other);
            const std::vector<std::uint8_t> written(random.below(200), 0x5A);
            image.overlayBytes(written, start + at);
            plain.overlay({start + at, Elements(written.size(), {0x5A, 0, 1})});
            ASSERT_EQ(image.getElements(), plain.elements) << "seed " << seed;
            std::vector<std::uint8_t> bytes;
            image.appendBytes(bytes, start + at, count);
            ASSERT_EQ(bytes, plain.bytes(at, count)) << "seed " << seed;
            if (count == 0) continue;
            PlainImage extract{start + at, Elements(count)};
            extract.fill(
                {plain.elements.begin() + static_cast<std::ptrdiff_t>(at), plain.elements.end()}, 0,
                count);
            ASSERT_EQ(image.extractMemory(start + at, count).getElements(), extract.elements)
                << "seed " << seed;
        }
    }
}

TEST(MemoryBufferTest, ACopyIsIndependent) {
    MemoryBuffer buffer = image(0x10, "abcd");
    const MemoryBuffer copy = buffer;
    MemoryBuffer moved = std::move(buffer);
    moved.writePattern(one, 0x10, 1);
    EXPECT_EQ(text(copy), "abcd");
    EXPECT_EQ(text(moved), "xbcd");
}

}  // namespace
