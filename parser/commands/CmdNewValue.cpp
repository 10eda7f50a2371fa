#include "parser/commands/CmdNewValue.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdNewValue::setName(std::string name) {
    name_ = std::move(name);
}

void CmdNewValue::addFromBuffer(std::string name) {
    fromBuffers_.push_back(std::move(name));
}

bool CmdNewValue::execute(CmdContext& context) {
    return guarded(subject_, name_, Facts::Work::Created, [&] {
        const auto bytes = gatherBytes(context, fromBuffers_, areas_);
        if (!bytes) return false;
        const bool computes = type_->compute != nullptr;
        (context.*registry_)
            .try_emplace(name_, computes ? type_->compute(bytes->view()) : ByteList{});
        return true;
    });
}

}  // namespace Parser::WrapperLib
