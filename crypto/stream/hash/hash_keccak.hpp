#pragma once

#include "crypto/stream/hash/hash_base.hpp"

/// SHA-3 with digests of fixed length, FIPS 202.
namespace kv::crypto::stream::hash {

/// The sponge: whole blocks are xored into the state, and one padded block ends the message. The
/// digest is never longer than a block, so one squeeze without a further permutation yields it.
template <std::size_t DigestBits, std::size_t StateBits>
class hash_keccak_base : public hash_base<DigestBits, StateBits, unsigned long long,
                                          StateBits / 8 - 2 * DigestBits / 8> {
public:
    using digest_type = std::array<unsigned char, DigestBits / 8>;

    digest_type finish() override {
        pad();
        this->transform();
        return result();
    }

    digest_type result() const override {
        digest_type digest;
        for (std::size_t i = 0; i < digest.size(); ++i)
            digest[i] = static_cast<unsigned char>(this->state_[i / 8] >> (8 * (i % 8)));
        return digest;
    }

    /// Appends the padding to the contents of `block_`.
    virtual void pad() = 0;
};

/// Keccak with the permutation Keccak-f[1600]. The padding begins with the byte `Suffix`.
template <std::size_t DigestBits, unsigned char Suffix>
class hash_keccak_f_1600_base : public hash_keccak_base<DigestBits, 1600> {
public:
    void pad() override {
        constexpr unsigned char lastBit = 0x80;
        this->block_[this->block_fill_] ^= Suffix;
        this->block_.back() ^= lastBit;
    }

protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

template <std::size_t DigestBits>
class hash_sha3 : public hash_keccak_f_1600_base<DigestBits, 6> {};

}  // namespace kv::crypto::stream::hash
