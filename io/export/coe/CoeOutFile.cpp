#include "io/export/coe/CoeOutFile.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "io/export/WordText.hpp"

namespace Io::Export {

namespace {

/// Puts bytes together to words, which it writes with a separator between them.
class WordLines {
public:
    WordLines(PieceWriter& out, const WordStyle& style) : out_(&out), style_(style) {}

    void take(std::uint8_t byte) {
        word_[filled_++] = byte;
        if (filled_ == style_.wordBytes) write();
    }

    /// Writes an incomplete last word.
    void finish() {
        if (filled_ == 0) return;
        std::ranges::fill(std::span(word_).subspan(filled_), std::uint8_t{0});
        write();
    }

private:
    void write() {
        constexpr std::string_view separator = ",\n";
        char* const place = out_->reserve(separator.size() + 3 * word_.size());
        char* const start = isFirst_ ? place : std::ranges::copy(separator, place).out;
        isFirst_ = false;
        // Without the blank after the word.
        out_->commit(writeWords(start, std::span(word_).first(style_.wordBytes), style_) - 1);
        filled_ = 0;
    }

    PieceWriter* out_;
    WordStyle style_;
    std::array<std::uint8_t, sizeof(std::uint64_t)> word_{};
    std::size_t filled_ = 0;
    bool isFirst_ = true;
};

}  // namespace

void CoeOutFile::saveToFile() {
    PieceWriter out = startOutput();
    out.append("memory_initialization_radix=16;\nmemory_initialization_vector=\n");
    WordLines lines(out, style_);
    constexpr std::size_t pieceSize = 4096;
    for (const ImageView& image : images_)
        forEffectiveBytes(image.elements, pieceSize, [&](std::span<const std::uint8_t> bytes) {
            for (const std::uint8_t byte : bytes) lines.take(byte);
        });
    lines.finish();
    out.append(";\n");
    out.finish();
}

}  // namespace Io::Export
