#include "strict/ElfSymbols.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "inspect/Words.hpp"
#include "parser/commands/SymbolFiles.hpp"
#include "platform/Paths.hpp"
#include "strict/OutsideReading.hpp"

namespace Strict {

namespace {

/// A request for the address of a symbol.
struct Request {
    std::string variable;
    std::string path;
    std::string symbol;
};

/// The places of the colons that may part a path from a symbol: pairs of them belong to names of
/// C++, and one after the first letter may be that of a drive.
std::vector<std::size_t> partingColons(std::string_view text) {
    std::vector<std::size_t> colons;
    for (std::size_t at = text.find(':'); at != std::string_view::npos; at = text.find(':', at)) {
        const std::size_t end = std::min(text.find_first_not_of(':', at), text.size());
        const bool isDrive = at == 1 && end < text.size() && (text[2] == '/' || text[2] == '\\');
        if (end - at != 2 && !isDrive) colons.push_back(at);
        at = end;
    }
    return colons;
}

/// The parts of a text "NAME=file:symbol". Of several possible files it is the first that exists.
Request requestOf(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string source = text.substr(equals + 1);
    const std::vector<std::size_t> colons = partingColons(source);
    const auto exists = std::ranges::find_if(colons, [&source](std::size_t colon) {
        return Platform::isRegularFile(source.substr(0, colon));
    });
    const std::size_t colon = exists != colons.end() ? *exists
                              : colons.empty()       ? source.rfind(':')
                                                     : colons.front();
    return {text.substr(0, equals), source.substr(0, colon), source.substr(colon + 1)};
}

}  // namespace

bool resolveSymbols(const std::vector<std::string>& requests, RunFiles& files,
                    std::map<std::string, std::string>& variables, DiagnosticSink& sink) {
    const OutsideReading reading(files, sink, OptionsOf::Inspection);
    Parser::WrapperLib::SymbolFiles symbols;
    bool isGood = true;
    for (const std::string& text : requests) {
        const Request request = requestOf(text);
        const auto* const symbol = symbols.find(request.path, request.symbol);
        isGood = isGood && symbol != nullptr;
        if (symbol != nullptr)
            variables.try_emplace(request.variable, Inspect::addressText(symbol->address));
    }
    return isGood;
}

}  // namespace Strict
