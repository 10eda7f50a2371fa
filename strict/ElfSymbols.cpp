#include "strict/ElfSymbols.hpp"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <variant>

#include "facts/FormatFaultWords.hpp"
#include "facts/Listener.hpp"
#include "inspect/Words.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "strict/diagnostics/Suggestion.hpp"

namespace Strict {

namespace {

using Io::Import::ElfFile;
using Io::Import::ElfSymbol;

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
std::optional<std::vector<ElfSymbol>> read(const std::string& path, const RunFiles& files,
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

/// The address of the symbol `name` of the file `path`, or nothing after a diagnostic.
std::optional<std::uint64_t> addressOf(const std::vector<ElfSymbol>& symbols,
                                       const std::string& path, const std::string& name,
                                       DiagnosticSink& sink) {
    std::optional<std::uint64_t> address;
    for (const ElfSymbol& symbol : symbols) {
        if (symbol.name != name || address == symbol.address) continue;
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
        for (const ElfSymbol& symbol : symbols) names.push_back(symbol.name);
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

}  // namespace

bool resolveSymbols(const std::vector<std::string>& requests, RunFiles& files,
                    std::map<std::string, std::string>& variables, DiagnosticSink& sink) {
    const Io::HostScope hosting(files);
    std::map<std::string, std::optional<std::vector<ElfSymbol>>> known;
    bool isGood = true;
    for (const std::string& request : requests) {
        const std::size_t equals = request.find('=');
        const std::size_t colon = request.rfind(':');
        const std::string path = request.substr(equals + 1, colon - equals - 1);
        const auto [file, isNew] = known.try_emplace(path);
        if (isNew) file->second = read(path, files, sink);
        if (!file->second) {
            isGood = false;
            continue;
        }
        const auto address = addressOf(*file->second, path, request.substr(colon + 1), sink);
        if (address)
            variables.try_emplace(request.substr(0, equals), Inspect::addressText(*address));
        isGood = isGood && address.has_value();
    }
    return isGood;
}

}  // namespace Strict
