#include "platform/Replace.hpp"

#include <algorithm>
#include <cerrno>

#include "platform/Paths.hpp"
#include "platform/ReplacementState.hpp"

namespace Platform {

namespace {

/// The name of a file, cut so that there is room for what is added to it. No character of UTF-8 is
/// cut in two.
std::string_view shortened(std::string_view name) {
    constexpr std::size_t longestName = 200;
    constexpr unsigned mask = 0xC0;
    constexpr unsigned continuation = 0x80;
    std::size_t size = std::min(name.size(), longestName);
    while (size != 0 && size < name.size() &&
           (static_cast<unsigned char>(name[size]) & mask) == continuation)
        --size;
    return name.substr(0, size);
}

}  // namespace

std::optional<OutputFile> createTemporary(const OutputTarget& target, InterruptGuard& guard,
                                          unsigned& number, TemporaryFile& file,
                                          std::error_code& error) {
    const std::size_t name = fileNameStart(target.path);
    std::string start = target.path.substr(0, name) + ".";
    start += shortened(std::string_view(target.path).substr(name));
    start += ".tessaron-" + std::to_string(processNumber()) + "-";
    // The target may be one that others must not read.
    const bool isReplaced = target.kind == TargetKind::Regular;
    // A killed run may have left a file of this name: process numbers come again.
    constexpr unsigned mostTries = 10'000;
    for (unsigned i = 0; i < mostTries; ++i) {
        file.path = start + std::to_string(number++) + ".tmp";
        // The guard must know the file when an interrupt comes, and must not remove a file of that
        // name that somebody else has made.
        const InterruptsHeld held;
        guard.add(file.path, held);
        clearLastError();
        auto created = OutputFile::createNew(file.path, isReplaced);
        error = created ? std::error_code() : lastError();
        if (created && isReplaced) error = created->takeAttributesOf(target.path);
        if (created && !error) {
            file.identity = created->identity();
            return created;
        }
        if (created) removeFile(file.path);
        guard.remove(file.path, held);
        if (error != std::errc::file_exists) return std::nullopt;
    }
    return std::nullopt;
}

Replacement::Replacement(InterruptGuard& guard) : state_(ReplacementState::make(guard)) {}

Replacement::~Replacement() {
    state_->takeBack();
}

void Replacement::add(const TemporaryFile& file, const OutputTarget& target) {
    state_->add(file, target);
}

std::optional<Replacement::Failure> Replacement::tryAll() {
    return state_->tryAll();
}

std::optional<Replacement::Failure> Replacement::putInPlace(bool canFailLater) {
    return state_->putInPlace(canFailLater);
}

std::vector<std::size_t> Replacement::takeBack() {
    return state_->takeBack();
}

void Replacement::keep() {
    state_->keep();
}

std::vector<std::string> Replacement::busyFolders() const {
    return state_->busyFolders();
}

std::error_code lastError() {
    return {errno, std::generic_category()};
}

void clearLastError() {
    errno = 0;
}

}  // namespace Platform
