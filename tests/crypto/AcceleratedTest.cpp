#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Crc32Instructions.hpp"
#include "util/crc/CrcFolding.hpp"

namespace {

using namespace kv::crypto::stream::hash;

using Features = std::set<std::string>;

/// The features of the CPU by the names that Linux has for them. CTest gives those of an emulated
/// one, since the emulator shows programs the file of the host. Empty on other systems.
Features features() {
    std::string words;
    if (const char* const given = std::getenv("TESSARON_CPU_FEATURES"); given != nullptr) {
        words = given;
    } else {
        std::ifstream file("/proc/cpuinfo");
        for (std::string line; std::getline(file, line);)
            if (line.starts_with("flags") || line.starts_with("Features")) words = line;
    }
    std::istringstream list(words);
    return {std::istream_iterator<std::string>(list), {}};
}

TEST(AcceleratedTest, IsWhatTheCpuHasInstructionsFor) {
    struct Row {
        const char* name;
        bool isAccelerated;
        Features onX86;
        Features onArm;
    };
    const std::vector<Row> rows{
        {"SHA-1", can_accelerate_sha1(), {"sha_ni", "sse4_1", "ssse3"}, {"sha1"}},
        {"SHA-256", can_accelerate_sha256(), {"sha_ni", "sse4_1", "ssse3"}, {"sha2"}},
        {"SHA-512", can_accelerate_sha512(), {"avx2", "bmi1", "bmi2"}, {"sha512"}},
        {"folding", Util::Crc::canFold(), {"pclmulqdq", "ssse3"}, {"pmull"}},
        {"CRC-32", Util::Crc::hasCrc32Instructions(), {"only Arm has them"}, {"crc32"}},
    };
    const Features all = features();
#if defined(__aarch64__) && defined(__clang__)
    GTEST_SKIP() << "built without the instructions";
#elif defined(__aarch64__)
    constexpr Features Row::*needed = &Row::onArm;
    if (all.contains("sse2")) GTEST_SKIP() << "an emulator, and nobody said which CPU it has";
#else
    constexpr Features Row::*needed = &Row::onX86;
#endif
    if (all.empty()) GTEST_SKIP() << "the system does not say what its CPU has";
    for (const Row& row : rows)
        EXPECT_EQ(row.isAccelerated, std::ranges::includes(all, row.*needed)) << row.name;
}

template <class State>
using Compress = void (*)(State&, const unsigned char*, std::size_t);

/// Both functions must agree for any state, any number of blocks and any alignment.
template <class State>
void expectAgreement(bool canAccelerate, Compress<State> accelerated, Compress<State> portable,
                     std::size_t blockBytes) {
    constexpr std::size_t mostBlocks = 9;
    constexpr std::size_t mostOffset = 64;
    if (!canAccelerate) return;
    std::mt19937_64 random(20260320);
    std::vector<unsigned char> bytes(mostBlocks * blockBytes + mostOffset);
    for (int i = 0; i < 300; ++i) {
        std::ranges::generate(bytes, [&] { return static_cast<unsigned char>(random()); });
        State state;
        std::ranges::generate(state,
                              [&] { return static_cast<typename State::value_type>(random()); });
        State expected = state;
        const std::size_t offset = random() % (mostOffset + 1);
        const std::size_t count = random() % (mostBlocks + 1);
        accelerated(state, &bytes[offset], count);
        portable(expected, &bytes[offset], count);
        ASSERT_EQ(state, expected) << count << " blocks at " << offset;
    }
}

TEST(AcceleratedTest, AgreesWithThePortableCode) {
    constexpr std::size_t shortBlock = 64;
    constexpr std::size_t longBlock = 128;
    expectAgreement(can_accelerate_sha1(), &sha1_blocks_accelerated, &sha1_blocks_portable,
                    shortBlock);
    expectAgreement(can_accelerate_sha256(), &sha256_blocks_accelerated, &sha256_blocks_portable,
                    shortBlock);
    expectAgreement(can_accelerate_sha512(), &sha512_blocks_accelerated, &sha512_blocks_portable,
                    longBlock);
}

}  // namespace
