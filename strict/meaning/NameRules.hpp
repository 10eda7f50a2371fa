#pragma once

#include "strict/meaning/Step.hpp"

/// Rules about options and about the names of files.
namespace Strict {

/// Roles of which only the last part of a statement counts; of options, that of one choice.
inline constexpr Parser::Roles onlyOnce{
    Parser::Role::Range,     Parser::Role::Address,     Parser::Role::Start,
    Parser::Role::Section,   Parser::Role::Type,        Parser::Role::Format,
    Parser::Role::Overlap,   Parser::Role::ByteOrder,   Parser::Role::WordSize,
    Parser::Role::ValueSize, Parser::Role::Gaps,        Parser::Role::ArrayName,
    Parser::Role::Option,    Parser::Role::Lane,        Parser::Role::Interleave,
    Parser::Role::SwapBytes, Parser::Role::AddressUnit, Parser::Role::ShortGaps,
    Parser::Role::Alignment, Parser::Role::GuardName,   Parser::Role::Header,
    Parser::Role::Template,  Parser::Role::Family,      Parser::Role::KeyFile,
    Parser::Role::Form};

/// `repeated-option`: of an option that has one value only the last one counts. Areas, which add
/// up, may be given several times.
void checkRepeatedOptions(const Step& step);

/// `format-ending`: the ending of a file's name says another format than it is written in. Without
/// `-setFormat` that is an error, and with it a warning, since somebody chose the format.
void checkFormatEnding(const Step& step);

/// `bare-word`: an output without dot and slash in its name, or a text that is one word in the
/// manner of variables: a variable of that name may not have been given. What came out of a
/// variable was given, and the arguments of a program are its own affair.
void checkBareWords(const Step& step);

}  // namespace Strict
