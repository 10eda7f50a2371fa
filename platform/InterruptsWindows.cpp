#include <windows.h>

#include <mutex>

#include "platform/Interrupts.hpp"
#include "platform/Replace.hpp"

namespace Platform {

namespace {

/// The files to remove; locked by `heldMutex`, since the handler runs in a thread of its own.
const std::set<std::string>* guarded = nullptr;
/// Recursive, since files are named while interrupts are held.
std::recursive_mutex heldMutex;

BOOL WINAPI removeAll(DWORD /*event*/) {
    const std::lock_guard lock(heldMutex);
    if (guarded != nullptr)
        for (const std::string& path : *guarded) removeFile(path);
    // The next handler ends the process.
    return FALSE;
}

}  // namespace

InterruptsHeld::InterruptsHeld() {
    heldMutex.lock();
}

InterruptsHeld::~InterruptsHeld() {
    heldMutex.unlock();
}

InterruptGuard::InterruptGuard() {
    const InterruptsHeld held;
    guarded = &files_;
    ::SetConsoleCtrlHandler(&removeAll, TRUE);
}

InterruptGuard::~InterruptGuard() {
    ::SetConsoleCtrlHandler(&removeAll, FALSE);
    const InterruptsHeld held;
    guarded = nullptr;
}

}  // namespace Platform
