#include "platform/Files.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/SecretFile.hpp"

namespace Platform {

InputFile::InputFile(InputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      state_(std::exchange(other.state_, {})),
      stream_(std::move(other.stream_)),
      isStream_(other.isStream_),
      refusesEarlyEnd_(other.refusesEarlyEnd_),
      hasFailed_(other.hasFailed_) {}

InputFile InputFile::ofMemory(PageBlock contents, std::size_t size) {
    InputFile file(-1);
    file.stream_ = std::move(contents);
    file.state_.size = size;
    file.isStream_ = true;
    return file;
}

std::optional<FileState> InputFile::state() const {
    if (isStream_) return std::nullopt;
    return state_;
}

void InputFile::wipe() {
    Platform::wipe({stream_.data(), stream_.size()});
}

std::size_t InputFile::copyOfStream(std::uint64_t offset, std::span<char> out) const {
    if (offset >= state_.size || out.empty()) return 0;
    const auto size =
        static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), state_.size - offset));
    std::memcpy(out.data(), stream_.data() + offset, size);
    return size;
}

void InputFile::makeRoom(std::size_t size) {
    if (stream_.size() - state_.size >= size) return;
    // Twice the size each time, so that the copies cost linear time.
    PageBlock larger(std::max(2 * stream_.size(), size));
    if (state_.size != 0) std::memcpy(larger.data(), stream_.data(), state_.size);
    // It may be a key. A larger block goes back to the system, which clears it.
    constexpr std::size_t largestOfHeap = std::size_t{1} << 20U;
    if (stream_.size() <= largestOfHeap) wipe();
    stream_ = std::move(larger);
}

namespace {

std::optional<FileContents> contentsOf(const std::optional<InputFile>& file) {
    if (!file) return std::nullopt;
    FileContents contents{PageBlock(static_cast<std::size_t>(file->size())), 0};
    contents.size =
        file->readAt(0, {reinterpret_cast<char*>(contents.block.data()), contents.block.size()});
    contents.reading = file->reading();
    return contents;
}

}  // namespace

std::optional<FileContents> readFile(const std::string& path) {
    return contentsOf(InputFile::open(path));
}

std::optional<FileContents> readStandardInput() {
    return contentsOf(InputFile::openStandardInput());
}

std::string_view FileContents::text() const {
    return {reinterpret_cast<const char*>(block.data()), size};
}

void translateText(FileContents& contents) {
    constexpr int endOfText = 0x1A;
    char* const begin = reinterpret_cast<char*>(contents.block.data());
    if (contents.size == 0) return;
    if (const void* const end = std::memchr(begin, endOfText, contents.size))
        contents.size = static_cast<std::size_t>(static_cast<const char*>(end) - begin);
    const char* const end = begin + contents.size;
    const auto nextReturn = [end](const char* from) {
        const auto rest = static_cast<std::size_t>(end - from);
        const void* const found = rest == 0 ? nullptr : std::memchr(from, '\r', rest);
        return found == nullptr ? end : static_cast<const char*>(found);
    };
    // The text closes up in place, one stretch between two dropped characters at a time.
    const char* stretch = begin;
    char* kept = begin;
    for (const char* found = nextReturn(begin);; found = nextReturn(found + 1)) {
        const bool isPair = end - found > 1 && found[1] == '\n';
        if (found != end && !isPair) continue;
        const auto length = static_cast<std::size_t>(found - stretch);
        if (kept != stretch) std::memmove(kept, stretch, length);
        kept += length;
        if (found == end) break;
        stretch = found + 1;
    }
    contents.size = static_cast<std::size_t>(kept - begin);
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), mode_(other.mode_) {}

}  // namespace Platform
