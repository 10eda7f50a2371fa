#include "parser/commands/CmdPrintCrc.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintCrc::setCrcName(std::string name) {
    crcName = std::move(name);
}

bool CmdPrintCrc::execute(CmdContext& context) {
    return guarded(Facts::Subject::Crc, crcName, Facts::Work::Printed, [&] {
        const ByteList* const value = findCrc(context, crcName);
        if (value == nullptr) return false;
        Facts::report(Facts::CrcPrinted{crcName, *value});
        return true;
    });
}

}  // namespace Parser::WrapperLib
