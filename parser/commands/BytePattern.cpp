#include "parser/commands/BytePattern.hpp"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void BytePattern::setText(std::string text) {
    boost::algorithm::trim(text);
    source_ = std::move(text);
}

std::optional<ByteList> BytePattern::bytesFor(CmdContext& context,
                                              Buffer::ByteOrder imageOrder) const {
    const auto order = byteOrder_ == Buffer::ByteOrder::NotSet ? imageOrder : byteOrder_;
    if (const auto* const numbers = std::get_if<std::vector<std::uint32_t>>(&source_))
        return bytesOf(*numbers, valueSize_, order);
    if (const auto* const text = std::get_if<std::string>(&source_))
        return ByteList(text->begin(), text->end());
    if (const auto* const named = std::get_if<Hash>(&source_)) {
        const ByteList* const hash = findHash(context, named->name);
        return hash == nullptr ? std::nullopt : std::optional(*hash);
    }
    if (const auto* const named = std::get_if<Signature>(&source_)) {
        const ByteList* const signature = findSignature(context, named->name);
        return signature == nullptr ? std::nullopt : std::optional(*signature);
    }
    const ByteList* const crc = findCrc(context, std::get<Crc>(source_).name);
    if (crc == nullptr) return std::nullopt;
    ByteList bytes = *crc;
    if (order == Buffer::ByteOrder::BigEndian) std::ranges::reverse(bytes);
    return bytes;
}

ByteList bytesOf(const std::vector<std::uint32_t>& numbers, std::uint32_t size,
                 Buffer::ByteOrder order) {
    ByteList bytes;
    bytes.reserve(numbers.size() * size);
    for (const std::uint32_t number : numbers)
        for (std::uint32_t i = 0; i < size; ++i) {
            const std::uint32_t shift = order == Buffer::ByteOrder::BigEndian ? size - 1 - i : i;
            bytes.push_back(static_cast<std::uint8_t>(number >> shift * 8));
        }
    return bytes;
}

}  // namespace Parser::WrapperLib
