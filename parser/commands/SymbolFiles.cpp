#include "parser/commands/SymbolFiles.hpp"

#include <cstdint>
#include <exception>
#include <limits>

#include "facts/Listener.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "platform/Paths.hpp"

namespace Parser::WrapperLib {

using Facts::SymbolFault;
using Facts::SymbolUnfit;
using Io::Import::Symbol;
using Io::Import::SymbolTable;

namespace {

constexpr std::uint64_t widest = std::numeric_limits<std::uint32_t>::max();

/// The names of all symbols, a line each.
std::string linesOf(const SymbolTable& symbols) {
    std::string lines;
    for (const std::string& name : symbols.names()) lines.append(name).append(1, '\n');
    return lines;
}

}  // namespace

SymbolTable& SymbolFiles::open(const std::string& path) {
    const auto known = files_.find(path);
    if (known != files_.end()) return *known->second;
    const Io::Import::ElfFile file(Platform::terminatedPath(path));
    return *files_.emplace(path, std::make_unique<SymbolTable>(file.symbols())).first->second;
}

const Symbol* SymbolFiles::find(const std::string& path, const std::string& name) {
    try {
        SymbolTable& symbols = open(path);
        const auto [symbol, isAmbiguous] = symbols.find(name);
        const bool isWide = symbol != nullptr && symbol->address > widest;
        if (symbol != nullptr && !isAmbiguous && !isWide) return symbol;
        if (symbol == nullptr)
            Facts::report(SymbolUnfit{path, name, SymbolFault::Missing, 0, linesOf(symbols)});
        else if (isAmbiguous)
            Facts::report(SymbolUnfit{path, name, SymbolFault::Several, 0, {}});
        else
            Facts::report(SymbolUnfit{path, name, SymbolFault::TooWide, symbol->address, {}});
    } catch (const Io::Import::Malformed&) {
        // It was reported.
    } catch (const std::exception&) {
        Facts::report(Facts::FileNotOpened{path});
    }
    return nullptr;
}

}  // namespace Parser::WrapperLib
