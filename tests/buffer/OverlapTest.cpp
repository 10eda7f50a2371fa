#include "buffer/Overlap.hpp"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Buffer::Overlap;

/// An image as a plain map: of each address its byte, or nothing, and its filler.
struct Plain {
    std::map<std::uint64_t, std::pair<std::optional<std::uint8_t>, std::uint8_t>> elements;

    std::optional<std::uint8_t> byte(std::uint64_t address) const {
        return elements.contains(address) ? elements.at(address).first : std::nullopt;
    }
};

class Images {
public:
    explicit Images(unsigned seed) : random_(seed) {}

    MemoryBuffer make(Plain& plain) {
        const std::uint64_t start = 1000 + below(150);
        const std::uint64_t length = below(300);
        MemoryBuffer image(start, length);
        for (std::uint64_t i = 0; i < length; ++i) plain.elements[start + i] = {};
        for (std::uint64_t i = below(8); i > 0 && length != 0; --i) {
            const std::uint64_t at = below(length);
            const std::uint64_t count = below(length - at + 1);
            const auto value = static_cast<std::uint8_t>(below(3));
            const bool isFiller = below(3) == 0;
            if (isFiller)
                image.fillPattern(std::span(&value, 1), start + at, count);
            else
                image.writePattern(std::span(&value, 1), start + at, count);
            for (std::uint64_t k = at; k < at + count; ++k) {
                auto& [byte, filler] = plain.elements[start + k];
                if (isFiller)
                    filler = value;
                else
                    byte = value;
            }
        }
        return image;
    }

private:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
    std::mt19937 random_;
};

void add(AreaList& areas, std::uint64_t address) {
    if (!areas.empty() && areas.back().start + areas.back().length == address)
        ++areas.back().length;
    else
        areas.push_back({address, 1});
}

TEST(OverlapTest, AnyTwoImagesOverlapWhereBothHaveWrittenBytes) {
    Images images(3);
    for (int round = 0; round < 1000; ++round) {
        Plain one, two;
        const MemoryBuffer earlier = images.make(one);
        const MemoryBuffer later = images.make(two);
        AreaList both, wiped;
        for (const auto& [address, element] : one.elements) {
            if (!element.first || !two.elements.contains(address)) continue;
            add(two.byte(address) ? both : wiped, address);
        }
        EXPECT_EQ(Buffer::wipedAreas(earlier, later), wiped);
        const auto found = Buffer::overlaps(earlier, later);
        ASSERT_EQ(found.size(), both.size());
        for (std::size_t i = 0; i < both.size(); ++i) {
            Overlap expected{both[i]};
            for (std::uint64_t at = both[i].end(); at-- > both[i].start;) {
                if (one.byte(at) == two.byte(at)) continue;
                ++expected.differences;
                expected.firstDifference = at;
                expected.earlier = *one.byte(at);
                expected.later = *two.byte(at);
            }
            EXPECT_EQ(found[i], expected);
        }
    }
}

TEST(OverlapTest, MergeTakesWrittenBytesAndFillersWhereNothingIsWritten) {
    Images images(5);
    for (int round = 0; round < 1000; ++round) {
        Plain into, from;
        MemoryBuffer image = images.make(into);
        const MemoryBuffer other = images.make(from);
        const bool keepsWritten = round % 2 == 0;
        image.merge(other, keepsWritten);
        const auto elements = image.getElements();
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const std::uint64_t address = image.getStartAddress() + i;
            auto [byte, filler] = into.elements.at(address);
            if (from.elements.contains(address)) {
                const auto& [newByte, newFiller] = from.elements.at(address);
                if (newByte && !(keepsWritten && byte)) {
                    byte = newByte;
                    filler = 0;
                } else if (!byte && !newByte && filler == 0) {
                    filler = newFiller;
                }
            }
            ASSERT_EQ(elements[i].hasValue != 0, byte.has_value()) << address;
            ASSERT_EQ(elements[i].value, byte.value_or(0)) << address;
            ASSERT_EQ(elements[i].filler, filler) << address;
        }
    }
}

}  // namespace
