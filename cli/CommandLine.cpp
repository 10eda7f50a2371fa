#include "cli/CommandLine.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <string_view>

#include "cli/KindPages.hpp"
#include "cli/Listing.hpp"
#include "io/formats/InputFormats.hpp"
#include "platform/Paths.hpp"
#include "platform/Version.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/script/TypeAdvice.hpp"
#include "util/Printable.hpp"

namespace CommandLine {

namespace {

/// The options that are texts until all of the command line is known.
struct Texts {
    std::string command;  ///< the first argument
    std::vector<std::string> operands;
    std::vector<std::string> definitions;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;
    std::vector<std::string> ignored;
    bool areWarningsErrors = false;
    std::vector<std::string> ignoredAreas;
    std::string crop;
    std::string fill;
    std::string offset;
    std::string sections;
    std::string skippedSections;
    std::string family;
    std::optional<std::string> format;
    std::string lane;
    std::string interleave;
    std::string shortGaps;
    std::string alignment;
    std::vector<std::string> fileFormats;    ///< of the files that are inspected
    std::optional<std::string> inputFormat;  ///< of the file that is converted
};

/// The number that a text is as a whole, decimal or with 0x hexadecimal; 0x may be followed by
/// sixteen digits.
std::uint64_t numberIn(const std::string& option, std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = isHex ? text.substr(2) : text;
    std::uint64_t number = 0;
    const auto end =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
    if (end.ec != std::errc() || end.ptr != digits.data() + digits.size())
        throw CLI::ValidationError(option, std::string(text) + " is not a number");
    return number;
}

/// The numbers of a list "1, 0x2", which may be in braces.
std::vector<std::uint64_t> numbersIn(const std::string& option, std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '{' || c == '}'; });
    std::vector<std::uint64_t> numbers;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        numbers.push_back(numberIn(option, std::string_view(text).substr(at, comma - at)));
        at = comma + 1;
    }
    return numbers;
}

/// The names of a list ".text, .data", which may be in braces; none if the text is empty.
std::vector<std::string> namesIn(const std::string& option, const std::string& text) {
    constexpr std::string_view delimiters = ",; {}";
    std::vector<std::string> names;
    for (std::size_t at = text.find_first_not_of(delimiters); at != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(delimiters, at), text.size());
        names.push_back(text.substr(at, end - at));
        at = text.find_first_not_of(delimiters, end);
    }
    if (names.empty() && !text.empty())
        throw CLI::ValidationError(option, text + " names no section");
    return names;
}

Buffer::Area areaIn(const std::string& option, const std::string& text) {
    const auto numbers = numbersIn(option, text);
    if (numbers.size() != 2 || numbers[0] + numbers[1] < numbers[0])
        throw CLI::ValidationError(option, text + " is not an area START,LENGTH");
    if (numbers[1] == 0) throw CLI::ValidationError(option, text + " has no address");
    return {numbers[0], numbers[1]};
}

/// A number of up to 32 bits that is not 0.
std::uint32_t positiveIn(const std::string& option, const std::string& text) {
    const std::uint64_t number = numberIn(option, text);
    if (number == 0 || number > std::numeric_limits<std::uint32_t>::max())
        throw CLI::ValidationError(option, text + " is not a number from 1 to 0xFFFFFFFF");
    return static_cast<std::uint32_t>(number);
}

/// A lane I,N,W of a bus.
Parser::WrapperLib::Arrangement::Lane laneIn(const std::string& option, const std::string& text) {
    const auto numbers = numbersIn(option, text);
    const bool isLane = numbers.size() == 3 && numbers[0] < numbers[1] && numbers[2] != 0 &&
                        numbers[1] <= std::numeric_limits<std::uint32_t>::max() &&
                        numbers[2] <= std::numeric_limits<std::uint32_t>::max();
    if (!isLane)
        throw CLI::ValidationError(
            option, text + " is not a lane LANE,LANES,WIDTH; lanes are counted from 0");
    const auto number = [&](std::size_t i) { return static_cast<std::uint32_t>(numbers[i]); };
    return {number(0), number(1), number(2)};
}

