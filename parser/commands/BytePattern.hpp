#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "parser/commands/CmdContext.hpp"

namespace Parser::WrapperLib {

/// The bytes that a statement puts into an image or compares it with: numbers, a text, or a value
/// that the run has computed. They are repeated over an area.
class BytePattern {
public:
    /// Numbers of which the low bits count, as many as the value size says.
    void setNumbers(std::vector<std::uint32_t> numbers) { source_ = std::move(numbers); }

    /// A text, trimmed.
    void setText(std::string text);

    void setCrc(std::string name) { source_ = Crc{std::move(name)}; }
    void setHash(std::string name) { source_ = Hash{std::move(name)}; }
    void setSignature(std::string name) { source_ = Signature{std::move(name)}; }

    /// The order of the bytes of a CRC and of numbers; that of the image unless it is set.
    void setByteOrder(Buffer::ByteOrder order) { byteOrder_ = order; }

    /// @param bytes  of each number: 1, 2 or 4
    void setValueSize(std::uint32_t bytes) { valueSize_ = bytes; }

    /// The bytes for an image of this byte order; nothing, after a report, if the value is missing.
    std::optional<ByteList> bytesFor(CmdContext& context, Buffer::ByteOrder imageOrder) const;

private:
    struct Crc {
        std::string name;
    };
    struct Hash {
        std::string name;
    };
    struct Signature {
        std::string name;
    };

    std::variant<std::vector<std::uint32_t>, std::string, Crc, Hash, Signature> source_;
    Buffer::ByteOrder byteOrder_ = Buffer::ByteOrder::NotSet;
    std::uint32_t valueSize_ = 1;
};

/// The low bytes of each number, little-endian unless `order` is big-endian.
///
/// @param size  bytes of a number: 1, 2 or 4
ByteList bytesOf(const std::vector<std::uint32_t>& numbers, std::uint32_t size,
                 Buffer::ByteOrder order);

}  // namespace Parser::WrapperLib
