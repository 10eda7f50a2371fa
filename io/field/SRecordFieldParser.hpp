#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "io/SRecord.hpp"
#include "io/field/FieldParser.hpp"
#include "util/records/Records.hpp"

namespace Io::Field {

/// Takes S-records (Motorola, "M68000 Family Programmer's Reference Manual", appendix C) with
/// addresses of two, three and four bytes, mixed as they come.
///
/// A file that ends with a count of all its data records needs no terminator: srec_cat writes none
/// unless it knows a start address. A count record has its number in as many bytes as it likes. It
/// counts the data records of the file, or those after the last count record.
class SRecordFieldParser final : public FieldParser {
public:
    SRecordFieldParser(const std::string& file, std::uint64_t fileSize)
        : FieldParser(file, Facts::InputFormat::MotorolaS, fileSize) {}

private:
    bool takeRecord(std::string_view line) override;
    Util::Records::DataRun decodeRun(std::string_view text, std::uint8_t* out) const override {
        return Util::Records::Codec::decodeS(text, out, upperCase);
    }
    RunForm formOf(std::string_view text) const override;
    std::uint64_t useRun(const Util::Records::DataRun& run, std::string_view text) override;
    bool takeOther(std::string_view line) override;
    bool isWhole() const override { return isCounted_; }
    void use(SRecordType type, std::uint8_t kind, const SRecord& record);
    /// Data of the current line ends at `end`, with addresses of so many bytes.
    void noteBorder(std::uint64_t end, std::size_t addressSize);
    void useCount(const SRecord& record, std::uint8_t kind);

    std::uint64_t records_ = 0;         ///< data records so far
    std::uint64_t countedRecords_ = 0;  ///< those before the last count record
    bool isCounted_ = false;            ///< no data record after a count of them all
    bool isInSymbols_ = false;
};

}  // namespace Io::Field
