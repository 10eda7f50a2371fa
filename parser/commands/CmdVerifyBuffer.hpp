#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "parser/commands/BytePattern.hpp"
#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// VERIFY_BUFFER: compares the effective bytes of an image with a pattern, which is repeated over
/// each area, or with the written bytes of another image. Without an area, all of the image is
/// compared with a pattern, its beginning with a text, and the other image as a whole with it.
/// An address that the image does not have differs. The statement fails if any address differs or
/// none was compared.
class CmdVerifyBuffer final : public CmdApi {
public:
    void setBufferName(std::string name) { bufferName_ = std::move(name); }
    void setValues(std::vector<std::uint32_t> numbers) { pattern_.setNumbers(std::move(numbers)); }
    void setString(std::string text);
    void setCrc(std::string name) { pattern_.setCrc(std::move(name)); }
    void setHash(std::string name) { pattern_.setHash(std::move(name)); }
    void setSignature(std::string name) { pattern_.setSignature(std::move(name)); }

    /// The other image, by its name.
    void setOther(std::string name) { otherName_ = std::move(name); }

    void setByteOrder(Buffer::ByteOrder order) { pattern_.setByteOrder(order); }
    void setValueSize(std::uint32_t bytes) { pattern_.setValueSize(bytes); }
    void addArea(const Area& area) { areas_.push_back(area); }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::VerifyBuffer); }

private:
    class Comparison;

    bool verify(CmdContext& context) const;
    void compareImages(Comparison& comparison, const Buffer::MemoryBuffer& other) const;
    void comparePattern(Comparison& comparison, const ByteList& pattern) const;

    std::string bufferName_;
    std::string otherName_;  ///< empty if the image is compared with the pattern
    BytePattern pattern_;
    bool isString_ = false;  ///< the pattern is a text, which is not repeated
    AreaList areas_;
};

}  // namespace Parser::WrapperLib
