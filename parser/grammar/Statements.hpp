#pragma once

#include <array>
#include <memory>

#include "parser/grammar/ScriptGrammar.hpp"

/// The statements of the language. Each has a source here that defines its rules.
namespace Parser {

using StatementDefinition = std::unique_ptr<const StatementRules> (*)(CommonRules&, ParserState&);

std::unique_ptr<const StatementRules> newBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> fillBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printTextCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printCrcCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printHashCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> writeFileCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> newCrcCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> newHashCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> callAppCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> verifyBufferCmd(CommonRules& rules, ParserState& state);

std::unique_ptr<const StatementRules> newSignatureCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printSignatureCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> verifySignatureCmd(CommonRules& rules, ParserState& state);

struct StatementRow {
    StatementDefinition define;
    const char* meaning;  ///< one line, for people
};

/// In the order in which the grammar tries them.
inline constexpr std::array<StatementRow, 14> statementRows{{
    {&newBufferCmd, "makes an image from a file, from values, from other images or empty"},
    {&fillBufferCmd, "writes values, text, a filler, a CRC, a hash or a signature into an image"},
    {&printTextCmd, "prints a text"},
    {&printBufferCmd, "prints the bytes of an image"},
    {&printCrcCmd, "prints a CRC"},
    {&printHashCmd, "prints a hash"},
    {&writeFileCmd, "writes images into a file"},
    {&newCrcCmd, "computes a CRC, or another checksum, of images"},
    {&newHashCmd, "computes a hash of images"},
    {&callAppCmd, "runs a program"},
    {&verifyBufferCmd,
     "compares an image with values, a text, a CRC, a hash, a signature or another image"},
    {&newSignatureCmd, "signs images, or takes a signature from a file or an image"},
    {&printSignatureCmd, "prints a signature"},
    {&verifySignatureCmd, "holds a signature against images and a public key"},
}};

}  // namespace Parser
