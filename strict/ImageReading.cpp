#include "strict/ImageReading.hpp"

#include "facts/Listener.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "strict/AddressSpace.hpp"
#include "strict/OutsideReading.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

namespace {

/// What `read` returns for the path, or nothing (null) after a diagnostic.
template <class Read>
auto readWith(Read read, const std::string& path, DiagnosticSink& sink,
              OptionsOf options = OptionsOf::Inspection) -> decltype(read(path)) {
    RunFiles files(RunFiles::Mode::Memory);
    const OutsideReading reading(files, sink, options);
    const Buffer::ImageSpaceScope space(imageSpace);
    try {
        return read(path);
    } catch (const Io::bad_open&) {
        Facts::report(Facts::FileNotOpened{path});
        return {};
    } catch (const Io::Import::Malformed&) {
        return {};
    }
}

}  // namespace

std::optional<Inspect::Image> readImage(const std::string& path,
                                        std::optional<Facts::InputFormat> format,
                                        DiagnosticSink& sink,
                                        const Io::Import::ReadOptions& options) {
    return readWith(
        [format, &options](const std::string& file) {
            return Inspect::openImage(file, format, options);
        },
        path, sink);
}

std::unique_ptr<Io::Import::TessaronImportApi> readFile(const std::string& path,
                                                        std::optional<Facts::InputFormat> format,
                                                        const Io::Import::ReadOptions& options,
                                                        DiagnosticSink& sink) {
    return readWith(
        [format, &options](const std::string& file) {
            return Inspect::openReader(file, format, options);
        },
        path, sink, OptionsOf::Convert);
}

std::unique_ptr<Io::Import::TessaronImportApi> readSections(
    const std::string& path, const Io::Import::SectionChoice& sections, std::uint32_t addressUnit,
    DiagnosticSink& sink) {
    return readWith(
        [&sections, addressUnit](const std::string& file) {
            return Inspect::openSections(file, sections, addressUnit);
        },
        path, sink, OptionsOf::Convert);
}

std::optional<Inspect::Names> readNames(const std::string& path, DiagnosticSink& sink) {
    auto names = readWith(
        [](const std::string& file) { return std::optional(Inspect::namesIn(file)); }, path, sink);
    if (!names || !names->isEmpty()) return names;
    sink.take({Kind::UnknownName, path + " has no names of what it loads", std::nullopt,
               "it has to be an ELF file with symbols, or a map file of GNU ld"});
    return std::nullopt;
}

std::optional<Inspect::Info> readInfo(const std::string& path,
                                      std::optional<Facts::InputFormat> format, bool withSymbols,
                                      DiagnosticSink& sink,
                                      const Io::Import::ReadOptions& options) {
    return readWith(
        [format, withSymbols, &options](const std::string& file) {
            return std::optional(Inspect::infoAbout(file, format, withSymbols, options));
        },
        path, sink);
}

}  // namespace Strict
