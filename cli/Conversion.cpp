#include "cli/Conversion.hpp"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "io/InFile.hpp"
#include "io/formats/FormatDetection.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "platform/Paths.hpp"
#include "strict/ImageReading.hpp"
#include "strict/diagnostics/KeptDiagnostics.hpp"
#include "strict/script/PathArgument.hpp"
#include "strict/script/ProgramMaker.hpp"

namespace CommandLine {

namespace {

using namespace Parser::WrapperLib;
using Io::Formats::InputFormatRow;
using Parser::FormatChoice;
using Parser::Role;
using Strict::ExitCode;
using Strict::Piece;

constexpr std::uint64_t highestAddress = 0xFFFFFFFF;

const ExportFormat& rowOf(const FormatChoice& choice) {
    return CmdWriteFile::formats()[choice.row];
}

void fail(Strict::Kind kind, std::string text, std::string hint, Strict::Printer& printer) {
    printer.take({kind, std::move(text), std::nullopt, std::move(hint), {}});
}

/// What a file is, by its name and its contents. A pipe has no contents before it is read, and an
/// empty file has none at all.
Io::Formats::Detected detectedIn(const std::string& input) {
    if (!Platform::isRegularFile(input)) return {};
    try {
        const Platform::InputFile file = Io::openInput(input);
        return file.size() == 0 ? Io::Formats::Detected{} : Io::Formats::formatOf(input, file);
    } catch (const Io::bad_open&) {
        return {};  // the statement says why
    }
}

/// The name of the input is that of one format, and its contents are surely of another.
void refuseSource(const std::string& input, const InputFormatRow& named,
                  const InputFormatRow& detected, Strict::Printer& printer) {
    const auto option = [](const InputFormatRow& row) { return "--from " + std::string(row.word); };
    fail(Strict::Kind::WrongFormat,
         input + " has the ending of " + std::string(named.name) + " and the contents of " +
             std::string(detected.name),
         "say which it is: " + option(named) + " or " + option(detected), printer);
}

/// How a file is read.
struct Source {
    const InputFormatRow* format = nullptr;  ///< null if FROM_FILE finds it
};

/// How a file of a format is read that FROM_FILE may find by itself.
Source sourceBy(const InputFormatRow& row) {
    return {Io::Formats::isOfRecords(row) ? nullptr : &row};
}

/// How an input is read; nothing after a diagnostic.
///
/// @param given  its format; nothing if name and contents decide
std::optional<Source> sourceOf(const std::string& input, std::optional<Facts::InputFormat> given,
                               Strict::Printer& printer) {
    if (given) return Source{&Io::Formats::rowOf(*given)};
    const InputFormatRow* const named = Io::Formats::rowByEnding(input);
    const auto [format, foreign] = detectedIn(input);
    if (!foreign.empty()) return Source{};
    const bool isUnknown = !format || *format == Facts::InputFormat::RawBinary;
    if (named == nullptr && isUnknown && CmdWriteFile::formatByEnding(input) != nullptr) {
        // Read as raw bytes, it would put heads and digits of the format into the image.
        fail(Strict::Kind::WrongFormat,
             "files with the ending of " + input + " are written and not read", "", printer);
        return std::nullopt;
    }
    if (named == nullptr) return isUnknown ? Source{} : sourceBy(Io::Formats::rowOf(*format));
    const bool isShared = Io::Formats::hasEnding(input, named->sharedEndings);
    if (!format || (isShared && isUnknown)) return sourceBy(*named);
    const InputFormatRow& detected = Io::Formats::rowOf(*format);
    const bool areRecords = Io::Formats::isOfRecords(*named) && Io::Formats::isOfRecords(detected);
    if (isShared || areRecords || &detected == named) return sourceBy(detected);
    refuseSource(input, *named, detected, printer);
    return std::nullopt;
}

/// The format, given or of the ending; nothing after a diagnostic.
std::optional<FormatChoice> formatOf(const Conversion& conversion, Strict::Printer& printer) {
    if (conversion.format) return conversion.format;
    const ExportFormat* const named = CmdWriteFile::formatByEnding(conversion.output);
    if (named != nullptr && named->choice != nullptr) {
        fail(Strict::Kind::WrongFormat,
             "the ending of " + conversion.output + " names several formats",
             "give one of them by --format: " + std::string(named->choice), printer);
        return std::nullopt;
    }
    if (named != nullptr)
        return Parser::formatIn(named->usualForm == nullptr ? named->keyword : named->usualForm);
    std::string known;
    for (const ExportFormat& format : CmdWriteFile::formats())
        for (const std::string_view ending : format.endings)
            if (format.choice == nullptr)
                known += (known.empty() ? "" : ", ") + std::string(ending);
    fail(Strict::Kind::WrongFormat, "the ending of " + conversion.output + " names no format",
         "give --format, or one of the endings " + known, printer);
    return std::nullopt;
}

/// What the statements need to know of the input.
struct InputFacts {
    std::uint64_t lowest = 0;  ///< address
    std::optional<std::uint64_t> startAddress;
    Buffer::AreaList filled;  ///< that a filler has to lie under; empty if it is all of the image
    /// What was read. Null if there is anything odd about it, which the run is to report: it reads
    /// the file again.
    std::unique_ptr<Io::Import::TessaronImportApi> reader;
};

/// A filler is for short gaps alone, in all of an image that is where its file has it.
bool fillsParts(const Conversion& conversion) {
    const Arranging& arranging = conversion.arranging;
    return !conversion.fill.empty() && arranging.shortGaps && !conversion.crop && !arranging.lane &&
           arranging.interleave == 0;
}

/// The parts of an image with data in `areas` that a filler has to lie under so that short gaps are
/// filled and ends are aligned; none if it is all of the image. Parts far from each other keep
/// their distance.
Buffer::AreaList filledParts(const Buffer::AreaList& areas, const Arranging& arranging) {
    constexpr std::uint64_t near = std::uint64_t{1} << 20U;
    const std::uint64_t alignment = arranging.alignment;
    Buffer::AreaList parts = Inspect::joined(
        areas, std::max({near, std::uint64_t{*arranging.shortGaps}, 2 * alignment}));
    if (parts.size() < 2) return {};
    const std::uint64_t lowest = parts.front().start;
    const std::uint64_t highest = parts.back().end();
    for (Buffer::Area& part : parts) {
        const std::uint64_t start = part.start - std::min(alignment, part.start - lowest);
        const std::uint64_t end = std::min(part.end() + alignment, highest);
        part = {start, end - start};
    }
    return parts;
}

/// Reads the input for its facts; nothing after a diagnostic.
std::optional<InputFacts> factsOf(const Conversion& conversion, const FormatChoice& format,
                                  Strict::Printer& printer) {
    const std::string& input = conversion.input;
    Strict::KeptDiagnostics kept;
    const std::uint32_t given = conversion.arranging.inputUnit;
    const std::uint32_t unit = given == 0 ? 1 : given;
    Io::Import::ReadOptions options{.addressUnit = unit};
    if (conversion.family) options.family = conversion.family->number;
    auto reader = conversion.sections.isEmpty()
                      ? Strict::readFile(input, conversion.inputFormat, options, kept)
                      : Strict::readSections(input, conversion.sections, unit, kept);
    if (reader == nullptr || conversion.printsScript) kept.pass(printer);
    if (reader == nullptr) return std::nullopt;
    if (!conversion.printsScript && !Platform::isRegularFile(input)) {
        fail(Strict::Kind::CannotOpen, input + " can be read only once",
             "save it in a file: its addresses are needed before it is converted", printer);
        return std::nullopt;
    }
    InputFacts facts;
    facts.lowest = reader->getMinAddress();
    if (reader->hasStartAddress()) facts.startAddress = reader->getStartAddress();
    if (fillsParts(conversion))
        facts.filled = filledParts(reader->getDataAreas(), conversion.arranging);
    for (Buffer::Area& part : facts.filled) part.start += conversion.offset;
    if (kept.isEmpty()) facts.reader = std::move(reader);
    // It moves with the data. 0 counts as none.
    if (facts.startAddress.value_or(0) != 0) *facts.startAddress += conversion.offset;
    const bool isIn32Bits = facts.startAddress.value_or(0) <= highestAddress;
    if (isIn32Bits || !rowOf(format).hasStartAddress) return facts;
    fail(Strict::Kind::Outside,
         "the start address " + Inspect::addressText(*facts.startAddress) + " of " + input +
             " has more than 32 bits",
         "bring it into range by --offset, or choose a format without a start address", printer);
    return std::nullopt;
}

/// The address that the image begins with after it was moved; nothing after a diagnostic.
std::optional<std::uint32_t> movedStart(const Conversion& conversion, std::uint64_t lowest,
                                        Strict::Printer& printer) {
    const auto& lane = conversion.arranging.lane;
    std::uint64_t start = conversion.crop ? conversion.crop->start : lowest;
    if (lane && lane->lanes != 0 && lane->width != 0)
        start = Buffer::Bus{lane->lanes, lane->width}.laneAddress(lane->lane, start);
    const std::uint64_t moved = start + conversion.offset;
    if (moved <= highestAddress) return static_cast<std::uint32_t>(moved);
    fail(Strict::Kind::Outside,
         "the offset moves the start " + Inspect::addressText(start) +
             " out of the 32-bit address space",
         "", printer);
    return std::nullopt;
}

void addAddress(Piece& piece, std::uint64_t address) {
    piece.addNumber(static_cast<std::uint32_t>(address), Inspect::addressText(address));
}

Piece pieceOf(const Buffer::Area& area) {
    Piece piece("{");
    addAddress(piece, area.start);
    piece << ", ";
    addAddress(piece, area.length);
    piece << "}";
    return piece;
}

/// All that a conversion is made of.
struct Steps {
    std::string input;
    Source source;
    std::optional<Buffer::Area> crop;
    std::optional<std::uint32_t> movedStart;
    std::vector<std::uint8_t> fill;
    std::string output;
    std::optional<std::uint32_t> startAddress;
    FormatChoice format;
    Arranging arranging;
    std::vector<Source> furtherSources;  ///< of the further inputs
    std::string elfTemplate = {};
    Io::Import::SectionChoice sections = {};
    std::optional<FormatChoice> family = {};
    Buffer::AreaList filled = {};  ///< where `fill` is laid; everywhere if empty
    std::unique_ptr<Io::Import::TessaronImportApi> reader = {};  ///< of the input, if it is read
};

constexpr const char* imageName = "@Image";

/// Adds an option whose value is a number.
void addNumber(Strict::ProgramMaker& maker, const char* option, Role role, std::uint32_t number) {
    for (const char* const text : {" ", option, "="}) maker.add(text);
    Piece piece("");
    piece.addNumber(number, std::to_string(number));
    maker.add(role, piece);
}

/// Adds an option whose value is a digit.
void addDigit(Strict::ProgramMaker& maker, const char* option, Role role, std::uint32_t digit) {
    for (const char* const text : {" ", option, "="}) maker.add(text);
    maker.add(role, std::to_string(digit));
}

/// Adds the options of the statement that makes the image which is written.
void addArrangement(Strict::ProgramMaker& maker, CmdNewBuffer& image, const Steps& steps) {
    const Arranging& arranging = steps.arranging;
    if (arranging.interleave != 0) {
        image.setInterleave(arranging.interleave);
        addNumber(maker, "-interleave", Role::Interleave, arranging.interleave);
    }
    if (const auto& lane = arranging.lane) {
        image.setLane({lane->lane, lane->lanes, lane->width});
        maker.add(" -useLane=");
        Piece numbers("{");
        for (const std::uint32_t number : {lane->lane, lane->lanes, lane->width}) {
            if (!numbers.numbers().empty()) numbers << ", ";
            numbers.addNumber(number, std::to_string(number));
        }
        numbers << "}";
        maker.add(Role::Lane, numbers);
    }
    // Words are those of a bus. Without one they are filled up before they are swapped.
    if (arranging.swappedWord != 0 && arranging.lane) {
        image.setSwappedWord(arranging.swappedWord);
        addDigit(maker, "-swapBytes", Role::SwapBytes, arranging.swappedWord);
    }
    if (!steps.movedStart) return;
    image.setNewStartAddress(*steps.movedStart);
    Piece option("-changeStartAddressTo=");
    addAddress(option, *steps.movedStart);
    maker.addWord(Role::Address, option);
}

/// Adds an option that names sections, unless there are none.
template <class Set>
void addSections(Strict::ProgramMaker& maker, const char* option,
                 const std::vector<std::string>& names, Set set) {
    if (names.empty()) return;
    maker.add(std::string(" ") + option + "={");
    for (const std::string& name : names) {
        set(name);
        if (&name != &names.front()) maker.add(", ");
        maker.add(Role::Sections, name);
    }
    maker.add("}");
}

/// The number of a format, by its name if it has one.
Piece numberOf(const FormatChoice& format) {
    Piece number(Parser::nameIn(format));
    if (number.text().empty()) number.addNumber(*format.number, std::to_string(*format.number));
    return number;
}

/// Adds the statement that makes an image of a file.
///
/// @param isLast  it is the image that is written
/// @return what executes the statement
CmdNewBuffer& addNewBuffer(Strict::ProgramMaker& maker, const Steps& steps, const std::string& name,
                           const std::string& input, const Source& source, bool isLast) {
    auto& image = maker.begin<CmdNewBuffer>("NEW_BUFFER");
    image.setBufferName(name);
    maker.addWord(Role::MakesImage, name);
    const InputFormatRow* const format = source.format;
    image.setPath(input, format);
    maker.add(
        std::string(" ").append(format == nullptr ? "FROM_FILE" : Io::Formats::sourceOf(*format)));
    using Parser::FileReading;
    const FileReading reading = format == nullptr ? FileReading::Detected : FileReading::Named;
    maker.addPath(Role::InputFile, input, static_cast<std::uint32_t>(reading));
    addSections(maker, "-useSections", steps.sections.used,
                [&image](const std::string& section) { image.useSection(section); });
    addSections(maker, "-skipSections", steps.sections.skipped,
                [&image](const std::string& section) { image.skipSection(section); });
    if (steps.family) {
        image.setFamily(steps.family->number.value_or(0));
        maker.add(" -useFamily=");
        maker.add(Role::Family, numberOf(*steps.family));
    }
    if (steps.crop) {
        image.setBufferRange(*steps.crop);
        maker.add(" -useBufferRange=");
        maker.add(Role::Range, pieceOf(*steps.crop));
    }
    if (steps.arranging.inputUnit != 0) {
        image.setAddressUnit(steps.arranging.inputUnit);
        addDigit(maker, "-setAddressUnit", Role::AddressUnit, steps.arranging.inputUnit);
    }
    if (isLast) addArrangement(maker, image, steps);
    maker.end();
    return image;
}

/// Adds the statements that make the image which is written.
void addImage(Strict::ProgramMaker& maker, Steps& steps) {
    const auto& further = steps.arranging.furtherInputs;
    const bool isOnly = steps.arranging.interleave == 0;
    std::vector<std::string> lanes{isOnly ? imageName : "@Lane0"};
    addNewBuffer(maker, steps, lanes.front(), steps.input, steps.source, isOnly)
        .setReader(std::move(steps.reader));
    if (isOnly) return;
    for (std::size_t i = 0; i < further.size(); ++i) {
        lanes.push_back("@Lane" + std::to_string(i + 1));
        addNewBuffer(maker, steps, lanes.back(), further[i], steps.furtherSources[i], false);
    }
    auto& image = maker.begin<CmdNewBuffer>("NEW_BUFFER");
    image.setBufferName(imageName);
    maker.addWord(Role::MakesImage, imageName);
    maker.add(" FROM_BUFFERS {");
    for (const std::string& lane : lanes) {
        image.addSourceBuffer(lane);
        if (&lane != &lanes.front()) maker.add(", ");
        maker.add(Role::UsesImage, lane);
    }
    maker.add("}");
    addArrangement(maker, image, steps);
    maker.end();
}

void addFillBuffer(Strict::ProgramMaker& maker, const Steps& steps) {
    auto& fill = maker.begin<CmdFillBuffer>("FILL_BUFFER");
    fill.setBufferName(imageName);
    maker.addWord(Role::ChangesImage, imageName);
    fill.setFillPattern({steps.fill.begin(), steps.fill.end()});
    maker.add(" WITH_FILLER");
    Piece bytes("{");
    for (const std::uint8_t byte : steps.fill) {
        if (!bytes.numbers().empty()) bytes << ", ";
        bytes.addNumber(byte, std::to_string(byte));
    }
    bytes << "}";
    maker.addWord(Role::Filler, bytes);
    if (!steps.filled.empty()) maker.add(" -useAreas={");
    for (const Buffer::Area& area : steps.filled) {
        fill.addArea(area);
        if (&area != &steps.filled.front()) maker.add(", ");
        maker.add(Role::Area, pieceOf(area));
    }
    if (!steps.filled.empty()) maker.add("}");
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
    maker.add(Role::Format, numberOf(format), format.row);
}

void addWriteFile(Strict::ProgramMaker& maker, const Steps& steps) {
    auto& write = maker.begin<CmdWriteFile>("WRITE_FILE");
    write.setPath(steps.output);
    maker.addPath(Role::OutputFile, steps.output);
    write.addBuffer(imageName);
    maker.add(" WITH_BUFFERS {");
    maker.add(Role::UsesImage, imageName);
    maker.add("}");
    if (steps.startAddress) {
        write.setExecutionStartAddress(*steps.startAddress);
        Piece start("");
        addAddress(start, *steps.startAddress);
        maker.addWord(Role::Start, start);
    }
    const ExportFormat& format = rowOf(steps.format);
    const Arranging& arranging = steps.arranging;
    if (arranging.shortGaps) {
        write.setShortGaps(*arranging.shortGaps);
        addNumber(maker, "-fillGapsUpTo", Role::ShortGaps, *arranging.shortGaps);
    } else if (steps.fill.empty() && format.hasAddresses) {
        write.skipUnwritten();
        maker.addWord(Role::Gaps, "-skipUnwritten");
    }
    if (arranging.swappedWord != 0 && !arranging.lane) {
        write.setSwappedWord(arranging.swappedWord);
        addDigit(maker, "-swapBytes", Role::SwapBytes, arranging.swappedWord);
    }
    if (arranging.alignment != 0) {
        write.setAlignment(arranging.alignment);
        addNumber(maker, "-alignTo", Role::Alignment, arranging.alignment);
    }
    if (arranging.outputUnit != 0) {
        write.setAddressUnit(arranging.outputUnit);
        addDigit(maker, "-setAddressUnit", Role::AddressUnit, arranging.outputUnit);
    }
    write.setFormat(format);
    if (steps.format.number) write.setFormatNumber(format, *steps.format.number);
    maker.add(" -setFormat=");
    addFormat(maker, steps.format);
    if (!steps.elfTemplate.empty()) {
        write.setElfTemplatePath(steps.elfTemplate);
        maker.add(" -setElfTemplate=");
        maker.addPath(Role::Template, steps.elfTemplate);
    }
    maker.end();
}

/// The output is a copy of a file that is named, or needs none. False after a diagnostic.
bool hasTemplate(const Conversion& conversion, const FormatChoice& format,
                 Strict::Printer& printer) {
    const bool isNamed = !conversion.elfTemplate.empty();
    if (rowOf(format).needsTemplate == isNamed) return true;
    fail(Strict::Kind::WrongFormat,
         isNamed ? std::string("--elf-template is for ELF files, and the output is ") +
                       rowOf(format).keyword
                 : "an ELF file is written as a copy of one",
         isNamed ? "" : "name the one to copy by --elf-template", printer);
    return false;
}

/// A statement with that source reads a file of the format as it was found to be.
bool reads(const Source& source, Facts::InputFormat format) {
    if (source.format != nullptr) return source.format->format == format;
    return Io::Formats::isOfRecords(Io::Formats::rowOf(format)) ||
           format == Facts::InputFormat::RawBinary;
}

/// What the conversion does, or nothing after a diagnostic.
std::optional<Steps> stepsOf(const Conversion& conversion, Strict::Printer& printer) {
    const auto source = sourceOf(conversion.input, conversion.inputFormat, printer);
    const auto format = formatOf(conversion, printer);
    if (!source || !format || !hasTemplate(conversion, *format, printer)) return std::nullopt;
    if (conversion.crop &&
        (conversion.crop->start > highestAddress || conversion.crop->length > highestAddress)) {
        fail(Strict::Kind::Outside, "the area to keep leaves the 32-bit address space", "",
             printer);
        return std::nullopt;
    }
    Steps steps{conversion.input,
                *source,
                conversion.crop,
                {},
                conversion.fill,
                conversion.output,
                {},
                *format,
                conversion.arranging,
                {},
                conversion.elfTemplate,
                conversion.sections,
                conversion.family};
    for (const std::string& further : conversion.arranging.furtherInputs) {
        const auto furtherSource = sourceOf(further, conversion.inputFormat, printer);
        if (!furtherSource) return std::nullopt;
        steps.furtherSources.push_back(*furtherSource);
    }
    const bool hasStart = rowOf(*format).hasStartAddress;
    const bool hasParts = fillsParts(conversion) && Platform::isRegularFile(conversion.input);
    if (!hasStart && conversion.offset == 0 && !hasParts) return steps;
    auto facts = factsOf(conversion, *format, printer);
    if (!facts) return std::nullopt;
    steps.filled = std::move(facts->filled);
    if (facts->reader != nullptr && reads(steps.source, facts->reader->getFormat()))
        steps.reader = std::move(facts->reader);
    if (hasStart && facts->startAddress)
        steps.startAddress = static_cast<std::uint32_t>(*facts->startAddress);
    if (conversion.offset == 0) return steps;
    steps.movedStart = movedStart(conversion, facts->lowest, printer);
    if (!steps.movedStart) return std::nullopt;
    return steps;
}

/// Prints the script that does the same, unless there is none.
ExitCode print(const Conversion& conversion, const Strict::Program& program,
               Strict::Printer& printer, std::ostream& output) {
    std::vector<std::string> inputs{conversion.input};
    const auto& further = conversion.arranging.furtherInputs;
    inputs.insert(inputs.end(), further.begin(), further.end());
    std::vector<std::string> paths = inputs;
    paths.push_back(conversion.output);
    if (!conversion.elfTemplate.empty()) paths.push_back(conversion.elfTemplate);
    for (const std::string& path : paths)
        if (const auto argument = Strict::argumentOf(path); !argument.obstacle.empty())
            fail(Strict::Kind::Syntax, "no script can name the file " + path, argument.obstacle,
                 printer);
    const auto& given = conversion.inputFormat;
    const bool isRecords = given && Io::Formats::isOfRecords(Io::Formats::rowOf(*given));
    for (const std::string& input : inputs)
        if (isRecords && detectedIn(input).format != given)
            fail(Strict::Kind::WrongFormat,
                 "no script can say that " + input + " is read as " +
                     std::string(Io::Formats::rowOf(*given).name),
                 "FROM_FILE takes it for something else", printer);
    if (printer.errors() != 0) return ExitCode::Failed;
    output << program.text().written() << std::flush;
    if (output) return ExitCode::Good;
    fail(Strict::Kind::ShortWrite, "standard output could not be written completely", "", printer);
    return ExitCode::Failed;
}

}  // namespace

std::optional<Strict::Program> programFor(const Conversion& conversion, Strict::Printer& printer) {
    auto steps = stepsOf(conversion, printer);
    if (!steps) return std::nullopt;
    Strict::ProgramMaker maker;
    addImage(maker, *steps);
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
