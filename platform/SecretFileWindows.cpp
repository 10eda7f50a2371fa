#include <windows.h>

#include "platform/SecretFile.hpp"

namespace Platform {

void wipe(std::span<std::byte> bytes) {
    if (!bytes.empty()) ::SecureZeroMemory(bytes.data(), bytes.size());
}

/// A path leads to no descriptor here.
void keepFromPrograms(int /*descriptor*/) {}

/// The dialog of an error would offer to send the memory of the process away.
void forbidCoreFile() {
    ::SetErrorMode(::SetErrorMode(0) | SEM_NOGPFAULTERRORBOX);
}

}  // namespace Platform
