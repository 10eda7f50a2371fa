#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <span>
#include <tuple>

#include "crypto/stream/hash/hash_gost.hpp"
#include "crypto/stream/hash/hash_keccak.hpp"
#include "crypto/stream/hash/hash_md.hpp"
#include "crypto/stream/hash/hash_ripemd.hpp"
#include "crypto/stream/hash/hash_sha.hpp"
#include "crypto/stream/hash/keccak_rounds.hpp"
#include "crypto/stream/hash/sha_rounds.hpp"
#include "tests/Vectors.hpp"

namespace {

using namespace kv::crypto::stream::hash;
using Bytes = std::span<const std::uint8_t>;
using Tests::hexOf;
using Tests::inputBytes;
using Tests::Vector;

/// The digest of a message in pieces of `piece` bytes, by a hash that was reset after another one.
template <class Hash>
std::string inPieces(Bytes message, std::size_t piece) {
    Hash hash;
    hash.update(
        "something else, and longer than any one block of any algorithm: it goes on and on, "
        "beyond one hundred and forty-four bytes, until the reset",
        136);
    hash.reset();
    for (Bytes rest = message; !rest.empty();) {
        const std::size_t length = std::min(piece, rest.size());
        hash.update(rest.data(), length);
        hash.update(rest.data(), 0);
        rest = rest.subspan(length);
    }
    typename Hash::digest_type digest{};
    hash.finish_into(digest);
    EXPECT_EQ(hash.result(), digest);
    return hexOf(digest);
}

/// `Hash` as it works on a CPU without the features that it detects at run time.
template <class Hash, auto Compress>
class Portable : public Hash {
    void transform_blocks(const unsigned char* blocks, std::size_t count) override {
        Compress(this->state_, blocks, count);
    }
};

template <std::size_t Rate>
void absorb(keccak_lanes& lanes, const unsigned char* blocks, std::size_t count) {
    keccak_absorb_portable(lanes, Rate, blocks, count);
}

struct Algorithm {
    std::function<std::string(Bytes)> whole;
    std::function<std::string(Bytes, std::size_t)> pieces;
};

template <class Hash>
Algorithm algorithm() {
    return {[](Bytes message) { return hexOf(hash_bytes<Hash>(message)); }, &inPieces<Hash>};
}

template <class Hash, auto Compress>
std::vector<Algorithm> bothWays() {
    return {algorithm<Hash>(), algorithm<Portable<Hash, Compress>>()};
}

const std::map<std::string, std::vector<Algorithm>>& algorithms() {
    static const std::map<std::string, std::vector<Algorithm>> all{
        {"Hash_Md2", {algorithm<hash_md2>()}},
        {"Hash_Md4", {algorithm<hash_md4>()}},
        {"Hash_Md5", {algorithm<hash_md5>()}},
        {"Hash_Gost_256", {algorithm<hash_gost>()}},
        {"Hash_Ripemd_128", {algorithm<hash_ripemd128>()}},
        {"Hash_Ripemd_160", {algorithm<hash_ripemd160>()}},
        {"Hash_Ripemd_256", {algorithm<hash_ripemd256>()}},
        {"Hash_Ripemd_320", {algorithm<hash_ripemd320>()}},
        {"Hash_Sha1", bothWays<hash_sha1, sha1_blocks_portable>()},
        {"Hash_Sha2_224", bothWays<hash_sha224, sha256_blocks_portable>()},
        {"Hash_Sha2_256", bothWays<hash_sha256, sha256_blocks_portable>()},
        {"Hash_Sha2_384", bothWays<hash_sha384, sha512_blocks_portable>()},
        {"Hash_Sha2_512", bothWays<hash_sha512, sha512_blocks_portable>()},
        {"Hash_Sha3_224", bothWays<hash_sha3<224>, absorb<144>>()},
        {"Hash_Sha3_256", bothWays<hash_sha3<256>, absorb<136>>()},
        {"Hash_Sha3_384", bothWays<hash_sha3<384>, absorb<104>>()},
        {"Hash_Sha3_512", bothWays<hash_sha3<512>, absorb<72>>()},
    };
    return all;
}

class HashVectors : public testing::TestWithParam<Vector> {};

TEST_P(HashVectors, AgreeForPiecesOfAnyLength) {
    const Vector& vector = GetParam();
    // Feeding the longest messages in single bytes takes long and tests nothing more.
    const std::size_t shortest = vector.input.size() > 100'000 ? 4096 : 1;
    const auto known = algorithms().find(vector.keyword);
    ASSERT_NE(known, algorithms().end()) << "algorithms() of this file lacks " << vector.keyword;
    for (const Algorithm& algorithm : known->second) {
        EXPECT_EQ(algorithm.whole(vector.input), vector.value);
        for (const std::size_t piece :
             {1U,   15U,  16U,  31U,  32U,  33U,  55U,  56U,  63U,  64U,  65U,   71U,   72U,
              103U, 104U, 111U, 112U, 127U, 128U, 135U, 136U, 143U, 144U, 4096U, 65537U})
            EXPECT_EQ(algorithm.pieces(vector.input, std::max(piece, shortest)), vector.value)
                << "pieces of " << piece << " bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(File, HashVectors, testing::ValuesIn(Tests::loadVectors("Hash_")),
                         Tests::keywordAndLine);

TEST(HashTest, EveryAlgorithmHasVectors) {
    std::map<std::string, int> counts;
    for (const Vector& vector : Tests::loadVectors("Hash_")) ++counts[vector.keyword];
    EXPECT_EQ(counts.size(), algorithms().size());
}

/// Gives access to the block of a hash, to check its invariants between two calls.
template <class Hash>
class Opened : public Hash {
public:
    void expectCleanBlock() const {
        EXPECT_LT(this->block_fill_, Hash::block_bytes);
        EXPECT_TRUE(
            std::all_of(this->block_.begin() + static_cast<std::ptrdiff_t>(this->block_fill_),
                        this->block_.end(), [](unsigned char byte) { return byte == 0; }));
    }
    std::size_t fill() const { return this->block_fill_; }
    std::uint64_t length() const { return this->message_length_; }
};

template <class Hash>
class Framework : public testing::Test {};
using AllHashes =
    testing::Types<hash_md2, hash_md4, hash_md5, hash_gost, hash_ripemd128, hash_ripemd160,
                   hash_ripemd256, hash_ripemd320, hash_sha1, hash_sha224, hash_sha256, hash_sha384,
                   hash_sha512, hash_sha3<224>, hash_sha3<256>, hash_sha3<384>, hash_sha3<512>>;
TYPED_TEST_SUITE(Framework, AllHashes);

TYPED_TEST(Framework, TheUnusedPartOfTheBlockIsZero) {
    constexpr std::size_t size = TypeParam::block_bytes;
    Opened<TypeParam> hash;
    const auto message = inputBytes("seq:1000");
    std::size_t sum = 0;
    for (const std::size_t length :
         {size - 1, std::size_t{1}, size, size + 1, 2 * size - 1, 3 * size}) {
        hash.update(message.data(), length);
        sum += length;
        EXPECT_EQ(hash.fill(), sum % size);
        EXPECT_EQ(hash.length(), sum);
        hash.expectCleanBlock();
    }
    hash.update(message.data(), 5);
    hash.transform();
    EXPECT_EQ(hash.fill(), 0U);
    hash.expectCleanBlock();
}

TEST(HashTest, TheBitLengthCarriesFromByteToByte) {
    for (const std::uint64_t bytes :
         {0x1FULL, 0x20ULL, 0x2000ULL, 0x123456789ABCDEFULL, 0xFFFFFFFFFFFFFFFFULL}) {
        std::array<unsigned char, 16> field{};
        std::uint64_t length = bytes;
        put_bit_length<128>(length,
                            [&](std::size_t i, unsigned char byte) { field[15 - i] = byte; });
        EXPECT_EQ(length, 0U);
        std::array<unsigned char, 16> expected{};
        store_big(expected.data() + 8, bytes << 3U);
        expected[7] = static_cast<unsigned char>(bytes >> 61U);
        EXPECT_EQ(hexOf(field), hexOf(expected));
    }
}

}  // namespace
