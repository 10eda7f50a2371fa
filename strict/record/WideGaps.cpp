#include "strict/record/WideGaps.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "inspect/Gaps.hpp"
#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "parser/commands/Padding.hpp"
#include "strict/script/OutputFormat.hpp"

namespace Strict {

namespace {

using Buffer::AreaList;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

/// What a statement fills beside the bytes of its images.
struct Filling {
    bool isSkipping;  ///< addresses that nothing wrote, unless they are padding
    Parser::WrapperLib::Padding padding;

    bool isPadding() const {
        return padding.shortGaps.value_or(0) != 0 || padding.alignment.value_or(1) > 1;
    }
};

/// The number of an option other than 0, if there is one.
std::optional<std::uint32_t> numberOf(const Statement& statement, Role role) {
    const Part* const option = statement.last(role);
    const std::uint32_t number =
        option == nullptr ? 0 : statement.numbersOf(*option).back().value();
    return number == 0 ? std::nullopt : std::optional(number);
}

Filling fillingOf(const Statement& statement) {
    // An alignment of 0 is refused when the statement runs.
    return {statement.roles.hasAny({Role::Gaps, Role::ShortGaps}),
            {numberOf(statement, Role::ShortGaps), numberOf(statement, Role::Alignment)}};
}

/// Counts the addresses of images to which nothing gave a byte or a filler. An address that several
/// images have counts once.
class GapCount {
public:
    GapCount(const CmdContext& context, const Provenance& provenance)
        : context_(&context), provenance_(&provenance) {}

    void add(const std::string& name) {
        const auto image = context_->buffers.find(name);
        const auto origins = provenance_->images().find(name);
        if (image == context_->buffers.end() || origins == provenance_->images().end()) return;
        const Buffer::Area range = image->second.getArea();
        ranges_.push_back(range);
        for (const OriginMap::Range& written : origins->second.written.ranges())
            written_.push_back(written.area);
        for (const OriginMap* const some : {&origins->second.fillers, &origins->second.written})
            given_.lay(*some, range);
    }

    std::uint64_t gaps() const {
        return Inspect::byteCount(Inspect::joined(ranges_, 0)) - given_.size();
    }

    /// Those of them, and of the addresses beside the images, that a statement fills.
    std::uint64_t gapsFilledBy(const Filling& filling) const {
        AreaList runs = filling.isSkipping
                            ? Inspect::joined(written_, filling.padding.shortGaps.value_or(0))
                            : ranges_;
        for (Buffer::Area& run : runs) run = filling.padding.aligned(run);
        std::uint64_t gaps = 0;
        for (const Buffer::Area& run : Inspect::joined(std::move(runs), 0))
            gaps += Inspect::byteCount(uncovered(run, given_));
        return gaps;
    }

private:
    const CmdContext* context_;
    const Provenance* provenance_;
    AreaList ranges_;
    AreaList written_;
    OriginMap given_;
};

/// More addresses than this cannot get into a file for the images of a statement.
std::uint64_t mostAddresses(const Statement& statement, const CmdContext& context,
                            const Filling& filling) {
    std::uint64_t length = 0;
    AreaList ranges;
    for (const Part& part : statement.all(Role::UsesImage))
        if (const auto image = context.buffers.find(std::string(part.text));
            image != context.buffers.end()) {
            length += image->second.getDataLength();
            if (image->second.getDataLength() != 0) ranges.push_back(image->second.getArea());
        }
    if (!filling.isPadding() || ranges.empty()) return length;
    // What is filled may be between two images as well.
    const Buffer::Area all = Inspect::joined(std::move(ranges), ~std::uint64_t{0} >> 1U).front();
    return filling.padding.aligned(all).length;
}

std::uint64_t gapsOf(const Statement& statement, const CmdContext& context,
                     const Provenance& provenance, const Filling& filling) {
    // Images that are padded become one. Without a rule the file has all of each image otherwise.
    const bool isTogether = statement.has(Role::Overlap) || filling.isPadding();
    GapCount together(context, provenance);
    std::uint64_t apart = 0;
    for (const Part& part : statement.all(Role::UsesImage)) {
        const std::string name(part.text);
        if (isTogether) {
            together.add(name);
            continue;
        }
        GapCount alone(context, provenance);
        alone.add(name);
        apart += alone.gaps();
    }
    if (filling.isPadding()) return together.gapsFilledBy(filling);
    return isTogether ? together.gaps() : apart;
}

std::string adviceOnOutput(const Statement& statement, const Filling& filling, bool isScript) {
    if (filling.isPadding())
        return isScript ? "-fillGapsUpTo and -alignTo fill less with smaller numbers"
                        : "--fill-gaps and --align fill less with smaller numbers";
    if (!isScript)
        return "a format with addresses leaves them gaps, and --crop START,LENGTH keeps a part";
    if (outputFormatOf(statement).hasAddresses) return "-skipUnwritten leaves them gaps";
    return "take a part with -useBufferRange of NEW_BUFFER, or choose a format with addresses and "
           "-skipUnwritten";
}

std::string sizeOf(std::uint64_t gaps) {
    return Inspect::countText(gaps, "byte") + " (" + Inspect::sizeText(gaps) + ")";
}

void checkOutput(const Statement& statement, const CmdContext& context,
                 const Provenance& provenance, StatementReports& reports, bool isScript) {
    // A copy of a file has the gaps of that.
    if (outputFormatOf(statement).needsTemplate) return;
    const Filling filling = fillingOf(statement);
    if (filling.isSkipping && !filling.isPadding()) return;
    // Counting takes the origins of all bytes, which few files need.
    if (mostAddresses(statement, context, filling) <= Inspect::widestGaps) return;
    const std::uint64_t gaps = gapsOf(statement, context, provenance, filling);
    if (gaps <= Inspect::widestGaps) return;
    reports.report(Kind::WideGap, "the file would get " + sizeOf(gaps) + " of gaps",
                   {Role::OutputFile}, adviceOnOutput(statement, filling, isScript));
}

void checkFiller(const Statement& statement, const CmdContext& context,
                 const Provenance& provenance, StatementReports& reports, bool isScript) {
    const std::string name(statement.textOf(Role::ChangesImage));
    const auto image = provenance.images().find(name);
    if (image == provenance.images().end() || image->second.hasNamedRange) return;
    GapCount count(context, provenance);
    count.add(name);
    const std::uint64_t gaps = count.gaps();
    if (gaps <= Inspect::widestGaps) return;
    reports.reportName(Kind::WideGap, name,
                       "the filler would fill " + sizeOf(gaps) + " of gaps in " + name,
                       isScript ? "name the areas that it is for with -useAreas"
                                : "leave out --fill, or keep a part with --crop START,LENGTH");
}

}  // namespace

void checkWideGaps(const Statement& statement, const CmdContext& context,
                   const Provenance& provenance, StatementReports& reports, bool isScript) {
    if (statement.has(Role::OutputFile))
        checkOutput(statement, context, provenance, reports, isScript);
    else if (statement.has(Role::Filler) && !statement.has(Role::Area))
        checkFiller(statement, context, provenance, reports, isScript);
}

}  // namespace Strict
