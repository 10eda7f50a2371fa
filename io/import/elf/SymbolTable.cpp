#include "io/import/elf/SymbolTable.hpp"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace Io::Import {

std::string demangled(const std::string& symbol) {
    if (!symbol.starts_with("_Z")) return symbol;
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? std::string(text.get()) : symbol;
}

SymbolTable::Found SymbolTable::find(const std::string& name) {
    if (names_.empty()) indexNames();
    const Found found = amongst(names_, name);
    if (found.symbol != nullptr) return found;
    if (sourceNames_.empty()) indexSourceNames();
    return amongst(sourceNames_, name);
}

SymbolTable::Found SymbolTable::amongst(const Index& index, const std::string& name) const {
    Found found;
    const auto [first, last] = index.equal_range(name);
    for (auto entry = first; entry != last; ++entry) {
        const Symbol& symbol = symbols_[entry->second];
        const bool isBetter =
            found.symbol == nullptr || (symbol.isGlobal && !found.symbol->isGlobal);
        if (isBetter) {
            found = {&symbol, false};
        } else if (symbol.isGlobal == found.symbol->isGlobal) {
            found.isAmbiguous = found.isAmbiguous || symbol.address != found.symbol->address;
            // A label may share the address of what it names.
            if (symbol.size > found.symbol->size) found.symbol = &symbol;
        }
    }
    return found;
}

void SymbolTable::indexNames() {
    names_.reserve(symbols_.size());
    for (std::size_t i = 0; i < symbols_.size(); ++i) names_.emplace(symbols_[i].name, i);
}

void SymbolTable::indexSourceNames() {
    for (std::size_t i = 0; i < symbols_.size(); ++i) {
        const std::string name = demangled(symbols_[i].name);
        if (name == symbols_[i].name) continue;
        sourceNames_.emplace(name, i);
        const std::size_t parameters = name.find('(');
        if (parameters != std::string::npos) sourceNames_.emplace(name.substr(0, parameters), i);
    }
}

std::vector<std::string> SymbolTable::names() const {
    std::vector<std::string> names;
    names.reserve(symbols_.size());
    for (const Symbol& symbol : symbols_) names.push_back(demangled(symbol.name));
    return names;
}

}  // namespace Io::Import
