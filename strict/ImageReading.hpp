#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "inspect/Image.hpp"
#include "inspect/Info.hpp"
#include "inspect/Names.hpp"
#include "io/import/ReadOptions.hpp"
#include "io/import/SectionChoice.hpp"
#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Reads a file of any format. What is odd about it, or the reason why it cannot be read, goes to
/// the sink.
///
/// @param format   that of the file; nothing if name and contents decide
/// @param options  as for Inspect::openImage
std::optional<Inspect::Image> readImage(const std::string& path,
                                        std::optional<Facts::InputFormat> format,
                                        DiagnosticSink& sink,
                                        const Io::Import::ReadOptions& options = {});

/// Reads a file in the same way for `convert`; null after a diagnostic.
std::unique_ptr<Io::Import::TessaronImportApi> readFile(const std::string& path,
                                                        std::optional<Facts::InputFormat> format,
                                                        const Io::Import::ReadOptions& options,
                                                        DiagnosticSink& sink);

/// The same for the chosen sections of an ELF file.
///
/// @param addressUnit  the addresses of the file count words of that many bytes
std::unique_ptr<Io::Import::TessaronImportApi> readSections(
    const std::string& path, const Io::Import::SectionChoice& sections, std::uint32_t addressUnit,
    DiagnosticSink& sink);

/// The names in an ELF file or a map file of GNU ld; nothing after a diagnostic if it cannot be
/// read or has none.
std::optional<Inspect::Names> readNames(const std::string& path, DiagnosticSink& sink);

/// All that there is to know of a file; nothing if it cannot be read.
///
/// @param format  that of the file; nothing if name and contents decide
/// @param withSymbols  also lists the symbols of an ELF file
/// @param options  as for Inspect::openImage
std::optional<Inspect::Info> readInfo(const std::string& path,
                                      std::optional<Facts::InputFormat> format, bool withSymbols,
                                      DiagnosticSink& sink,
                                      const Io::Import::ReadOptions& options = {});

}  // namespace Strict
