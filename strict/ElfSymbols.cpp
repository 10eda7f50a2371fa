#include "strict/ElfSymbols.hpp"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "facts/FormatFaultWords.hpp"
#include "facts/Listener.hpp"
#include "inspect/Words.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "io/import/elf/SymbolTable.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/Suggestion.hpp"

namespace Strict {

namespace {

using Io::Import::ElfFile;
using Io::Import::SymbolTable;

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

/// The symbols of a file, or null after a diagnostic.
std::unique_ptr<SymbolTable> read(const std::string& path, const RunFiles& files,
                                  DiagnosticSink& sink) {
    FileListener listener(sink);
    const Facts::ListenerScope listening(listener);
    try {
        return std::make_unique<SymbolTable>(ElfFile(path).symbols());
    } catch (const Io::Import::Malformed&) {
    } catch (const Io::bad_open&) {
        report(sink, Kind::CannotOpen, "cannot open " + path + ": " + files.reasonFor(path));
    }
    return nullptr;
}

/// The address of the symbol `name` of the file `path`, or nothing after a diagnostic.
std::optional<std::uint64_t> addressOf(SymbolTable& symbols, const std::string& path,
                                       const std::string& name, DiagnosticSink& sink) {
    const auto [symbol, isAmbiguous] = symbols.find(name);
    if (symbol == nullptr) {
        const auto names = symbols.names();
        const auto close = nearest(name, names);
        report(sink, Kind::UnknownName, path + " has no symbol " + name,
               close ? "did you mean " + *close + "?"
                     : (names.empty() ? "it has no symbols at all: was it stripped?" : ""));
        return std::nullopt;
    }
    if (isAmbiguous) {
        std::string text = path;
        report(sink, Kind::UnknownName, text.append(" has several symbols ").append(name));
        return std::nullopt;
    }
    if (symbol->address > std::numeric_limits<std::uint32_t>::max()) {
        report(sink, Kind::Outside,
               "the address of " + name + ", " + Inspect::addressText(symbol->address) +
                   ", has more than 32 bits");
        return std::nullopt;
    }
    return symbol->address;
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
    std::map<std::string, std::unique_ptr<SymbolTable>> known;
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
