#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "io/import/elf/ElfFile.hpp"
#include "strict/Diagnostic.hpp"
#include "strict/OutputSet.hpp"

namespace Strict {

/// Gives variables the addresses of symbols of ELF files, as numbers of the language.
///
/// @param requests   texts "NAME=file:symbol"; the first value of a variable counts
/// @param files      through which the files are read
/// @return false after a diagnostic
bool resolveSymbols(const std::vector<std::string>& requests, OutputSet& files,
                    std::map<std::string, std::string>& variables, DiagnosticSink& sink);

/// What an ELF file loads and where it starts, whole lines.
///
/// @param withSymbols  also its symbols by address: address, size, kind and name
/// @throws Io::Import::Malformed  after a report
std::string elfInformation(const Io::Import::ElfFile& file, bool withSymbols);

}  // namespace Strict