/// A format as -setFormat takes it.
Parser::FormatChoice formatIn(const std::string& option, const std::string& text) {
    if (const auto format = Parser::formatIn(text)) return *format;
    const Strict::TypeAdvice advice = Strict::adviceOnFormat(text);
    throw CLI::ValidationError(
        option, "\"" + text + "\" is not a format; " +
                    (advice.hint.empty() ? "tessaron help formats lists them" : advice.hint));
}

/// A family of devices, as the formats of UF2 name it.
Parser::FormatChoice familyIn(const std::string& text) {
    if (const auto format = Parser::formatIn("Uf2_" + text)) return *format;
    const auto* const format = Parser::WrapperLib::CmdWriteFile::formatNamed("Uf2_");
    const Strict::TypeAdvice advice = Strict::adviceOnFormatName(*format, text);
    throw CLI::ValidationError(
        "--family", "\"" + text + "\" is not a family; " +
                        (advice.hint.empty() ? "info lists those of a file" : advice.hint));
}

/// A format of input files, by its word or its name.
Facts::InputFormat inputFormatIn(const std::string& text) {
    if (const auto* const row = Io::Formats::rowCalled(text)) return row->format;
    std::vector<std::string> words;
    for (const auto& row : Io::Formats::inputFormats()) words.emplace_back(row.word);
    const std::string meant = Strict::didYouMean(text, words);
    throw CLI::ValidationError(
        "--from", "\"" + text + "\" is not a format" +
                      (meant.empty() ? "; there are " + CLI::detail::join(words, ", ") : meant));
}

/// A file that is read or written as a file, not as a stream.
void addPath(CLI::App& command, const std::string& name, std::string& path,
             const std::string& meaning, const std::string& type) {
    command.add_option(name, path, meaning)
        ->type_name(type)
        ->required()
        ->check([](const std::string& text) {
            if (text.empty()) return "the name of the file is empty";
            return text == "-" ? "a stream has no place here; a file of that name is ./-" : "";
        });
}

std::string version() {
    const std::string version = Platform::versionText();
    return version.empty() ? "tessaron" : "tessaron " + version;
}

/// Refuses an empty text, such as that of a variable of a shell that is not set: it would count as
/// if the option were not there.
std::string faultIfEmpty(const std::string& text) {
    return text.empty() ? "an empty text says nothing" : "";
}

/// Adds an option for a file to write or to read beside the operands.
CLI::Option* addFileOption(CLI::App& command, const std::string& name, std::string& path,
                           const std::string& meaning) {
    return command.add_option(name, path, meaning)->type_name("FILE")->check(&faultIfEmpty);
}

/// An option whose value is one of a few words.
template <class Value>
void addChoice(CLI::App& command, const std::string& option, const char* help, Value& value,
               const std::vector<std::pair<std::string, Value>>& choices) {
    std::string words;
    for (const auto& [word, meaning] : choices) words += (words.empty() ? "" : "|") + word;
    command
        .add_option_function<std::string>(
            option,
            [option, &value, choices, words](const std::string& text) {
                const auto chosen =
                    std::ranges::find(choices, text, [](const auto& c) { return c.first; });
                if (chosen == choices.end())
                    throw CLI::ValidationError(option, text + " is not one of " + words);
                value = chosen->second;
            },
            help)
        ->type_name(words);
}

/// Options of every command.
void addDisplay(CLI::App& command, Request& request, Texts& texts) {
    command.add_option("-C,--directory", request.folder, "works in this folder")
        ->type_name("DIR")
        ->check(&faultIfEmpty);
    command.add_flag("-q,--quiet", request.isQuiet, "prints errors only");
    addChoice(command, "--diagnostics", "the form of the diagnostics", request.format,
              {{"text", Strict::DiagnosticFormat::Text},
               {"json", Strict::DiagnosticFormat::Json},
               {"sarif", Strict::DiagnosticFormat::Sarif},
               {"github", Strict::DiagnosticFormat::Github}});
    addChoice(command, "--color", "colors the output", request.color,
              {{"auto", Color::Auto}, {"always", Color::Always}, {"never", Color::Never}});
    command.add_option("--error", texts.errors, "counts these diagnostics as errors")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_option("--warn", texts.warnings, "counts these diagnostics as warnings")
        ->type_name("NAME")
        ->allow_extra_args(false);
}

