#include "parser/commands/Conventions.hpp"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "util/Hex.hpp"

namespace Parser::WrapperLib {

namespace {

/// The value of an entry, or nullptr after a report.
template <class Map>
auto* findOrReport(Map& map, const std::string& name, Facts::NameKind kind) {
    const auto entry = map.find(name);
    if (entry != map.end()) return &entry->second;
    Facts::report(Facts::NameNotFound{kind, name});
    return static_cast<decltype(&entry->second)>(nullptr);
}

/// Symbols whose values hold symbols can multiply a text again and again.
constexpr std::size_t longestResolvedText = std::size_t{1} << 26U;

/// `text` with `value` in place of every `name`, which is not empty.
std::string replacedAll(const std::string& text, const std::string& name,
                        const std::string& value) {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, copied)) {
        result.append(text, copied, at - copied);
        result += value;
        copied = at + name.size();
        if (result.size() > std::max(longestResolvedText, text.size()))
            throw std::length_error("resolved text");
    }
    result.append(text, copied);
    return result;
}

/// Copies words of a size that is known to the compiler, which makes a byte shuffle of it.
template <std::size_t WordSize>
void copyReversed(std::span<const std::uint8_t> bytes, std::uint8_t* out) {
    for (std::size_t word = 0; word < bytes.size(); word += WordSize)
        for (std::size_t i = 0; i < WordSize; ++i) out[word + i] = bytes[word + WordSize - 1 - i];
}

std::string trimmedWithout(std::string text, std::string_view unwanted) {
    std::erase_if(text, [unwanted](char c) { return unwanted.find(c) != std::string_view::npos; });
    boost::algorithm::trim(text);
    return text;
}

}  // namespace

Buffer::MemoryBuffer* findBuffer(CmdContext& context, const std::string& name) {
    return findOrReport(context.buffers, name, Facts::NameKind::Buffer);
}

Buffer::ByteOrder byteOrderOf(const CmdContext& context, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const auto image = context.buffers.find(name);
        if (image == context.buffers.end()) continue;
        const Buffer::ByteOrder order = image->second.getByteOrder();
        if (order != Buffer::ByteOrder::NotSet) return order;
    }
    return Buffer::ByteOrder::NotSet;
}

const ByteList* findCrc(const CmdContext& context, const std::string& name) {
    return findOrReport(context.crcs, name, Facts::NameKind::Crc);
}

const ByteList* findHash(const CmdContext& context, const std::string& name) {
    return findOrReport(context.hashes, name, Facts::NameKind::Hash);
}

const ByteList* findSignature(const CmdContext& context, const std::string& name) {
    return findOrReport(context.signatures, name, Facts::NameKind::Signature);
}

bool resolveSymbol(const CmdContext& context, const std::string& name, std::string& text) {
    const auto crc = context.crcs.find(name);
    const bool isCrc = crc != context.crcs.end();
    const auto& others = context.hashes.contains(name) ? context.hashes : context.signatures;
    const ByteList* const value =
        isCrc ? &crc->second : findOrReport(others, name, Facts::NameKind::Symbol);
    if (value == nullptr) return false;
    std::string digits = isCrc ? "0x" : "";
    Util::appendHex(digits, *value);
    text = replacedAll(text, name, digits);
    return true;
}

GatheredBytes::GatheredBytes(const std::vector<Buffer::ElementView>& ranges) {
    if (ranges.size() == 1) {
        if (const auto bytes = ranges.front().bytes()) {
            bytes_ = *bytes;
            return;
        }
    }
    std::size_t size = 0;
    for (const Buffer::ElementView& range : ranges) size += range.size();
    block_ = Platform::PageBlock(size);
    auto* const first = reinterpret_cast<std::uint8_t*>(block_.data());
    auto* out = first;
    for (const Buffer::ElementView& range : ranges) {
        range.copyBytes(out);
        out += range.size();
    }
    bytes_ = {first, size};
}

void GatheredBytes::reverseWords(std::uint32_t wordSize) {
    Platform::PageBlock reversed(bytes_.size());
    auto* const first = reinterpret_cast<std::uint8_t*>(reversed.data());
    switch (wordSize) {
        case 2:
            copyReversed<2>(bytes_, first);
            break;
        case 4:
            copyReversed<4>(bytes_, first);
            break;
        default:
            copyReversed<8>(bytes_, first);
            break;
    }
    bytes_ = {first, bytes_.size()};
    block_ = std::move(reversed);
}

std::optional<GatheredBytes> gatherBytes(CmdContext& context, const std::vector<std::string>& names,
                                         const AreaList& areas) {
    std::vector<Buffer::ElementView> ranges;
    for (const std::string& name : names) {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, name);
        if (buffer == nullptr) return std::nullopt;
        if (areas.empty()) ranges.push_back(buffer->viewElements());
        for (const Area& area : areas) ranges.push_back(buffer->viewRange(area.start, area.length));
    }
    return GatheredBytes(ranges);
}

std::string cleanedPath(std::string text) {
    return trimmedWithout(std::move(text), "{}\"'");
}

std::string cleanedText(std::string text) {
    return trimmedWithout(std::move(text), "{}");
}

}  // namespace Parser::WrapperLib
