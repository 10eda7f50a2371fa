#include "parser/commands/CmdPrintCrc.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdPrintCrc::setCrcName(std::string name) {
    crcName_ = std::move(name);
}

bool CmdPrintCrc::execute(CmdContext& context) {
    return guarded(Facts::Subject::Crc, crcName_, Facts::Work::Printed, [&] {
        const ByteList* const value = findCrc(context, crcName_);
        if (value == nullptr) return false;
        Facts::report(Facts::CrcPrinted{crcName_, *value});
        return true;
    });
}

}  // namespace Parser::WrapperLib
