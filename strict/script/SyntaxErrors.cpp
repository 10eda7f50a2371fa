#include "strict/script/SyntaxErrors.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "io/NamedNumber.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/commands/SignatureKey.hpp"
#include "parser/text/Characters.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/script/Directives.hpp"
#include "strict/script/TypeAdvice.hpp"
#include "strict/script/TypographicQuote.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Strict {

namespace {

using Parser::isDigit;
using Parser::isWordCharacter;

constexpr std::string_view spaces = " \t\n\v\f\r";

/// Bytes of a word that a message shows.
constexpr std::size_t longestShown = 40;

/// What the words of a group are in the language.
struct Group {
    const char* description;
    std::string_view member;  ///< a word that only this group has
    std::string_view start;   ///< what its words begin with
};

constexpr std::array groups{
    Group{"a source", "FROM_FILE", "FROM_"},
    Group{"a source", "FROM_BUFFER", "FROM_"},
    Group{"what to fill with", "WITH_FILLER", "WITH_"},
    Group{"a CRC type", "Crc32_Standard", ""},
    Group{"a name of the CRC catalogue", "CRC-32/ISO-HDLC", ""},
    Group{"a hash type", "Hash_Sha1", "Hash_"},
    Group{"a type of signature", "Ed25519", ""},
    Group{"a format", "RawBinary", ""},
    Group{"a family of devices", "RP2040", ""},
    Group{"a byte order", "LittleEndian", ""},
};

bool has(const std::vector<std::string_view>& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/// The word asks images or symbols for a number.
bool isNumberFunction(std::string_view word) {
    using namespace Parser::WrapperLib;
    return std::ranges::any_of(numberFunctions(), [word](const NumberFunction& function) {
        return word == function.keyword;
    });
}

std::string listed(const std::vector<std::string_view>& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i != 0) text += i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}

/// "a source: FROM_FILE, EMPTY or FROM_VALUES", and so on for each group of words.
///
/// @param isShort  leaves out the words of a long group
std::string expectation(std::vector<std::string_view> words,
                        const std::vector<std::string_view>& keywords, bool isShort) {
    constexpr std::size_t longList = 8;
    constexpr std::size_t longestList = 40;
    const auto isKeyword = [&](std::string_view word) { return has(keywords, word); };
    const bool takesStatement = std::ranges::any_of(words, isKeyword);
    std::erase_if(words, [&](std::string_view word) {
        return isKeyword(word) || word == "CALCULATE" || isNumberFunction(word);
    });
    const bool isEnd = takesStatement;
    if (words.empty()) return isEnd ? "a statement" : "something else";
    const auto* const group =
        std::ranges::find_if(groups, [&](const Group& one) { return has(words, one.member); });
    std::string text;
    if (group != groups.end() && words.size() > (isShort ? longList : longestList))
        return group->description;
    if (group != groups.end())
        text = std::string(group->description) + ": ";
    else if (std::ranges::all_of(words, [](auto word) { return word.starts_with('-'); }))
        text = words.size() == 1 ? "the option " : "an option: ";
    text += listed(words);
    return isEnd ? text + ", or the next statement" : text;
}

/// The word at the beginning of `rest`, for a message: up to white space or a delimiter.
std::string_view wordAt(std::string_view rest) {
    constexpr std::string_view ends = " \t\n\v\f\r{}(),;=";
    const std::size_t length = std::min(rest.find_first_of(ends), rest.size());
    return rest.substr(0, std::max<std::size_t>(length, rest.empty() ? 0 : 1));
}

/// The word that ends where `text` ends, unless it is a number.
std::string_view wordBefore(std::string_view text) {
    std::size_t begin = text.size();
    while (begin > 0 && isWordCharacter(text[begin - 1])) --begin;
    const std::string_view word = text.substr(begin);
    const bool isNumber = !word.empty() && word.front() >= '0' && word.front() <= '9';
    return isNumber ? std::string_view() : word;
}

/// Whether `word` is the last thing in `text`.
bool isLastWord(std::string_view text, std::string_view word) {
    return text.substr(0, text.find_last_not_of(spaces) + 1).ends_with(word);
}

/// A text that ends in a number with a sign.
bool isSigned(std::string_view text) {
    const std::size_t sign = text.find_last_not_of("0123456789xXabcdefABCDEF \t");
    if (sign == std::string_view::npos || (text[sign] != '-' && text[sign] != '+')) return false;
    const std::size_t before = text.substr(0, sign).find_last_not_of(" \t");
    return before != std::string_view::npos &&
           std::string_view("{,;=(").find(text[before]) != std::string_view::npos;
}

/// A value in which a blank separates a parenthesis and the operator after it, which only "+" may
/// follow.
bool hasBlankBeforeOperator(std::string_view before, char following) {
    const std::size_t begin = before.find_last_of("{,;=") + 1;
    for (std::size_t at = before.find(')', begin); at != std::string_view::npos;
         at = before.find(')', at + 1)) {
        const std::size_t next = before.find_first_not_of(" \t", at + 1);
        const std::size_t end = std::min(next, before.size());
        const char sign = end < before.size() ? before[end] : following;
        const bool isOperator = std::string_view("-*/%").find(sign) != std::string_view::npos;
        if (isOperator && end != at + 1) return true;
    }
    return false;
}

/// The hexadecimal digits without 0x that begin with `word` or with the decimal digits before it;
/// empty if they are not the whole number.
std::string bareHex(std::string_view before, std::string_view word) {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    constexpr std::size_t most = 8;
    const std::size_t begin = before.find_last_not_of("0123456789") + 1;
    const std::string text = std::string(before.substr(begin)) + std::string(word);
    const bool isInWord = begin > 0 && isWordCharacter(before[begin - 1]);
    const bool isHex = !isInWord && text.find_first_not_of(digits) == std::string::npos;
    return !word.empty() && isHex && text.size() <= most ? text : std::string();
}

/// Advice for a place where a number is expected.
std::string adviceForNumber(std::string_view before, std::string_view word) {
    if (word.starts_with('$')) return "a hexadecimal number begins with 0x";
    if (const std::string hex = bareHex(before, word); !hex.empty() && !isDigit(word.front()))
        return "a hexadecimal number begins with 0x: 0x" + hex;
    if (isSigned(before)) return "a number has no sign";
    if (word == "}") return "is a comma missing between two numbers?";
    if (!word.empty() && isDigit(word.front())) return "a number has at most 32 bits";
    return {};
}

/// Advice for the end of a number that goes on.
std::string adviceAfterNumber(std::string_view before, std::string_view word) {
    if (const std::string hex = bareHex(before, word); !hex.empty() && !isDigit(word.front()))
        return "a hexadecimal number begins with 0x: 0x" + hex;
    if (word == "h" || word == "H") return "a hexadecimal number begins with 0x";
    if (word.starts_with('x')) return "a number has at most 32 bits";
    return {};
}

/// Whether `text` ends in a file name of one word, to be read from.
bool isAfterFileName(std::string_view text) {
    constexpr std::string_view keyword = "FROM_FILE";
    const std::size_t found = text.rfind(keyword);
    if (found == std::string_view::npos) return false;
    const std::size_t name = text.find_first_of(spaces, found);
    const std::size_t begin = text.find_first_not_of(spaces, name);
    const std::size_t end = text.find_first_of(spaces, begin);
    return begin != std::string_view::npos && end != std::string_view::npos &&
           text.find_first_not_of(spaces, end) == std::string_view::npos;
}

/// Advice for common mistakes that no word of the language is near to.
///
/// @param rest  of the script, from the word on
std::string advice(std::string_view before, std::string_view word, std::string_view rest,
                   const std::vector<std::string_view>& words) {
    const bool takesNumber = has(words, "a number");
    const bool isRemark = (word.starts_with('#') && word != "#define") || word.starts_with("/*") ||
                          word.starts_with(';') || word.starts_with("--");
    if (isRemark && !takesNumber) return "a remark begins with //";
    if (word.starts_with("\xEF\xBB\xBF")) return "remove the byte order mark at the beginning";
    const std::size_t next = rest.find_first_not_of(" \t", word.size());
    const bool isAssigned = !word.empty() && isWordCharacter(word.front()) &&
                            next != std::string_view::npos && rest[next] == '=';
    if (word == "SUBSTITUTE" || word == "#define" || isAssigned)
        return "a replacement is written SUBSTITUTE NAME WITH VALUE, with single blanks";
    if (!rest.empty() && hasBlankBeforeOperator(before, rest.front()))
        return "remove the blank between the parenthesis and the operator";
    std::string text = takesNumber ? adviceForNumber(before, word) : "";
    const std::size_t last = before.find_last_not_of(" \t");
    if (text.empty() && last != std::string_view::npos && isDigit(before[last]))
        text = adviceAfterNumber(before, word);
    if (!text.empty()) return text;
    if (!word.empty() && static_cast<unsigned char>(word.front()) > 0x7F)
        return "a name consists of letters, digits and # @ _ - ! < > &";
    const auto isBefore = [&](std::string_view one) {
        return one.size() > 1 && isLastWord(before, one);
    };
    if (std::ranges::any_of(words, isBefore)) return "is the text in front of it missing?";
    if (word.starts_with(',') && !has(words, ")")) return "options are separated by blanks";
    if (has(words, "WITH_BUFFERS") || has(words, "WITH_ARGUMENTS"))
        return "put a text with blanks into braces";
    if (isAfterFileName(before)) return "put a file name with blanks into braces";
    if (has(words, "a quote") && word.starts_with('{')) return "put this text into quotes";
    if (has(words, "{") && !word.empty()) return "a list is in braces";
    return {};
}

/// Advice for a word that means a directive.
std::string adviceOnDirective(std::string_view word) {
    if (word == "#include") return "write INCLUDE and the name of the file";
    return word == includeWord || word == parameterWord
               ? "it begins a line, outside of braces and quotes"
               : "";
}

/// Advice for a statement whose keyword and the word after it are not separated.
std::string gluedKeyword(std::string_view statement,
                         const std::vector<std::string_view>& keywords) {
    const std::string_view word = wordAt(statement);
    for (const std::string_view keyword : keywords)
        if (word.starts_with(keyword) && word.size() > keyword.size())
            return std::string(word.substr(0, longestShown)) + " is read as " +
                   std::string(keyword) + " and a word of its own";
    return {};
}

/// The first typographic quote of a line, unless it may be within a text.
std::optional<TypographicQuote> looseQuoteIn(std::string_view line) {
    const auto quote = typographicQuoteIn(line);
    const bool isInText =
        quote && line.substr(0, quote->at).find_first_of("\"'{") != std::string_view::npos;
    return isInText ? std::nullopt : quote;
}

/// What is known of a place that takes the name of an algorithm, a device or a format.
struct Outside {
    std::vector<std::string_view> names;  ///< that it takes
    TypeAdvice advice;
    const char* topic = nullptr;  ///< of tessaron help, that lists them; null at any other place

