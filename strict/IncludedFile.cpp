#include "strict/IncludedFile.hpp"

#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "InstalledFolders.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/Replace.hpp"
#include "strict/files/WholeFile.hpp"

namespace Strict {

namespace {

ScriptFile failed(Kind kind, std::string text, std::string hint = {}) {
    return {
        std::nullopt, std::nullopt, false, {kind, std::move(text), std::nullopt, std::move(hint)}};
}

/// Why nothing is at the path; no error if something is.
std::error_code missingAt(const std::string& path) {
    if (Platform::isRegularFile(path)) return {};
    const Platform::OutputTarget target = Platform::outputTarget(path);
    if (target.kind == Platform::TargetKind::Missing)
        return std::make_error_code(std::errc::no_such_file_or_directory);
    const bool isMissing = target.error == std::errc::no_such_file_or_directory ||
                           target.error == std::errc::not_a_directory;
    return isMissing ? target.error : std::error_code();
}

/// The bytes of a file, as a text.
std::optional<std::string> textOf(const Platform::InputFile& file) {
    const auto size = static_cast<std::size_t>(file.size());
    Platform::FileContents contents{Platform::PageBlock(size), size};
    const std::span<char> bytes(reinterpret_cast<char*>(contents.block.data()), size);
    contents.size = file.readAt(0, bytes);
    if (file.reading() != Platform::Reading::Complete) return std::nullopt;
    Platform::translateText(contents);
    return std::string(contents.text());
}

}  // namespace

void dropByteOrderMark(std::string& text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.erase(0, mark.size());
}

ScriptFile readIncluded(const std::string& path, RunFiles& files) {
    if (const std::error_code reason = missingAt(path)) {
        ScriptFile file = failed(Kind::CannotOpen, "cannot open " + path + ": " + reason.message());
        file.isMissing = true;
        return file;
    }
    if (const auto collision = files.name(path, FileRole::IncludedFile))
        return failed(Kind::SameFile, wordsFor(*collision, path, FileRole::IncludedFile),
                      "one would overwrite the other");
    const auto opened = files.openInput(path);
    if (!opened)
        return failed(Kind::CannotOpen, "cannot open " + path + ": " + files.reasonFor(path));
    if (opened->size() > ScriptAssembly::longestText)
        return failed(Kind::Syntax, path + " is longer than 64 MiB");
    auto text = textOf(*opened);
    if (!text) return failed(Kind::ShortRead, path + " could not be read completely");
    dropByteOrderMark(*text);
    if (const char* const encoding = wideEncodingOf(*text))
        return failed(Kind::Syntax, path + " is in " + encoding, "save it as UTF-8");
    const auto state = opened->state();
    return {std::move(text), state ? std::optional(state->identity) : std::nullopt, false, {}};
}

std::vector<std::string> recipeFolders() {
    std::vector<std::string> folders{installedRecipes};
    const std::string beside = Platform::besideProgram(recipesBesideProgram);
    if (!beside.empty() && beside != folders.front()) folders.insert(folders.begin(), beside);
    return folders;
}

}  // namespace Strict
