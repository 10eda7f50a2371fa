#include "buffer/Difference.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Bytes = std::map<std::uint64_t, std::uint8_t>;  // written addresses alone

AreaList expected(const Bytes& left, const Bytes& right) {
    std::map<std::uint64_t, bool> addresses;
    const auto differs = [](const Bytes& one, const Bytes& two, std::uint64_t address) {
        const auto found = two.find(address);
        return found == two.end() || found->second != one.at(address);
    };
    for (const auto& [address, byte] : left) addresses[address] |= differs(left, right, address);
    for (const auto& [address, byte] : right) addresses[address] |= differs(right, left, address);
    AreaList areas;
    for (const auto& [address, isDifferent] : addresses) {
        if (!isDifferent) continue;
        if (!areas.empty() && areas.back().start + areas.back().length == address)
            ++areas.back().length;
        else
            areas.push_back({address, 1});
    }
    return areas;
}

TEST(DifferenceTest, AnyTwoImagesDifferWhereTheirWrittenBytesDo) {
    std::mt19937 random(7);
    const auto below = [&](std::uint64_t limit) { return random() % limit; };
    for (int round = 0; round < 2000; ++round) {
        std::array<Bytes, 2> bytes;
        std::vector<MemoryBuffer> images;
        for (Bytes& plain : bytes) {
            const std::uint64_t start = 1000 + below(300);
            const std::uint64_t length = below(400);
            MemoryBuffer& image = images.emplace_back(start, length);
            const std::uint8_t filler = 0xFF;
            image.fillPattern(std::span(&filler, 1), start, length);
            for (std::uint64_t i = below(6); i > 0 && length != 0; --i) {
                const std::uint64_t at = below(length);
                const std::uint64_t count = below(length - at + 1);
                const auto value = static_cast<std::uint8_t>(below(2));
                image.writePattern(std::span(&value, 1), start + at, count);
                for (std::uint64_t k = 0; k < count; ++k) plain[start + at + k] = value;
            }
        }
        ASSERT_EQ(Buffer::differences(images[0], images[1]), expected(bytes[0], bytes[1]));
    }
}

}  // namespace
