#include "strict/files/WholeFile.hpp"

#include "platform/Replace.hpp"

namespace Strict {

namespace {

std::string listOf(const std::vector<std::string>& paths) {
    std::string names;
    for (const std::string& path : paths) names += (names.empty() ? "" : ", ") + path;
    return names;
}

void reportUnwritten(const std::string& path, const std::string& reason, DiagnosticSink& sink) {
    sink.take({Kind::CannotWrite, "cannot write " + path + ": " + reason});
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
    auto contents = Platform::readFile(path);
    if (!contents)
        sink.take({Kind::CannotOpen, "cannot open " + path + ": " + reasonNotOpened(path)});
    return contents;
}

void addFile(RunFiles& files, const std::string& path, std::string_view text,
             DiagnosticSink& sink) {
    const auto file = files.createOutput(path, Platform::FileMode::Text);
    const bool isWritten = file != nullptr && file->write(text);
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