/// Adds the options for the documents that a run writes of itself, or that are compared with what
/// it would write.
void addDocuments(CLI::App& command, Strict::RunOptions& run, const char* manifest,
                  const std::string& verb, const char* key) {
    CLI::Option* const listed = addFileOption(command, "--manifest", run.manifest, manifest);
    addFileOption(command, "--provenance", run.provenance,
                  verb + " how the outputs were made, as SLSA provenance");
    addFileOption(command, "--sbom", run.billOfMaterials,
                  verb + " what the outputs are made of, as a CycloneDX bill of materials");
    addFileOption(command, "--checksums", run.checksums,
                  verb + " the SHA-256 of the outputs, for sha256sum -c");
    addFileOption(command, "--sign-manifest", run.signingKey, key)->type_name("KEY")->needs(listed);
}

void addCommon(CLI::App& command, Request& request, Texts& texts) {
    command.add_option("script", request.run.script, "the script; - reads it from standard input")
        ->type_name("SCRIPT")
        ->required();
    command.add_option("variables", texts.operands, "text replacements in the script")
        ->type_name("NAME=VALUE");
    command.add_option("-D,--define", texts.definitions, "a text replacement, as the operand")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    addDisplay(command, request, texts);
    command
        .add_option("--symbol", request.run.symbols, "a variable that is the address of a symbol")
        ->type_name("NAME=FILE:SYMBOL")
        ->allow_extra_args(false)
        ->check([](const std::string& text) {
            const std::size_t equals = text.find('=');
            const std::size_t colon = text.rfind(':');
            const bool isWhole = equals != std::string::npos && equals > 0 &&
                                 colon != std::string::npos && colon > equals + 1 &&
                                 colon + 1 < text.size();
            return isWhole ? std::string() : text + " is not NAME=FILE:SYMBOL";
        });
    addFileOption(command, "--elf", request.run.nameFile,
                  "names the functions and data at addresses");
    addFileOption(command, "--passphrase-file", request.run.passphraseFile,
                  "has the passphrase of encrypted keys in its first line");
    command.add_flag("--keep-going", request.run.keepsGoing,
                     "goes on after a statement that failed");
    command.add_flag("--print-script", request.run.printsScript,
                     "prints the prepared script, instead of running it");
    command.add_option("--ignore", texts.ignored, "drops these diagnostics")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_flag("--werror", texts.areWarningsErrors, "counts all warnings as errors");
}

/// Enters NAME=VALUE; of two settings of one name the first counts.
void define(Request& request, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) throw CLI::ValidationError("NAME=VALUE", text + " has no =");
    request.run.variables.try_emplace(text.substr(0, equals), text.substr(equals + 1));
}

