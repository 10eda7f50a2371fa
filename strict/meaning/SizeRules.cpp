#include "strict/meaning/SizeRules.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "inspect/Words.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

constexpr Parser::Roles lists{Role::Bytes, Role::Filler};

/// What is written has more bytes than the area, or a value has fewer.
void reportSize(const Step& step, std::string what, std::uint64_t size, const Part& part) {
    const Area area = step.statement.areaOf(part);
    step.findings.report(Kind::ValueSize,
                         std::move(what) + " has " + Inspect::countText(size, "byte") +
                             ", and this area has " + std::to_string(area.length),
                         part.text,
                         size == 0 ? ""
                                   : "the area would be {" + Inspect::addressText(area.start) +
                                         ", " + std::to_string(size) + "}");
}

/// All images that the statement uses are known to have no address.
bool hasNoAddress(const Step& step) {
    return !step.used.empty() && step.knowsAll() &&
           std::ranges::all_of(step.used, [&step](std::size_t image) {
               return step.images[image].range.value_or(everywhere).length == 0;
           });
}

/// No image that the statement uses has a written address.
bool hasNothingWritten(const Step& step) {
    return std::ranges::all_of(step.statement.parts, [&step](const Part& part) {
        if (part.role != Role::UsesImage) return true;
        const auto image = step.context->buffers.find(std::string(part.text));
        if (image == step.context->buffers.end()) return false;
        const auto elements = image->second.viewElements();
        return elements.findWritten(0) == elements.size();
    });
}

}  // namespace

void checkWholeImage(const Step& step) {
    const Statement& statement = step.statement;
    if (!step.has(Role::ChangesImage) || step.has(Role::Area)) return;
    const Part* const value = statement.last(Parser::usesValue);
    if (value == nullptr) return;
    const std::size_t size = step.put ? step.values.sizeOf(*step.put, step.context).value_or(0) : 0;
    const auto range = step.changed ? step.images[*step.changed].range : std::nullopt;
    // Where the range, or the size of a signature, is not known before the run, the value may be
    // all that the image is for.
    const bool isOpen =
        size == 0 ? step.put.has_value() && value->role == Role::UsesSignature : !range.has_value();
    if (isOpen && step.context == nullptr) return;
    if (size != 0 && range && range->length == size) return;
    step.findings.report(Kind::WholeImage,
                         "without an area " + std::string(value->text) + " replaces all bytes of " +
                             std::string(statement.textOf(Role::ChangesImage)),
                         value->text,
                         "add -useAreas={{start, " +
                             (size != 0 ? std::to_string(size) : std::string("length")) + "}}");
}

void checkValueSizes(const Step& step) {
    const Statement& statement = step.statement;
    if (!step.has(Role::ChangesImage) && !statement.isComparison()) return;
    if (step.put) {
        const auto size = step.values.sizeOf(*step.put, step.context);
        for (const Part& part : statement.all(Role::Area)) {
            const std::uint64_t length = statement.areaOf(part).length;
            if (size && length != *size && length != 0)
                reportSize(step, std::string(step.values.nameOf(*step.put)), *size, part);
        }
    }
    if (const Part* const list = statement.last(lists))
        for (const Part& part : statement.all(Role::Area)) {
            const std::uint64_t length = statement.areaOf(part).length;
            const std::uint64_t size = statement.bytesOf(*list);
            if (size > length && length != 0) reportSize(step, "the list", size, part);
        }
}

void checkTextSizes(const Step& step) {
    const Part* const text = step.statement.last(Role::String);
    const std::string_view written =
        text->text.substr(std::min(text->text.find_first_not_of(" \t\n\v\f\r"), text->text.size()));
    for (const Part& part : step.statement.all(Role::Area)) {
        const Area area = step.statement.areaOf(part);
        if (written.size() <= area.length || area.length == 0) continue;
        step.findings.report(Kind::TextSize,
                             "the text has " + Inspect::countText(written.size(), "byte") +
                                 " and runs over the end of this area, which has " +
                                 std::to_string(area.length),
                             part.text, "a text is written as a whole, whatever the area's length");
    }
}

