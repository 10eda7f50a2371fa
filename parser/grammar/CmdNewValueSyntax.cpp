#include <memory>

#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using WrapperLib::CmdNewCrc;
using WrapperLib::CmdNewHash;
using WrapperLib::CmdNewValue;
using WrapperLib::ValueType;

namespace {

/// The words in which NEW_CRC and NEW_HASH differ.
struct Words {
    const char* keyword;
    const char* beginTrace;
    const char* nameTrace;
};

/// NEW_CRC name source [option ...], and NEW_HASH
template <class Command>
struct NewValueRules final : StatementRules {
    NewValueRules(CommonRules& rules, ParserState& state, const Words& words) {
        const StatementActions<CmdNewValue> on(state);
        const StatementActions<Command> onKeyword(state);
        command = (rules.keyword(words.keyword)[onKeyword.begin(words.beginTrace)] >> rules.ws >>
                   rules.name[on.text(words.nameTrace, &CmdNewValue::setName)] >> source >>
                   options)[on.end()] >>
                  rules.ws;
        source = rules.ws >>
                 buffersSource(rules, on, "AddFromBuffer -> ", &CmdNewValue::addFromBuffer) >>
                 rules.ws;
        options = *(ownAreasOption | typeOption);
        ownAreasOption = areasOption(rules, on);
        typeOption =
            rules.keyword("-setType") >> rules.equals >>
            KeywordOf(Command::types(), type, rules)[on.row(type, &CmdNewValue::setType)] >>
            rules.ws;
    }

    Rule source, options, ownAreasOption, typeOption;
    const ValueType* type = nullptr;  ///< the row of the keyword that was read last
};

}  // namespace

std::unique_ptr<const StatementRules> newCrcCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_CRC", "CmdNewCrc: Begin -> ", "SetCrcName -> "};
    return std::make_unique<NewValueRules<CmdNewCrc>>(rules, state, words);
}

std::unique_ptr<const StatementRules> newHashCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_HASH", "CmdNewHash: Begin -> ", "SetHashName -> "};
    return std::make_unique<NewValueRules<CmdNewHash>>(rules, state, words);
}

}  // namespace Parser
