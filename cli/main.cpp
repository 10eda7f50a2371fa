#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <new>
#include <span>
#include <string>
#include <system_error>

#include "cli/CommandLine.hpp"
#include "lsp/Server.hpp"
#include "platform/Arguments.hpp"
#include "platform/Limits.hpp"
#include "platform/Streams.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Kinds.hpp"
#include "strict/diagnostics/Printer.hpp"
#include "util/Printable.hpp"

namespace {

Strict::ExitCode execute(const CommandLine::Request& request, Strict::Printer& printer) {
    switch (request.command) {
        case CommandLine::Command::Info:
            return CommandLine::info(request.inspection, printer, request.policy, std::cout);
        case CommandLine::Command::Diff:
            return CommandLine::diff(request.inspection, printer, std::cout);
        case CommandLine::Command::Map:
            return CommandLine::map(request.inspection, printer, std::cout);
        case CommandLine::Command::Convert:
            return CommandLine::convert(request.conversion, printer, std::cout);
        case CommandLine::Command::Format:
            return CommandLine::format(request.formatting, printer, std::cout);
        case CommandLine::Command::Lsp:
            return Lsp::serve(std::cout, std::cerr);
        case CommandLine::Command::Run:
            break;
    }
    return Strict::run(request.run, printer, std::cout);
}

/// Names the pages about what was printed, as a command that prints them: a line for the first few.
void namePages(std::span<const Strict::Kind> kinds) {
    constexpr std::size_t most = 4;
    if (kinds.empty()) return;
    std::string line = "more: tessaron help";
    for (const Strict::Kind kind : kinds.first(std::min(kinds.size(), most)))
        line.append(" ").append(Strict::nameOf(kind));
    std::cerr << line + "\n" << std::flush;
}

/// The file that the command is about; empty for standard input.
std::string subjectOf(const CommandLine::Request& request) {
    switch (request.command) {
        case CommandLine::Command::Info:
        case CommandLine::Command::Diff:
        case CommandLine::Command::Map:
            return request.inspection.files.front();
        case CommandLine::Command::Convert:
            return request.conversion.input;
        case CommandLine::Command::Format:
        case CommandLine::Command::Lsp:
            return "";
        case CommandLine::Command::Run:
            break;
    }
    return request.run.script == "-" ? "" : request.run.script;
}

/// Does what the arguments ask for in the folder that they name.
Strict::ExitCode executeInFolder(const CommandLine::Request& request, Strict::Printer& printer) {
    try {
        const auto error =
            request.folder.empty() ? std::error_code() : Platform::changeFolder(request.folder);
        if (!error) return execute(request, printer);
        printer.take({Strict::Kind::CannotOpen,
                      "cannot work in " + request.folder + ": " + error.message()});
        return Strict::ExitCode::Unusable;
    } catch (const std::bad_alloc&) {
        printer.take({Strict::Kind::OutOfMemory, "there is not enough memory"});
        return Strict::ExitCode::Failed;
    }
}

int run(std::span<const char* const> arguments) {
    CommandLine::Request request;
    const int code = CommandLine::read(arguments, request);
    if (code >= 0) return code;
    const bool isAuto = request.color == CommandLine::Color::Auto;
    const bool hasColor =
        isAuto ? Platform::showsColor() : request.color == CommandLine::Color::Always;
    Strict::Printer printer(std::cerr, request.policy, request.format, hasColor, request.isQuiet);
    request.inspection.hasColor =
        isAuto ? Platform::showsColor(Platform::StandardStream::Output) : hasColor;
    printer.setSubject(subjectOf(request));
    const int result = static_cast<int>(executeInFolder(request, printer));
    printer.finish(result);
    if (request.format == Strict::DiagnosticFormat::Text) namePages(printer.printedKinds());
    return result;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
    const Platform::StreamGuard streams;
    // The deepest expression takes less than this. A stack that ends stops a program without a
    // word.
    constexpr std::size_t neededStack = std::size_t{128} << 10U;
    if (Platform::freeStackBytes() < neededStack) {
        std::cerr << "tessaron: error: less than 128 KiB of stack are left; ulimit -s sets its "
                     "limit"
                  << std::endl;
        return static_cast<int>(Strict::ExitCode::Failed);
    }
    try {
        const Platform::Arguments arguments(argumentCount, argumentValues);
        return run(arguments.values());
    } catch (const std::bad_alloc&) {
        std::cerr << "tessaron: error: there is not enough memory [out-of-memory]" << std::endl;
        return static_cast<int>(Strict::ExitCode::Failed);
    } catch (const std::exception& error) {
        std::cerr << "tessaron: error: " << Util::printable(error.what()) << std::endl;
        return static_cast<int>(Strict::ExitCode::Failed);
    }
}
