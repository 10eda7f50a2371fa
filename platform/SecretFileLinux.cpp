#include <fcntl.h>
#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "platform/SecretFile.hpp"

namespace Platform {

void wipe(std::span<std::byte> bytes) {
    if (!bytes.empty()) ::explicit_bzero(bytes.data(), bytes.size());
}

void keepFromPrograms(int descriptor) {
    if (descriptor > STDERR_FILENO) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

void forbidCoreFile() {
    ::prctl(PR_SET_DUMPABLE, 0);
}

}  // namespace Platform
