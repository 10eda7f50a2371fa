#include <cstddef>
#include <exception>
#include <iostream>
#include <span>
#include <string_view>

#include "app/CommandLine.hpp"
#include "classic/ClassicWords.hpp"
#include "facts/Listener.hpp"
#include "parser/ScriptParser.hpp"
#include "platform/Arguments.hpp"
#include "platform/Limits.hpp"
#include "platform/Streams.hpp"
#include "platform/Version.hpp"
#include "selftest/SelfTest.hpp"

namespace {

constexpr int exitWithoutArguments = -1;
constexpr int exitGood = 0;
constexpr int exitWithoutRun = -2;

void printBanner(Classic::ClassicWords& words, const char* programPath) {
    const auto version = Platform::versionInfo(programPath);
    if (!version) return;
    words.printBanner(version->fileName, version->major, version->minor, version->buildDate,
                      version->copyright);
}

int run(Classic::ClassicWords& words, std::span<const char* const> arguments) {
    printBanner(words, arguments.empty() ? "" : arguments.front());
    words.printEmptyLine();
    if (arguments.size() < 2) {
        words.printUsage();
        return exitWithoutArguments;
    }
    arguments = arguments.subspan(1);
    if (arguments.front() == std::string_view("test")) {
        SelfTest::runAll(words);
        return exitGood;
    }
    App::CommandLine commandLine = App::scanArguments(arguments);
    if (commandLine.asksForUsage) words.printUsage();
    Parser::ScriptParser parser(std::move(commandLine.scriptPath),
                                std::move(commandLine.initialVariables));
    return parser.run() ? exitGood : exitWithoutRun;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
    const Platform::StreamGuard streams;
    Classic::ClassicWords words(std::cout, std::cerr);
    const Facts::ListenerScope scope(words);
    // The deepest expression takes less than this. A stack that ends stops a program without a
    // word.
    constexpr std::size_t neededStack = std::size_t{64} << 10U;
    if (Platform::freeStackBytes() < neededStack) {
        words.printUnexpected("less than 64 KiB of stack are left");
        return exitWithoutRun;
    }
    try {
        const Platform::Arguments arguments(argumentCount, argumentValues);
        const int code = run(words, arguments.values());
        // The reports of failed statements may be among what was lost.
        words.reportLostOutput();
        return code;
    } catch (const std::exception& error) {
        words.printUnexpected(error.what());
        return exitWithoutRun;
    }
}