void apply(Request& request, const Texts& texts) {
    for (const std::string& text : texts.definitions) define(request, text);
    for (const std::string& text : texts.operands) define(request, text);
    request.formatting.variables = request.run.variables;
    const auto set = [&request](const std::vector<std::string>& names, Strict::Severity severity) {
        for (const std::string& name : names)
            if (const std::string fault = request.policy.set(name, severity); !fault.empty())
                throw CLI::ValidationError(fault);
    };
    const Inspection& inspection = request.inspection;
    if (inspection.nameFiles.size() > 1 && inspection.nameFiles.size() != inspection.files.size())
        throw CLI::ValidationError("--elf", "is given once for all files, or once for each");
    for (const std::string& text : texts.ignoredAreas)
        request.inspection.ignored.push_back(areaIn("--ignore", text));
    if (!texts.crop.empty()) {
        request.conversion.crop = areaIn("--crop", texts.crop);
        // What the user asks for needs no warning.
        request.policy.set(Strict::Kind::Cropped, Strict::Severity::Ignored);
    }
    if (!texts.fill.empty()) {
        for (const std::uint64_t byte : numbersIn("--fill", texts.fill)) {
            if (byte > 0xFF) throw CLI::ValidationError("--fill", texts.fill + " is above 0xFF");
            request.conversion.fill.push_back(static_cast<std::uint8_t>(byte));
        }
    }
    if (!texts.offset.empty()) {
        const bool isNegative = texts.offset.front() == '-';
        const std::uint64_t distance =
            numberIn("--offset", std::string_view(texts.offset).substr(isNegative ? 1 : 0));
        request.conversion.offset = isNegative ? 0 - distance : distance;
    }
    Arranging& arranging = request.conversion.arranging;
    if (!texts.lane.empty()) arranging.lane = laneIn("--lane", texts.lane);
    if (!texts.interleave.empty())
        arranging.interleave = positiveIn("--interleave", texts.interleave);
    if (!texts.shortGaps.empty()) arranging.shortGaps = positiveIn("--fill-gaps", texts.shortGaps);
    if (!texts.alignment.empty()) arranging.alignment = positiveIn("--align", texts.alignment);
    request.conversion.sections = {namesIn("--sections", texts.sections),
                                   namesIn("--skip-sections", texts.skippedSections)};
    if (!texts.family.empty()) {
        request.conversion.family = familyIn(texts.family);
        request.inspection.family = request.conversion.family->number;
    }
    if (texts.format) request.conversion.format = formatIn("--format", *texts.format);
    for (const std::string& text : texts.fileFormats)
        request.inspection.formats.push_back(inputFormatIn(text));
    const std::size_t given = texts.fileFormats.size();
    if (given > 1 && given != request.inspection.files.size())
        throw CLI::ValidationError("--from",
                                   "give it once for all files, or once for each of them");
    if (texts.inputFormat) request.conversion.inputFormat = inputFormatIn(*texts.inputFormat);
    if (texts.areWarningsErrors) request.policy.makeWarningsErrors();
    set(texts.errors, Strict::Severity::Error);
    set(texts.warnings, Strict::Severity::Warning);
    set(texts.ignored, Strict::Severity::Ignored);
}

void addFamily(CLI::App& command, Texts& texts) {
    command
        .add_option("--family", texts.family,
                    "reads what a UF2 file has for this family of devices")
        ->type_name("NAME")
        ->check(&faultIfEmpty);
}

void addInspection(CLI::App& command, Request& request, Texts& texts) {
    addDisplay(command, request, texts);
    command
        .add_option("--from", texts.fileFormats,
                    "the format of the files; may be given once for each of them")
        ->type_name("FORMAT")
        ->allow_extra_args(false);
    addFamily(command, texts);
    command.add_option("--width", request.inspection.width, "columns to use")
        ->type_name("N")
        ->check(CLI::Range(20, 1000).description(""));
}

/// The options of a command are needed: it is the one that is called, or its help may be printed.
/// To make those of all takes longer than a small script.
bool needsOptions(const CLI::App& command, const Texts& texts) {
    return texts.command == command.get_name() || texts.command == "help" ||
           texts.command.starts_with("-");
}

/// Adds the option for the names at addresses.
void addNames(CLI::App& command, Request& request) {
    command
        .add_option("--elf", request.inspection.nameFiles,
                    "names the functions and data at addresses")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->check(&faultIfEmpty);
}

void addRun(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const run = app.add_subcommand("run", "runs a script");
    run->footer("Example: tessaron run release.tsn inFile=app.hex --depfile release.d");
    if (!needsOptions(*run, texts)) return;
    addCommon(*run, request, texts);
    addFileOption(*run, "--depfile", request.run.dependencyFile,
                  "writes the files that the run read, for make and ninja");
    addDocuments(*run, request.run, "writes what went into the run and came out of it, as JSON",
                 "writes", "signs the manifest and the other three with this key, as FILE.sig");
    addFileOption(*run, "--map", request.run.map,
                  "writes a map of the images, as a picture if FILE ends in .svg");
    addFileOption(*run, "--report", request.run.report, "writes the same as a page for a browser")
        ->type_name("FILE.html");
}

