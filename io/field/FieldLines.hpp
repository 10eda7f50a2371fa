#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "io/TextLines.hpp"

namespace Io::Field {

/// The lines of a text file whose lines end with a line feed, a carriage return or both, up to the
/// end of the file. A carriage return in front of the end of a line adds no line.
class FieldLines {
public:
    explicit FieldLines(Platform::InputFile file) : lines_(std::move(file), TextEnd::File) {}

    /// Moves on to the next line, the first one at first; false when there is none.
    bool next() {
        if (rest_.empty()) {
            if (!lines_.next()) return false;
            rest_ = lines_.line();
        }
        ++number_;
        const std::size_t end = lines_.mayHaveReturns() ? rest_.find('\r') : std::string_view::npos;
        line_ = rest_.substr(0, end);
        endsWithReturn_ = end != std::string_view::npos;
        rest_ = endsWithReturn_ ? rest_.substr(end + 1) : std::string_view();
        return true;
    }

    /// The text after the current line, as far as it has been read, until `next`. Empty if the
    /// next line begins after a carriage return.
    std::string_view textAhead() const {
        return rest_.empty() ? lines_.textAhead() : std::string_view();
    }

    /// Moves on over the first `size` characters of `textAhead`, which are `count` lines that a
    /// line feed ends, to the last of them. Its characters are not kept.
    void skip(std::size_t size, std::uint64_t count) {
        lines_.skip(size, count);
        number_ += count;
    }

    /// The current line, without its end, until `next`.
    std::string_view line() const { return line_; }

    /// The number of the current line, counted from 1.
    std::uint64_t number() const { return number_; }

    /// The current line ends with a carriage return that no line feed follows.
    bool endsWithReturn() const { return endsWithReturn_; }

    /// The open file, for a caller that wants to read it once more.
    Platform::InputFile takeFile() { return lines_.takeFile(); }

    /// The lines of the file as line feeds end them, for what concerns the file as a whole.
    const TextLines& textLines() const { return lines_; }

private:
    TextLines lines_;
    std::string_view rest_;  ///< of the text up to the next line feed
    std::string_view line_;
    std::uint64_t number_ = 0;
    bool endsWithReturn_ = false;
};

}  // namespace Io::Field
