#include "io/export/EmbeddedC_AssemblerOutFile.hpp"

#include <algorithm>
#include <array>
#include <boost/algorithm/string/replace.hpp>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include "io/Host.hpp"
#include "util/Hex.hpp"

namespace Io::Export {

namespace {

std::string lowerHex(std::uint64_t number) {
    constexpr int base = 16;
    std::array<char, base> digits{};
    const char* const end = std::to_chars(digits.begin(), digits.end(), number, base).ptr;
    return "0x" + std::string(std::as_const(digits).data(), end);
}

/// One dot and then letters, digits and underscores: the regular expression [.]{1}([_a-zA-Z0-9]+).
bool isDottedName(std::string_view section) {
    constexpr std::string_view letters =
        "_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    return section.size() > 1 && section.front() == '.' &&
           section.find_first_not_of(letters, 1) == std::string_view::npos;
}

void eraseLinesWith(std::string& text, std::string_view word) {
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word)) {
        const std::size_t begin = text.rfind('\n', at) + 1;
        text.erase(begin, std::min(text.find('\n', at), text.size() - 1) + 1 - begin);
    }
}

}  // namespace

/// The text of a row of elements. It is copied as a whole and only the digits are put in: short
/// copies element by element would take most of the time.
class EmbeddedC_AssemblerOutFile::ElementRow {
public:
    static constexpr std::size_t longest = 64;

    explicit ElementRow(const EmbeddedOutputStyle& style)
        : separatorSize_(style.elementSeparator.size()),
          digits_(separatorSize_ + style.elementPrefix.size()) {
        for (std::size_t i = 0; i < longest; ++i)
            text_ += style.elementSeparator + style.elementPrefix + "00";
    }

    /// Characters of the longest row.
    std::size_t size() const { return text_.size(); }

    /// Writes at most `longest` bytes.
    ///
    /// @param isContinued  the line has elements before these
    void write(PieceWriter& out, std::span<const std::uint8_t> bytes, bool isContinued) const {
        const std::size_t skipped = isContinued ? 0 : separatorSize_;
        const std::size_t elementSize = text_.size() / longest;
        const std::size_t size = bytes.size() * elementSize - skipped;
        char* const place = out.reserve(size);
        std::memcpy(place, text_.data() + skipped, size);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            Util::writeHex(place + i * elementSize + digits_ - skipped, bytes[i]);
        out.commit(place + size);
    }

private:
    std::size_t separatorSize_;
    std::size_t digits_;  ///< place of the digits within an element
    std::string text_;
};

EmbeddedC_AssemblerOutFile::EmbeddedC_AssemblerOutFile(std::string path, EmbeddedOutputStyle style)
    : TextOutFile(std::move(path)), outputStyle_(std::move(style)) {}

void EmbeddedC_AssemblerOutFile::insert(const ImageView& image) {
    outputBytes_.append(image);
}

std::string EmbeddedC_AssemblerOutFile::filledIn(std::string text,
                                                 const std::optional<std::string>& time) const {
    using boost::algorithm::replace_all;
    replace_all(text, "@size", lowerHex(outputBytes_.size()));
    if (time)
        replace_all(text, "@time", *time);
    else
        eraseLinesWith(text, "@time");
    replace_all(text, "@elementsPerLine", std::to_string(outputStyle_.elementsPerLine));
    return text;
}

std::string EmbeddedC_AssemblerOutFile::sectionLines() const {
    const std::string& section = outputStyle_.section;
    if (section.empty()) return {};
    if (isDottedName(section)) return "\n\n#pragma asm\n\n.section \"" + section + "\"\n";
    return "\n\n#pragma section CODE=" + section + "\n\n#pragma asm\n\n";
}

void EmbeddedC_AssemblerOutFile::saveToFile() {
    const auto time = host().timeText();
    const std::string head = filledIn(outputStyle_.header, time) + sectionLines();
    const std::string foot = filledIn(outputStyle_.footer, time);
    const ElementRow row(outputStyle_);
    PieceWriter out = startOutput(row.size());
    out.append(head);
    writeDataLines(out, row);
    out.append(foot);
    out.finish();
}

void EmbeddedC_AssemblerOutFile::writeDataLines(PieceWriter& out, const ElementRow& row) const {
    const std::size_t perLine = outputStyle_.elementsPerLine;
    std::size_t inLine = 0;
    outputBytes_.forBytes([&](std::span<const std::uint8_t> bytes) {
        while (!bytes.empty()) {
            if (inLine == 0) out.append(outputStyle_.linePrefix);
            std::size_t count = std::min(bytes.size(), ElementRow::longest);
            if (perLine != 0) count = std::min(count, perLine - inLine);
            row.write(out, bytes.first(count), inLine != 0);
            bytes = bytes.subspan(count);
            inLine += count;
            if (inLine != perLine) continue;
            out.append("\n");
            inLine = 0;
        }
    });
    if (inLine != 0) out.append("\n");
}

}  // namespace Io::Export