void addCheck(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const check = app.add_subcommand(
        "check", "runs a script in memory: writes nothing and starts no program");
    check->footer("Example: tessaron check release.tsn inFile=app.hex --against-disk");
    if (!needsOptions(*check, texts)) return;
    addCommon(*check, request, texts);
    check->add_flag("--against-disk", request.run.comparesDisk,
                    "compares the files on disk with what the script makes today");
    addDocuments(*check, request.run,
                 "compares script, inputs and outputs with those that a run has listed", "compares",
                 "verifies the signatures of what is compared by this key");
}

void addInfo(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const info = app.add_subcommand(
        "info", "prints format, areas, start address, digests and oddities of files");
    info->footer("Example: tessaron info app.hex boot.s19 --json");
    if (!needsOptions(*info, texts)) return;
    info->add_option("files", request.inspection.files, "files of any format, or scripts")
        ->type_name("FILE")
        ->required();
    info->add_flag("--json", request.inspection.isJson, "prints a JSON array");
    addNames(*info, request);
    info->add_flag("--symbols", request.inspection.withSymbols, "lists the symbols of ELF files");
    addInspection(*info, request, texts);
    info->parse_complete_callback([&request] { request.command = Command::Info; });
}

void addDiff(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const diff = app.add_subcommand(
        "diff", "prints where two images differ: exit code 0 equal, 1 different, 2 trouble");
    diff->footer("Example: tessaron diff old.hex new.s19 --ignore 0x0800FFFC,4");
    if (!needsOptions(*diff, texts)) return;
    diff->add_option("files", request.inspection.files, "two files of any format")
        ->type_name("A B")
        ->required()
        ->expected(2);
    diff->add_flag("--json", request.inspection.isJson, "prints a JSON object");
    diff->add_option("--ignore", texts.ignoredAreas, "leaves out an area")
        ->type_name("START,LENGTH")
        ->allow_extra_args(false);
    addNames(*diff, request);
    diff->add_option("--context", request.inspection.context, "rows around a changed range (1)")
        ->type_name("N")
        ->check(CLI::Range(0, 1000).description(""));
    diff->add_option("--max-lines", request.inspection.mostLines, "lines to print (200); 0 for all")
        ->type_name("N");
    addInspection(*diff, request, texts);
    diff->parse_complete_callback([&request] { request.command = Command::Diff; });
}

void addMap(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const map =
        app.add_subcommand("map", "draws where files have data in the address space");
    map->footer("Example: tessaron map boot.hex app.hex --svg map.svg");
    if (!needsOptions(*map, texts)) return;
    map->add_option("files", request.inspection.files, "files of any format")
        ->type_name("FILE")
        ->required();
    addFileOption(*map, "--svg", request.inspection.svgFile, "writes a picture instead");
    map->add_flag("--ascii", request.inspection.isAscii, "draws without block characters");
    addNames(*map, request);
    addInspection(*map, request, texts);
    map->parse_complete_callback([&request] { request.command = Command::Map; });
}

