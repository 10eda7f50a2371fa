#include "parser/commands/CmdPrintText.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintText::setText(std::string argument) {
    text = cleanedText(std::move(argument));
}

void CmdPrintText::addSymbol(std::string name) {
    symbols.push_back(std::move(name));
}

bool CmdPrintText::execute(CmdContext& context) {
    return guarded(Facts::Subject::Text, text, Facts::Work::Printed, [&] {
        std::string resolved = text;
        for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol)
            if (!resolveSymbol(context, *symbol, resolved)) return false;
        Facts::report(Facts::TextPrinted{calculate(resolved)});
        return true;
    });
}

}  // namespace Parser::WrapperLib
