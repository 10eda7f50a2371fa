#include "strict/ElfSymbols.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "facts/FormatFaultWords.hpp"
#include "facts/Listener.hpp"
#include "inspect/Names.hpp"
#include "inspect/Words.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/Suggestion.hpp"

namespace Strict {

namespace {

using Io::Import::ElfFile;
using Io::Import::Symbol;

void report(DiagnosticSink& sink, Kind kind, std::string text, std::string hint = {}) {
    sink.take({kind, std::move(text), std::nullopt, std::move(hint), {}});
}

/// Reports what is wrong with a file.
class FileListener final : public Facts::Listener {
public:
    explicit FileListener(DiagnosticSink& sink) : sink_(&sink) {}

    void hear(const Facts::Fact& fact) override {
        if (const auto* const malformed = std::get_if<Facts::FileMalformed>(&fact))
            report(*sink_, Kind::WrongFormat,
                   std::string(malformed->file) +
                       " cannot be read as ELF: " + Facts::textOf(*malformed));
        if (const auto* const incomplete = std::get_if<Facts::FileReadIncomplete>(&fact))
            report(*sink_, Kind::ShortRead,
                   std::string(incomplete->file) + " could not be read completely");
    }

private:
    DiagnosticSink* sink_;
};

/// The symbols of a file, or nothing after a diagnostic.
std::optional<std::vector<Symbol>> read(const std::string& path, const RunFiles& files,
                                        DiagnosticSink& sink) {
    FileListener listener(sink);
    const Facts::ListenerScope listening(listener);
    try {
        return ElfFile(path).symbols();
    } catch (const Io::Import::Malformed&) {
    } catch (const Io::bad_open&) {
        report(sink, Kind::CannotOpen, "cannot open " + path + ": " + files.reasonFor(path));
    }
    return std::nullopt;
}

/// The symbols of a name, as the file has it or, if none has, as C++ has it: then a function may be
/// named without its parameters.
std::vector<Symbol> symbolsCalled(const std::string& name, const std::vector<Symbol>& all) {
    std::vector<Symbol> found;
    std::ranges::copy_if(all, std::back_inserter(found),
                         [&name](const Symbol& symbol) { return symbol.name == name; });
    if (!found.empty()) return found;
    std::ranges::copy_if(all, std::back_inserter(found), [&name](const Symbol& symbol) {
        const std::string text = Inspect::demangled(symbol.name);
        return text == name || text.substr(0, text.find('(')) == name;
    });
    return found;
}

/// The address of the symbol `name` of the file `path`, or nothing after a diagnostic.
std::optional<std::uint64_t> addressOf(const std::vector<Symbol>& symbols, const std::string& path,
                                       const std::string& name, DiagnosticSink& sink) {
    std::optional<std::uint64_t> address;
    // A name that all files of a program share means more than one that a single file has for
    // itself.
    const std::vector<Symbol> found = symbolsCalled(name, symbols);
    const bool hasGlobal = std::ranges::any_of(found, &Symbol::isGlobal);
    for (const Symbol& symbol : found) {
        if (address == symbol.address) continue;
        if (hasGlobal && !symbol.isGlobal) continue;
        if (address) {
            std::string text = path;
            report(sink, Kind::UnknownName, text.append(" has several symbols ").append(name));
            return std::nullopt;
        }
        address = symbol.address;
    }
    if (!address) {
        std::vector<std::string> names;
        names.reserve(symbols.size());
        for (const Symbol& symbol : symbols) names.push_back(Inspect::demangled(symbol.name));
        const auto close = nearest(name, names);
        report(sink, Kind::UnknownName, path + " has no symbol " + name,
               close ? "did you mean " + *close + "?"
                     : (names.empty() ? "it has no symbols at all: was it stripped?" : ""));
    } else if (*address > std::numeric_limits<std::uint32_t>::max()) {
        report(sink, Kind::Outside,
               "the address of " + name + ", " + Inspect::addressText(*address) +
                   ", has more than 32 bits");
        return std::nullopt;
    }
    return address;
}

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
    const Io::HostScope hosting(files);
    std::map<std::string, std::optional<std::vector<Symbol>>> known;
    bool isGood = true;
    for (const std::string& text : requests) {
        const Request request = requestOf(text);
        const auto [file, isNew] = known.try_emplace(request.path);
        if (isNew) file->second = read(request.path, files, sink);
        if (!file->second) {
            isGood = false;
            continue;
        }
        const auto address = addressOf(*file->second, request.path, request.symbol, sink);
        if (address) variables.try_emplace(request.variable, Inspect::addressText(*address));
        isGood = isGood && address.has_value();
    }
    return isGood;
}

}  // namespace Strict
