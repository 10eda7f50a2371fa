#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Processor.hpp"

#if !defined(TESSARON_ON_X86) && !defined(TESSARON_ON_ARM)

namespace kv::crypto::stream::hash {

bool can_accelerate_sha1() {
    return false;
}

bool can_accelerate_sha256() {
    return false;
}

bool can_accelerate_sha512() {
    return false;
}

void sha1_blocks_accelerated(sha1_state& state, const unsigned char* blocks, std::size_t count) {
    sha1_blocks_portable(state, blocks, count);
}

void sha256_blocks_accelerated(sha256_state& state, const unsigned char* blocks,
                               std::size_t count) {
    sha256_blocks_portable(state, blocks, count);
}

void sha512_blocks_accelerated(sha512_state& state, const unsigned char* blocks,
                               std::size_t count) {
    sha512_blocks_portable(state, blocks, count);
}

}  // namespace kv::crypto::stream::hash

#endif
