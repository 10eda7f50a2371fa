#include "cli/Conversion.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "inspect/Image.hpp"
#include "strict/ImageReading.hpp"

namespace CommandLine {

namespace {

using Strict::ExitCode;

/// What an ending of a file's name says about its contents.
struct Ending {
    std::string_view ending;
    const char* source;  ///< of NEW_BUFFER
    const char* format;  ///< of WRITE_FILE; null for a format that is read only
    bool hasStart;       ///< the format has a start address
    bool hasAddresses;   ///< the format can leave gaps
};

constexpr std::array endings{
    Ending{".hex", "FROM_FILE", "IntelHexExtended", true, true},
    Ending{".ihx", "FROM_FILE", "IntelHexExtended", true, true},
    Ending{".ihex", "FROM_FILE", "IntelHexExtended", true, true},
    Ending{".mot", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".s19", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".s28", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".s37", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".srec", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".sre", "FROM_FILE", "MotorolaS_32", true, true},
    Ending{".elf", "FROM_ELF", nullptr, false, false},
    Ending{".axf", "FROM_ELF", nullptr, false, false},
    Ending{".out", "FROM_ELF", nullptr, false, false},
    Ending{".uf2", "FROM_UF2", nullptr, false, false},
    Ending{".txt", "FROM_TI_TXT", "TiTxt", false, true},
    Ending{".dfu", "FROM_FILE", "DfuSe", false, true},
    Ending{".bin", "FROM_FILE_BINARY", "RawBinary", false, false},
    Ending{".raw", "FROM_FILE_BINARY", "RawBinary", false, false},
    Ending{".img", "FROM_FILE_BINARY", "RawBinary", false, false},
};

const Ending* endingOf(std::string path) {
    std::ranges::transform(path, path.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto* const found = std::ranges::find_if(
        endings, [&path](const Ending& known) { return path.ends_with(known.ending); });
    return found == endings.end() ? nullptr : found;
}

void fail(const char* kind, std::string text, std::string hint, Strict::Printer& printer) {
    printer.take(
        {Strict::Severity::Error, kind, std::move(text), std::nullopt, std::move(hint), {}});
}

/// The path as a script names it; nothing if none can.
std::optional<std::string> quoted(const std::string& path, Strict::Printer& printer) {
    const bool hasDelimiter = path.find_first_of("\"'{}\n\r\x1A") != std::string::npos;
    const bool hasBlankAtEnd = path.empty() || path.front() == ' ' || path.back() == ' ';
    if (hasDelimiter || hasBlankAtEnd) {
        fail("cannot-open", "a script cannot name the file " + path, "rename it", printer);
        return std::nullopt;
    }
    std::string text = "\"";
    // Two slashes begin a comment; a path means the same with one.
    for (const char c : path)
        if (c != '/' || text.back() != '/') text += c;
    return text + "\"";
}

/// The format's keyword, given or of the ending; nothing after a diagnostic.
std::optional<std::string> formatOf(const Conversion& conversion, Strict::Printer& printer) {
    if (!conversion.format.empty()) return conversion.format;
    const Ending* const named = endingOf(conversion.output);
    if (named != nullptr && named->format != nullptr) return named->format;
    std::string known;
    for (const Ending& ending : endings)
        if (ending.format != nullptr)
            known += (known.empty() ? "" : ", ") + std::string(ending.ending);
    fail("wrong-format", "the ending of " + conversion.output + " names no format",
         "give --format, or one of the endings " + known, printer);
    return std::nullopt;
}

/// Whether the keyword is that of a format with the property, which its ending has.
bool has(const std::string& format, bool Ending::*property) {
    const std::string word = format.substr(0, format.find('_'));
    const auto* const found = std::ranges::find_if(endings, [&word](const Ending& ending) {
        return ending.format != nullptr &&
               std::string_view(ending.format).substr(0, word.size()) == word;
    });
    return found == endings.end() || found->*property;
}

/// The address that the image begins with after it was moved; nothing after a diagnostic.
std::optional<std::uint64_t> movedStart(const Conversion& conversion, const Inspect::Image& image,
                                        Strict::Printer& printer) {
    constexpr std::int64_t highest = 0xFFFFFFFF;
    const std::uint64_t start = conversion.crop       ? conversion.crop->start
                                : image.parts.empty() ? 0
                                                      : image.parts.front().getStartAddress();
    const auto moved = static_cast<std::int64_t>(start) + conversion.offset;
    if (moved >= 0 && moved <= highest) return static_cast<std::uint64_t>(moved);
    fail("outside",
         "the offset moves the start " + Inspect::addressText(start) +
             " out of the 32-bit address space",
         "", printer);
    return std::nullopt;
}

}  // namespace

std::optional<std::string> scriptFor(const Conversion& conversion, Strict::Printer& printer) {
    const auto input = quoted(conversion.input, printer);
    const auto output = quoted(conversion.output, printer);
    const auto format = formatOf(conversion, printer);
    const auto image = Strict::readImage(conversion.input, printer);
    if (!input || !output || !format || !image || printer.errors() != 0) return std::nullopt;
    const Ending* const ending = endingOf(conversion.input);
    std::string script = "NEW_BUFFER @Image " +
                         std::string(ending == nullptr ? "FROM_FILE" : ending->source) + " " +
                         *input;
    if (conversion.crop)
        script += " -useBufferRange={" + Inspect::addressText(conversion.crop->start) + ", " +
                  Inspect::addressText(conversion.crop->length) + "}";
    if (conversion.offset != 0) {
        const auto start = movedStart(conversion, *image, printer);
        if (!start) return std::nullopt;
        script += " -changeStartAddressTo=" + Inspect::addressText(*start);
    }
    script += "\n";
    if (!conversion.fill.empty()) {
        script += "FILL_BUFFER @Image WITH_FILLER {";
        for (const std::uint8_t byte : conversion.fill)
            script += (script.back() == '{' ? "" : ", ") + std::to_string(byte);
        script += "}\n";
    }
    script += "WRITE_FILE " + *output + " WITH_BUFFERS {@Image}";
    if (image->startAddress && has(*format, &Ending::hasStart))
        script += " " + Inspect::addressText(*image->startAddress);
    if (conversion.fill.empty() && has(*format, &Ending::hasAddresses)) script += " -skipUnwritten";
    return script + " -setFormat=" + *format + "\n";
}

ExitCode convert(const Conversion& conversion, Strict::Printer& printer, std::ostream& output) {
    auto script = scriptFor(conversion, printer);
    if (!script) return ExitCode::Failed;
    if (conversion.printsScript) {
        output << *script << std::flush;
        return output ? ExitCode::Good : ExitCode::Failed;
    }
    Strict::RunOptions options;
    options.script = "<convert>";
    options.text = std::move(*script);
    return Strict::run(options, printer, output);
}

}  // namespace CommandLine
