#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "facts/Facts.hpp"
#include "parser/commands/CmdApi.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Parser::WrapperLib {

/// A `-setType` keyword and what it means.
struct ValueType {
    const char* keyword;
    const char* trace;  ///< the trace text of its parser action
    /// Without a function it computes nothing and its value is empty.
    ByteList (*compute)(std::span<const std::uint8_t> data);
    const char* meaning = "";  ///< what it computes, in words
    std::optional<Util::Crc::CrcParameters> parameters = std::nullopt;  ///< if it is a CRC
    /// Over big-endian words, where the order counts; `compute` takes little-endian ones then.
    ByteList (*computeBigEndian)(std::span<const std::uint8_t> data) = nullptr;
    std::uint32_t wordSize = 1;  ///< in bytes, of the words of which the data has to consist
};

/// What a value is computed with.
struct Algorithm {
    std::string_view name;     ///< a name of the catalogue, a type of the language, or Custom
    std::string_view meaning;  ///< what the type computes, in words; empty if the name says it
    std::optional<Util::Crc::CrcParameters> parameters;  ///< if it is a CRC
    std::uint32_t wordSize = 1;  ///< in bytes, of the words of which the data has to consist
};

/// What NEW_CRC, NEW_HASH and NEW_SIGNATURE share: a value is computed over the effective bytes of
/// images and kept under a name.
class CmdNewValue : public CmdApi {
public:
    void setName(std::string name);
    void addFromBuffer(std::string name);
    void addArea(const Area& area) { areas_.push_back(area); }

    void setType(const ValueType& type);

    /// Computes over words of 2, 4 or 8 bytes, the bytes of each in reverse order.
    void setWordSize(std::uint32_t bytes) { wordSize_ = bytes; }

    /// How a CRC whose width is not a multiple of 8 lies in its bytes.
    void setAlignment(Util::Crc::CrcAlignment alignment) { alignment_ = alignment; }

    const std::string& name() const { return name_; }
    const Algorithm& algorithm() const { return algorithm_; }
    std::uint32_t wordSize() const { return wordSize_; }
    Util::Crc::CrcAlignment alignment() const { return alignment_; }

    /// The size of the value in bytes, whatever it is computed over. Nothing if it has none; a
    /// parameter that is refused is reported.
    virtual std::optional<std::size_t> valueSize() const;

    /// What the statement has computed; null if it has not run or has failed.
    const ByteList* valueIn(const CmdContext& context) const;

    bool execute(CmdContext& context) override;

protected:
    using Registry = std::map<std::string, ByteList>;

    /// @param subject   names the statement in a report
    /// @param registry  where the value is kept
    /// @param type      what a statement without `-setType` computes
    CmdNewValue(Facts::Subject subject, Registry CmdContext::*registry, const ValueType& type)
        : subject_(subject), registry_(registry) {
        setType(type);
    }

    /// Returns nothing after a report. The byte order of the images counts for sums of words.
    using Compute = std::function<std::optional<ByteList>(std::span<const std::uint8_t> data,
                                                          Buffer::ByteOrder order)>;
    void setCompute(const Algorithm& algorithm, Compute compute) {
        algorithm_ = algorithm;
        compute_ = std::move(compute);
    }

    /// Computes a value of bytes and keeps it. False after a report.
    bool keepValueOf(CmdContext& context, std::span<const std::uint8_t> data,
                     Buffer::ByteOrder order) const;

    /// The named images, in their order.
    const std::vector<std::string>& fromBuffers() const { return fromBuffers_; }
    const AreaList& areas() const { return areas_; }

private:
    ByteList stored(const ByteList& value) const;
    bool hasWholeWords(std::size_t length) const;

    Facts::Subject subject_;
    Registry CmdContext::*registry_;
    Algorithm algorithm_;
    Compute compute_;             ///< empty if the value is empty
    std::uint32_t wordSize_ = 1;  ///< in bytes
    Util::Crc::CrcAlignment alignment_ = Util::Crc::CrcAlignment::Right;
    std::string name_;
    std::vector<std::string> fromBuffers_;
    AreaList areas_;
};

}  // namespace Parser::WrapperLib
