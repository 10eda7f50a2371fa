#include "strict/Policy.hpp"

#include <algorithm>
#include <array>

#include "strict/Suggestion.hpp"

namespace Strict {

namespace {

using enum Severity;

constexpr std::array allKinds{
    Kind{"syntax", Error, true},
    Kind{"cannot-open", Error, true},
    Kind{"cannot-write", Error, true},
    Kind{"short-read", Error, true},
    Kind{"short-write", Error, true},
    Kind{"out-of-memory", Error, true},
    Kind{"record-checksum", Error, true},
    Kind{"record-line", Error, true},
    Kind{"differs", Error, true},
    Kind{"no-end", Error, false},
    Kind{"unknown-name", Error, false},
    Kind{"duplicate-name", Error, false},
    Kind{"outside", Error, false},
    Kind{"wiped", Error, false},
    Kind{"empty-image", Error, false},
    Kind{"empty-digest", Error, false},
    Kind{"call-failed", Error, false},
    Kind{"unused-variable", Error, false},
    Kind{"crc-parameter", Error, false},
    Kind{"word-size", Error, false},
    Kind{"cropped", Warning, false},
    Kind{"unwritten", Warning, false},
    Kind{"truncated-value", Warning, false},
    Kind{"expression-order", Warning, false},
    Kind{"number-pair", Warning, false},
    Kind{"variable-in-word", Warning, false},
    Kind{"variable-dollar", Warning, false},
    Kind{"symbol-unused", Warning, false},
    Kind{"execution-address", Warning, false},
    Kind{"length-corrected", Warning, false},
    Kind{"swallowed", Warning, false},
    Kind{"no-effect", Warning, false},
    Kind{"end-as-length", Warning, false},
    Kind{"record-digit", Error, true},
    Kind{"record-length", Error, true},
    Kind{"record-type", Error, true},
    Kind{"record-address", Error, true},
    Kind{"after-end", Error, true},
    Kind{"record-count", Error, true},
    Kind{"wrong-format", Error, true},
    Kind{"conflict", Error, false},
    Kind{"overlap", Warning, false},
    Kind{"tolerated", Warning, false},
};

const Kind* find(std::string_view name) {
    const auto* const kind = std::ranges::find(allKinds, name, &Kind::name);
    return kind == allKinds.end() ? nullptr : kind;
}

}  // namespace

std::span<const Kind> kinds() {
    return allKinds;
}

std::string Policy::set(std::string_view name, Severity severity) {
    const Kind* const kind = find(name);
    if (kind == nullptr) {
        std::vector<std::string> names;
        names.reserve(std::size(allKinds));
        for (const Kind& known : allKinds) names.emplace_back(known.name);
        return "there is no diagnostic " + std::string(name) + didYouMean(name, names);
    }
    if (kind->isFixed && severity != Error) return std::string(name) + " is always an error";
    changed_.insert_or_assign(std::string(name), severity);
    return {};
}

Severity Policy::severityOf(std::string_view name) const {
    const auto changed = changed_.find(name);
    const Kind* const kind = find(name);
    const Severity severity = changed != changed_.end() ? changed->second
                              : kind != nullptr         ? kind->severity
                                                        : Error;
    return severity == Warning && areWarningsErrors_ ? Error : severity;
}

}  // namespace Strict
