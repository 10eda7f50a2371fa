#pragma once

#include "crypto/stream/hash/hash_base.hpp"

namespace kv::crypto::stream::hash {

/// GOST R 34.11-94 (RFC 5831) with the S-boxes of id-GostR3411-94-CryptoProParamSet (RFC 4357).
///
/// Besides the chaining value it keeps a sum of all blocks. A message has no padding; its length
/// and the sum are compressed after it.
class hash_gost : public hash_base<256, 256, unsigned int, 32> {
public:
    void reset() override;
    digest_type finish() override;
    digest_type result() const override;

protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;

private:
    /// Eight words, the first one least significant.
    using Words = std::array<std::uint32_t, 8>;

    /// The step function of the standard: replaces `state_` by chi(`m`, `state_`).
    void compress(const Words& m);

    Words control_sum_{};
};

}  // namespace kv::crypto::stream::hash
