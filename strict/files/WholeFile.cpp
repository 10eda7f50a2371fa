#include "strict/files/WholeFile.hpp"

#include <optional>

#include "platform/Files.hpp"

namespace Strict {

namespace {

void reportUnwritten(const std::string& path, const std::string& reason, DiagnosticSink& sink) {
    sink.take({Kind::CannotWrite, "cannot write " + path + ": " + reason});
}

}  // namespace

void addFile(OutputSet& files, const std::string& path, std::string_view text,
             DiagnosticSink& sink) {
    const auto file = files.createOutput(path, Platform::FileMode::Text);
    const bool isWritten = file != nullptr && file->write(text);
    if (!isWritten || !file->close()) reportUnwritten(path, files.reasonFor(path), sink);
}

void commit(OutputSet& files, DiagnosticSink& sink) {
    if (const auto failure = files.commit()) reportUnwritten(failure->path, failure->reason, sink);
}

void writeWhole(const std::string& path, std::string_view text, DiagnosticSink& sink) {
    OutputSet files(OutputSet::Mode::Disk);
    addFile(files, path, text, sink);
    commit(files, sink);
}

}  // namespace Strict
