// Signs and verifies files, for openssl_both_ways.py and limits.sh:
//   sign_tool sign|verify TYPE raw|der KEY MESSAGE SIGNATURE [PASSPHRASE]
// TYPE is the number of the type. Ends with 0, with 1 if a signature is not valid, and with 2 and
// the number of the fault if the key was refused.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "crypto/signature/Signature.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes readAll(const char* path) {
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

template <class Key>
std::optional<Key> readKey(const char* path, std::optional<std::string_view> passphrase,
                           Crypto::SignatureType type) {
    auto read = Key::read(readAll(path), passphrase, type);
    if (Key* key = std::get_if<Key>(&read)) return std::move(*key);
    std::cerr << "key fault " << static_cast<int>(std::get<Crypto::KeyFault>(read)) << '\n';
    return std::nullopt;
}

int runTool(int argc, char** argv) {
    if (argc < 7) return 3;
    const auto type = static_cast<Crypto::SignatureType>(std::atoi(argv[2]));
    const auto form = std::string_view{argv[3]} == "der" ? Crypto::SignatureForm::Der
                                                         : Crypto::SignatureForm::Raw;
    const Bytes message = readAll(argv[5]);
    std::optional<std::string_view> passphrase;
    if (argc > 7) passphrase = argv[7];
    if (std::string_view{argv[1]} == "sign") {
        const auto key = readKey<Crypto::SigningKey>(argv[4], passphrase, type);
        if (!key) return 2;
        const Bytes signature = key->sign(message, form);
        std::ofstream{argv[6], std::ios::binary} << std::string{signature.begin(), signature.end()};
        return 0;
    }
    const auto key = readKey<Crypto::VerifyingKey>(argv[4], passphrase, type);
    if (!key) return 2;
    return key->verify(message, readAll(argv[6]), form) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runTool(argc, argv);
    } catch (const std::bad_alloc&) {
        return 4;
    }
}
