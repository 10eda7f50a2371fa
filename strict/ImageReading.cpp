#include "strict/ImageReading.hpp"

#include <string_view>
#include <system_error>
#include <utility>

#include "facts/Listener.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "strict/RunListener.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

namespace {

/// A pipe can be read only once, but a file is opened several times: its bytes are kept as if the
/// run had written them.
void keepStream(RunFiles& files, const std::string& path) {
    if (Platform::isRegularFile(path)) return;
    const auto contents = Platform::readFile(path);
    if (!contents) return;
    const auto copy = files.createOutput(path, Platform::FileMode::Binary);
    if (copy != nullptr && copy->write(contents->text())) copy->close();
}

/// What `read` returns for the path, or nothing after a diagnostic.
template <class Read>
auto readWith(Read read, const std::string& path, DiagnosticSink& sink) -> decltype(read(path)) {
    RunFiles files(RunFiles::Mode::Memory);
    StatementReports reports(nullptr, sink);
    RunListener listener(reports, nullptr,
                         {[&files](std::string_view file) { return files.reasonFor(file); },
                          [](std::string_view /*name*/) { return true; }});
    keepStream(files, path);
    const Facts::ListenerScope listening(listener);
    const Io::HostScope hosting(files);
    try {
        return read(path);
    } catch (const Io::bad_open&) {
        const std::string reason = files.reasonFor(path);
        if (reason.empty()) {
            listener.hear(Facts::FileNotOpened{path});
            return std::nullopt;
        }
        // Advice on the names of a script would mislead: this one is of the command line.
        sink.take({Kind::CannotOpen, "cannot open " + path + ": " + reason});
        return std::nullopt;
    } catch (const Io::Import::Malformed&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<Inspect::Image> readImage(const std::string& path, DiagnosticSink& sink) {
    return readWith(&Inspect::openImage, path, sink);
}

std::optional<Inspect::Info> readInfo(const std::string& path, bool withSymbols,
                                      DiagnosticSink& sink) {
    return readWith(
        [withSymbols](const std::string& file) {
            return std::optional(Inspect::infoAbout(file, withSymbols));
        },
        path, sink);
}

}  // namespace Strict
