#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "io/Backoff.hpp"
#include "io/field/FieldLines.hpp"
#include "io/field/FieldReports.hpp"
#include "io/import/LinedData.hpp"
#include "io/import/RecordVisitor.hpp"
#include "util/records/Records.hpp"

namespace Io::Field {

/// Takes the lines of a text file: reports those that are damaged, counts those that are odd, and
/// keeps the data of the others. What the text formats have in common is here; a derived class
/// takes the records.
class FieldParser {
public:
    virtual ~FieldParser() = default;
    FieldParser(const FieldParser&) = delete;
    FieldParser& operator=(const FieldParser&) = delete;

    /// Takes all lines and reports what is wrong and odd. Of a damaged file no data is left.
    ///
    /// @param visitor  learns which sound records the file has; null for nobody
    void parse(FieldLines& lines, Import::RecordVisitor* visitor);

    /// Takes all lines for the visitor alone: keeps no data.
    void walk(FieldLines& lines, Import::RecordVisitor& visitor);

    bool isDamaged() const { return reports_.isDamaged(); }
    Import::LinedData& data() { return data_; }
    const Import::LinedData& data() const { return data_; }
    std::optional<std::uint64_t> startAddress() const { return startAddress_; }

    /// What the first header record says.
    const std::string& header() const { return header_; }

protected:
    FieldParser(const std::string& file, Facts::InputFormat format, std::uint64_t fileSize);

    /// Takes a line that begins as a record does. False if it does not.
    virtual bool takeRecord(std::string_view line) = 0;

    /// Lines with lower-case digits are counted, so they are taken one by one.
    static constexpr Util::Records::DigitCase upperCase = Util::Records::DigitCase::Upper;

    /// Takes perfect data records off the front of `text`, see Util::Records.
    virtual Util::Records::DataRun decodeRun(std::string_view text, std::uint8_t* out) const = 0;

    /// Counts a run that begins `text` and reports what is wrong or odd about its last record,
    /// which is the current line: no other one can reach beyond what its address field can express.
    /// Returns the address of the run's first byte.
    virtual std::uint64_t useRun(const Util::Records::DataRun& run, std::string_view text) = 0;

    /// Takes a line that is neither a record nor a remark. False if it is not part of the format.
    virtual bool takeOther(std::string_view /*line*/) { return false; }

    /// Where the digits of a record begin, how many bytes its count leaves out, and how many are in
    /// front of its data.
    struct Frame {
        std::size_t digitsAt;
        std::size_t uncounted;
        std::size_t headSize;
    };

    /// What the records of a run have in common that begins `text`.
    struct RunForm {
        Frame frame;
        std::uint8_t kind;
    };
    virtual RunForm formOf(std::string_view text) const = 0;

    /// Without an end record, something else shows that the file is whole.
    virtual bool isWhole() const { return false; }

    /// The bytes of a record. Empty, after a report, if the digits are none.
    std::span<const std::uint8_t> bytesOf(std::string_view line, const Frame& frame);

    void damage(Facts::RecordFault fault, std::uint64_t found = 0, std::uint64_t expected = 0) {
        reports_.damage(number_, line_, fault, found, expected);
    }

    /// The addresses that data of `size` bytes has in the file, where they may count words.
    std::size_t addressesOf(std::size_t size) const { return size / data_.bytes().addressUnit(); }

    /// Data of the current line is not a whole number of the words that addresses count.
    bool cutsWord(std::size_t size) {
        const std::uint32_t unit = data_.bytes().addressUnit();
        if (size % unit == 0) return false;
        damage(Facts::RecordFault::WordCut, size, unit);
        return true;
    }

    /// Data of the current line, or of the run that it ends, passes the end of the address space.
    bool passesEnd(std::uint64_t address, std::size_t size) {
        constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;
        if (address + addressesOf(size) <= addressSpaceEnd) return false;
        damage(Facts::RecordFault::AddressSpace, address);
        return true;
    }

    /// The current line is a sound record without data.
    void visit(std::uint8_t kind) {
        if (visitor_ != nullptr) visitor_->visit({number_, 1, kind, false, 0, 0});
    }

    /// The current line is a sound data record.
    void visitData(std::uint8_t kind, std::uint64_t address, std::size_t size) {
        if (visitor_ != nullptr)
            visitor_->visit({number_, 1, kind, true, address * data_.bytes().addressUnit(), size});
    }
    void tolerate(Facts::Tolerance tolerance) { reports_.tolerate(tolerance, number_); }

    /// Keeps the data of the current line, or reports that it comes after the end record.
    void store(std::uint64_t address, std::span<const std::uint8_t> bytes) {
        if (!bytes.empty() && !isEnded_ && keepsData_ && !isDamaged())
            data_.append(address, bytes, number_);
        else
            refuse(bytes.size());
    }
    void setStartAddress(std::uint64_t address);

    /// The current line is a header record.
    void setHeader(std::span<const std::uint8_t> text) {
        if (header_.empty() && keepsData_) header_.assign(text.begin(), text.end());
    }

    /// The current line is a record without data.
    void noteEmptyRecord() {
        if (isEnded_) tolerate(Facts::Tolerance::RecordAfterEnd);
    }

    /// An end record was taken.
    bool hasEnded() const { return isEnded_; }

    /// The current line is the end record.
    void end() {
        noteEmptyRecord();
        isEnded_ = true;
    }

private:
    static constexpr std::size_t mostBytes = 260;  ///< of a record

    void takeAll(FieldLines& lines);
    void refuse(std::size_t size);
    void visitRun(const Util::Records::DataRun& run, std::string_view text, std::uint64_t firstLine,
                  std::uint64_t address);
    void takeLine(std::string_view line);
    void takeAhead(FieldLines& lines);
    std::string_view trimmed(std::string_view line);
    void takeText(std::string_view text);
    void explainDigits(std::string_view line, const Frame& frame);

    FieldReports reports_;
    Import::LinedData data_;
    std::optional<std::uint64_t> startAddress_;
    std::string header_;
    std::string_view line_;     ///< the current one, as it is in the file
    std::uint64_t number_ = 0;  ///< its number
    bool isEnded_ = false;      ///< an end record was taken
    bool keepsData_ = true;
    Import::RecordVisitor* visitor_ = nullptr;
    std::uint64_t startLine_ = 0;  ///< that gave the start address
    /// The first line that only blank lines should follow, or 0, and the byte at its end.
    char textEnd_ = 0;
    std::uint64_t textEndLine_ = 0;
    Backoff ahead_;  ///< for files whose records are not perfect
    std::array<std::uint8_t, mostBytes> bytes_{};
};

}  // namespace Io::Field
