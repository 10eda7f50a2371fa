#include "lsp/MessageReader.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace Lsp {

namespace {

constexpr std::string_view lengthField = "Content-Length:";
constexpr std::string_view headerEnd = "\r\n\r\n";

/// Bytes of a header.
constexpr std::size_t longestHeader = 4096;

/// The texts are equal, the case of letters ignored.
bool isSame(std::string_view one, std::string_view other) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return std::ranges::equal(one, other, {}, lower, lower);
}

/// Where the next field with a length begins in the text, or might begin at its end.
std::size_t nextField(std::string_view text, std::size_t from) {
    for (std::size_t at = from; at < text.size(); ++at) {
        const std::string_view rest = text.substr(at, lengthField.size());
        if (isSame(rest, lengthField.substr(0, rest.size()))) return at;
    }
    return text.size();
}

}  // namespace

MessageReader::Outcome MessageReader::next(std::string& message) {
    if (toSkip_ != 0) {
        const std::size_t here = std::min(toSkip_, buffer_.size());
        drop(here);
        toSkip_ -= here;
        return toSkip_ == 0 ? Outcome::TooLong : Outcome::Nothing;
    }
    if (length_ == none && !readHeader()) return Outcome::Nothing;
    // What was skipped is reported before the message that follows it.
    if (hasSkipped_) {
        hasSkipped_ = false;
        return Outcome::Garbage;
    }
    if (length_ > longest) {
        toSkip_ = length_;
        length_ = none;
        return next(message);
    }
    if (buffer_.size() < length_) return Outcome::Nothing;
    message.assign(buffer_, 0, length_);
    drop(length_);
    length_ = none;
    return Outcome::Message;
}

/// Finds the header that the next message begins with. False if it has not arrived yet.
bool MessageReader::readHeader() {
    for (;;) {
        const std::size_t end = buffer_.find(headerEnd);
        const std::string_view header = std::string_view(buffer_).substr(0, end);
        const bool isWhole = end != std::string::npos;
        const std::size_t length = isWhole ? lengthIn(header) : none;
        if (length != none) {
            // A header that begins with something else has garbage in front of it.
            const std::size_t begin = nextField(header, 0);
            const bool isClean = begin == 0 || header.substr(0, begin).ends_with("\r\n");
            hasSkipped_ = hasSkipped_ || isSkipping_ || !isClean;
            isSkipping_ = false;
            drop(end + headerEnd.size());
            length_ = length;
            return true;
        }
        if (!isWhole && header.size() <= longestHeader) return false;
        // No header begins here: the next one may begin behind the first byte.
        const std::size_t stop = isWhole ? end + headerEnd.size() : buffer_.size();
        drop(isWhole ? stop : std::max<std::size_t>(nextField(buffer_, 1), 1));
        isSkipping_ = hasSkipped_ = true;
        if (buffer_.empty()) return false;
    }
}

/// The length that the last field of a header with one says; `none` without a number.
std::size_t MessageReader::lengthIn(std::string_view header) {
    std::size_t length = none;
    for (std::size_t at = nextField(header, 0); at < header.size();
         at = nextField(header, at + 1)) {
        std::string_view value = header.substr(at);
        if (value.size() < lengthField.size()) break;
        value.remove_prefix(lengthField.size());
        value = value.substr(0, value.find("\r\n"));
        value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
        std::size_t number = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), number);
        const bool isNumber = end == value.data() + value.size() && end != value.data();
        if (isNumber && error == std::errc() && number < none) length = number;
    }
    return length;
}

void MessageReader::drop(std::size_t count) {
    buffer_.erase(0, count);
}

}  // namespace Lsp
