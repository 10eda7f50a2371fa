#include "parser/commands/CmdPrintHash.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintHash::setHashName(std::string name) {
    text_ = std::move(name);
}

bool CmdPrintHash::execute(CmdContext& context) {
    return guarded(Facts::Subject::Hash, text_, Facts::Work::Printed, [&] {
        const ByteList* const value = findHash(context, text_);
        if (value == nullptr) return false;
        Facts::report(Facts::HashPrinted{text_, *value});
        return true;
    });
}

}  // namespace Parser::WrapperLib
