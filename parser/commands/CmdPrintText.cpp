#include "parser/commands/CmdPrintText.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintText::setText(std::string argument) {
    text_ = cleanedText(std::move(argument));
}

void CmdPrintText::addSymbol(std::string name) {
    symbols_.push_back(std::move(name));
}

bool CmdPrintText::execute(CmdContext& context) {
    return guarded(Facts::Subject::Text, text_, Facts::Work::Printed, [&] {
        std::string resolved = text_;
        for (auto symbol = symbols_.rbegin(); symbol != symbols_.rend(); ++symbol)
            if (!resolveSymbol(context, *symbol, resolved)) return false;
        const auto text = calculate_(resolved, context);
        if (text) Facts::report(Facts::TextPrinted{*text});
        return text.has_value();
    });
}

}  // namespace Parser::WrapperLib
