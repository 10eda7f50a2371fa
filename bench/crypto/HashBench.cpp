// Crypto++ has MD2, MD4 and MD5 in its namespace Weak, which must be enabled.
#define CRYPTOPP_ENABLE_NAMESPACE_WEAK 1

#include <crypto++/md2.h>
#include <crypto++/md4.h>
#include <crypto++/md5.h>
#include <crypto++/ripemd.h>
#include <crypto++/sha.h>
#include <crypto++/sha3.h>
#include <gcrypt.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <stdexcept>

#include "bench/crypto/Contest.hpp"
#include "crypto/stream/hash/hash_gost.hpp"
#include "crypto/stream/hash/hash_keccak.hpp"
#include "crypto/stream/hash/hash_md.hpp"
#include "crypto/stream/hash/hash_ripemd.hpp"
#include "crypto/stream/hash/hash_sha.hpp"

namespace Contest {

namespace {

using namespace kv::crypto::stream::hash;

template <class Hash>
Entrant ours() {
    return {"ours", &hash_bytes<Hash>};
}

template <class Hash>
Entrant cryptopp() {
    return {"Crypto++", [](Bytes message) {
                Value digest(Hash::DIGESTSIZE);
                Hash().CalculateDigest(digest.data(), message.data(), message.size());
                return digest;
            }};
}

Entrant gcrypt(int algorithm) {
    return {"libgcrypt", [algorithm](Bytes message) {
                Value digest(gcry_md_get_algo_dlen(algorithm));
                gcry_md_hash_buffer(algorithm, digest.data(), message.data(), message.size());
                return digest;
            }};
}

Entrant openssl(const char* name) {
    const EVP_MD* algorithm = EVP_MD_fetch(nullptr, name, nullptr);
    if (algorithm == nullptr) throw std::runtime_error(std::string("no OpenSSL digest ") + name);
    return {"OpenSSL", [algorithm](Bytes message) {
                Value digest(static_cast<std::size_t>(EVP_MD_get_size(algorithm)));
                EVP_Digest(message.data(), message.size(), digest.data(), nullptr, algorithm,
                           nullptr);
                return digest;
            }};
}

}  // namespace

void enterHashes() {
    gcry_check_version(nullptr);
    // OpenSSL 3 has MD4 only in the provider "legacy".
    OSSL_PROVIDER_load(nullptr, "default");
    OSSL_PROVIDER_load(nullptr, "legacy");

    enter("Hash_Md2", {ours<hash_md2>(), cryptopp<CryptoPP::Weak::MD2>()});
    enter("Hash_Md4",
          {ours<hash_md4>(), cryptopp<CryptoPP::Weak::MD4>(), gcrypt(GCRY_MD_MD4), openssl("MD4")});
    enter("Hash_Md5",
          {ours<hash_md5>(), cryptopp<CryptoPP::Weak::MD5>(), gcrypt(GCRY_MD_MD5), openssl("MD5")});
    enter("Hash_Gost_256", {ours<hash_gost>(), gcrypt(GCRY_MD_GOSTR3411_CP)});
    enter("Hash_Ripemd_128", {ours<hash_ripemd128>(), cryptopp<CryptoPP::RIPEMD128>()});
    enter("Hash_Ripemd_160", {ours<hash_ripemd160>(), cryptopp<CryptoPP::RIPEMD160>(),
                              gcrypt(GCRY_MD_RMD160), openssl("RIPEMD160")});
    enter("Hash_Ripemd_256", {ours<hash_ripemd256>(), cryptopp<CryptoPP::RIPEMD256>()});
    enter("Hash_Ripemd_320", {ours<hash_ripemd320>(), cryptopp<CryptoPP::RIPEMD320>()});
    enter("Hash_Sha1",
          {ours<hash_sha1>(), cryptopp<CryptoPP::SHA1>(), gcrypt(GCRY_MD_SHA1), openssl("SHA1")});
    enter("Hash_Sha2_224", {ours<hash_sha224>(), cryptopp<CryptoPP::SHA224>(),
                            gcrypt(GCRY_MD_SHA224), openssl("SHA224")});
    enter("Hash_Sha2_256", {ours<hash_sha256>(), cryptopp<CryptoPP::SHA256>(),
                            gcrypt(GCRY_MD_SHA256), openssl("SHA256")});
    enter("Hash_Sha2_384", {ours<hash_sha384>(), cryptopp<CryptoPP::SHA384>(),
                            gcrypt(GCRY_MD_SHA384), openssl("SHA384")});
    enter("Hash_Sha2_512", {ours<hash_sha512>(), cryptopp<CryptoPP::SHA512>(),
                            gcrypt(GCRY_MD_SHA512), openssl("SHA512")});
    enter("Hash_Sha3_224", {ours<hash_sha3<224>>(), cryptopp<CryptoPP::SHA3_224>(),
                            gcrypt(GCRY_MD_SHA3_224), openssl("SHA3-224")});
    enter("Hash_Sha3_256", {ours<hash_sha3<256>>(), cryptopp<CryptoPP::SHA3_256>(),
                            gcrypt(GCRY_MD_SHA3_256), openssl("SHA3-256")});
    enter("Hash_Sha3_384", {ours<hash_sha3<384>>(), cryptopp<CryptoPP::SHA3_384>(),
                            gcrypt(GCRY_MD_SHA3_384), openssl("SHA3-384")});
    enter("Hash_Sha3_512", {ours<hash_sha3<512>>(), cryptopp<CryptoPP::SHA3_512>(),
                            gcrypt(GCRY_MD_SHA3_512), openssl("SHA3-512")});
}

}  // namespace Contest
