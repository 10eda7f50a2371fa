#include "parser/commands/CmdNewValue.hpp"

#include <cstddef>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdNewValue::setName(std::string name) {
    name_ = std::move(name);
}

void CmdNewValue::addFromBuffer(std::string name) {
    fromBuffers_.push_back(std::move(name));
}

std::optional<std::size_t> CmdNewValue::valueSize() const {
    if (!compute_) return std::nullopt;
    const auto value = compute_({});
    return value ? std::optional(value->size()) : std::nullopt;
}

bool CmdNewValue::execute(CmdContext& context) {
    return guarded(subject_, name_, Facts::Work::Created, [&] {
        auto bytes = gatherBytes(context, fromBuffers_, areas_);
        if (!bytes) return false;
        const std::size_t length = bytes->view().size();
        if (length % wordSize_ != 0) {
            Facts::report(Facts::WordIncomplete{subject_, name_, length, wordSize_});
            return false;
        }
        if (wordSize_ != 1) bytes->reverseWords(wordSize_);
        const auto value = compute_ ? compute_(bytes->view()) : ByteList{};
        if (value) (context.*registry_).try_emplace(name_, *value);
        return value.has_value();
    });
}

}  // namespace Parser::WrapperLib
