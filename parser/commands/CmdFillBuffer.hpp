#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "parser/commands/BytePattern.hpp"
#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

enum class FillKind : std::uint32_t {
    FillNone = 0,
    FillFiller = 1,
    FillValues = 2,
    FillString = 3,
    FillCrc = 4,
    FillHash = 5,
    FillSignature = 6
};

/// FILL_BUFFER: changes an image in place. The filler form sets what unwritten addresses read as;
/// values, a string, a CRC or a hash are written as data.
class CmdFillBuffer final : public CmdApi {
public:
    void setBufferName(std::string name);
    void setFillPattern(std::vector<std::uint32_t> bytes);
    void setFillValues(std::vector<std::uint32_t> bytes);
    void setFillString(std::string text);
    void setFillCrc(std::string name);
    void setFillHash(std::string name);
    void setFillSignature(std::string name);
    void setByteOrder(Buffer::ByteOrder order) { pattern_.setByteOrder(order); }
    void setValueSize(std::uint32_t bytes) { pattern_.setValueSize(bytes); }
    void addArea(const Area& area) { areas_.push_back(area); }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::FillBuffer); }

private:
    using Fill = void (Buffer::MemoryBuffer::*)(std::span<const std::uint8_t> bytes,
                                                std::uint64_t start, std::uint64_t numberOfBytes);

    bool fill(CmdContext& context);
    void fillClipped(CmdContext& context, Buffer::MemoryBuffer& buffer, Fill operation,
                     const ByteList& pattern) const;
    void writeOnce(CmdContext& context, Buffer::MemoryBuffer& buffer,
                   const ByteList& pattern) const;
    void writeUnclipped(CmdContext& context, Buffer::MemoryBuffer& buffer,
                        const ByteList& pattern) const;
    void put(CmdContext& context, Buffer::MemoryBuffer& buffer, Fill operation,
             const ByteList& pattern, const Area& area) const;

    std::string bufferName_;
    FillKind fillKind_ = FillKind::FillNone;
    BytePattern pattern_;
    AreaList areas_;
};

}  // namespace Parser::WrapperLib
