#include <unistd.h>

#include <array>
#include <csignal>

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

struct InterruptsHeld::Before {
    sigset_t mask;
};

InterruptsHeld::InterruptsHeld() : before_(std::make_unique<Before>()) {
    sigset_t held;
    ::sigemptyset(&held);
    for (const int signal : interrupts) ::sigaddset(&held, signal);
    ::pthread_sigmask(SIG_BLOCK, &held, &before_->mask);
}

InterruptsHeld::~InterruptsHeld() {
    ::pthread_sigmask(SIG_SETMASK, &before_->mask, nullptr);
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

void InterruptGuard::add(const std::string& path) {
    const InterruptsHeld held;
    files_.insert(path);
}

void InterruptGuard::remove(const std::string& path) {
    const InterruptsHeld held;
    files_.erase(path);
}

}  // namespace Platform
