#include <memory>

#include "parser/commands/CmdNewSignature.hpp"
#include "parser/commands/CmdPrintSignature.hpp"
#include "parser/commands/CmdVerifySignature.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Crypto::SignatureForm;
using WrapperLib::CmdNewSignature;
using WrapperLib::CmdPrintSignature;
using WrapperLib::CmdVerifySignature;
using WrapperLib::SignatureKind;

namespace {

/// -setType = Ed25519 | ..., -setKeyFile = path and -setSignatureForm = Raw | Der, which a
/// signature is made and verified with.
struct SignatureOptions {
    /// Comes after the keyword of the statement, since the first keyword is that.
    template <class Command>
    void define(CommonRules& rules, const StatementActions<Command>& on) {
        type = rules.keyword("-setType") >> rules.equals >>
               KeywordOf(WrapperLib::signatureKinds(), kind,
                         rules)[on.row(kind, Role::Type, &Command::setKind)] >>
               rules.ws;
        keyFile = rules.keyword("-setKeyFile") >> rules.equals >>
                  rules.textArg[on.text("SetKeyFile -> ", Role::KeyFile, &Command::setKeyFile)] >>
                  rules.ws;
        form = rules.keyword("-setSignatureForm") >> rules.equals >>
               (rules.keyword("Raw")[on.constant("SetSignatureForm_Raw -> ", Role::Form,
                                                 &Command::setForm, SignatureForm::Raw)] |
                rules.keyword("Der")[on.constant("SetSignatureForm_Der -> ", Role::Form,
                                                 &Command::setForm, SignatureForm::Der)]) >>
               rules.ws;
    }

    Rule type, keyFile, form;
    const SignatureKind* kind = nullptr;  ///< the row of the keyword that was read last
};

/// NEW_SIGNATURE name FROM_FILE path, NEW_SIGNATURE name FROM_STORED name [areas ...], and
/// NEW_SIGNATURE name source [option ...]
struct NewSignatureRules final : StatementRules {
    NewSignatureRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdNewSignature> on(state);
        const auto addImage = &CmdNewSignature::addFromBuffer;
        command = (rules.keyword("NEW_SIGNATURE")[on.begin("CmdNewSignature: Begin -> ")] >>
                   rules.ws >> rules.name[on.text("SetSignatureName -> ", Role::MakesSignature,
                                                  &CmdNewSignature::setName)] >>
                   rules.ws >> (file | stored | signedImages))[on.end()] >>
                  rules.ws;
        file = rules.keyword("FROM_FILE") >> rules.ws >>
               rules.textArg[on.text("SetSignatureFile -> ", Role::InputFile,
                                     &CmdNewSignature::setFile)] >>
               rules.ws;
        stored = rules.keyword("FROM_STORED")[on.constant("SetStored -> ", Role::Stored,
                                                          &CmdNewSignature::setStored, true)] >>
                 rules.ws >> rules.name[on.text("AddFromBuffer -> ", Role::UsesImage, addImage)] >>
                 rules.ws >> *areas;
        signedImages = buffersSource(rules, on, "AddFromBuffer -> ", addImage) >> rules.ws >>
                       *(areas | options.type | options.keyFile | options.form);
        areas = areasOption(rules, on);
        options.define(rules, on);
    }

    SignatureOptions options;
    Rule file, stored, signedImages, areas;
};

/// PRINT_SIGNATURE name
struct PrintSignatureRules final : StatementRules {
    PrintSignatureRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdPrintSignature> on(state);
        command = (rules.keyword("PRINT_SIGNATURE")[on.begin("CmdPrintSignature: Begin -> ")] >>
                   rules.ws >> rules.name[on.text("SetName -> ", Role::UsesSignature,
                                                  &CmdPrintSignature::setSignatureName)] >>
                   rules.ws)[on.end()] >>
                  rules.ws;
    }
};

/// VERIFY_SIGNATURE name source [option ...]
struct VerifySignatureRules final : StatementRules {
    VerifySignatureRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdVerifySignature> on(state);
        command = (rules.keyword("VERIFY_SIGNATURE")[on.begin("CmdVerifySignature: Begin -> ")] >>
                   rules.ws >> rules.name[on.text("SetName -> ", Role::UsesSignature,
                                                  &CmdVerifySignature::setName)] >>
                   source >> *(areas | options.type | options.keyFile | options.form))[on.end()] >>
                  rules.ws;
        source = rules.ws >> buffersSource(rules, on, "AddFromBuffer -> ",
                                           &CmdVerifySignature::addFromBuffer) >>
                 rules.ws;
        areas = areasOption(rules, on);
        options.define(rules, on);
    }

    SignatureOptions options;
    Rule source, areas;
};

}  // namespace

std::unique_ptr<const StatementRules> newSignatureCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<NewSignatureRules>(rules, state);
}

std::unique_ptr<const StatementRules> printSignatureCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<PrintSignatureRules>(rules, state);
}

std::unique_ptr<const StatementRules> verifySignatureCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<VerifySignatureRules>(rules, state);
}

}  // namespace Parser
