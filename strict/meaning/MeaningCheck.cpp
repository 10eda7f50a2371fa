#include "strict/meaning/MeaningCheck.hpp"

#include <array>
#include <string>
#include <string_view>

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
using Parser::Roles;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

/// A rule, and the roles of which a statement needs one for it to have anything to say.
struct Rule {
    Roles roles;
    void (*check)(const Step& step);
};

/// In the order in which they report.
constexpr std::array rules{
    Rule{onlyOnce, checkRepeatedOptions},
    Rule{{Role::Area, Role::Range}, checkEmptyAreas},
    Rule{{Role::Area}, checkOutsideAreas},
    Rule{{Role::Area}, checkDoubleAreas},
    Rule{Parser::usesValue, checkWholeImage},
    Rule{{Role::Area}, checkValueSizes},
    Rule{{Role::String}, checkTextSizes},
    Rule{{Role::Bytes}, checkCroppedValues},
    Rule{{Role::Lane}, checkLaneRows},
    Rule{{Role::MakesCrc, Role::MakesHash, Role::KeyFile}, checkEmptyDigest},
    Rule{{Role::OutputFile}, checkFormatEnding},
    Rule{{Role::OutputFile}, checkEmptyOutput},
    Rule{{Role::OutputFile, Role::String, Role::Text}, checkBareWords},
    Rule{{Role::OutputFile}, checkOutputOverlaps},
};

}  // namespace

void MeaningCheck::checkBefore() {
    Knowledge known(findings_);
    bool isWriting = false;
    for (std::size_t i = 0; i < program_->statements().size(); ++i) {
        const Statement statement = program_->statements()[i];
        const Step step = stepOf(known, statement, nullptr);
        if (!statement.asks()) check(known, step);
        if (statement.has(Role::UsesImage))
            for (const std::size_t image : known.used) known.images.noteRead(image);
        for (const Part& part : statement.all(Role::MeasuresImage))
            if (const auto image = known.images.find(part.text)) known.images.noteRead(*image);
        isWriting = isWriting || statement.has(Role::OutputFile);
        if (statement.asks())
            takeUnknownEffect(known, step);
        else
            takeEffect(known, step, i);
    }
    isSettled_ = known.isSettled;
    if (isWriting) reportUnused(known.images);
}

void MeaningCheck::leave(std::size_t number, const CmdContext& context) {
    const Statement statement = program_->statements()[number];
    if (isSettled_ && !statement.has(Role::InputFile)) return;
    const Step step = stepOf(running_, statement, &context);
    checkUnknownText(step);
    if (!isSettled_) takeEffect(running_, step, number);
}

void MeaningCheck::enter(std::size_t number, const CmdContext& context) {
    const Statement statement = program_->statements()[number];
    if (isSettled_ && !statement.has(Role::OutputFile)) return;
    const Step step = stepOf(running_, statement, &context);
    if (!isSettled_) {
        check(running_, step);
        return;
    }
    checkEmptyOutput(step);
    checkOutputOverlaps(step);
}

Step MeaningCheck::stepOf(Knowledge& known, const Statement& statement, const CmdContext* context) {
    known.used.clear();
    const auto changed = known.images.findUsed(statement, known.used);
    return {statement,
            known.used,
            changed,
            known.values.putBy(statement),
            known.images,
            known.values,
            findings_,
            context,
            context != nullptr ? provenance_ : nullptr};
}

void MeaningCheck::check(Knowledge& known, const Step& step) {
    for (const Rule& rule : rules)
        if (step.statement.roles.hasAny(rule.roles)) rule.check(step);
    if (step.put && step.changed) known.values.checkPut(step.statement, *step.put, *step.changed);
    // What is taken out of an image to other places is as final as what is written.
    if (step.statement.roles.hasAny(
            {Role::OutputFile, Role::Lane, Role::Interleave, Role::SwapBytes}))
        known.values.checkTaken(step.statement, step.used);
    known.filled.clear();
    if (step.context != nullptr && step.has(Role::Filler) && !known.values.empty())
        known.filled = fillerChanges(step.statement, *step.context);
}

void MeaningCheck::takeEffect(Knowledge& known, const Step& step, std::size_t number) {
    const Statement& statement = step.statement;
    if (statement.has(Role::MakesImage)) {
        const auto image = known.images.make(statement, step.used, step.context);
        known.isSettled = known.isSettled && image && known.images[*image].range.has_value() &&
                          known.images[*image].isExact;
    }
    if (statement.roles.hasAny(Parser::makesValue))
        known.values.compute(
            statement, step.has(Role::Stored) ? std::span<const std::size_t>() : step.used,
            static_cast<const Parser::WrapperLib::CmdNewValue&>(*program_->commands()[number]));
    if (step.changed) noteChange(known, step);
    // The key, or a file, says how long a signature is.
    if (step.put && !known.values.sizeOf(*step.put, step.context)) known.isSettled = false;
}

/// Takes a statement into account whose numbers are not known: what it makes or changes is open
/// until the run.
void MeaningCheck::takeUnknownEffect(Knowledge& known, const Step& step) {
    known.isSettled = false;
    if (step.has(Role::MakesImage)) known.images.makeOpen(step.statement);
    if (step.changed) known.images.open(*step.changed);
}

/// Notes where a statement changes an image, if that can matter.
void MeaningCheck::noteChange(Knowledge& known, const Step& step) {
    const Statement& statement = step.statement;
    const std::size_t image = *step.changed;
    if (step.put) known.images.follow(image);
    if (!known.images[image].isFollowed) return;
    const auto place = [&](Role role) { return statement.textOf(role); };
    if (step.has(Role::Filler)) {
        // Before the run nobody knows which addresses will have no byte.
        known.isSettled = false;
        if (!known.filled.empty())
            known.images.change(image, {place(Role::ChangesImage), std::nullopt}, known.filled);
        return;
    }
    AreaList areas = statement.areas();
    if (areas.empty()) areas.push_back(known.images[image].range.value_or(everywhere));
    known.images.change(
        image, {place(step.has(Role::Area) ? Role::Area : Role::ChangesImage), step.put}, areas);
}

/// `unused-image`: an image that nothing reads; filling it is not a use. A script that writes no
/// file may make images to have their files checked.
void MeaningCheck::reportUnused(const Images& images) {
    for (std::size_t i = 0; i < images.size(); ++i) {
        if (images[i].isRead) continue;
        const std::string_view name = images[i].name;
        findings_.report(Kind::UnusedImage,
                         std::string(name) + " is never written to a file, covered or shown", name);
    }
}

}  // namespace Strict
