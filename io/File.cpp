#include "io/File.hpp"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <utility>

namespace Io {

namespace {

/// Small enough to stay in the cache of a core while its lines are parsed.
constexpr std::size_t pieceSize = std::size_t{1} << 17U;

Platform::InputFile opened(const std::string& path) {
    auto file = Platform::InputFile::open(path);
    if (!file) throw bad_open();
    return std::move(*file);
}

Platform::OutputFile created(const std::string& path, Platform::FileMode mode) {
    auto file = Platform::OutputFile::create(path, mode);
    if (!file) throw bad_open();
    return std::move(*file);
}

/// A file that could not be read to its end counts with what was read. One that changed meanwhile
/// would count as a mixture of what it was and what it became.
void judge(Platform::Reading reading, const std::string& path) {
    if (reading == Platform::Reading::Changed) throw bad_open();
    if (reading == Platform::Reading::Failed)
        std::cerr << "Warning: File " << path << " could not be read completely !" << std::endl;
}

}  // namespace

TextLines::TextLines(const std::string& path) : file_(opened(path)) {}

bool TextLines::next() {
    lineBegin_ = next_;
    line_ = {};
    const bool hasFeed = findLineEnd();
    if (next_ == lineBegin_) return false;
    std::size_t length = next_ - lineBegin_;
    const char* const first = reinterpret_cast<const char*>(piece_.data()) + lineBegin_;
    if (hasFeed) {
        --length;
        if (length != 0 && first[length - 1] == '\r') --length;
    }
    line_ = {first, length};
    if (isLast()) {
        lastHead_ = line_.substr(0, headLength);
        isLastHeadKnown_ = true;
    }
    return true;
}

/// Sets `next_` behind the line that begins at `lineBegin_`. False if it has no line feed. Reads
/// on until it is known whether anything follows.
bool TextLines::findLineEnd() {
    std::size_t searched = 0;
    for (;;) {
        const std::size_t from = lineBegin_ + searched;
        const auto* const text = reinterpret_cast<const char*>(piece_.data());
        const void* const feed =
            from == end_ ? nullptr : std::memchr(text + from, '\n', end_ - from);
        next_ = feed == nullptr
                    ? end_
                    : static_cast<std::size_t>(static_cast<const char*>(feed) - text) + 1;
        if (isTextRead_ || next_ != end_) return feed != nullptr;
        searched = next_ - lineBegin_ - (feed == nullptr ? 0 : 1);
        readOn();
    }
}

/// Moves the line at hand to the start of the piece and reads on behind what there is of it.
void TextLines::readOn() {
    constexpr char endOfText = 0x1A;
    const std::size_t kept = end_ - lineBegin_;
    const std::uint64_t fileRest = fileSize() - pieceStart_ - end_;
    if (piece_.size() - kept < std::min<std::uint64_t>(pieceSize / 2, fileRest)) {
        // A line that outgrows the piece at least doubles it, so that its length costs linear time.
        const std::uint64_t room = std::min<std::uint64_t>(std::max(kept, pieceSize), fileRest);
        Platform::PageBlock larger(kept + static_cast<std::size_t>(room));
        if (kept != 0) std::memcpy(larger.data(), piece_.data() + lineBegin_, kept);
        piece_ = std::move(larger);
    } else if (kept != 0) {
        std::memmove(piece_.data(), piece_.data() + lineBegin_, kept);
    }
    pieceStart_ += lineBegin_;
    lineBegin_ = 0;
    end_ = kept;
    char* const out = reinterpret_cast<char*>(piece_.data()) + kept;
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(piece_.size() - kept, fileRest));
    const std::size_t got = file_.readAt(pieceStart_ + kept, {out, wanted});
    const void* const stop = got == 0 ? nullptr : std::memchr(out, endOfText, got);
    end_ += stop == nullptr ? got : static_cast<std::size_t>(static_cast<const char*>(stop) - out);
    isTextRead_ = stop != nullptr || got == fileRest || got < wanted;
}

void TextLines::restart() {
    line_ = {};
    lineBegin_ = 0;
    next_ = 0;
    // A text of which nothing has left the piece need not be read again.
    if (pieceStart_ == 0) return;
    pieceStart_ = 0;
    end_ = 0;
    isTextRead_ = false;
}

const std::optional<std::string>& TextLines::lastHead() {
    if (!isLastHeadKnown_) {
        restart();
        while (next()) continue;
        isLastHeadKnown_ = true;
    }
    return lastHead_;
}

TextInFile::TextInFile(const std::string& path) : TextInFile(path, TextLines(path)) {}

TextInFile::TextInFile(const std::string& path, TextLines lines)
    : File(path), lines_(std::move(lines)) {}

void TextInFile::close() {
    judge(lines_->reading(), fileName);
    lines_.reset();
}

BinaryInFile::BinaryInFile(const std::string& path) : BinaryInFile(path, opened(path)) {}

BinaryInFile::BinaryInFile(const std::string& path, Platform::InputFile file)
    : File(path), file_(std::move(file)) {}

std::size_t BinaryInFile::read(std::uint64_t start, std::span<std::uint8_t> out) const {
    const std::size_t got = file_.readAt(start, {reinterpret_cast<char*>(out.data()), out.size()});
    judge(file_.reading(), fileName);
    return got;
}

void OutFile::write(const Source& source) const {
    std::optional<Platform::OutputFile> file;
    bool isComplete = true;
    const auto take = [&](std::string_view piece) {
        if (!file) file.emplace(created(fileName, mode_));
        isComplete = isComplete && file->write(piece);
    };
    source(take);
    take({});
    isComplete = file->close() && isComplete;
    if (!isComplete)
        std::cerr << "Warning: File " << fileName << " could not be written completely !"
                  << std::endl;
}

}  // namespace Io
