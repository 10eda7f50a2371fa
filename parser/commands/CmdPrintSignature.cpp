#include "parser/commands/CmdPrintSignature.hpp"

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

bool CmdPrintSignature::execute(CmdContext& context) {
    return guarded(Facts::Subject::Signature, name_, Facts::Work::Printed, [&] {
        const ByteList* const value = findSignature(context, name_);
        if (value == nullptr) return false;
        Facts::report(Facts::SignaturePrinted{name_, *value});
        return true;
    });
}

}  // namespace Parser::WrapperLib
