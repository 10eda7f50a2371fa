#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "parser/commands/CmdApi.hpp"
#include "parser/commands/SignatureKey.hpp"

namespace Parser::WrapperLib {

/// VERIFY_SIGNATURE: holds a signature against the effective bytes of images and a public key. The
/// statement fails if it is not theirs.
class CmdVerifySignature final : public CmdApi {
public:
    void setName(std::string name) { name_ = std::move(name); }
    void addFromBuffer(std::string name) { fromBuffers_.push_back(std::move(name)); }
    void addArea(const Area& area) { areas_.push_back(area); }
    void setKind(const SignatureKind& kind) { settings_.kind = &kind; }
    void setKeyFile(std::string argument);
    void setForm(Crypto::SignatureForm form) { settings_.form = form; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::VerifySignature); }

private:
    bool verify(CmdContext& context) const;

    std::string name_;
    std::vector<std::string> fromBuffers_;
    AreaList areas_;
    SignatureSettings settings_;
};

}  // namespace Parser::WrapperLib
