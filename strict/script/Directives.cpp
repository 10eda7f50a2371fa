#include "strict/script/Directives.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "parser/text/Characters.hpp"

namespace Strict {

namespace {

constexpr std::string_view lineBlanks = " \t\v\f\r";
constexpr std::string_view allBlanks = " \t\v\f\r\n";
constexpr std::string_view quoteSigns = "\"'";
constexpr std::string_view remark = "//";

/// The characters of the names of images, which are also what a word consists of.
bool isNameCharacter(char c) {
    constexpr std::string_view others = "#@-!<>&";
    const bool isDigitOrLetter = Parser::isWordCharacter(c);
    return isDigitOrLetter || others.find(c) != std::string_view::npos;
}

bool isIn(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

/// Where a run of name characters ends.
std::size_t wordEnd(std::string_view text, std::size_t at) {
    while (at < text.size() && isNameCharacter(text[at])) ++at;
    return at;
}

std::size_t lineEnd(std::string_view text, std::size_t at) {
    return std::min(text.find('\n', at), text.size());
}

/// The text begins with the word, as a whole word.
bool beginsWith(std::string_view text, std::string_view word) {
    return text.starts_with(word) &&
           (text.size() == word.size() || !isNameCharacter(text[word.size()]));
}

/// Reads one directive.
class DirectiveReader {
public:
    /// @param at  where the directive begins
    DirectiveReader(std::string_view text, std::size_t at, Directives& found)
        : text_(text), begin_(at), at_(at), found_(&found) {}

    /// Returns where the directive ends. One that is faulty takes its line.
    std::size_t read() {
        const bool isInclude = text_.substr(at_).starts_with(includeWord);
        at_ += isInclude ? includeWord.size() : parameterWord.size();
        if (isInclude ? readInclude() : readParameter()) return at_;
        return restOfLine().end();
    }

private:
    void skip(std::string_view blanks) {
        at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size());
    }

    /// Skips blanks, line feeds and remarks.
    void skipAll() {
        for (skip(allBlanks); text_.substr(at_).starts_with(remark); skip(allBlanks))
            at_ = lineEnd(text_, at_);
    }

    /// The rest of the line without the remark at its end.
    TextSpan restOfLine() const {
        const std::size_t end = std::min(text_.find(remark, at_), lineEnd(text_, at_));
        return {at_, end - at_};
    }

    TextSpan trimmed(std::size_t begin, std::size_t end) const {
        const std::string_view part = text_.substr(begin, end - begin);
        const std::size_t last = part.find_last_not_of(allBlanks);
        return {begin, last == std::string_view::npos ? 0 : last + 1};
    }

    TextSpan whole() const { return {begin_, at_ - begin_}; }

    /// False, after noting what is wrong with the text from here on.
    bool fail(std::string text, std::string hint) {
        const TextSpan rest = restOfLine();
        const std::size_t blank = text_.find_first_of(allBlanks, at_);
        const std::size_t end = std::min(std::max(blank, at_), rest.end());
        found_->faults.push_back({{at_, end - at_}, std::move(text), std::move(hint)});
        return false;
    }

    bool readParameter() {
        constexpr std::string_view defaultWord = "DEFAULT";
        skip(lineBlanks);
        const std::string_view name = text_.substr(at_, wordEnd(text_, at_) - at_);
        if (!isParameterName(name))
            return fail("expected the name of a parameter",
                        "write PARAMETER name, or PARAMETER name DEFAULT value");
        ParameterDirective directive{{}, {at_, name.size()}, std::nullopt};
        at_ += name.size();
        skip(lineBlanks);
        TextSpan rest = restOfLine();
        if (rest.length != 0) {
            if (!beginsWith(rest.in(text_), defaultWord))
                return fail("expected DEFAULT or the end of the line",
                            "write PARAMETER name DEFAULT value");
            at_ += defaultWord.size();
            skip(lineBlanks);
            rest = restOfLine();
            directive.value = trimmed(rest.at, rest.end());
            if (directive.value->length == 0)
                return fail("expected the value of the parameter",
                            "without DEFAULT the caller has to give one");
            at_ = rest.end();
        }
        directive.whole = whole();
        found_->parameters.push_back(directive);
        return true;
    }

    bool readInclude() {
        IncludeDirective directive;
        skip(lineBlanks);
        if (!readPath(directive.path)) return false;
        const std::size_t pathEnd = at_;
        skipAll();
        constexpr std::string_view withWord = "WITH";
        if (beginsWith(text_.substr(at_), withWord)) {
            at_ += withWord.size();
            skipAll();
            if (!readArguments(directive.arguments)) return false;
        } else {
            at_ = pathEnd;
        }
        const std::size_t end = at_;
        skip(lineBlanks);
        if (restOfLine().length != 0)
            return fail("expected the end of the line after an INCLUDE",
                        "write INCLUDE file WITH { name=value, ... }");
        at_ = end;
        directive.whole = whole();
        found_->includes.push_back(std::move(directive));
        return true;
    }

    /// A word, or a text in braces or quotes.
    bool readPath(TextSpan& path) {
        const TextSpan rest = restOfLine();
        const char opening = rest.length == 0 ? '\0' : text_[at_];
        if (opening == '{' || isIn(quoteSigns, opening)) {
            const std::size_t end =
                opening == '{' ? text_.find('}', at_) : text_.find_first_of(quoteSigns, at_ + 1);
            if (end >= rest.end())
                return fail("expected the name of a file", "a brace or a quote is not closed");
            path = {at_ + 1, end - at_ - 1};
            at_ = end + 1;
        } else {
            const std::size_t end = std::min(text_.find_first_of(allBlanks, at_), rest.end());
            path = {at_, end - at_};
            at_ = end;
        }
        return path.length != 0 || fail("expected the name of a file", "write INCLUDE file");
    }

    bool readArguments(std::vector<IncludeDirective::Argument>& arguments) {
        constexpr const char* form = "write WITH { name=value, ... }";
        if (at_ == text_.size() || text_[at_] != '{') return fail("expected {", form);
        ++at_;
        for (skipAll(); at_ < text_.size() && text_[at_] != '}'; skipAll()) {
            IncludeDirective::Argument argument;
            argument.name = {at_, wordEnd(text_, at_) - at_};
            if (argument.name.length == 0) return fail("expected the name of a parameter", form);
            at_ = argument.name.end();
            skipAll();
            if (at_ == text_.size() || text_[at_] != '=') return fail("expected =", form);
            ++at_;
            skipAll();
            argument.value = readValue();
            if (argument.value.length == 0)
                return fail("expected the value of the parameter", form);
            arguments.push_back(argument);
            skipAll();
            if (at_ < text_.size() && text_[at_] == ',')
                ++at_;
            else if (at_ < text_.size() && text_[at_] != '}')
                return fail("expected , or }", form);
        }
        if (at_ == text_.size()) return fail("expected }, but the file ends here", form);
        ++at_;
        return true;
    }

    /// Up to a comma, to the brace that closes the list, or to a remark. Braces and quotes
    /// within the value keep together what is in them.
    TextSpan readValue() {
        const std::size_t begin = at_;
        std::size_t depth = 0;
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            if (text_.substr(at_).starts_with(remark)) break;
            if (depth == 0 && (c == ',' || c == '}')) break;
            if (c == '{') ++depth;
            if (c == '}') --depth;
            const bool beginsWord = at_ == begin || isIn(allBlanks, text_[at_ - 1]);
            if (depth != 0 || !isIn(quoteSigns, c) || !beginsWord) continue;
            const std::size_t end = text_.find_first_of(quoteSigns, at_ + 1);
            if (end < lineEnd(text_, at_)) at_ = end;
        }
        return trimmed(begin, at_);
    }