    bool isName(std::string_view word) const { return has(names, word); }
};

template <class Row>
std::vector<std::string_view> namesOf(std::span<const Row> rows, auto Row::*name) {
    std::vector<std::string_view> names;
    for (const Row& row : rows) names.emplace_back(row.*name);
    return names;
}

/// What `word` may mean where one of `missed` is expected.
Outside outsideNameAt(const std::vector<std::string_view>& missed, std::string_view word) {
    using namespace Parser::WrapperLib;
    const auto isExpected = [&](const std::vector<std::string_view>& names) {
        return has(missed, names.front());
    };
    if (auto names = namesOf(CmdNewCrc::types(), &ValueType::keyword); isExpected(names))
        return {std::move(names), adviceOnCrcType(word), "crcs"};
    if (auto names = namesOf(Util::Crc::catalogue(), &Util::Crc::CatalogueEntry::name);
        isExpected(names))
        return {std::move(names), adviceOnCatalogueName(word), "crcs"};
    if (auto names = namesOf(CmdNewHash::types(), &ValueType::keyword); isExpected(names))
        return {std::move(names), adviceOnHashType(word), "hashes"};
    if (auto names = namesOf(signatureKinds(), &SignatureKind::keyword); isExpected(names))
        return {std::move(names), adviceOnSignatureType(word), "signatures"};
    if (auto names = namesOf(CmdWriteFile::formats(), &ExportFormat::keyword); isExpected(names))
        return {std::move(names), adviceOnFormat(word), "formats"};
    for (const ExportFormat& format : CmdWriteFile::formats()) {
        if (format.names == nullptr) continue;
        if (auto names = namesOf(format.names(), &Io::NamedNumber::name); isExpected(names))
            return {std::move(names), adviceOnFormatName(format, word), "formats"};
    }
    return {};
}

/// The last opening brace of a text without its closing one.
std::optional<std::size_t> openBrace(std::string_view text) {
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '{') open.push_back(i);
        if (text[i] == '}' && !open.empty()) open.pop_back();
    }
    if (open.empty()) return std::nullopt;
    return open.back();
}

}  // namespace

