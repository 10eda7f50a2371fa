#include "platform/Interrupts.hpp"

namespace Platform {

void InterruptGuard::add(const std::string& path, const InterruptsHeld& /*held*/) {
    files_.insert(path);
}

void InterruptGuard::remove(const std::string& path, const InterruptsHeld& /*held*/) {
    files_.erase(path);
}

}  // namespace Platform