    std::string_view text_;
    std::size_t begin_;
    std::size_t at_;
    Directives* found_;
};

/// Walks through a text and keeps account of braces, quotes and remarks.
class DirectiveWalk {
public:
    explicit DirectiveWalk(std::string_view text) : text_(text) {}

    Directives walk() {
        beginLine(0);
        while (at_ < text_.size()) step();
        // A quote that nothing closes is a character as any other.
        if (quote_) {
            const std::size_t lonely = *quote_;
            quote_.reset();
            isLonely_ = true;
            for (at_ = lonely + 1; at_ < text_.size();) step();
        }
        return std::move(found_);
    }

private:
    void step() {
        const char c = text_[at_];
        if (c == '/' && text_.substr(at_).starts_with(remark)) {
            at_ = lineEnd(text_, at_);
        } else if (c == '\n') {
            beginLine(at_ + 1);
        } else {
            if (quote_)
                quote_ = isIn(quoteSigns, c) ? std::nullopt : quote_;
            else if (c == '{')
                ++depth_;
            else if (c == '}')
                depth_ -= depth_ == 0 ? 0 : 1;
            else if (depth_ == 0 && isIn(quoteSigns, c) && !isLonely_ && beginsWord())
                quote_ = at_;
            ++at_;
        }
    }

    bool beginsWord() const { return at_ == 0 || isIn(allBlanks, text_[at_ - 1]); }

    /// Reads a directive if the line that begins at `at` is one.
    void beginLine(std::size_t at) {
        at_ = at;
        if (depth_ != 0 || quote_) return;
        const std::size_t word = std::min(text_.find_first_not_of(" \t", at), text_.size());
        const std::string_view line = text_.substr(word);
        if (beginsWith(line, parameterWord) || beginsWith(line, includeWord))
            at_ = DirectiveReader(text_, word, found_).read();
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;             ///< of braces
    std::optional<std::size_t> quote_;  ///< where the text in quotes begins that this is in
    bool isLonely_ = false;             ///< no quote is closed any more
    Directives found_;
};

}  // namespace

bool mayHaveDirectives(std::string_view text) {
    return text.find(includeWord) != std::string_view::npos ||
           text.find(parameterWord) != std::string_view::npos;
}

Directives directivesIn(std::string_view text) {
    if (!mayHaveDirectives(text)) return {};
    return DirectiveWalk(text).walk();
}

std::vector<NamedWord> wordsIn(std::string_view text, const std::vector<std::string_view>& names) {
    std::vector<NamedWord> words;
    if (names.empty()) return words;
    std::unordered_map<std::string_view, std::size_t> indices;
    for (std::size_t i = 0; i < names.size(); ++i) indices.emplace(names[i], i);
    for (std::size_t at = 0; at < text.size();) {
        if (!isNameCharacter(text[at])) {
            at = text.substr(at).starts_with(remark) ? lineEnd(text, at) : at + 1;
            continue;
        }
        const std::size_t end = wordEnd(text, at);
        const auto found = indices.find(text.substr(at, end - at));
        if (found != indices.end()) words.push_back({{at, end - at}, found->second});
        at = end;
    }
    return words;
}

bool isParameterName(std::string_view text) {
    return !text.empty() && wordEnd(text, 0) == text.size() && !Parser::isDigit(text.front()) &&
           text.front() != '-';
}

}  // namespace Strict
