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
#include "strict/meaning/TextRule.hpp"

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
    isSettled_ = known.isSettled;
    reportUnused();
}

void MeaningCheck::leave(std::size_t number, const CmdContext& context) {
    const Statement statement = program_->statements()[number];
    checkUnknownText(stepOf(running_, statement, &context));
    if (!isSettled_) takeEffect(running_, number, &context);
}

void MeaningCheck::enter(std::size_t number, const CmdContext& context) {
    if (!isSettled_) {
        check(running_, number, &context);
        return;
    }
    const Statement statement = program_->statements()[number];
    const Step step = stepOf(running_, statement, &context);
    if (!step.has(Role::OutputFile)) return;
    checkEmptyOutput(step);
    checkOutputOverlaps(step);
}

Step MeaningCheck::stepOf(const Knowledge& known, const Statement& statement,
                          const CmdContext* context) {
    return {statement,    Roles(statement), known.used, known.images,
            known.values, findings_,        context,    context != nullptr ? provenance_ : nullptr};
}

void MeaningCheck::check(Knowledge& known, std::size_t number, const CmdContext* context) {
    const Statement statement = program_->statements()[number];
    known.used.clear();
    known.images.findUsed(statement, known.used);
    const Step step = stepOf(known, statement, context);
    for (const auto rule : rules) rule(step);
    if (step.has(Role::ChangesImage)) known.values.checkPut(statement);
    if (step.has(Role::OutputFile)) known.values.checkOutput(statement, known.used);
    known.filled.clear();
    if (context != nullptr && step.has(Role::Filler) && !known.values.empty())
        known.filled = fillerChanges(statement, *context);
}

void MeaningCheck::takeEffect(Knowledge& known, std::size_t number, const CmdContext* context) {
    const Statement statement = program_->statements()[number];
    const Roles roles(statement);
    if (roles.has(Role::MakesImage)) {
        known.images.make(statement, context);
        const auto image = known.images.find(statement.textOf(Role::MakesImage));
        known.isSettled = known.isSettled && image && known.images[*image].range.has_value() &&
                          known.images[*image].isExact;
    }
    if (roles.has(Role::MakesCrc) || roles.has(Role::MakesHash))
        known.values.compute(statement, static_cast<const Parser::WrapperLib::CmdNewValue&>(
                                            *program_->commands()[number]));
    if (roles.has(Role::ChangesImage)) noteChange(known, statement, roles);
}

/// Notes where a statement changes an image, if that can matter.
void MeaningCheck::noteChange(Knowledge& known, const Statement& statement, const Roles& roles) {
    const auto image = known.images.find(statement.textOf(Role::ChangesImage));
    if (!image) return;
    const auto value = known.values.putBy(statement);
    if (value) known.images.follow(*image);
    if (!known.images[*image].isFollowed) return;
    const auto place = [&](Role role) { return statement.textOf(role); };
    if (roles.has(Role::Filler)) {
        // Before the run nobody knows which addresses will have no byte.
        known.isSettled = false;
        if (!known.filled.empty())
            known.images.change(*image, {place(Role::ChangesImage), std::nullopt}, known.filled);
        return;
    }
    AreaList areas = statement.areas();
    if (areas.empty()) areas.push_back(known.images[*image].range.value_or(everywhere));
    known.images.change(
        *image, {place(roles.has(Role::Area) ? Role::Area : Role::ChangesImage), value}, areas);
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
