#include "parser/commands/CmdNewHash.hpp"

#include <array>
#include <utility>

#include "crypto/stream/hash/hash_gost.hpp"
#include "crypto/stream/hash/hash_keccak.hpp"
#include "crypto/stream/hash/hash_md.hpp"
#include "crypto/stream/hash/hash_ripemd.hpp"
#include "crypto/stream/hash/hash_sha.hpp"
#include "parser/commands/Conventions.hpp"
#include "parser/commands/SignatureKey.hpp"

namespace Parser::WrapperLib {

namespace {

using namespace kv::crypto::stream::hash;

constexpr ValueType notChosen{"", "", nullptr};

constexpr std::array<ValueType, 19> hashTypes{{
    {"Hash_Md2", "SetHash_Hash_Md2 -> ", &hash_bytes<hash_md2>, "MD2, RFC 1319"},
    {"Hash_Md4", "SetHash_Hash_Md4 -> ", &hash_bytes<hash_md4>, "MD4, RFC 1320"},
    {"Hash_Md5", "SetHash_Hash_Md5 -> ", &hash_bytes<hash_md5>, "MD5, RFC 1321"},
    {"Hash_Md6", "SetHash_Hash_Md6 -> ", nullptr, "nothing"},
    {"Hash_Gost_256", "SetHash_Hash_Gost_256 -> ", &hash_bytes<hash_gost>,
     "GOST R 34.11-94, RFC 5831"},
    {"Hash_Ripemd_128", "SetHash_Hash_Ripemd128 -> ", &hash_bytes<hash_ripemd128>, "RIPEMD-128"},
    {"Hash_Ripemd_160", "SetHash_Hash_Ripemd160 -> ", &hash_bytes<hash_ripemd160>, "RIPEMD-160"},
    {"Hash_Ripemd_256", "SetHash_Hash_Ripemd256 -> ", &hash_bytes<hash_ripemd256>, "RIPEMD-256"},
    {"Hash_Ripemd_320", "SetHash_Hash_Ripemd320 -> ", &hash_bytes<hash_ripemd320>, "RIPEMD-320"},
    {"Hash_Sha1", "SetHash_Hash_Sha1 -> ", &hash_bytes<hash_sha1>, "SHA-1, FIPS 180-4"},
    {"Hash_Sha2_224", "SetHash_Hash_Sha2_224 -> ", &hash_bytes<hash_sha224>, "SHA-224, FIPS 180-4"},
    {"Hash_Sha2_256", "SetHash_Hash_Sha2_256 -> ", &hash_bytes<hash_sha256>, "SHA-256, FIPS 180-4"},
    {"Hash_Sha2_384", "SetHash_Hash_Sha2_384 -> ", &hash_bytes<hash_sha384>, "SHA-384, FIPS 180-4"},
    {"Hash_Sha2_512", "SetHash_Hash_Sha2_512 -> ", &hash_bytes<hash_sha512>, "SHA-512, FIPS 180-4"},
    {"Hash_Sha3_224", "SetHash_Hash_Sha3_224 -> ", &hash_bytes<hash_sha3<224>>,
     "SHA3-224, FIPS 202"},
    {"Hash_Sha3_256", "SetHash_Hash_Sha3_256 -> ", &hash_bytes<hash_sha3<256>>,
     "SHA3-256, FIPS 202"},
    {"Hash_Sha3_384", "SetHash_Hash_Sha3_384 -> ", &hash_bytes<hash_sha3<384>>,
     "SHA3-384, FIPS 202"},
    {"Hash_Sha3_512", "SetHash_Hash_Sha3_512 -> ", &hash_bytes<hash_sha3<512>>,
     "SHA3-512, FIPS 202"},
    {"Hash_Shake", "SetHash_Hash_Shake -> ", nullptr, "nothing"},
}};

}  // namespace

CmdNewHash::CmdNewHash() : CmdNewValue(Facts::Subject::Hash, &CmdContext::hashes, notChosen) {}

void CmdNewHash::setKeyFile(std::string argument) {
    keyFile_ = cleanedPath(std::move(argument));
}

bool CmdNewHash::execute(CmdContext& context) {
    if (!keyFile_) return CmdNewValue::execute(context);
    return guarded(Facts::Subject::Hash, name(), Facts::Work::Created, [&] {
        const auto key = verifyingKeyIn(*keyFile_, context.passphrase);
        return key && keepValueOf(context, key->publicKey(), Buffer::ByteOrder::NotSet);
    });
}

std::span<const ValueType> CmdNewHash::types() {
    return hashTypes;
}

}  // namespace Parser::WrapperLib
