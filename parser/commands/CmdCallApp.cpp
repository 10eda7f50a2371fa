#include "parser/commands/CmdCallApp.hpp"

#include <algorithm>
#include <utility>

#include "io/Host.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdCallApp::setAppLocation(std::string argument) {
    appLocation_ = cleanedPath(std::move(argument));
}

void CmdCallApp::setArguments(std::string argument) {
    arguments_ = cleanedText(std::move(argument));
}

void CmdCallApp::addSymbol(std::string name) {
    symbols_.push_back(std::move(name));
}

bool CmdCallApp::execute(CmdContext& context) {
    return guarded(Facts::Subject::Application, appLocation_, Facts::Work::Called, [&] {
        // A name that is part of a longer one must not break it.
        std::ranges::stable_sort(symbols_, std::ranges::greater{}, &std::string::size);
        std::string text = arguments_;
        for (const std::string& symbol : symbols_)
            if (!resolveSymbol(context, symbol, text)) return false;
        Facts::report(Facts::ProgramCalled{appLocation_, text});
        const int status = Io::host().runProgram(appLocation_, text);
        context.symbols.forget();
        Facts::report(Facts::ProgramEnded{appLocation_, status});
        return true;
    });
}

}  // namespace Parser::WrapperLib
