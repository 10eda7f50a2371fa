#include "parser/commands/CmdCallApp.hpp"

#include <algorithm>
#include <utility>

#include "parser/commands/Conventions.hpp"
#include "platform/Platform.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

void CmdCallApp::setAppLocation(std::string argument) {
    appLocation = cleanedPath(std::move(argument));
}

void CmdCallApp::setArguments(std::string argument) {
    arguments = cleanedText(std::move(argument));
}

void CmdCallApp::addSymbol(std::string name) {
    symbols.push_back(std::move(name));
}

bool CmdCallApp::execute(CmdContext& context) {
    return guarded("Application", appLocation, "called", [&] {
        // A name that is part of a longer one must not break it.
        std::ranges::stable_sort(symbols, std::ranges::greater{}, &std::string::size);
        std::string text = arguments;
        for (const std::string& symbol : symbols)
            if (!resolveSymbol(context, symbol, text)) return false;
        const char* const quote = appLocation.find(' ') != std::string::npos ? "\"" : "";
        Util::reportLine("Calling: ", quote, appLocation, quote, " ", text);
        Platform::runProgram(appLocation, text);
        return true;
    });
}

}  // namespace Parser::WrapperLib
