#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "crypto/stream/stream.hpp"

namespace kv::crypto::stream::hash {

/// The base of all block hashes. It collects blocks, counts the message bytes and feeds whole
/// blocks to the compression function. An algorithm adds its initial values, its compression
/// function and its padding.
///
/// @tparam DigestBits  size of the digest in bits
/// @tparam StateBits   size of the chaining state in bits
/// @tparam Word        unsigned word of that state
/// @tparam BlockBytes  size of a block in bytes
///
/// Between two calls `block_fill_` is below `BlockBytes`, and every byte of `block_` from
/// `block_fill_` on is 0; the padding relies on it. A new object is in the state that `reset` sets.
/// After `finish` only `result` and `reset` may be called; this is not checked.
template <std::size_t DigestBits, std::size_t StateBits, class Word, std::size_t BlockBytes>
class hash_base : public stream<std::array<unsigned char, DigestBits / 8>, void> {
public:
    using digest_type = std::array<unsigned char, DigestBits / 8>;
    static constexpr std::size_t block_bytes = BlockBytes;

    void reset() override {
        block_fill_ = 0;
        message_length_ = 0;
        block_.fill(0);
        state_.fill(0);
    }

    void update(const void* data, std::size_t length) override {
        // `data` may be null if `length` is 0.
        if (length == 0) return;
        const auto* bytes = static_cast<const unsigned char*>(data);
        message_length_ += length;
        if (block_fill_ != 0) {
            const std::size_t chunk = std::min(BlockBytes - block_fill_, length);
            std::memcpy(block_.data() + block_fill_, bytes, chunk);
            block_fill_ += chunk;
            bytes += chunk;
            length -= chunk;
            if (block_fill_ == BlockBytes) transform();
        }
        const std::size_t blocks = length / BlockBytes;
        if (blocks != 0) transform_blocks(bytes, blocks);
        const std::size_t rest = length % BlockBytes;
        std::memcpy(block_.data() + block_fill_, bytes + blocks * BlockBytes, rest);
        block_fill_ += rest;
    }

    /// Compresses `block_` into `state_`, zeroes all of `block_` and sets `block_fill_` to 0.
    virtual void transform() {
        transform_blocks(block_.data(), 1);
        block_.fill(0);
        block_fill_ = 0;
    }

protected:
    /// The compression function, over `count` contiguous blocks.
    virtual void transform_blocks(const unsigned char* blocks, std::size_t count) = 0;

    std::size_t block_fill_ = 0;
    std::uint64_t message_length_ = 0;
    std::array<unsigned char, BlockBytes> block_{};
    std::array<Word, StateBits / (8 * sizeof(Word))> state_{};
};

/// Passes the length in bits of a message of `message_length` bytes to `put` and sets
/// `message_length` to 0. The last block of the MD and SHA families ends with this length.
///
/// @param put  stores byte `i` of the length in the block; byte 0 is the least significant
template <std::size_t LengthBits, class Put>
void put_bit_length(std::uint64_t& message_length, Put put) {
    // Byte by byte, since the number of bits may need 67 bits.
    unsigned carry = 0;
    for (std::size_t i = 0; i < LengthBits / 8; ++i) {
        const unsigned bits = static_cast<unsigned>(message_length & 0xFFU) << 3U;
        put(i, static_cast<unsigned char>((bits & 0xFFU) | carry));
        carry = bits >> 8U;
        message_length >>= 8U;
    }
}

/// The digest of `input` by the class `Hash`, in the order in which the algorithm emits it.
template <class Hash>
std::vector<std::uint8_t> hash_bytes(std::span<const std::uint8_t> input) {
    Hash hash;
    if (!input.empty()) hash.update(input.data(), input.size());
    typename Hash::digest_type digest;
    hash.finish_into(digest);
    return {digest.begin(), digest.end()};
}

}  // namespace kv::crypto::stream::hash
