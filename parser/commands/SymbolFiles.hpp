#pragma once

#include <map>
#include <memory>
#include <string>

#include "io/import/elf/SymbolTable.hpp"

namespace Parser::WrapperLib {

/// The symbols of the ELF files that numbers of a run ask. A file is read once, unless a statement
/// may have changed it since.
class SymbolFiles {
public:
    /// The symbol `name` of the file `path`; null after a report. It has an address of 32 bits, and
    /// is valid until `forget`.
    const Io::Import::Symbol* find(const std::string& path, const std::string& name);

    /// A statement has written files, or has run a program that may have done so.
    void forget() { files_.clear(); }

private:
    Io::Import::SymbolTable& open(const std::string& path);

    std::map<std::string, std::unique_ptr<Io::Import::SymbolTable>> files_;
};

}  // namespace Parser::WrapperLib
