#include "strict/record/OriginMap.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

using Buffer::Area;
using Strict::OriginMap;

using Plain = std::map<std::uint64_t, std::size_t>;  // the source of each address

Plain plain(const OriginMap& map) {
    Plain addresses;
    for (const OriginMap::Range& range : map.ranges())
        for (std::uint64_t i = 0; i < range.area.length; ++i)
            EXPECT_TRUE(addresses.emplace(range.area.start + i, range.source).second);
    return addresses;
}

TEST(OriginMapTest, RangesKnowWhatAMapOfSingleAddressesKnows) {
    std::mt19937 random(11);
    constexpr int rounds = 505;
    for (int round = 0; round < rounds; ++round) {
        // The last ones have so many ranges that a list keeps them in several blocks.
        const bool isWide = round >= 500;
        const std::uint64_t addresses = isWide ? 6000 : 60;
        OriginMap map, other;
        Plain expected, otherPlain;
        for (int step = 0; step < (isWide ? 2500 : 20); ++step) {
            // Ranges in the order of their addresses, too, and sometimes a half or all of them.
            const std::uint64_t start = isWide && round % 2 == 0
                                            ? 2 * static_cast<std::uint64_t>(step)
                                            : random() % addresses;
            const bool isMany = isWide && step % 1000 == 999;
            const std::uint64_t many = step < 1000 ? addresses / 2 : addresses + 20;
            const Area one = isMany ? Area{1, many} : Area{1 + start, random() % (isWide ? 4 : 20)};
            const std::size_t source = random() % 3;
            const std::uint64_t kind =
                isMany ? static_cast<std::uint64_t>(step / 1000 % 2) : random() % 4;
            if (kind == 0) map.erase(one);
            if (kind == 1) map.lay(other, one);
            if (kind == 2) map.set(one, source);
            if (kind == 3) other.set(one, source);
            for (std::uint64_t at = one.start; at < one.end(); ++at) {
                if (kind == 0) expected.erase(at);
                if (kind == 1 && otherPlain.contains(at)) expected[at] = otherPlain[at];
                if (kind == 2) expected[at] = source;
                if (kind == 3) otherPlain[at] = source;
            }
        }
        ASSERT_EQ(plain(map), expected);
        const OriginMap::Range* before = nullptr;
        for (const OriginMap::Range& range : map.ranges()) {
            ASSERT_FALSE(before != nullptr && before->area.end() == range.area.start &&
                         before->source == range.source)
                << "neighbours of one source are one range";
            before = &range;
        }
        EXPECT_EQ(map.size(), expected.size());
        for (std::uint64_t at = 0; at < addresses + 20; ++at) {
            const OriginMap::Range* const found = map.find(at);
            ASSERT_EQ(found != nullptr, expected.contains(at)) << at;
            const Buffer::AreaList gap = uncovered({at, 1}, map);
            ASSERT_EQ(gap.empty(), expected.contains(at)) << at;
        }
        map.move(~std::uint64_t{0});  // down by one
        for (const auto& [address, source] : expected)
            ASSERT_EQ(map.find(address - 1)->moved, ~std::uint64_t{0});
    }
}

TEST(OriginMapTest, AMapOfRangesIsThatOfOneAfterTheOther) {
    std::mt19937 random(12);
    for (int round = 0; round < 500; ++round) {
        std::vector<OriginMap::Range> ranges;
        Plain expected;
        for (std::size_t source = 0; source < 6; ++source) {
            const Area area{random() % 100, random() % 20};
            ranges.push_back({area, source, 0});
            for (std::uint64_t at = area.start; at < area.end(); ++at) expected[at] = source;
        }
        ASSERT_EQ(plain(OriginMap(std::move(ranges))), expected);
    }
}

TEST(OriginMapTest, NeighboursOfOneSourceAreOneRange) {
    OriginMap map;
    for (std::uint64_t at = 0; at < 1'000'000; at += 16) map.set({at, 16}, 7);
    EXPECT_EQ(map.ranges().size(), 1U);
}

}  // namespace
