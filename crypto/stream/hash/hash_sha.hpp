#pragma once

#include "crypto/stream/hash/hash_base.hpp"
#include "crypto/stream/hash/hash_md.hpp"
#include "crypto/stream/hash/words.hpp"

/// SHA-1 and SHA-2, FIPS 180-4.
namespace kv::crypto::stream::hash {

/// The base of the SHA family. The padding ends with a length field of `LengthBits` bits, most
/// significant byte first. The digest consists of the first words of the state in the same byte
/// order.
template <std::size_t DigestBits, std::size_t StateBits, class Word, std::size_t BlockBytes,
          std::size_t LengthBits>
class hash_sha_base : public hash_base<DigestBits, StateBits, Word, BlockBytes> {
    using base = hash_base<DigestBits, StateBits, Word, BlockBytes>;

public:
    using typename base::digest_type;

    digest_type finish() override {
        this->block_[this->block_fill_++] = 0x80;
        if (this->block_fill_ > BlockBytes - LengthBits / 8) this->transform();
        put_bit_length<LengthBits>(
            this->message_length_,
            [this](std::size_t i, unsigned char byte) { this->block_[BlockBytes - 1 - i] = byte; });
        this->transform();
        return result();
    }

    void finish_into(digest_type& out) override { out = finish(); }

    digest_type result() const override {
        digest_type digest;
        for (std::size_t i = 0; i < digest.size() / sizeof(Word); ++i)
            store_big(digest.data() + sizeof(Word) * i, this->state_[i]);
        return digest;
    }
};

class hash_sha1 : public hash_sha_base<160, 160, unsigned int, 64, 64> {
public:
    hash_sha1() { set_initial_words(); }
    void reset() override;

protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;

private:
    void set_initial_words();
};

/// The compression function of SHA-224 and SHA-256.
template <std::size_t DigestBits>
class hash_sha_224_256_base : public hash_sha_base<DigestBits, 256, unsigned int, 64, 64> {
protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

/// The compression function of SHA-384 and SHA-512.
template <std::size_t DigestBits>
class hash_sha_384_512_base : public hash_sha_base<DigestBits, 512, unsigned long long, 128, 128> {
protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

class hash_sha224 : public hash_sha_224_256_base<224> {
public:
    hash_sha224() { set_initial_words(); }
    void reset() override;

private:
    void set_initial_words();
};

class hash_sha256 : public hash_sha_224_256_base<256> {
public:
    hash_sha256() { set_initial_words(); }
    void reset() override;

private:
    void set_initial_words();
};

class hash_sha384 : public hash_sha_384_512_base<384> {
public:
    hash_sha384() { set_initial_words(); }
    void reset() override;

private:
    void set_initial_words();
};

class hash_sha512 : public hash_sha_384_512_base<512> {
public:
    hash_sha512() { set_initial_words(); }
    void reset() override;

private:
    void set_initial_words();
};

}  // namespace kv::crypto::stream::hash
