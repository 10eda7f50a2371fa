#include "parser/commands/CmdNewHash.hpp"

#include <array>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdNewHash::setHashName(std::string name) {
    hashName = std::move(name);
}

void CmdNewHash::addFromBuffer(std::string name) {
    fromBuffers.push_back(std::move(name));
}

}  // namespace Parser::WrapperLib
