#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

bool CmdApi::settle(CmdContext& context) {
    if (late_ == nullptr) return true;
    for (const auto& number : late_->numbers)
        if (!number->resolve(context)) return false;
    for (const auto& setting : std::exchange(late_->settings, {})) setting();
    return true;
}

}  // namespace Parser::WrapperLib
