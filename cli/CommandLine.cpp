#include "cli/CommandLine.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "platform/Version.hpp"

namespace CommandLine {

namespace {

/// The options that are texts until all of the command line is known.
struct Texts {
    std::vector<std::string> operands;
    std::vector<std::string> definitions;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;
    std::vector<std::string> ignored;
    bool areWarningsErrors = false;
};

std::string version() {
    const auto info = Platform::versionInfo("");
    if (!info) return "tessaron";
    return "tessaron " + std::to_string(info->major) + "." + std::to_string(info->minor) + " (" +
           info->commit + ")";
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
    command.add_option("-C,--directory", request.folder, "works in this folder")->type_name("DIR");
    command.add_flag("--keep-going", request.run.keepsGoing,
                     "goes on after a statement that failed");
    command.add_flag("-q,--quiet", request.isQuiet, "prints errors only");
    const std::map<std::string, Strict::DiagnosticFormat> formats{
        {"text", Strict::DiagnosticFormat::Text}, {"json", Strict::DiagnosticFormat::Json}};
    command.add_option("--diagnostics", request.format, "the form of the diagnostics")
        ->type_name("text|json")
        ->transform(CLI::CheckedTransformer(formats).description(""));
    const std::map<std::string, Color> colors{
        {"auto", Color::Auto}, {"always", Color::Always}, {"never", Color::Never}};
    command.add_option("--color", request.color, "colors the diagnostics")
        ->type_name("auto|always|never")
        ->transform(CLI::CheckedTransformer(colors).description(""));
    command.add_option("--error", texts.errors, "counts these diagnostics as errors")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_option("--warn", texts.warnings, "counts these diagnostics as warnings")
        ->type_name("NAME")
        ->allow_extra_args(false);
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
    const auto set = [&request](const std::vector<std::string>& names, Strict::Severity severity) {
        for (const std::string& name : names)
            if (const std::string fault = request.policy.set(name, severity); !fault.empty())
                throw CLI::ValidationError(fault);
    };
    if (texts.areWarningsErrors) request.policy.makeWarningsErrors();
    set(texts.errors, Strict::Severity::Error);
    set(texts.warnings, Strict::Severity::Warning);
    set(texts.ignored, Strict::Severity::Ignored);
}

}  // namespace

int read(int argumentCount, char** arguments, Request& request) {
    CLI::App app("Prepares flash images under a script; a failure is a failure.", "tessaron");
    app.footer("Example: tessaron run release.tsn inFile=app.hex outFile=release.hex");
    app.set_version_flag("--version", version());
    app.require_subcommand(1);
    Texts texts;
    CLI::App* const run = app.add_subcommand("run", "runs a script");
    run->footer("Example: tessaron run release.tsn inFile=app.hex --depfile release.d");
    addCommon(*run, request, texts);
    run->add_option("--depfile", request.run.dependencyFile,
                    "writes the files that the run read, for make and ninja")
        ->type_name("FILE");
    CLI::App* const check = app.add_subcommand(
        "check", "runs a script in memory: writes nothing and starts no program");
    check->footer("Example: tessaron check release.tsn inFile=app.hex --against-disk");
    addCommon(*check, request, texts);
    check->add_flag("--against-disk", request.run.comparesDisk,
                    "compares the files on disk with what the script makes today");
    try {
        app.parse(argumentCount, arguments);
        apply(request, texts);
        request.run.isCheck = check->parsed();
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        std::cerr << "tessaron: " << error.what() << "\n"
                  << "Run tessaron --help for more information." << std::endl;
        return static_cast<int>(Strict::ExitCode::Unusable);
    }
    return -1;
}

}  // namespace CommandLine
