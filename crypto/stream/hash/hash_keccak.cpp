#include "crypto/stream/hash/hash_keccak.hpp"

#include "crypto/stream/hash/keccak_rounds.hpp"

namespace kv::crypto::stream::hash {

template <std::size_t DigestBits, unsigned char Suffix>
void hash_keccak_f_1600_base<DigestBits, Suffix>::transform_blocks(const unsigned char* blocks,
                                                                   std::size_t count) {
    const auto absorb = has_bit_manipulation() ? &keccak_absorb_bmi : &keccak_absorb_portable;
    absorb(this->state_, hash_keccak_f_1600_base::block_bytes, blocks, count);
}

template class hash_keccak_f_1600_base<224, 6>;
template class hash_keccak_f_1600_base<256, 6>;
template class hash_keccak_f_1600_base<384, 6>;
template class hash_keccak_f_1600_base<512, 6>;

}  // namespace kv::crypto::stream::hash
