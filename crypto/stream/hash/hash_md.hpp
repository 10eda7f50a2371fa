#pragma once

#include "crypto/stream/hash/hash_base.hpp"
#include "crypto/stream/hash/words.hpp"

namespace kv::crypto::stream::hash {

/// The first chaining words of MD4, MD5, SHA-1 and the RIPEMD family: the bytes 01 23 45 67 89 AB
/// CD EF FE DC BA 98 76 54 32 10 read least significant byte first.
inline constexpr std::array<std::uint32_t, 4> md_initial_words{0x67452301, 0xEFCDAB89, 0x98BADCFE,
                                                               0x10325476};

/// The base of the MD family. The padding ends with a length field of `LengthBits` bits, least
/// significant byte first. The digest consists of the words of the state in the same byte order.
template <std::size_t DigestBits, std::size_t StateBits, class Word, std::size_t BlockBytes,
          std::size_t LengthBits>
class hash_md_base : public hash_base<DigestBits, StateBits, Word, BlockBytes> {
    using base = hash_base<DigestBits, StateBits, Word, BlockBytes>;

public:
    using typename base::digest_type;

    hash_md_base() { set_initial_words(); }

    void reset() override {
        base::reset();
        set_initial_words();
    }

    digest_type finish() override {
        constexpr std::size_t length_position = BlockBytes - LengthBits / 8;
        this->block_[this->block_fill_++] = 0x80;
        if (this->block_fill_ > length_position) this->transform();
        put_bit_length<LengthBits>(this->message_length_,
                                   [this](std::size_t i, unsigned char byte) {
                                       this->block_[length_position + i] = byte;
                                   });
        this->transform();
        return result();
    }

    void finish_into(digest_type& out) override { out = finish(); }

    digest_type result() const override {
        digest_type digest;
        for (std::size_t i = 0; i < digest.size() / sizeof(Word); ++i)
            store_little(digest.data() + sizeof(Word) * i, this->state_[i]);
        return digest;
    }

private:
    void set_initial_words() { std::ranges::copy(md_initial_words, this->state_.begin()); }
};

using hash_md_128_base = hash_md_base<128, 128, unsigned int, 64, 64>;

/// MD4, RFC 1320.
class hash_md4 : public hash_md_128_base {
protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

/// MD5, RFC 1321.
class hash_md5 : public hash_md_128_base {
protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

/// MD2, RFC 1319. It has no length field: the message is padded to whole blocks, and a running
/// checksum is appended as the last block.
class hash_md2 : public hash_base<128, 384, unsigned char, 16> {
public:
    void reset() override;
    digest_type finish() override;
    digest_type result() const override;

protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;

private:
    std::array<unsigned char, 16> checksum_{};
};

}  // namespace kv::crypto::stream::hash
