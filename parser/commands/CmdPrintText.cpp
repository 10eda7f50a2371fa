#include "parser/commands/CmdPrintText.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

void CmdPrintText::setText(std::string argument) {
    text = cleanedText(std::move(argument));
}

void CmdPrintText::addSymbol(std::string name) {
    symbols.push_front(std::move(name));
}

bool CmdPrintText::execute(CmdContext& context) {
    return guarded("Text", text, "printed", [&] {
        std::string resolved = text;
        for (const std::string& symbol : symbols)
            if (!resolveSymbol(context, symbol, resolved)) return false;
        Util::reportLine(calculate(resolved));
        return true;
    });
}

}  // namespace Parser::WrapperLib