/// Adds the options that say how the bytes are arranged.
///
/// @param fill    gives what is filled
/// @param offset  has no meaning for several inputs
void addArranging(CLI::App& convert, Arranging& arranging, Texts& texts, CLI::Option* fill,
                  CLI::Option* offset) {
    convert.add_option("--lane", texts.lane, "takes one chip of a bus, counted from 0")
        ->type_name("LANE,LANES,WIDTH")
        ->check(&faultIfEmpty);
    CLI::Option* const interleave =
        convert
            .add_option("--interleave", texts.interleave, "IN and --with are the chips of a bus")
            ->type_name("WIDTH")
            ->check(&faultIfEmpty)
            ->excludes(offset);
    CLI::Option* const with =
        convert.add_option("--with", arranging.furtherInputs, "a further chip, in their order")
            ->type_name("FILE")
            ->check(&faultIfEmpty)
            ->allow_extra_args(false)
            ->needs(interleave);
    interleave->needs(with);
    const std::vector<std::pair<std::string, std::uint32_t>> words{{"2", 2}, {"4", 4}, {"8", 8}};
    const std::vector<std::pair<std::string, std::uint32_t>> units{{"2", 2}, {"4", 4}};
    addChoice(convert, "--swap-bytes", "reverses the bytes of each word", arranging.swappedWord,
              words);
    addChoice(convert, "--unit-in", "the addresses of the input count words of this many bytes",
              arranging.inputUnit, units);
    addChoice(convert, "--unit-out", "those of the output do", arranging.outputUnit, units);
    convert.add_option("--fill-gaps", texts.shortGaps, "fills gaps of up to N bytes alone")
        ->type_name("N")
        ->check(&faultIfEmpty)
        ->needs(fill);
    convert.add_option("--align", texts.alignment, "lets data begin and end at multiples of N")
        ->type_name("N")
        ->check(&faultIfEmpty)
        ->needs(fill);
}

void addConvert(CLI::App& app, Request& request, Texts& texts) {
    Conversion& conversion = request.conversion;
    CLI::App* const convert =
        app.add_subcommand("convert", "converts a file; the endings name the formats");
    convert->footer(
        "Example: tessaron convert app.hex app.bin --crop 0x08000000,0x10000 --fill 0xFF");
    if (!needsOptions(*convert, texts)) return;
    addPath(*convert, "in", conversion.input, "the file to read", "IN");
    addPath(*convert, "out", conversion.output, "the file to write", "OUT");
    convert->add_option("--crop", texts.crop, "keeps only this area")
        ->type_name("START,LENGTH")
        ->check(&faultIfEmpty);
    CLI::Option* const fill =
        convert->add_option("--fill", texts.fill, "lays these bytes into the gaps")
            ->type_name("BYTE[,BYTE]...")
            ->check(&faultIfEmpty);
    CLI::Option* const offset =
        convert->add_option("--offset", texts.offset, "adds this number to all addresses")
            ->type_name("N")
            ->check(&faultIfEmpty);
    addArranging(*convert, conversion.arranging, texts, fill, offset);
    convert->add_option("--from", texts.inputFormat, "the format of the inputs")
        ->type_name("FORMAT");
    convert->add_option("--sections", texts.sections, "reads only these sections of an ELF file")
        ->type_name("NAME[,NAME]...")
        ->check(&faultIfEmpty);
    convert->add_option("--skip-sections", texts.skippedSections, "leaves out these sections")
        ->type_name("NAME[,NAME]...")
        ->check(&faultIfEmpty);
    addFamily(*convert, texts);
    convert->add_option("--format", texts.format, "a format of WRITE_FILE")
        ->type_name("NAME")
        ->check(&faultIfEmpty);
    convert->add_option("--elf-template", conversion.elfTemplate, "the ELF file that OUT copies")
        ->type_name("FILE")
        ->check(&faultIfEmpty);
    convert->add_flag("--print-script", conversion.printsScript,
                      "prints the script that does this, instead of running it");
    addDisplay(*convert, request, texts);
    convert->parse_complete_callback([&request] { request.command = Command::Convert; });
}

void addFormat(CLI::App& app, Request& request, Texts& texts) {
    CLI::App* const format =
        app.add_subcommand("format", "formats scripts: their blanks and line breaks, nothing else");
    format->footer("Example: tessaron format --check release.tsn");
    if (!needsOptions(*format, texts)) return;
    format
        ->add_option("files", request.formatting.files,
                     "the scripts; without one, standard input goes to standard output")
        ->type_name("SCRIPT")
        ->check(&faultIfEmpty);
    format->add_option("-D,--define", texts.definitions, "a text replacement, as run takes it")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    format->add_flag("--check", request.formatting.isCheck,
                     "lists the scripts that are not formatted, and changes none");
    addDisplay(*format, request, texts);
    format->parse_complete_callback([&request] { request.command = Command::Format; });
}

