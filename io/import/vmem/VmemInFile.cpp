#include "io/import/vmem/VmemInFile.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "io/InFile.hpp"
#include "io/TextLines.hpp"
#include "io/import/Malformed.hpp"

namespace Io::Import {

namespace {

using Facts::FormatFault;

constexpr std::string_view blanks = " \t\r\n\v\f";
constexpr std::string_view tokenEnds = " \t\r\n\v\f/";
constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;

/// The value of a hexadecimal digit, or nothing.
constexpr std::optional<std::uint8_t> digitOf(char c) {
    if (c >= '0' && c <= '9') return static_cast<std::uint8_t>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    if (lower >= 'a' && lower <= 'f') return static_cast<std::uint8_t>(lower - 'a' + 10);
    return std::nullopt;
}

constexpr bool isUnknownDigit(char c) {
    return c == 'x' || c == 'X' || c == 'z' || c == 'Z' || c == '?';
}

/// Removes the text up to white space or a comment from the front of `text`, and returns it.
std::string_view takeToken(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of(tokenEnds, 1), text.size());
    const std::string_view token = text.substr(0, end);
    text.remove_prefix(end);
    return token;
}

/// Takes the lines of a file one after the other.
class Parser final : public TextInFile {
public:
    Parser(const std::string& path, Platform::InputFile file, RecordVisitor* visitor)
        : TextInFile(path),
          lines_(std::move(file)),
          visitor_(visitor),
          data_(Facts::InputFormat::Vmem, static_cast<std::size_t>(lines_.fileSize() / 2 + 1)) {}

    LinedData parse() {
        while (lines_.next()) take(lines_.line());
        close(lines_);
        if (commentLine_ != 0)
            refuse(Facts::InputFormat::Vmem, fileName_, FormatFault::CommentOpen, commentLine_);
        if (data_.bytes().empty())
            refuse(Facts::InputFormat::Vmem, fileName_, FormatFault::NothingToLoad, 0);
        data_.bytes().finish();
        return std::move(data_);
    }

private:
    [[noreturn]] void refuseLine(FormatFault fault, std::uint64_t number = 0) const {
        refuse(Facts::InputFormat::Vmem, fileName_, fault, lines_.number(), number);
    }

    void take(std::string_view line) {
        if (lines_.number() == 1 && line.starts_with(utf8Mark)) line.remove_prefix(utf8Mark.size());
        while (moveToToken(line)) {
            const std::string_view token = takeToken(line);
            if (token.front() != '@') {
                takeWord(token);
                continue;
            }
            storeBytes();
            takeAddress(token.substr(1));
        }
        storeBytes();
    }

    /// Removes white space and comments from the front of `line`; false if nothing follows them.
    bool moveToToken(std::string_view& line) {
        for (;;) {
            if (commentLine_ != 0) {
                const std::size_t end = line.find("*/");
                if (end == std::string_view::npos) return false;
                line.remove_prefix(end + 2);
                commentLine_ = 0;
            }
            line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
            if (line.empty() || line.starts_with("//")) return false;
            if (!line.starts_with("/*")) return true;
            line.remove_prefix(2);
            commentLine_ = lines_.number();
        }
    }

    void takeAddress(std::string_view digits) {
        std::uint64_t address = 0;
        const char* const end = digits.data() + digits.size();
        constexpr int base = 16;
        const auto [stop, error] = std::from_chars(digits.data(), end, address, base);
        const bool isTooHigh = error == std::errc::result_out_of_range || address > addressSpaceEnd;
        if (stop != end || (error != std::errc() && !isTooHigh))
            refuseLine(FormatFault::LineUnknown);
        if (isTooHigh) refuseLine(FormatFault::AddressTooHigh, address);
        word_ = address;
    }

    void takeWord(std::string_view token) {
        if (token.front() == '_') refuseLine(FormatFault::LineUnknown);
        std::size_t digits = 0;
        std::uint8_t high = 0;
        for (const char c : token) {
            if (c == '_') continue;
            if (isUnknownDigit(c)) refuseLine(FormatFault::BitsUnknown);
            const auto digit = digitOf(c);
            if (!digit) refuseLine(FormatFault::LineUnknown);
            if (digits++ % 2 == 0)
                high = *digit;
            else
                bytes_.push_back(static_cast<std::uint8_t>(high << 4U | *digit));
        }
        if (digits % 2 != 0) refuseLine(FormatFault::WordUneven, digits);
        if (wordDigits_ == 0) wordDigits_ = digits;
        if (digits != wordDigits_) refuseLine(FormatFault::WordsDiffer, digits);
    }

    /// Keeps the words that the line has had so far for the addresses from the current one on.
    void storeBytes() {
        if (bytes_.empty()) return;
        const std::uint64_t size = wordDigits_ / 2;
        // Both factors have less than 33 and 64 bits, and a word is no longer than the file.
        if (word_ > addressSpaceEnd / size || bytes_.size() > addressSpaceEnd - word_ * size)
            refuseLine(FormatFault::AddressTooHigh, word_ * size);
        data_.append(word_ * size, bytes_, lines_.number());
        if (visitor_ != nullptr)
            visitor_->visit({lines_.number(), 1, 0, true, word_ * size, bytes_.size()});
        word_ += bytes_.size() / size;
        bytes_.clear();
    }

    TextLines lines_;
    RecordVisitor* visitor_;
    LinedData data_;
    std::uint64_t word_ = 0;           ///< address of the next one, in words
    std::size_t wordDigits_ = 0;       ///< 0 before the first one
    std::uint64_t commentLine_ = 0;    ///< in which an open comment begins, or 0
    std::vector<std::uint8_t> bytes_;  ///< of the current line, from the last address on
};

/// The text after white space and comments; nothing after a comment without its end.
std::string_view afterComments(std::string_view text) {
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
        const bool isLine = text.starts_with("//");
        if (!isLine && !text.starts_with("/*")) return text;
        const std::size_t end = isLine ? text.find('\n') : text.find("*/", 2);
        if (end == std::string_view::npos) return {};
        text.remove_prefix(isLine ? end : end + 2);
    }
}

bool areDigits(std::string_view token) {
    return !token.empty() && std::ranges::all_of(token, [](char c) {
        return digitOf(c).has_value() || isUnknownDigit(c) || c == '_';
    });
}

}  // namespace

VmemInFile::VmemInFile(LinedData data)
    : AddressedData(std::move(data.bytes()), std::nullopt, data.takeSources()) {}

VmemInFile::VmemInFile(const std::string& path) : VmemInFile(path, openInput(path)) {}

VmemInFile::VmemInFile(const std::string& path, Platform::InputFile file, RecordVisitor* visitor)
    : VmemInFile(Parser(path, std::move(file), visitor).parse()) {}

bool VmemInFile::looksLike(std::string_view head) {
    if (head.starts_with(utf8Mark)) head.remove_prefix(utf8Mark.size());
    head = afterComments(head);
    if (!head.starts_with('@')) return false;
    const std::string_view address = takeToken(head).substr(1);
    if (address.empty() ||
        !std::ranges::all_of(address, [](char c) { return digitOf(c).has_value(); }))
        return false;
    head = afterComments(head);
    return !head.empty() && areDigits(takeToken(head));
}

}  // namespace Io::Import
