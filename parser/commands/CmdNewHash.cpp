#include "parser/commands/CmdNewHash.hpp"

#include <array>
#include <utility>

#include "crypto/stream/hash/hash_gost.hpp"
#include "crypto/stream/hash/hash_keccak.hpp"
#include "crypto/stream/hash/hash_md.hpp"
#include "crypto/stream/hash/hash_ripemd.hpp"
#include "crypto/stream/hash/hash_sha.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

namespace {

using namespace kv::crypto::stream::hash;

using Calculation = ByteList (*)(std::span<const std::uint8_t> data);

/// The digest functions by code. Code 0 stands for a statement without -setType; it and the two
/// keywords without an algorithm compute nothing.
constexpr std::array<Calculation, 20> calculations{
    nullptr,
    &hash_bytes<hash_gost>,
    &hash_bytes<hash_md2>,
    &hash_bytes<hash_md4>,
    &hash_bytes<hash_md5>,
    nullptr,
    &hash_bytes<hash_ripemd128>,
    &hash_bytes<hash_ripemd160>,
    &hash_bytes<hash_ripemd256>,
    &hash_bytes<hash_ripemd320>,
    &hash_bytes<hash_sha1>,
    &hash_bytes<hash_sha224>,
    &hash_bytes<hash_sha256>,
    &hash_bytes<hash_sha384>,
    &hash_bytes<hash_sha512>,
    &hash_bytes<hash_sha3<224>>,
    &hash_bytes<hash_sha3<256>>,
    &hash_bytes<hash_sha3<384>>,
    &hash_bytes<hash_sha3<512>>,
    nullptr,
};

constexpr std::array<TypeKeyword, 19> typeKeywords{{
    {"Hash_Md2", 2, "SetHash_Hash_Md2 -> "},
    {"Hash_Md4", 3, "SetHash_Hash_Md4 -> "},
    {"Hash_Md5", 4, "SetHash_Hash_Md5 -> "},
    {"Hash_Md6", 5, "SetHash_Hash_Md6 -> "},
    {"Hash_Gost_256", 1, "SetHash_Hash_Gost_256 -> "},
    {"Hash_Ripemd_128", 6, "SetHash_Hash_Ripemd128 -> "},
    {"Hash_Ripemd_160", 7, "SetHash_Hash_Ripemd160 -> "},
    {"Hash_Ripemd_256", 8, "SetHash_Hash_Ripemd256 -> "},
    {"Hash_Ripemd_320", 9, "SetHash_Hash_Ripemd320 -> "},
    {"Hash_Sha1", 10, "SetHash_Hash_Sha1 -> "},
    {"Hash_Sha2_224", 11, "SetHash_Hash_Sha2_224 -> "},
    {"Hash_Sha2_256", 12, "SetHash_Hash_Sha2_256 -> "},
    {"Hash_Sha2_384", 13, "SetHash_Hash_Sha2_384 -> "},
    {"Hash_Sha2_512", 14, "SetHash_Hash_Sha2_512 -> "},
    {"Hash_Sha3_224", 15, "SetHash_Hash_Sha3_224 -> "},
    {"Hash_Sha3_256", 16, "SetHash_Hash_Sha3_256 -> "},
    {"Hash_Sha3_384", 17, "SetHash_Hash_Sha3_384 -> "},
    {"Hash_Sha3_512", 18, "SetHash_Hash_Sha3_512 -> "},
    {"Hash_Shake", 19, "SetHash_Hash_Shake -> "},
}};

}  // namespace

std::span<const TypeKeyword> CmdNewHash::types() {
    return typeKeywords;
}

void CmdNewHash::setHashName(std::string name) {
    hashName = std::move(name);
}

void CmdNewHash::addFromBuffer(std::string name) {
    fromBuffers.push_back(std::move(name));
}

bool CmdNewHash::execute(CmdContext& context) {
    return guarded("Hash", hashName, "created", [&] {
        const auto bytes = gatherBytes(context, fromBuffers, areas);
        if (!bytes) return false;
        const Calculation calculation = calculations[hashType];
        context.hashes.try_emplace(
            hashName, calculation != nullptr ? calculation(bytes->view()) : ByteList{});
        return true;
    });
}

}  // namespace Parser::WrapperLib
