#include "io/TextLines.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "io/InFile.hpp"
#include "platform/Bytes.hpp"

namespace Io {

namespace {

/// Bytes: small enough to stay in the cache of a core while its lines are parsed.
constexpr std::size_t textAtOnce = std::size_t{1} << 17U;

}  // namespace

TextLines::TextLines(const std::string& path) : TextLines(openInput(path)) {}

bool TextLines::next() {
    lineBegin_ = next_;
    line_ = {};
    const bool hasFeed = findLineEnd();
    if (next_ == lineBegin_) return false;
    ++number_;
    std::size_t length = next_ - lineBegin_;
    const char* const first = reinterpret_cast<const char*>(piece_.data()) + lineBegin_;
    if (hasFeed) {
        --length;
        if (length != 0 && first[length - 1] == '\r') --length;
    }
    line_ = {first, length};
    return true;
}

/// Sets `next_` one past the line that begins at `lineBegin_`. False if it has no line feed. Reads
/// on until it is known whether anything follows.
bool TextLines::findLineEnd() {
    std::size_t searched = 0;
    for (;;) {
        const std::size_t from = lineBegin_ + searched;
        const auto* const text = reinterpret_cast<const char*>(piece_.data());
        const char* const feed = Platform::findByte({text + from, end_ - from}, '\n');
        next_ = feed == nullptr ? end_ : static_cast<std::size_t>(feed - text) + 1;
        if (isTextRead_ || next_ != end_) return feed != nullptr;
        searched = next_ - lineBegin_ - (feed == nullptr ? 0 : 1);
        readOn();
    }
}

/// Moves what there is of the current line to the start of the piece and reads on after it.
void TextLines::readOn() {
    constexpr char endOfText = 0x1A;
    const std::size_t kept = end_ - lineBegin_;
    const std::uint64_t fileRest = fileSize() - pieceStart_ - end_;
    if (piece_.size() - kept < std::min<std::uint64_t>(textAtOnce / 2, fileRest)) {
        // A line that outgrows the piece at least doubles it, so that its length costs linear time.
        const std::uint64_t room = std::min<std::uint64_t>(std::max(kept, textAtOnce), fileRest);
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
    const char* const stop = endsAtMark_ ? Platform::findByte({out, got}, endOfText) : nullptr;
    if (!endsAtMark_ && !mayHaveReturns_)
        mayHaveReturns_ = Platform::findByte({out, got}, '\r') != nullptr;
    end_ += stop == nullptr ? got : static_cast<std::size_t>(stop - out);
    isTextRead_ = stop != nullptr || got == fileRest || got < wanted;
}

void TextLines::moveTo(std::uint64_t position, std::uint64_t number) {
    line_ = {};
    number_ = number - 1;
    if (position >= pieceStart_ && position - pieceStart_ <= end_) {
        next_ = static_cast<std::size_t>(position - pieceStart_);
        return;
    }
    pieceStart_ = position;
    next_ = 0;
    end_ = 0;
    isTextRead_ = false;
}

}  // namespace Io
