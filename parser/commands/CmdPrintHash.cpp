#include "parser/commands/CmdPrintHash.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"
#include "util/Hex.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

void CmdPrintHash::setHashName(std::string name) {
    text = std::move(name);
}

bool CmdPrintHash::execute(CmdContext& context) {
    return guarded("Hash", text, "printed", [&] {
        const ByteList* const value = findHash(context, text);
        if (value == nullptr) return false;
        std::string digits;
        Util::appendHex(digits, *value);
        Util::reportLine("Hash : ", text);
        Util::reportLine("  HashValue: ", digits);
        return true;
    });
}

}  // namespace Parser::WrapperLib
