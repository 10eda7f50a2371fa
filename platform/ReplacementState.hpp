#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Replace.hpp"

namespace Platform {

/// What a Replacement does, which each system does in its own way. The functions are those of
/// Replacement.
class ReplacementState {
public:
    ReplacementState() = default;
    virtual ~ReplacementState() = default;
    ReplacementState(const ReplacementState&) = delete;
    ReplacementState& operator=(const ReplacementState&) = delete;

    virtual void add(const TemporaryFile& file, const OutputTarget& target) = 0;
    virtual std::optional<Replacement::Failure> tryAll() = 0;
    virtual std::optional<Replacement::Failure> putInPlace(bool canFailLater) = 0;
    virtual std::vector<std::size_t> takeBack() = 0;
    virtual void keep() = 0;
    virtual std::vector<std::string> busyFolders() const = 0;

    /// That of this system.
    static std::unique_ptr<ReplacementState> make(InterruptGuard& guard);
};

}  // namespace Platform
