#include "inspect/LinkerMap.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "io/import/elf/SymbolTable.hpp"

namespace Inspect {

namespace {

constexpr std::string_view blanks = " \t\r";

/// Output sections that are not loaded, by the beginnings of their names.
constexpr auto notLoaded = std::to_array<std::string_view>(
    {".bss", ".sbss", ".tbss", ".noinit", ".heap", ".stack", ".debug", ".stab", ".comment",
     ".ARM.attributes", ".riscv.attributes", ".gnu.attributes", ".GCC.command.line", "/DISCARD/"});

/// What is before the name of a function or variable that has a section of its own.
constexpr auto prefixes =
    std::to_array<std::string_view>({".text.startup.", ".text.unlikely.", ".text.hot.", ".text.",
                                     ".rodata.", ".srodata.", ".data.", ".sdata."});

/// Takes the next word off the text.
std::string_view takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::optional<std::uint64_t> numberIn(std::string_view word) {
    if (!word.starts_with("0x")) return std::nullopt;
    std::uint64_t number = 0;
    const auto end = std::from_chars(word.data() + 2, word.data() + word.size(), number, 16);
    const bool isWhole = end.ec == std::errc() && end.ptr == word.data() + word.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

/// Reads the lines after the heading, of which each says something of an output section, an input
/// section of it, or a symbol of that.
class MapReader {
public:
    void take(std::string_view line) {
        if (!hasBegun_) {
            hasBegun_ = trimmed(line) == "Linker script and memory map";
            return;
        }
        if (trimmed(line).empty()) return;
        const std::size_t indent = line.find_first_not_of(' ');
        // A long name has a line of its own.
        if (indent > 1) return takeNumbers(line);
        std::string_view rest = line;
        pending_ = takeWord(rest);
        isOutput_ = indent == 0;
        if (!trimmed(rest).empty()) takeNumbers(rest);
    }

    Names names() {
        endInput();
        return {std::move(names_), loaded_};
    }

private:
    struct Input {
        Buffer::Area area;
        std::string_view section;
        std::string_view file;
        std::vector<std::pair<std::uint64_t, std::string_view>> symbols;
    };

    /// The text after a name: numbers and what follows them, or a symbol and its address.
    void takeNumbers(std::string_view rest) {
        const std::string_view name = std::exchange(pending_, {});
        const auto address = numberIn(takeWord(rest));
        if (!address) return;
        if (name.empty()) {
            rest = trimmed(rest);
            const bool isSymbol = !rest.empty() && !rest.starts_with('(') &&
                                  rest.find(" = ") == std::string_view::npos;
            if (isSymbol) input_.symbols.emplace_back(*address, rest);
            return;
        }
        const auto size = numberIn(takeWord(rest));
        if (!size) return;
        endInput();
        if (isOutput_)
            beginOutput(name, *address, *size, trimmed(rest));
        else if (!name.starts_with('*'))
            input_ = {{*address, *size}, name, trimmed(rest), {}};
    }

    void beginOutput(std::string_view name, std::uint64_t address, std::uint64_t size,
                     std::string_view rest) {
        constexpr std::string_view mark = "load address ";
        const auto load =
            rest.starts_with(mark) ? numberIn(trimmed(rest.substr(mark.size()))) : std::nullopt;
        isLoaded_ = std::ranges::none_of(
            notLoaded, [name](std::string_view one) { return name.starts_with(one); });
        distance_ = load.value_or(address) - address;
        if (isLoaded_ && size != 0 && size - 1 <= ~(address + distance_))
            loaded_.push_back({address + distance_, size});
    }

    void add(std::uint64_t start, std::uint64_t end, std::string text) {
        const auto kind =
            input_.section.starts_with(".text") ? Name::Kind::Function : Name::Kind::Data;
        if (start < end)
            names_.push_back({{start + distance_, end - start}, std::move(text), kind});
    }

    std::string inputText() const {
        for (const std::string_view prefix : prefixes)
            if (input_.section.starts_with(prefix) && input_.section.size() > prefix.size())
                return Io::Import::demangled(std::string(input_.section.substr(prefix.size())));
        const std::string_view file = input_.file.substr(input_.file.find_last_of("/\\") + 1);
        return std::string(file) + "(" + std::string(input_.section) + ")";
    }

    /// Adds the names of an input section: each symbol reaches up to the next one.
    void endInput() {
        const Buffer::Area area = input_.area;
        auto& symbols = input_.symbols;
        if (isLoaded_ && area.length != 0 && area.length - 1 <= ~area.start) {
            std::erase_if(symbols, [&](const auto& one) { return !area.contains({one.first, 1}); });
            std::ranges::stable_sort(symbols, {}, [](const auto& one) { return one.first; });
            add(area.start, symbols.empty() ? area.end() : symbols.front().first, inputText());
            for (std::size_t i = 0; i < symbols.size(); ++i)
                add(symbols[i].first, i + 1 < symbols.size() ? symbols[i + 1].first : area.end(),
                    Io::Import::demangled(std::string(symbols[i].second)));
        }
        input_ = {};
    }

    bool hasBegun_ = false;
    bool isOutput_ = false;
    bool isLoaded_ = false;
    std::string_view pending_;    ///< a name whose numbers follow
    std::uint64_t distance_ = 0;  ///< from the addresses of the map to those of loading
    Input input_;
    std::vector<Name> names_;
    Buffer::AreaList loaded_;
};

}  // namespace

Names namesOfLinkerMap(const Platform::InputFile& file) {
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    text.resize(file.readAt(0, text));
    MapReader reader;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        reader.take(std::string_view(text).substr(at, end - at));
        at = end + 1;
    }
    return reader.names();
}

}  // namespace Inspect
