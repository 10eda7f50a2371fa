#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// The name of a symbol as the source has it, if it is that of C++.
std::string demangled(const std::string& symbol);

/// The symbols of a file, to be found by their names.
class SymbolTable {
public:
    /// What has a name.
    struct Found {
        const Symbol* symbol = nullptr;  ///< null if there is none
        bool isAmbiguous = false;        ///< symbols of that name have different addresses
    };

    explicit SymbolTable(std::vector<Symbol> symbols) : symbols_(std::move(symbols)) {}
    SymbolTable(const SymbolTable&) = delete;
    SymbolTable& operator=(const SymbolTable&) = delete;

    /// The symbol of a name, as the file has it or, if none has, as C++ has it: then a function may
    /// be named without its parameters. A symbol that all files of a program share counts more than
    /// one that a single file has for itself.
    Found find(const std::string& name);

    /// All names, those of C++ as the source has them.
    std::vector<std::string> names() const;

private:
    using Index = std::unordered_multimap<std::string, std::size_t>;

    Found amongst(const Index& index, const std::string& name) const;
    void indexNames();
    void indexSourceNames();

    std::vector<Symbol> symbols_;
    Index names_;        ///< empty until one is looked for
    Index sourceNames_;  ///< of C++, with and without parameters; empty until one is looked for
};

}  // namespace Io::Import
