#include <string.h>
#include <sys/prctl.h>

#include "platform/SecretFile.hpp"

namespace Platform {

void wipe(std::span<std::byte> bytes) {
    if (!bytes.empty()) ::explicit_bzero(bytes.data(), bytes.size());
}

void forbidCoreFile() {
    ::prctl(PR_SET_DUMPABLE, 0);
}

}  // namespace Platform
