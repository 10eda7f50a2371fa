#include "io/InFile.hpp"

#include <utility>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "io/TextLines.hpp"

namespace Io {

namespace {

/// A file that could not be read to its end counts with what was read. One that changed meanwhile
/// would count as a mixture of what it was and what it became.
void judge(Platform::Reading reading, const std::string& path) {
    if (reading == Platform::Reading::Changed) throw bad_open();
    if (reading == Platform::Reading::Failed) Facts::report(Facts::FileReadIncomplete{path});
}

}  // namespace

Platform::InputFile openInput(const std::string& path) {
    auto file = host().openInput(path);
    if (!file) throw bad_open();
    return std::move(*file);
}

void TextInFile::close(const TextLines& lines) const {
    judge(lines.reading(), fileName_);
}

BinaryInFile::BinaryInFile(const std::string& path, Platform::InputFile file)
    : File(path), file_(std::move(file)) {
    // Of an empty file nothing is read later.
    if (file_.size() == 0) judge(file_.reading(), fileName_);
}

std::size_t BinaryInFile::read(std::uint64_t start, std::span<std::uint8_t> out) const {
    const std::size_t got = file_.readAt(start, {reinterpret_cast<char*>(out.data()), out.size()});
    judge(file_.reading(), fileName_);
    return got;
}

}  // namespace Io
