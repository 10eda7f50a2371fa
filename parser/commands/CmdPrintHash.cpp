#include "parser/commands/CmdPrintHash.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintHash::setHashName(std::string name) {
    text = std::move(name);
}

bool CmdPrintHash::execute(CmdContext& context) {
    return guarded(Facts::Subject::Hash, text, Facts::Work::Printed, [&] {
        const ByteList* const value = findHash(context, text);
        if (value == nullptr) return false;
        Facts::report(Facts::HashPrinted{text, *value});
        return true;
    });
}

}  // namespace Parser::WrapperLib
