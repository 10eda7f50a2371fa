#include "parser/commands/CmdPrintCrc.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"
#include "util/Hex.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

void CmdPrintCrc::setCrcName(std::string name) {
    crcName = std::move(name);
}

bool CmdPrintCrc::execute(CmdContext& context) {
    return guarded("Crc", crcName, "printed", [&] {
        const ByteList* const value = findCrc(context, crcName);
        if (value == nullptr) return false;
        std::string digits;
        Util::appendHex(digits, *value);
        Util::reportLine("Crc : ", crcName);
        Util::reportLine("  CrcValue: 0x", digits);
        return true;
    });
}

}  // namespace Parser::WrapperLib
