#include "cli/Conversion.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string_view>

#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "platform/Paths.hpp"
#include "strict/ImageReading.hpp"
#include "strict/script/PathArgument.hpp"
#include "strict/script/ProgramMaker.hpp"

namespace CommandLine {

namespace {

using namespace Parser::WrapperLib;
using Parser::FormatChoice;
using Parser::Role;
using Strict::ExitCode;
using Strict::Piece;

constexpr std::uint64_t highestAddress = 0xFFFFFFFF;

/// The sources of NEW_BUFFER, by the kinds of files.
constexpr std::array sourceKeywords{"FROM_FILE", "FROM_FILE_BINARY", "FROM_ELF", "FROM_UF2",
                                    "FROM_TI_TXT"};

/// What an ending of a file's name says about its contents.
struct Ending {
    std::string_view ending;
    std::optional<FileKind> source;  ///< nothing for a format that is written only
    const char* format;              ///< of WRITE_FILE; null for a format that is read only
    /// What the user has to choose from, where `format` is only the first part of the keyword.
    const char* choice = nullptr;
};

constexpr std::array endings{
    Ending{".hex", FileKind::Detected, "IntelHexExtended"},
    Ending{".ihx", FileKind::Detected, "IntelHexExtended"},
    Ending{".ihex", FileKind::Detected, "IntelHexExtended"},
    Ending{".mot", FileKind::Detected, "MotorolaS_32"},
    Ending{".s19", FileKind::Detected, "MotorolaS_32"},
    Ending{".s28", FileKind::Detected, "MotorolaS_32"},
    Ending{".s37", FileKind::Detected, "MotorolaS_32"},
    Ending{".srec", FileKind::Detected, "MotorolaS_32"},
    Ending{".sre", FileKind::Detected, "MotorolaS_32"},
    Ending{".elf", FileKind::Elf, nullptr},
    Ending{".axf", FileKind::Elf, nullptr},
    Ending{".out", FileKind::Elf, nullptr},
    Ending{".uf2", FileKind::Uf2, "Uf2_", "a family, such as Uf2_RP2040"},
    Ending{".txt", FileKind::TiTxt, "TiTxt"},
    Ending{".dfu", std::nullopt, "DfuSe"},
    Ending{".bin", FileKind::Raw, "RawBinary"},
    Ending{".raw", FileKind::Raw, "RawBinary"},
    Ending{".img", FileKind::Raw, "RawBinary"},
    Ending{".h", std::nullopt, "CArray"},
    Ending{".vmem", std::nullopt, "Vmem_", "Vmem_1, Vmem_2, Vmem_4 or Vmem_8"},
};

/// The beginnings of the keywords of formats with a start address.
constexpr std::array<std::string_view, 2> withStart{"IntelHex", "MotorolaS"};

const Ending* endingOf(std::string path) {
    std::ranges::transform(path, path.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto* const found = std::ranges::find_if(
        endings, [&path](const Ending& known) { return path.ends_with(known.ending); });
    return found == endings.end() ? nullptr : found;
}

/// Whether the keyword is that of one of the formats.
bool isOneOf(std::span<const std::string_view> formats, std::string_view keyword) {
    return std::ranges::any_of(
        formats, [keyword](std::string_view format) { return keyword.starts_with(format); });
}

const ExportFormat& rowOf(const FormatChoice& choice) {
    return CmdWriteFile::formats()[choice.row];
}

void fail(Strict::Kind kind, std::string text, std::string hint, Strict::Printer& printer) {
    printer.take({kind, std::move(text), std::nullopt, std::move(hint), {}});
}

/// How the file is read, by its ending; nothing after a diagnostic.
std::optional<FileKind> sourceOf(const std::string& input, Strict::Printer& printer) {
    const Ending* const named = endingOf(input);
    if (named == nullptr) return FileKind::Detected;
    if (named->source) return named->source;
    // Read as raw bytes, it would put heads and digits of the format into the image.
    fail(Strict::Kind::WrongFormat,
         "files with the ending of " + input + " are written and not read", "", printer);
    return std::nullopt;
}

/// The format, given or of the ending; nothing after a diagnostic.
std::optional<FormatChoice> formatOf(const Conversion& conversion, Strict::Printer& printer) {
    if (conversion.format) return conversion.format;
    const Ending* const named = endingOf(conversion.output);
    if (named != nullptr && named->choice != nullptr) {
        fail(Strict::Kind::WrongFormat,
             "the ending of " + conversion.output + " names several formats",
             "give one of them by --format: " + std::string(named->choice), printer);
        return std::nullopt;
    }
    if (named != nullptr && named->format != nullptr) return Parser::formatIn(named->format);
    std::string known;
    for (const Ending& ending : endings)
        if (ending.format != nullptr && ending.choice == nullptr)
            known += (known.empty() ? "" : ", ") + std::string(ending.ending);
    fail(Strict::Kind::WrongFormat, "the ending of " + conversion.output + " names no format",
         "give --format, or one of the endings " + known, printer);
    return std::nullopt;
}

/// Keeps diagnostics back.
class Kept final : public Strict::DiagnosticSink {
public:
    void take(const Strict::Diagnostic& diagnostic) override { all_.push_back(diagnostic); }

    void pass(Strict::DiagnosticSink& other) const {
        for (const Strict::Diagnostic& diagnostic : all_) other.take(diagnostic);
    }

private:
    std::vector<Strict::Diagnostic> all_;
};

/// What the statements need to know of the input.
struct InputFacts {
    std::uint64_t lowest = 0;  ///< address
    std::optional<std::uint64_t> startAddress;
};

/// Reads the input for its facts; nothing after a diagnostic. A run reads it again and reports
/// what is odd about it.
std::optional<InputFacts> factsOf(const Conversion& conversion, Strict::Printer& printer) {
    const std::string& input = conversion.input;
    Kept kept;
    const auto image = Strict::readImage(input, kept);
    if (!image || conversion.printsScript) kept.pass(printer);
    if (!image) return std::nullopt;
    if (!conversion.printsScript && !Platform::isRegularFile(input)) {
        fail(Strict::Kind::CannotOpen, input + " can be read only once",
             "save it in a file: its addresses are needed before it is converted", printer);
        return std::nullopt;
    }
    InputFacts facts;
    if (!image->parts.empty()) facts.lowest = image->parts.front().getStartAddress();
    facts.startAddress = image->startAddress;
    if (!facts.startAddress || *facts.startAddress <= highestAddress) return facts;
    fail(Strict::Kind::Outside,
         "the start address " + Inspect::addressText(*facts.startAddress) + " of " + input +
             " has more than 32 bits",
         "choose a format without a start address", printer);
    return std::nullopt;
}

/// The address that the image begins with after it was moved; nothing after a diagnostic.
std::optional<std::uint32_t> movedStart(const Conversion& conversion, std::uint64_t lowest,
                                        Strict::Printer& printer) {
    const std::uint64_t start = conversion.crop ? conversion.crop->start : lowest;
    const auto moved = static_cast<std::int64_t>(start) + conversion.offset;
    if (moved >= 0 && moved <= static_cast<std::int64_t>(highestAddress))
        return static_cast<std::uint32_t>(moved);
    fail(Strict::Kind::Outside,
         "the offset moves the start " + Inspect::addressText(start) +
             " out of the 32-bit address space",
         "", printer);
    return std::nullopt;
}

void addAddress(Piece& piece, std::uint64_t address) {
    piece.addNumber(static_cast<std::uint32_t>(address), Inspect::addressText(address));
}

/// All that a conversion is made of.
struct Steps {
    std::string input;
    FileKind source;
    std::optional<Buffer::Area> crop;
    std::optional<std::uint32_t> movedStart;
    std::vector<std::uint8_t> fill;
    std::string output;
    std::optional<std::uint32_t> startAddress;
    FormatChoice format;
};

constexpr const char* imageName = "@Image";

void addNewBuffer(Strict::ProgramMaker& maker, const Steps& steps) {
    auto& image = maker.begin<CmdNewBuffer>("NEW_BUFFER");
    image.setBufferName(imageName);
    maker.add(" ");
    maker.add(Role::MakesImage, imageName);
    const auto kind = static_cast<std::uint32_t>(steps.source);
    image.setPath(steps.input, steps.source);
    maker.add(std::string(" ") + sourceKeywords[kind] + " ");
    maker.add(Role::InputFile, Strict::argumentOf(steps.input).text, kind);
    if (steps.crop) {
        image.setBufferRange(*steps.crop);
        maker.add(" -useBufferRange=");
        Piece range("{");
        addAddress(range, steps.crop->start);
        range << ", ";
        addAddress(range, steps.crop->length);
        range << "}";
        maker.add(Role::Range, range);
    }
    if (steps.movedStart) {
        image.setNewStartAddress(*steps.movedStart);
        maker.add(" ");
        Piece option("-changeStartAddressTo=");
        addAddress(option, *steps.movedStart);
        maker.add(Role::Address, option);
    }
    maker.end();
}

void addFillBuffer(Strict::ProgramMaker& maker, const Steps& steps) {
    auto& fill = maker.begin<CmdFillBuffer>("FILL_BUFFER");
    fill.setBufferName(imageName);
    maker.add(" ");
    maker.add(Role::ChangesImage, imageName);
    fill.setFillPattern({steps.fill.begin(), steps.fill.end()});
    maker.add(" WITH_FILLER ");
    Piece bytes("{");
    for (const std::uint8_t byte : steps.fill) {
        if (!bytes.numbers().empty()) bytes << ", ";
        bytes.addNumber(byte, std::to_string(byte));
    }
    bytes << "}";
    maker.add(Role::Filler, bytes);
    maker.end();
}

/// Adds the keyword of the format, or the keyword and the number, which is the part then.
void addFormat(Strict::ProgramMaker& maker, const FormatChoice& format) {
    const std::string keyword = rowOf(format).keyword;
    if (!format.number) {
        maker.add(Role::Format, keyword, format.row);
        return;
    }
    maker.add(keyword + "_");
    Piece number(Parser::nameIn(format));
    if (number.text().empty()) number.addNumber(*format.number, std::to_string(*format.number));
    maker.add(Role::Format, number, format.row);
}

void addWriteFile(Strict::ProgramMaker& maker, const Steps& steps) {
    auto& write = maker.begin<CmdWriteFile>("WRITE_FILE");
    write.setPath(steps.output);
    maker.add(" ");
    maker.add(Role::OutputFile, Strict::argumentOf(steps.output).text);
    write.addBuffer(imageName);
    maker.add(" WITH_BUFFERS {");
    maker.add(Role::UsesImage, imageName);
    maker.add("}");
    if (steps.startAddress) {
        write.setExecutionStartAddress(*steps.startAddress);
        maker.add(" ");
        Piece start("");
        addAddress(start, *steps.startAddress);
        maker.add(Role::Start, start);
    }
    const ExportFormat& format = rowOf(steps.format);
    if (steps.fill.empty() && format.hasAddresses) {
        write.skipUnwritten();
        maker.add(" ");
        maker.add(Role::Gaps, "-skipUnwritten");
    }
    write.setFormat(format, steps.format.number);
    maker.add(" -setFormat=");
    addFormat(maker, steps.format);
    maker.end();
}

/// What the conversion does, or nothing after a diagnostic.
std::optional<Steps> stepsOf(const Conversion& conversion, Strict::Printer& printer) {
    const auto source = sourceOf(conversion.input, printer);
    const auto format = formatOf(conversion, printer);
    if (!source || !format) return std::nullopt;
    if (conversion.crop &&
        (conversion.crop->start > highestAddress || conversion.crop->length > highestAddress)) {
        fail(Strict::Kind::Outside, "the area to keep leaves the 32-bit address space", "",
             printer);
        return std::nullopt;
    }
    Steps steps{conversion.input,  *source, conversion.crop, {}, conversion.fill,
                conversion.output, {},      *format};
    const bool hasStart = isOneOf(withStart, rowOf(*format).keyword);
    if (!hasStart && conversion.offset == 0) return steps;
    const auto facts = factsOf(conversion, printer);
    if (!facts) return std::nullopt;
    if (hasStart && facts->startAddress)
        steps.startAddress = static_cast<std::uint32_t>(*facts->startAddress);
    if (conversion.offset == 0) return steps;
    steps.movedStart = movedStart(conversion, facts->lowest, printer);
    return steps.movedStart ? std::optional(steps) : std::nullopt;
}

/// Prints the script that does the same, unless there is none.
ExitCode print(const Conversion& conversion, const Strict::Program& program,
               Strict::Printer& printer, std::ostream& output) {
    for (const std::string& path : {conversion.input, conversion.output})
        if (const auto argument = Strict::argumentOf(path); !argument.obstacle.empty())
            fail(Strict::Kind::Syntax, "no script can name the file " + path, argument.obstacle,
                 printer);
    if (printer.errors() != 0) return ExitCode::Failed;
    output << program.text().written() << std::flush;
    return output ? ExitCode::Good : ExitCode::Failed;
}

}  // namespace

std::optional<Strict::Program> programFor(const Conversion& conversion, Strict::Printer& printer) {
    const auto steps = stepsOf(conversion, printer);
    if (!steps) return std::nullopt;
    Strict::ProgramMaker maker;
    addNewBuffer(maker, *steps);
    if (!steps->fill.empty()) addFillBuffer(maker, *steps);
    addWriteFile(maker, *steps);
    return maker.finish("<convert>");
}

ExitCode convert(const Conversion& conversion, Strict::Printer& printer, std::ostream& output) {
    const auto program = programFor(conversion, printer);
    if (!program || printer.errors() != 0) return ExitCode::Failed;
    return conversion.printsScript ? print(conversion, *program, printer, output)
                                   : Strict::run(*program, printer, output);
}

}  // namespace CommandLine
