#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>

#include "platform/Interrupts.hpp"

namespace Platform {

namespace {

constexpr std::array interrupts{SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU};

/// The files to remove; changed only while the interrupts are held.
const std::set<std::string>* guarded = nullptr;

void removeAll(int signal) {
    if (guarded != nullptr)
        for (const std::string& path : *guarded) ::unlink(path.c_str());
    std::signal(signal, SIG_DFL);
    ::raise(signal);
}

}  // namespace

InterruptsHeld::InterruptsHeld() {
    static_assert(sizeof(sigset_t) <= sizeof(before_));
    sigset_t held;
    sigset_t before;
    ::sigemptyset(&held);
    for (const int signal : interrupts) ::sigaddset(&held, signal);
    ::pthread_sigmask(SIG_BLOCK, &held, &before);
    std::memcpy(before_.data(), &before, sizeof(before));
}

InterruptsHeld::~InterruptsHeld() {
    sigset_t before;
    std::memcpy(&before, before_.data(), sizeof(before));
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

InterruptGuard::InterruptGuard() {
    const InterruptsHeld held;
    guarded = &files_;
    for (const int signal : interrupts) {
        struct sigaction found {};
        struct sigaction handled {};
        handled.sa_handler = &removeAll;
        // A signal that is ignored, as by nohup, stays so.
        if (::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == SIG_DFL)
            ::sigaction(signal, &handled, nullptr);
    }
}

InterruptGuard::~InterruptGuard() {
    const InterruptsHeld held;
    for (const int signal : interrupts) {
        struct sigaction found {};
        if (::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == &removeAll)
            std::signal(signal, SIG_DFL);
    }
    guarded = nullptr;
}

}  // namespace Platform