void addServer(CLI::App& app, Request& request) {
    CLI::App* const server =
        app.add_subcommand("lsp", "serves an editor over standard input and output");
    server->footer(
        "It speaks the Language Server Protocol 3.17; the manual says how editors start it.");
    server->add_flag_callback(
        "--stdio", [] {}, "what it does anyway; some editors say it");
    server->parse_complete_callback([&request] { request.command = Command::Lsp; });
}

/// Prints why the command line is refused, and returns the exit code.
int refuse(std::string_view reason) {
    std::cerr << "tessaron: " << Util::printable(reason) << "\n"
              << "Run tessaron --help for more information." << std::endl;
    return static_cast<int>(Strict::ExitCode::Unusable);
}

/// The exit code of a program whose whole work was to print.
int printed() {
    std::cout.flush();
    if (std::cout) return static_cast<int>(Strict::ExitCode::Good);
    std::cerr << "tessaron: standard output could not be written completely" << std::endl;
    return static_cast<int>(Strict::ExitCode::Failed);
}

/// Prints what help or version was asked for, and returns the exit code.
int answer(const CLI::App& app, const CLI::Success& asked) {
    app.exit(asked);
    return printed();
}

/// What tessaron help takes and lists: the topics, and the commands, whose help it prints.
std::vector<std::string> topicsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const Topic& topic : topics()) names.emplace_back(topic.name);
    for (const CLI::App* const command : app.get_subcommands({}))
        names.push_back(command->get_name());
    return names;
}

/// The page of the book about a kind of diagnostics, or nothing.
const KindPage* pageOf(std::string_view kind) {
    const auto page = std::ranges::find(kindPages(), kind, &KindPage::kind);
    return page == kindPages().end() ? nullptr : &*page;
}

void addHelp(CLI::App& app, std::vector<std::string>& asked) {
    CLI::App* const help =
        app.add_subcommand("help", "lists what the language has, and explains diagnostics");
    std::string meanings = "Topics:\n";
    for (const Topic& one : topics())
        meanings += "  " + std::string(one.name) + ": " + one.meaning + "\n";
    help->footer(meanings +
                 "  the name of a kind: what such a diagnostic means, and what to do\n"
                 "Examples: tessaron help crcs, tessaron help conflict");
    help->add_option("topics", asked, "topics, kinds of diagnostics, or commands")
        ->type_name("TOPIC")
        ->check([&app](const std::string& text) {
            auto known = topicsOf(app);
            if (pageOf(text) != nullptr || std::ranges::find(known, text) != known.end())
                return std::string();
            const std::string all = CLI::detail::join(known, ", ");
            for (const KindPage& page : kindPages()) known.emplace_back(page.kind);
            const std::string meant = Strict::didYouMean(text, known);
            return text + " is not a topic" +
                   (meant.empty() ? "; there are " + all + ", and the kinds of diagnostics"
                                  : meant);
        });
}

/// The help on a topic, on a kind of diagnostics, or on a command.
std::string helpOn(const CLI::App& app, const std::string& name) {
    if (const KindPage* const page = pageOf(name)) return std::string(page->text);
    const auto topic =
        std::ranges::find_if(topics(), [&](const Topic& one) { return name == one.name; });
    return topic != topics().end() ? topic->text() : app.get_subcommand(name)->help();
}

/// Prints the help on what was asked, or on help itself, and returns the exit code.
int explain(const CLI::App& app, std::vector<std::string> asked) {
    if (asked.empty()) asked.emplace_back("help");
    for (const std::string& name : asked)
        std::cout << (&name == asked.data() ? "" : "\n") << helpOn(app, name);
    return printed();
}

