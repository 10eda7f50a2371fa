#include "strict/record/WideGaps.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "inspect/Gaps.hpp"
#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "strict/script/OutputFormat.hpp"

namespace Strict {

namespace {

using Buffer::AreaList;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

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
        for (const OriginMap* const some : {&origins->second.fillers, &origins->second.written})
            given_.lay(*some, range);
    }

    std::uint64_t gaps() const {
        return Inspect::byteCount(Inspect::joined(ranges_, 0)) - given_.size();
    }

private:
    const CmdContext* context_;
    const Provenance* provenance_;
    AreaList ranges_;
    OriginMap given_;
};

/// Addresses of the images that a statement uses, those in common counted for each.
std::uint64_t lengthOf(const Statement& statement, const CmdContext& context) {
    std::uint64_t length = 0;
    for (const Part& part : statement.all(Role::UsesImage))
        if (const auto image = context.buffers.find(std::string(part.text));
            image != context.buffers.end())
            length += image->second.getDataLength();
    return length;
}

std::uint64_t gapsOf(const Statement& statement, const CmdContext& context,
                     const Provenance& provenance) {
    // Without a rule the file has all of each image.
    const bool isTogether = statement.has(Role::Overlap);
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
    return isTogether ? together.gaps() : apart;
}

std::string adviceOnOutput(const Statement& statement, bool isScript) {
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
    if (statement.roles.hasAny({Role::Gaps, Role::ShortGaps})) return;
    // Counting takes the origins of all bytes, which few files need.
    if (lengthOf(statement, context) <= Inspect::widestGaps) return;
    const std::uint64_t gaps = gapsOf(statement, context, provenance);
    if (gaps <= Inspect::widestGaps) return;
    reports.report(Kind::WideGap, "the file would get " + sizeOf(gaps) + " of gaps",
                   {Role::OutputFile}, adviceOnOutput(statement, isScript));
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
