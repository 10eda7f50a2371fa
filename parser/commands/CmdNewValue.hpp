#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "facts/Facts.hpp"
#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// A `-setType` keyword, the trace text of its parser action and what it computes. Without a
/// function it computes nothing and its value is empty.
struct ValueType {
    const char* keyword;
    const char* trace;
    ByteList (*compute)(std::span<const std::uint8_t> data);
};

/// What NEW_CRC and NEW_HASH share: a value is computed over the effective bytes of images and
/// kept under a name.
class CmdNewValue : public CmdApi {
public:
    void setName(std::string name);
    void addFromBuffer(std::string name);
    void addArea(const Area& area) { areas_.push_back(area); }

    /// @param type  a row of a table that outlives the statement
    void setType(const ValueType& type) { type_ = &type; }

    const std::string& name() const { return name_; }
    const std::vector<std::string>& fromBuffers() const { return fromBuffers_; }
    const AreaList& areas() const { return areas_; }

    bool execute(CmdContext& context) override;

protected:
    using Registry = std::map<std::string, ByteList>;

    /// @param subject   names the statement in a report
    /// @param registry  where the value is kept
    /// @param type      what a statement without `-setType` computes
    CmdNewValue(Facts::Subject subject, Registry CmdContext::*registry, const ValueType& type)
        : subject_(subject), registry_(registry), type_(&type) {}

private:
    Facts::Subject subject_;
    Registry CmdContext::*registry_;
    const ValueType* type_;
    std::string name_;
    std::vector<std::string> fromBuffers_;
    AreaList areas_;
};

}  // namespace Parser::WrapperLib
