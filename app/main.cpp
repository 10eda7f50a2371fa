#include <exception>
#include <iostream>
#include <span>
#include <string_view>

#include "app/CommandLine.hpp"
#include "parser/ScriptParser.hpp"
#include "platform/Platform.hpp"
#include "selftest/SelfTest.hpp"
#include "util/Report.hpp"

namespace {

constexpr int exitWithoutArguments = -1;
constexpr int exitGood = 0;
constexpr int exitWithoutRun = -2;

void printBanner(const char* programPath) {
    const auto version = Platform::versionInfo(programPath);
    if (!version) return;
    Util::reportLine(version->fileName, " version ", version->major, ".", version->minor, " from ",
                     version->buildDate);
    Util::reportLine(version->copyright);
}

int run(std::span<const char* const> arguments) {
    printBanner(arguments.empty() ? "" : arguments.front());
    Util::reportLine();
    if (arguments.size() < 2) {
        App::printUsage();
        return exitWithoutArguments;
    }
    arguments = arguments.subspan(1);
    if (arguments.front() == std::string_view("test")) {
        SelfTest::runAll();
        return exitGood;
    }
    App::CommandLine commandLine = App::scanArguments(arguments);
    Parser::ScriptParser parser(std::move(commandLine.scriptPath),
                                std::move(commandLine.initialVariables));
    return parser.run() ? exitGood : exitWithoutRun;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    Platform::guardStreams();
    try {
        const int code =
            run(std::span<const char* const>(arguments, static_cast<std::size_t>(argumentCount)));
        // The reports of failed statements may be among what was lost.
        if (!std::cout)
            std::cerr << "Warning: Standard output could not be written completely !" << std::endl;
        return code;
    } catch (const std::exception& error) {
        std::cerr << "Error: " << error.what() << std::endl;
        return exitWithoutRun;
    }
}