Diagnostic syntaxError(const ScriptText& script, std::string_view statement,
                       const Parser::Expectations& missed,
                       const std::vector<std::string_view>& keywords) {
    const char* const furthest = missed.furthest == nullptr ? statement.data() : missed.furthest;
    const auto at = static_cast<std::size_t>(furthest - statement.data());
    const std::string_view before = statement.substr(0, at);
    const std::string_view rest = statement.substr(at);
    const std::string_view word = wordAt(rest);
    const std::size_t line = before.rfind('\n') + 1;
    const auto quote = looseQuoteIn(statement.substr(line, statement.find('\n', at) - line));
    const Outside outside = outsideNameAt(missed.words, word);
    // What asks for a number has parentheses.
    const std::size_t next = rest.find_first_not_of(spaces, word.size());
    const bool isCall = next != std::string_view::npos && rest[next] == '(';
    std::vector<std::string> candidates(missed.words.begin(), missed.words.end());
    std::erase_if(candidates, [&](const std::string& one) {
        return one.find(' ') != std::string::npos || outside.isName(one) ||
               (isNumberFunction(one) && !isCall);
    });
    const auto isStatement = [&](std::string_view one) { return has(keywords, one); };
    if (std::ranges::any_of(missed.words, isStatement))
        candidates.insert(candidates.end(), {std::string(includeWord), std::string(parameterWord)});
    const auto close = outside.advice.hint.empty() ? nearest(word, candidates) : std::nullopt;
    const bool isShort = close || !outside.advice.hint.empty();
    Diagnostic diagnostic{};
    diagnostic.kind = Kind::Syntax;
    diagnostic.text = "expected " + expectation(missed.words, keywords, isShort);
    if (word.empty())
        diagnostic.text += ", but the script ends here";
    else if (word.find_first_of(spaces) == std::string_view::npos)
        diagnostic.text += ", not " + std::string(word.substr(0, longestShown));
    // What is missing at the end is missing after the last word.
    const std::size_t end = before.find_last_not_of(spaces) + 1;
    const std::size_t offset = script.offsetOf(statement) + (word.empty() ? end : at);
    diagnostic.place = script.placeOf(offset, offset + word.size());
    const std::string_view begun = wordBefore(before);
    const std::string glued = gluedKeyword(statement, keywords);
    const std::string directive = adviceOnDirective(word);
    if (quote)
        diagnostic.hint = std::string("write the plain quote ") + quote->plain;
    else if (!directive.empty())
        diagnostic.hint = directive;
    else if (!outside.advice.hint.empty())
        diagnostic.hint = outside.advice.hint;
    else if (close)
        diagnostic.hint = "did you mean " + *close + "?";
    else if (!glued.empty())
        diagnostic.hint = glued;
    else if (outside.topic == nullptr && !begun.empty() && !word.empty() &&
             isWordCharacter(word.front()))
        diagnostic.hint = "did you mean " + std::string(begun) + "?";
    else
        diagnostic.hint = advice(before, word, rest, missed.words);
    if (diagnostic.hint.empty() && outside.topic != nullptr)
        diagnostic.hint = std::string("tessaron help ") + outside.topic + " lists them";
    if (diagnostic.hint == outside.advice.hint && !outside.advice.choices.empty())
        diagnostic.correction = {std::string(word), outside.advice.choices};
    else if (close && quote == std::nullopt && directive.empty())
        diagnostic.correction = {std::string(word), {*close}};
    diagnostic.notes = script.variableNotes(rest.substr(0, std::max<std::size_t>(word.size(), 1)));
    for (const std::string& note : outside.advice.notes) diagnostic.notes.push_back({note});
    if (quote) {
        const std::size_t begin = script.offsetOf(statement) + line + quote->at;
        diagnostic.notes.push_back({"this is a typographic quote, a letter to the language",
                                    script.placeOf(begin, begin + quote->length)});
    }
    // A brace that is closed further on the line is not what is missing.
    const bool isClosed = rest.substr(0, rest.find('\n')).find('}') != std::string_view::npos;
    const auto brace = openBrace(before);
    if (brace && (!isClosed || has(keywords, word))) {
        const std::size_t open = script.offsetOf(statement) + *brace;
        diagnostic.notes.push_back({"this brace is not closed", script.placeOf(open, open + 1)});
    }
    return diagnostic;
}

std::size_t nextStatement(std::string_view text, std::size_t from,
                          const std::vector<std::string_view>& keywords) {
    for (std::size_t feed = text.find('\n', from); feed != std::string_view::npos;
         feed = text.find('\n', feed + 1)) {
        const std::size_t begin = text.find_first_not_of(" \t", feed + 1);
        if (begin == std::string_view::npos) break;
        const std::string_view line = text.substr(begin);
        const auto isAt = [&](std::string_view word) { return line.starts_with(word); };
        if (std::ranges::any_of(keywords, isAt)) return begin;
    }
    return text.size();
}

}  // namespace Strict
