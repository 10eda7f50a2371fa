#include "buffer/MemoryBuffer.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Buffer::MemoryBuffer;
using Elements = std::vector<Buffer::MemoryElement>;

/// What `work` prints, from a stream in decimal state on.
std::string printedBy(const std::function<void()>& work) {
    std::cout << std::dec;
    testing::internal::CaptureStdout();
    work();
    std::string text = testing::internal::GetCapturedStdout();
    std::cout << std::dec;
    return text;
}

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
    const char* printed;
};

class Refusals : public testing::TestWithParam<Refusal> {};

TEST_P(Refusals, AreReportedToTheLetter) {
    EXPECT_EQ(printedBy(GetParam().work), GetParam().printed);
}

const Elements one{{'x', 0, 1}};
constexpr std::uint64_t top = 0xFFFFFFFFFFFFFFFF;

INSTANTIATE_TEST_SUITE_P(
    Operations, Refusals,
    testing::Values(
        Refusal{"SumTooBig", [] { EXPECT_EQ(MemoryBuffer(top, 1).getStartAddress(), top); },
                "MemoryBuffer(Constructor-Operation). The sum of startAddress + dataLength are not "
                "addressable.\n  Nothing was filled!\n"},
        Refusal{"TooLong", [] { EXPECT_EQ(MemoryBuffer(5, 0xFFFFFFFF).getDataLength(), 0U); },
                "MemoryBuffer(Constructor-Operation). The dataLength was bigger than "
                "MAX_ALLOWED_MEMORY_BUFFER_SIZE int(0xffffffff).\n"
                "  An empty Memorybuffer was created!\n"},
        Refusal{"LongestAndLast",
                [] {
                    EXPECT_EQ(MemoryBuffer(0, 0xFFFFFFFE).getDataLength(), 0xFFFFFFFEU);
                    EXPECT_EQ(MemoryBuffer(top, 0).getDataLength(), 0U);
                },
                ""},
        Refusal{"EmptyPattern", [] { image(0x20, "ab").fillMemory({}, 0x20, 1); },
                "MemoryBuffer(fillMemory-Operation). dataPattern was empty, so nothing is filled\n"
                "  Nothing was filled!\n"},
        Refusal{"FillBelowTwice",
                [] {
                    image(0x20, "ab").fillMemory(one, 0x1F, 1);
                    image(0x20, "ab").fillMemory(one, 0x23, 0);
                },
                "MemoryBuffer(fillMemory-Operation). StartAddress int (31) was not in range of "
                "memoryBuffer.\n"
                "  Possible max range could be from int [ 0x20 to 0x22].\n  Nothing was filled!\n"
                "MemoryBuffer(fillMemory-Operation). StartAddress int (23) was not in range of "
                "memoryBuffer.\n"
                "  Possible max range could be from int [ 0x20 to 0x22].\n"
                "  Nothing was filled!\n"},
        Refusal{"FillTooMany",
                [] {
                    MemoryBuffer buffer = image(0x20, "a.");
                    buffer.fillMemory(one, 0x21, 0x2A);
                    EXPECT_EQ(text(buffer), "a.");
                },
                "MemoryBuffer(fillMemory - Operation). NumberOfElements int ( 0x2a) are too many.\n"
                "  Nothing was filled!\n"},
        Refusal{"FillNothingAtTheEnd", [] { image(0x20, "ab").fillMemory(one, 0x22, 0); }, ""},
        Refusal{"MoveTooFar",
                [] {
                    MemoryBuffer buffer = image(0x20, "ab");
                    buffer.setStartingAddress(top - 1);
                    EXPECT_EQ(buffer.getStartAddress(), 0x20U);
                    buffer.setStartingAddress(top - 2);
                    EXPECT_EQ(buffer.getStartAddress(), top - 2);
                },
                "MemoryBuffer(setStartingAddress-Operation). StartAddress (0xfffffffffffffffe) is "
                "to big.\n  Possible max startAddress for this object is (0xfffffffffffffffd).\n"
                "  StartAddress has not been changed!\n"},
        Refusal{"ExtractBelow",
                [] { EXPECT_EQ(image(0x20, "ab").extractMemory(0x1F, 1).getStartAddress(), 0U); },
                "MemoryBuffer(extractMemory-Operation). StartAddress (0x1f) is not in range.\n"
                "  Possible max range could be from [0x20 to 0x22].\n"
                "  Nothing has been extracted!\n"},
        Refusal{"ExtractTooLong", [] { image(0x20, "ab").extractMemory(0x21, 0x1B); },
                "MemoryBuffer(extractMemory-Operation). Requested dataLength (0x1b) are too "
                "large.\n  Nothing has been extracted!\n"},
        Refusal{
            "ExtractNothing",
            [] { EXPECT_EQ(image(0x20, "ab").extractMemory(0x22, 0).getStartAddress(), 0x22U); },
            "MemoryBuffer(fillMemory-Operation). dataPattern was empty, so nothing is filled\n"
            "  Nothing was filled!\n"},
        Refusal{"AppendOneTooMany",
                [] {
                    std::vector<std::uint8_t> bytes{1};
                    image(0x20, "ab").appendBytes(bytes, 0x20, 3);
                    image(0x20, "ab").appendBytes(bytes, 0x1F, 1);
                    EXPECT_EQ(bytes.size(), 1U);
                },
                ""}),
    [](const auto& refusal) { return refusal.param.name; });

TEST(MemoryBufferTest, ThrowsForALengthThatNoArrayHolds) {
    EXPECT_THROW(MemoryBuffer(0, top), std::length_error);
}

TEST(MemoryBufferTest, ShortPatternsRepeatFromTheStartOfTheRange) {
    const Elements pattern{{'0', 0, 1}, {'1', 0, 1}, {'2', 0, 1}};
    MemoryBuffer buffer(0x10, 9000);
    buffer.fillMemory(pattern, 0x11, 8998);
    std::string expected(9000, '.');
    for (std::size_t i = 1; i < 8999; ++i) expected[i] = static_cast<char>('0' + (i - 1) % 3);
    EXPECT_EQ(text(buffer), expected);
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

struct Overlap {
    std::uint64_t start;
    const char* other;
    const char* result;
};

TEST(MemoryBufferTest, OverlayAndWrittenBytesAreCutToTheImage) {
    for (const Overlap& row : {Overlap{0x10, "AB", "ABcd"}, Overlap{0x0E, "ABC.E", "C.Ed"},
                               Overlap{0x12, "ABCDE", "abAB"}, Overlap{0x0E, "ABCDEFGH", "CDEF"},
                               Overlap{0x0E, "AB", "abcd"}, Overlap{0x14, "AB", "abcd"},
                               Overlap{0x11, "..", "a..d"}, Overlap{0x12, "", "abcd"}}) {
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
            image.fillMemory(pattern, start + at, count);
            plain.fill(pattern, at, count);
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

TEST(MemoryBufferTest, ACopyStandsAlone) {
    MemoryBuffer buffer = image(0x10, "abcd");
    const MemoryBuffer copy = buffer;
    MemoryBuffer moved = std::move(buffer);
    moved.fillMemory(one, 0x10, 1);
    EXPECT_EQ(text(copy), "abcd");
    EXPECT_EQ(text(moved), "xbcd");
}

}  // namespace
