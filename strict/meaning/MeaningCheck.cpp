#include "strict/meaning/MeaningCheck.hpp"

#include <array>
#include <string>
#include <string_view>
#include <unordered_set>

#include "strict/meaning/AreaRules.hpp"
#include "strict/meaning/Fillers.hpp"
#include "strict/meaning/NameRules.hpp"
#include "strict/meaning/OverlapRule.hpp"
#include "strict/meaning/SizeRules.hpp"
#include "strict/meaning/Step.hpp"

namespace Strict {

namespace {

using Buffer::AreaList;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

/// The rules that need nothing but a step, in the order in which they report.
constexpr std::array rules{
    &checkRepeatedOptions, &checkEmptyAreas,   &checkOutsideAreas, &checkDoubleAreas,
    &checkWholeImage,      &checkValueSizes,   &checkTextSizes,    &checkCroppedValues,
    &checkEmptyDigest,     &checkFormatEnding, &checkEmptyOutput,  &checkBareWords,
    &checkOutputOverlaps,
};

}  // namespace

void MeaningCheck::checkBefore() {
    Knowledge known(findings_);
    for (std::size_t i = 0; i < program_->statements().size(); ++i) {
        check(known, i, nullptr);
        takeEffect(known, i, nullptr);
    }
    reportUnused();
}

void MeaningCheck::check(Knowledge& known, std::size_t number, const CmdContext* context) {
    const Statement statement = program_->statements()[number];
    const Step step{statement, known.images, known.values,
                    findings_, context,      context != nullptr ? provenance_ : nullptr};
    for (const auto rule : rules) rule(step);
    known.values.checkPut(statement);
    if (statement.has(Role::OutputFile)) known.values.checkOutput(statement, known.images);
    known.filled = context != nullptr && !known.values.empty() ? fillerChanges(statement, *context)
                                                               : AreaList();
}

void MeaningCheck::takeEffect(Knowledge& known, std::size_t number, const CmdContext* context) {
    const Statement statement = program_->statements()[number];
    if (statement.has(Role::MakesImage)) known.images.make(statement, context);
    if (statement.has(Role::MakesCrc) || statement.has(Role::MakesHash))
        known.values.compute(statement, static_cast<const Parser::WrapperLib::CmdNewValue&>(
                                            *program_->commands()[number]));
    const auto image = known.images.find(statement.textOf(Role::ChangesImage));
    if (!image) return;
    if (statement.has(Role::Filler)) {
        // Before the run nobody knows which addresses will have no byte.
        if (!known.filled.empty())
            known.images.change(*image, {statement.textOf(Role::ChangesImage), std::nullopt},
                                known.filled);
        return;
    }
    AreaList areas = statement.areas();
    if (areas.empty()) areas.push_back(known.images[*image].range.value_or(everywhere));
    const Part* const place =
        statement.has(Role::Area) ? statement.last(Role::Area) : statement.last(Role::ChangesImage);
    known.images.change(*image, {place->text, known.values.putBy(statement)}, areas);
}

/// `unused-image`: an image that nothing reads; filling it is not a use. A script that writes no
/// file may make images to have their files checked.
void MeaningCheck::reportUnused() {
    bool isWriting = false;
    std::unordered_set<std::string_view> used;
    for (const Statement statement : program_->statements()) {
        isWriting = isWriting || statement.has(Role::OutputFile);
        for (const Part& part : statement.all(Role::UsesImage)) used.insert(part.text);
    }
    if (!isWriting) return;
    for (const Statement statement : program_->statements()) {
        const Part* const made = statement.last(Role::MakesImage);
        if (made == nullptr || used.contains(made->text)) continue;
        findings_.report(Kind::UnusedImage,
                         std::string(made->text) + " is never written to a file, covered or shown",
                         made->text);
    }
}

}  // namespace Strict
