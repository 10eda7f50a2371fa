#pragma once

#include <cstddef>
#include <vector>

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/meaning/Findings.hpp"
#include "strict/meaning/Images.hpp"
#include "strict/meaning/Step.hpp"
#include "strict/meaning/StoredValues.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/Program.hpp"

/// What a script means, as far as it can be known to be a mistake though every statement is well
/// formed: a CRC over its own place, bytes that were changed after the CRC over them, a text that
/// is longer than its area.
///
/// The rules are functions over one statement and what is known of the images at that point
/// (`Step`); each has a paragraph at its declaration, in AreaRules, SizeRules, NameRules, and in
/// StoredValues for what needs the flow of values through images. They ask for the roles of a
/// statement's parts and not for its kind.
///
/// One pass over all statements before the run finds what the script itself says. What hangs on
/// the files that are read, such as the range of an image or which of its bytes nothing wrote, is
/// found by the same rules when the statement is about to run.
namespace Strict {

/// Checks the statements of a program in their order.
class MeaningCheck {
public:
    /// @param provenance  of the images of the run
    MeaningCheck(const Program& program, const Provenance& provenance, DiagnosticSink& sink)
        : program_(&program), provenance_(&provenance), findings_(program.text(), sink) {}

    /// Reports what can be known before the run, in the order of the statements.
    void checkBefore();

    /// Reports what is known when a statement is about to run, but for what was reported before.
    ///
    /// @param number  of the statement
    void enter(std::size_t number, const Parser::WrapperLib::CmdContext& context);

    /// The statement has run.
    void leave(std::size_t number, const Parser::WrapperLib::CmdContext& context);

private:
    /// What is known at a point of the script.
    struct Knowledge {
        explicit Knowledge(Findings& findings) : values(images, findings) {}

        Images images;
        StoredValues values;
        std::vector<std::size_t> used;  ///< by the statement that is checked
        /// Where that one lays a filler under addresses that nothing wrote.
        Buffer::AreaList filled;
        bool isSettled = true;  ///< the script alone says all that the flow of values needs
    };

    static void check(Knowledge& known, const Step& step);
    void takeEffect(Knowledge& known, const Step& step, std::size_t number);
    static void takeUnknownEffect(Knowledge& known, const Step& step);
    static void noteChange(Knowledge& known, const Step& step);
    void reportUnused(const Images& images);

    /// What `known` has on a statement that is about to take effect.
    Step stepOf(Knowledge& known, const Parser::Statement& statement,
                const Parser::WrapperLib::CmdContext* context);

    const Program* program_;
    const Provenance* provenance_;
    Findings findings_;
    Knowledge running_{findings_};
    bool isSettled_ = false;  ///< the pass before the run knew all that matters
};

}  // namespace Strict
