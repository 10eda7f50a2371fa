#pragma once

#include <utility>

#include "crypto/stream/hash/hash_md.hpp"

/// RIPEMD: H. Dobbertin, A. Bosselaers, B. Preneel, "RIPEMD-160: a strengthened version of RIPEMD",
/// 1996, with its variants of 128, 256 and 320 bits.
namespace kv::crypto::stream::hash {

/// The base of the four variants: two lines of rounds over the same block, and a hook between the
/// rounds. The 256-bit and 320-bit variants are the 128-bit and 160-bit ones with a second chaining
/// half, whose lines exchange a register after every round.
template <std::size_t Bits>
class hash_ripemd_base : public hash_md_base<Bits, Bits, unsigned int, 64, 64> {
protected:
    static constexpr bool has_two_halves = Bits == 256 || Bits == 320;

    static void swap_words(unsigned int& a, unsigned int& b) {
        if constexpr (has_two_halves) std::swap(a, b);
    }
};

/// Four rounds over lines of four registers.
template <std::size_t Bits>
class hash_ripemd_128_256_base : public hash_ripemd_base<Bits> {
protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;
};

/// Five rounds over lines of five registers.
template <std::size_t Bits>
class hash_ripemd_160_320_base : public hash_ripemd_base<Bits> {
public:
    hash_ripemd_160_320_base() { set_fifth_word(); }

    void reset() override {
        hash_ripemd_base<Bits>::reset();
        set_fifth_word();
    }

protected:
    void transform_blocks(const unsigned char* blocks, std::size_t count) override;

private:
    void set_fifth_word() { this->state_[4] = 0xC3D2E1F0; }
};

class hash_ripemd128 : public hash_ripemd_128_256_base<128> {};

class hash_ripemd160 : public hash_ripemd_160_320_base<160> {};

class hash_ripemd256 : public hash_ripemd_128_256_base<256> {
public:
    hash_ripemd256() { set_second_half(); }
    void reset() override;

private:
    void set_second_half();
};

class hash_ripemd320 : public hash_ripemd_160_320_base<320> {
public:
    hash_ripemd320() { set_second_half(); }
    void reset() override;

private:
    void set_second_half();
};

}  // namespace kv::crypto::stream::hash
