#include "io/File.hpp"

#include <algorithm>
#include <iostream>
#include <utility>

namespace Io {

std::string_view TextLines::back() const {
    std::string_view text = rest_;
    if (text.back() == '\n') text.remove_suffix(1);
    // No line feed at all is npos, and the line begins behind it, at 0.
    return text.substr(text.rfind('\n') + 1);
}

std::string_view TextLines::takeFirst() {
    const std::size_t length = std::min(rest_.find('\n'), rest_.size());
    const std::string_view line = rest_.substr(0, length);
    rest_.remove_prefix(std::min(length + 1, rest_.size()));
    return line;
}

Platform::FileContents readWhole(const std::string& path) {
    auto contents = Platform::readFile(path);
    if (!contents) throw bad_open();
    return std::move(*contents);
}

TextInFile::TextInFile(const std::string& path) : TextInFile(path, readWhole(path)) {}

TextInFile::TextInFile(const std::string& path, Platform::FileContents contents)
    : File(path), contents_(std::move(contents)) {
    Platform::translateText(contents_);
}

BinaryInFile::BinaryInFile(const std::string& path) : BinaryInFile(path, readWhole(path)) {}

BinaryInFile::BinaryInFile(const std::string& path, Platform::FileContents contents)
    : File(path), contents_(std::move(contents)) {}

void OutFile::write(const Source& source) const {
    auto file = Platform::OutputFile::create(fileName, mode_);
    if (!file) throw bad_open();
    bool isComplete = true;
    source([&](std::string_view piece) { isComplete = isComplete && file->write(piece); });
    if (!isComplete)
        std::cerr << "Warning: File " << fileName << " could not be written completely !"
                  << std::endl;
}

}  // namespace Io
