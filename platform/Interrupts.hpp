#pragma once

#include <array>
#include <set>
#include <string>

/// Interrupts of a process: SIGHUP, SIGINT, SIGQUIT, SIGTERM and SIGXCPU; on Windows Ctrl+C,
/// Ctrl+Break, a closed console and the end of the session.
namespace Platform {

/// Lets interrupts wait while it lives, in this thread and in those that it starts meanwhile. On
/// Windows, where a thread of its own takes them, in the whole process.
class InterruptsHeld {
public:
    InterruptsHeld();
    ~InterruptsHeld();
    InterruptsHeld(const InterruptsHeld&) = delete;
    InterruptsHeld& operator=(const InterruptsHeld&) = delete;

private:
    /// The signals that waited before; no memory is needed for it. Of Linux alone.
    std::array<unsigned long, 16> before_{};
};

/// Removes the named files when the process is interrupted, and then lets the interrupt end it. One
/// at a time may exist in a process.
///
/// A thread that is started while one exists must be started under `InterruptsHeld`, so that the
/// thread that names files takes the interrupts.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    void add(const std::string& path);
    void remove(const std::string& path);

private:
    std::set<std::string> files_;
};

}  // namespace Platform
