#include "cli/Conversion.hpp"

#include <string_view>

#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "strict/ImageReading.hpp"

namespace CommandLine {

namespace {

using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;
using Strict::ExitCode;

void fail(Strict::Kind kind, std::string text, std::string hint, Strict::Printer& printer) {
    printer.take({kind, std::move(text), std::nullopt, std::move(hint), {}});
}

/// The path as a script names it; nothing if none can.
std::optional<std::string> quoted(const std::string& path, Strict::Printer& printer) {
    const bool hasDelimiter = path.find_first_of("\"'{}\n\r\x1A") != std::string::npos;
    const bool hasBlankAtEnd = path.empty() || path.front() == ' ' || path.back() == ' ';
    if (hasDelimiter || hasBlankAtEnd) {
        fail(Strict::Kind::CannotOpen, "a script cannot name the file " + path, "rename it",
             printer);
        return std::nullopt;
    }
    std::string text = "\"";
    // Two slashes begin a comment; a path means the same with one.
    for (const char c : path)
        if (c != '/' || text.back() != '/') text += c;
    return text + "\"";
}

/// The source of NEW_BUFFER for a file, by its ending; nothing after a diagnostic.
std::optional<std::string> sourceOf(const std::string& input, Strict::Printer& printer) {
    if (const auto* const named = Io::Formats::rowByEnding(input))
        return std::string(Io::Formats::sourceOf(*named));
    if (CmdWriteFile::formatByEnding(input) == nullptr) return "FROM_FILE";
    // Read as raw bytes, it would put heads and digits of the format into the image.
    fail(Strict::Kind::WrongFormat,
         "files with the ending of " + input + " are written and not read", "", printer);
    return std::nullopt;
}

/// The format's keyword, given or of the ending; nothing after a diagnostic.
std::optional<std::string> formatOf(const Conversion& conversion, Strict::Printer& printer) {
    if (!conversion.format.empty()) return conversion.format;
    const ExportFormat* const named = CmdWriteFile::formatByEnding(conversion.output);
    if (named != nullptr && named->choice != nullptr) {
        fail(Strict::Kind::WrongFormat,
             "the ending of " + conversion.output + " names several formats",
             "give one of them by --format: " + std::string(named->choice), printer);
        return std::nullopt;
    }
    if (named != nullptr) return named->usualForm == nullptr ? named->keyword : named->usualForm;
    std::string known;
    for (const ExportFormat& format : CmdWriteFile::formats())
        for (const std::string_view ending : format.endings)
            if (format.choice == nullptr)
                known += (known.empty() ? "" : ", ") + std::string(ending);
    fail(Strict::Kind::WrongFormat, "the ending of " + conversion.output + " names no format",
         "give --format, or one of the endings " + known, printer);
    return std::nullopt;
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
    fail(Strict::Kind::Outside,
         "the offset moves the start " + Inspect::addressText(start) +
             " out of the 32-bit address space",
         "", printer);
    return std::nullopt;
}

}  // namespace

std::optional<std::string> scriptFor(const Conversion& conversion, Strict::Printer& printer) {
    const auto input = quoted(conversion.input, printer);
    const auto output = quoted(conversion.output, printer);
    const auto source = sourceOf(conversion.input, printer);
    const auto format = formatOf(conversion, printer);
    const auto image = Strict::readImage(conversion.input, printer);
    if (!input || !output || !source || !format || !image || printer.errors() != 0)
        return std::nullopt;
    std::string script = "NEW_BUFFER @Image " + *source + " " + *input;
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
    const ExportFormat* const row = CmdWriteFile::formatNamed(*format);
    if (image->startAddress && row != nullptr && row->hasStartAddress)
        script += " " + Inspect::addressText(*image->startAddress);
    const bool hasAddresses = row == nullptr || row->hasAddresses;
    if (conversion.fill.empty() && hasAddresses) script += " -skipUnwritten";
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
