#include "parser/commands/CmdNewValue.hpp"

#include <algorithm>
#include <array>
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

void CmdNewValue::setType(const ValueType& type) {
    Compute compute;
    if (type.compute != nullptr)
        compute = [&type](std::span<const std::uint8_t> data, Buffer::ByteOrder order) {
            const bool isBigEndian =
                order == Buffer::ByteOrder::BigEndian && type.computeBigEndian != nullptr;
            return isBigEndian ? type.computeBigEndian(data) : type.compute(data);
        };
    setCompute({type.keyword, type.meaning, type.parameters, type.wordSize}, std::move(compute));
}

std::optional<std::size_t> CmdNewValue::valueSize() const {
    if (!compute_) return std::nullopt;
    const auto value = compute_({}, Buffer::ByteOrder::NotSet);
    return value ? std::optional(value->size()) : std::nullopt;
}

/// The value as it is kept.
ByteList CmdNewValue::stored(const ByteList& value) const {
    const auto& crc = algorithm_.parameters;
    return crc ? Util::Crc::aligned(value, crc->width, alignment_) : value;
}

/// False after a report.
bool CmdNewValue::hasWholeWords(std::size_t length) const {
    return std::ranges::all_of(std::array{false, true}, [&](bool isOfType) {
        const std::uint32_t size = isOfType ? algorithm_.wordSize : wordSize_;
        if (length % size == 0) return true;
        Facts::report(Facts::WordIncomplete{subject_, name_, length, size, isOfType});
        return false;
    });
}

bool CmdNewValue::execute(CmdContext& context) {
    return guarded(subject_, name_, Facts::Work::Created, [&] {
        auto bytes = gatherBytes(context, fromBuffers_, areas_);
        if (!bytes) return false;
        if (!hasWholeWords(bytes->view().size())) return false;
        if (wordSize_ != 1) bytes->reverseWords(wordSize_);
        return keepValueOf(context, bytes->view(), byteOrderOf(context, fromBuffers_));
    });
}

bool CmdNewValue::keepValueOf(CmdContext& context, std::span<const std::uint8_t> data,
                              Buffer::ByteOrder order) const {
    const auto value = compute_ ? compute_(data, order) : ByteList{};
    if (value) (context.*registry_).try_emplace(name_, stored(*value));
    return value.has_value();
}

const ByteList* CmdNewValue::valueIn(const CmdContext& context) const {
    const Registry& values = context.*registry_;
    const auto value = values.find(name_);
    return value == values.end() ? nullptr : &value->second;
}

}  // namespace Parser::WrapperLib