/// What somebody may have meant by a first argument that is not a command.
std::string adviceOn(const std::string& word, const std::vector<std::string>& commands) {
    constexpr std::array<std::string_view, 5> helps{"/?", "-?", "/h", "/help", "?"};
    if (std::ranges::find(helps, word) != helps.end()) return "; did you mean --help?";
    const bool isScript = word.ends_with(".tsn");
    if (isScript) return "; did you mean tessaron run " + word + "?";
    if (word.find_first_of("./\\") != std::string::npos || Platform::isRegularFile(word))
        return "; did you mean tessaron run " + word + " or tessaron info " + word + "?";
    std::string meant = Strict::didYouMean(word, commands);
    if (!meant.empty()) return meant;
    std::string all;
    for (const std::string& command : commands) all += (all.empty() ? "" : ", ") + command;
    return "; the commands are " + all;
}

/// Adds to the help of each command the page of the book that describes it.
void namePages(CLI::App& app) {
    constexpr std::array<std::string_view, 3> lookers{"info", "diff", "map"};
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; })) {
        const bool looks = std::ranges::find(lookers, command->get_name()) != lookers.end();
        command->footer(command->get_footer() + "\nPage of the book: " +
                        (looks ? "looking/" : "running/") + command->get_name());
    }
}

/// Why the first argument cannot be, or an empty text.
std::string faultOfCommand(const CLI::App& app, std::span<const char* const> arguments) {
    std::vector<std::string> commands;
    for (const CLI::App* const command : app.get_subcommands({}))
        commands.push_back(command->get_name());
    if (arguments.size() < 2) return "a command is required";
    const std::string word = arguments[1];
    if (app.get_option_no_throw(word) != nullptr) return "";
    if (std::ranges::find(commands, word) != commands.end()) return "";
    if (!word.starts_with("-") || word == "-?")
        return word + " is not a command" + adviceOn(word, commands);
    const std::vector<std::string> options{"--help", "--version"};
    const std::string meant = Strict::didYouMean(word, options);
    return word + " is not an option of tessaron itself" +
           (meant.empty() ? "; the options of a command go after it" : meant);
}

/// The option that an unknown one may be meant to be, as "; did you mean X?", or nothing.
std::string adviceOnOptions(const CLI::App& app) {
    std::vector<std::string> options;
    for (const CLI::App* const command : app.get_subcommands())
        for (const CLI::Option* const option : command->get_options())
            for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
    for (const std::string& argument : app.remaining(true))
        if (argument.starts_with("--"))
            return Strict::didYouMean(argument.substr(0, argument.find('=')), options);
    return "";
}

}  // namespace

int read(std::span<const char* const> arguments, Request& request) {
    CLI::App app("Prepares flash images under a script; a failure is a failure.", "tessaron");
    app.footer(
        "Example: tessaron run release.tsn inFile=app.hex outFile=release.hex\n"
        "More: tessaron run --help, tessaron help, and the book, html/index.html in the folder of "
        "documents");
    // A path may begin with a slash on every system.
    app.allow_windows_style_options(false);
    app.set_version_flag("--version", version());
    app.require_subcommand(1);
    Texts texts;
    if (arguments.size() > 1) texts.command = arguments[1];
    addRun(app, request, texts);
    addCheck(app, request, texts);
    addInfo(app, request, texts);
    addDiff(app, request, texts);
    addMap(app, request, texts);
    addConvert(app, request, texts);
    addFormat(app, request, texts);
    addServer(app, request);
    std::vector<std::string> helpNames;
    addHelp(app, helpNames);
    namePages(app);
    if (const std::string fault = faultOfCommand(app, arguments); !fault.empty())
        return refuse(fault);
    try {
        app.parse(static_cast<int>(arguments.size()), arguments.data());
        if (app.got_subcommand("help")) return explain(app, helpNames);
        apply(request, texts);
        request.run.isCheck = app.got_subcommand("check");
    } catch (const CLI::Success& asked) {
        return answer(app, asked);
    } catch (const CLI::ExtrasError& error) {
        return refuse(error.what() + adviceOnOptions(app));
    } catch (const CLI::ParseError& error) {
        return refuse(error.what());
    }
    return -1;
}

}  // namespace CommandLine
