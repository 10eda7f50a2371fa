// Reading as files are in the field: what it accepts equals what the classic readers give, wherever
// they accept the whole file, and nothing is refused without a reason.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <variant>
#include <vector>

#include "facts/Listener.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "io/InFile.hpp"
#include "io/field/FieldInFile.hpp"
#include "io/formats/FieldReading.hpp"
#include "io/formats/InputFormats.hpp"
#include "io/import/GenericInFile.hpp"

namespace {

using Buffer::Area;
using Fuzz::check;
using Io::Import::GenericInFile;
using Io::Import::InFileType;
using Io::Import::TessaronImportApi;

constexpr const char* inputPath = "input";
/// Longest range that is looked at element by element.
constexpr std::uint64_t longestWindow = 0x800;

/// What a reader reported.
class Heard : public Facts::Listener {
public:
    void hear(const Facts::Fact& fact) override {
        ++count;
        const auto* const field = std::get_if<Facts::FieldFact>(&fact);
        if (field == nullptr) return;
        isDamaged = isDamaged || std::holds_alternative<Facts::LineDamaged>(*field) ||
                    std::holds_alternative<Facts::FormatForeign>(*field);
        hasEnd = hasEnd && !std::holds_alternative<Facts::EndMissing>(*field);
        if (const auto* const odd = std::get_if<Facts::LinesTolerated>(field))
            hasOddRecords = hasOddRecords || isPassedOver(odd->tolerance);
    }

    std::size_t count = 0;
    bool isDamaged = false;
    bool hasEnd = true;
    bool hasOddRecords = false;  ///< which the classic readers pass over without a word

private:
    static bool isPassedOver(Facts::Tolerance tolerance) {
        using enum Facts::Tolerance;
        return tolerance == TrailingBlank || tolerance == LoneReturn || tolerance == TextEndMark ||
               tolerance == NulBytes || tolerance == Utf8Mark;
    }
};

void checkSame(const TessaronImportApi& field, const GenericInFile& classic) {
    check(field.getDataAreas() == classic.getDataAreas(), "both read the same addresses");
    check(field.getMinAddress() == classic.getMinAddress() &&
              field.getDataLength() == classic.getDataLength(),
          "both read the same span");
    // The last line of S-records, which has the address, is not a line for the classic reader.
    if (classic.type() == InFileType::IntelHex)
        check(field.hasStartAddress() == classic.hasStartAddress() &&
                  field.getStartAddress() == classic.getStartAddress(),
              "both read the same start address");
    for (const Area& area : classic.getDataAreas()) {
        const std::uint64_t length = std::min(area.length, longestWindow);
        check(field.getMemory(area.start, length).getElements() ==
                  classic.getMemory(area.start, length).getElements(),
              "both read the same bytes");
    }
}

/// Takes the data records that a walk over a file finds for runs of lines.
class Runs final : public Io::Import::RecordVisitor {
public:
    void visit(const Io::Import::RecordLines& records) override {
        if (records.size == 0) return;
        check(records.firstLine > lastLine_ && records.isData, "lines of data come in their order");
        lastLine_ = records.firstLine + records.count - 1;
        const Area area{records.address, records.count * records.size};
        if (runs_.empty() || runs_.back().area.end() != area.start)
            runs_.push_back({area, records.firstLine, lastLine_});
        else
            runs_.back() = {{runs_.back().area.start, runs_.back().area.length + area.length},
                            runs_.back().firstLine,
                            lastLine_};
    }

    const std::vector<Io::Import::SourceRun>& runs() const { return runs_; }

private:
    std::vector<Io::Import::SourceRun> runs_;
    std::uint64_t lastLine_ = 0;
};

/// A walk over the records finds the lines that the reader kept, and an area crops wherever it
/// begins.
void checkLines(const TessaronImportApi& field) {
    if (const auto walk = Io::Formats::rowOf(field.getFormat()).walk) {
        Runs walked;
        walk(inputPath, Io::openInput(inputPath), 1, walked);
        check(std::ranges::equal(walked.runs(), field.getSourceRuns()),
              "a walk finds the lines that were read");
    }
    const std::uint64_t start = field.getMinAddress();
    const std::uint64_t before = std::min<std::uint64_t>(start, 3);
    if (field.getDataLength() == 0) return;
    const auto cropped = field.getMemory(start - before, before + 1);
    check(cropped.getElements().back() == field.getMemory(start, 1).getElements().front(),
          "an area that begins below the data takes what there is");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    machine.addFile(inputPath, text);
    Heard heard;
    std::unique_ptr<TessaronImportApi> field;
    {
        const Facts::ListenerScope scope(heard);
        field = Io::Formats::FieldReading().open(inputPath, {});
    }
    check((field == nullptr) == heard.isDamaged, "a file is refused for a reason and only for one");
    if (!field) return 0;
    constexpr std::size_t mostRuns = 8;
    if (field->getSourceRuns().size() <= mostRuns) checkLines(*field);
    Heard heardByClassic;
    const Facts::ListenerScope scope(heardByClassic);
    const GenericInFile classic(inputPath);
    // A text without records that the classic readers know is raw for them.
    const bool isText = dynamic_cast<const Io::Field::FieldInFile*>(field.get()) != nullptr;
    const bool isTextForBoth = isText == (classic.type() != InFileType::RawBinary);
    const bool isWhole = heardByClassic.count == 0 && heard.hasEnd && !heard.hasOddRecords;
    if (isWhole && isTextForBoth) checkSame(*field, classic);
    return 0;
}
