#include "strict/files/WholeFile.hpp"

#include <system_error>
#include <utility>

#include "strict/diagnostics/FactWords.hpp"

namespace Strict {

namespace {

std::string listOf(const std::vector<std::string>& paths) {
    std::string names;
    for (const std::string& path : paths) names += (names.empty() ? "" : ", ") + path;
    return names;
}

void reportUnwritten(const std::string& path, const std::string& reason, DiagnosticSink& sink) {
    sink.take({Kind::CannotWrite, "cannot write " + path + ": " + reason, std::nullopt,
               adviceOnUnwritten(reason)});
}

/// The contents if they are whole, or nothing after a diagnostic.
///
/// @param name  of the file, for people
std::optional<Platform::FileContents> whole(std::optional<Platform::FileContents> contents,
                                            const std::string& name, const std::string& path,
                                            DiagnosticSink& sink) {
    if (!contents) {
        sink.take({Kind::CannotOpen, "cannot open " + name + ": " + reasonNotOpened(path)});
    } else if (contents->reading != Platform::Reading::Complete) {
        sink.take({Kind::ShortRead, name + " could not be read completely"});
        contents.reset();
    }
    return contents;
}

}  // namespace

std::string wordsFor(const RunFiles::Collision& collision, const std::string& path, FileRole role) {
    const std::string other = nameOf(collision.role);
    if (role == FileRole::Output && collision.role == role && collision.path == path)
        return "two statements write " + path;
    const std::string text = "the " + std::string(nameOf(role)) + " " + path + " is also ";
    if (collision.path != path) return text + "the " + other + " " + collision.path;
    // One of several, or the only one.
    const bool isOneOfMany = collision.role == FileRole::IncludedFile ||
                             collision.role == FileRole::Input ||
                             collision.role == FileRole::Output;
    return text + (isOneOfMany ? "an " : "the ") + other;
}

bool nameFile(RunFiles& files, const std::string& path, FileRole role, DiagnosticSink& sink) {
    const auto collision = files.name(path, role);
    if (collision)
        sink.take({Kind::SameFile, wordsFor(*collision, path, role), std::nullopt,
                   "one would overwrite the other"});
    return !collision;
}

std::optional<Platform::FileContents> readWhole(const std::string& path, DiagnosticSink& sink) {
    Platform::clearLastError();
    return whole(Platform::readFile(path), path, path, sink);
}

std::optional<Platform::FileContents> readScript(const std::string& path, DiagnosticSink& sink) {
    const bool isStandardInput = path == "-";
    Platform::clearLastError();
    auto contents = isStandardInput ? Platform::readStandardInput() : Platform::readFile(path);
    if (contents || !isStandardInput || Platform::lastError() != std::errc::is_a_directory)
        return whole(std::move(contents), "the script " + path, path, sink);
    sink.take(
        {Kind::CannotOpen, "cannot read the script from standard input: it is closed or a folder"});
    return std::nullopt;
}

void addFile(RunFiles& files, const std::string& path, std::string_view text, DiagnosticSink& sink,
             Platform::FileMode mode) {
    addFile(
        files, path, [text](const Inspect::TakeText& take) { take(text); }, sink, mode);
}

void addFile(RunFiles& files, const std::string& path, const MakeText& make, DiagnosticSink& sink,
             Platform::FileMode mode) {
    const auto file = files.createOutput(path, mode);
    bool isWritten = file != nullptr;
    if (isWritten)
        make([&](std::string_view piece) { isWritten = isWritten && file->write(piece); });
    if (!isWritten || !file->close()) reportUnwritten(path, files.reasonFor(path), sink);
}

void commit(RunFiles& files, DiagnosticSink& sink) {
    const auto failure = files.commit();
    if (failure) reportUnwritten(failure->path, failure->reason, sink);
    if (failure && !failure->stillNew.empty())
        sink.take({std::nullopt,
                   "these outputs are new nevertheless, since the files that they replaced could "
                   "not be restored: " +
                       listOf(failure->stillNew)});
    for (const std::string& folder : files.busyFolders())
        sink.take({std::nullopt, "another program keeps the folder " + folder +
                                     " locked; the outputs were put in place without waiting "
                                     "longer"});
}

void writeWhole(RunFiles& files, const std::string& path, std::string_view text,
                DiagnosticSink& sink) {
    addFile(files, path, text, sink);
    commit(files, sink);
}

}  // namespace Strict
