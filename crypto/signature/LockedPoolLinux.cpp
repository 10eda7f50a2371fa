#include <botan/secmem.h>

#include <cstdint>
#include <cstdlib>

#include "crypto/signature/LockedPool.hpp"

namespace Crypto {

namespace {

bool makePool() {
    // The library asks the environment, and nothing else, for the size in KiB. Programs that are
    // started later do not need it.
    constexpr const char* name = "BOTAN_MLOCK_POOL_SIZE";
    const bool isGiven = std::getenv(name) != nullptr;
    ::setenv(name, "64", 0);
    const Botan::secure_vector<std::uint8_t> first(1);
    if (!isGiven) ::unsetenv(name);
    return true;
}

}  // namespace

void limitLockedPool() {
    [[maybe_unused]] static const bool isMade = makePool();
}

}  // namespace Crypto
