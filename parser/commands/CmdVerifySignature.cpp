#include "parser/commands/CmdVerifySignature.hpp"

#include "facts/Listener.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdVerifySignature::setKeyFile(std::string argument) {
    settings_.keyFile = cleanedPath(std::move(argument));
}

bool CmdVerifySignature::execute(CmdContext& context) {
    return guarded(Facts::Subject::Signature, name_, Facts::Work::Verified,
                   [&] { return verify(context); });
}

bool CmdVerifySignature::verify(CmdContext& context) const {
    const ByteList* const signature = findSignature(context, name_);
    if (signature == nullptr) return false;
    const auto key = settings_.verifyingKey(context);
    if (!key) return false;
    const auto bytes = gatherBytes(context, fromBuffers_, areas_);
    if (!bytes) return false;
    const bool isRight = key->verify(bytes->view(), *signature, settings_.form);
    if (!isRight) Facts::report(Facts::SignatureWrong{name_, *settings_.keyFile});
    return isRight;
}

}  // namespace Parser::WrapperLib
