#include <exception>
#include <iostream>
#include <new>
#include <span>

#include "cli/CommandLine.hpp"
#include "platform/Arguments.hpp"
#include "platform/Streams.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Printer.hpp"

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
        case CommandLine::Command::Run:
            break;
    }
    return Strict::run(request.run, printer, std::cout);
}

int run(std::span<const char* const> arguments) {
    CommandLine::Request request;
    const int code = CommandLine::read(arguments, request);
    if (code >= 0) return code;
    if (!request.folder.empty()) {
        if (const auto error = Platform::changeFolder(request.folder)) {
            std::cerr << "tessaron: cannot work in " << request.folder << ": " << error.message()
                      << std::endl;
            return static_cast<int>(Strict::ExitCode::Unusable);
        }
    }
    const bool isAuto = request.color == CommandLine::Color::Auto;
    const bool hasColor =
        isAuto ? Platform::showsColor() : request.color == CommandLine::Color::Always;
    Strict::Printer printer(std::cerr, request.policy, request.format, hasColor, request.isQuiet);
    request.inspection.hasColor =
        isAuto ? Platform::showsColor(Platform::StandardStream::Output) : hasColor;
    return static_cast<int>(execute(request, printer));
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
    const Platform::StreamGuard streams;
    try {
        const Platform::Arguments arguments(argumentCount, argumentValues);
        return run(arguments.values());
    } catch (const std::bad_alloc&) {
        std::cerr << "tessaron: error: there is not enough memory [out-of-memory]" << std::endl;
        return static_cast<int>(Strict::ExitCode::Failed);
    } catch (const std::exception& error) {
        std::cerr << "tessaron: error: " << error.what() << std::endl;
        return static_cast<int>(Strict::ExitCode::Failed);
    }
}
