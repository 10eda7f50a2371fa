#pragma once

#include <cstdint>
#include <string>

#include "io/IntelHexRecord.hpp"
#include "io/field/FieldParser.hpp"
#include "util/records/Records.hpp"

namespace Io::Field {

/// Takes the records of Intel HEX (Intel, "Hexadecimal Object File Format Specification",
/// revision A). A record goes on upward after the last address that its field can express.
class IntelHexFieldParser final : public FieldParser {
public:
    IntelHexFieldParser(const std::string& file, std::uint64_t fileSize)
        : FieldParser(file, Facts::InputFormat::IntelHex, fileSize) {}

private:
    static constexpr Frame frame{1, IntelRecord::frameSize, IntelRecord::headSize};

    bool takeRecord(std::string_view line) override;
    Util::Records::DataRun decodeRun(std::string_view text, std::uint8_t* out) const override {
        return Util::Records::Codec::decodeIntel(text, out, upperCase);
    }
    RunForm formOf(std::string_view /*text*/) const override { return {frame, 0}; }
    std::uint64_t useRun(const Util::Records::DataRun& run, std::string_view text) override;
    bool isSound(const IntelRecord& record);
    /// Data of the current line ends at `end` of a segment.
    void noteBorder(std::uint64_t end);
    void useData(const IntelRecord& record);
    void use(const IntelRecord& record);

    std::uint64_t base_ = 0;
    bool isSegment_ = false;  ///< the base is that of a segment
};

}  // namespace Io::Field