void checkCroppedValues(const Step& step) {
    const Statement& statement = step.statement;
    if (!step.has(Role::MakesImage)) return;
    const Part* const list = statement.last(Role::Bytes);
    const Part* const range = statement.last(Role::Range);
    if (range == nullptr && !step.has(Role::Area)) return;
    const std::uint64_t all = statement.bytesOf(*list);
    AreaList kept{{0, all}};
    if (range != nullptr && statement.areaOf(*range) != Area{})
        kept = clipped(std::move(kept), statement.areaOf(*range));
    if (step.has(Role::Area)) kept = clipped(kept, united(statement.areas()));
    std::uint64_t bytes = 0;
    for (const Area& area : kept) bytes += area.length;
    if (bytes == all) return;
    step.findings.report(Kind::Cropped,
                         std::to_string(all - bytes) + " of " +
                             Inspect::countText(all, step.has(Role::ValueSize) ? "byte" : "value") +
                             (all - bytes == 1 ? " is" : " are") + " left out of the image",
                         (range != nullptr ? *range : *statement.last(Role::Area)).text,
                         "the first value has the address 0; -changeStartAddressTo= moves them");
}

void checkLaneRows(const Step& step) {
    const Part* const lane = step.statement.last(Role::Lane);
    const auto numbers = step.statement.numbersOf(*lane).last(3);
    const std::uint64_t row = std::uint64_t{numbers[1].value()} * numbers[2].value();
    std::optional<Area> range;
    if (const Part* const given = step.statement.last(Role::Range))
        range = step.statement.areaOf(*given);
    else if (!step.has(Role::Area) && step.used.size() == 1)
        range = step.images[step.used.front()].range;
    if (row == 0 || !range || (range->start % row == 0 && range->end() % row == 0)) return;
    Diagnostic diagnostic{Kind::WordSize,
                          "the image, " + Inspect::rangeText(*range) +
                              ", does not begin and end with a row of all lanes, which has " +
                              Inspect::countText(row, "byte") + ", so some lanes are shorter"};
    diagnostic.usual = Severity::Warning;
    diagnostic.hint = "-useBufferRange={start, length} gives an image whole rows";
    step.findings.report(std::move(diagnostic), lane->text);
}

void checkEmptyDigest(const Step& step) {
    const Statement& statement = step.statement;
    if (step.has(Role::MakesHash) && step.has(Role::KeyFile)) return;
    const Part* value = statement.last(Parser::makesValue);
    if (value == nullptr) value = statement.last(Parser::usesValue);
    const bool hasImage = step.has(Role::UsesImage);
    if (hasImage && !hasNoAddress(step)) return;
    step.findings.report(
        Kind::EmptyDigest,
        std::string("the ") + Parser::valueKindOf(value->role)->word +
            " covers no byte: " + (hasImage ? "its images have no addresses" : "it names no image"),
        value->text);
}

void checkEmptyOutput(const Step& step) {
    const Statement& statement = step.statement;
    const Part* const file = statement.last(Role::OutputFile);
    const bool hasImage = step.has(Role::UsesImage);
    const bool isEmpty = !hasImage || hasNoAddress(step);
    const bool hasGaps =
        step.context != nullptr && statement.roles.hasAny({Role::Gaps, Role::ShortGaps});
    if (!isEmpty && !(hasGaps && hasNothingWritten(step))) return;
    std::string text = "the file gets no byte, since ";
    if (!hasImage)
        text += "no image is named";
    else
        text += isEmpty ? "its images have no address" : "nothing wrote to its images";
    step.findings.report(Kind::EmptyOutput, std::move(text), file->text);
}

}  // namespace Strict
