#include "editor/Format.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "editor/Lexis.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/script/Directives.hpp"

namespace Editor {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;

/// Parts that are numbers or lists of them, whose blanks do not count.
constexpr Parser::Roles numeric{Role::Bytes,     Role::Filler,    Role::Area,   Role::Range,
                                Role::Address,   Role::Start,     Role::Lane,   Role::Interleave,
                                Role::ShortGaps, Role::Alignment, Role::Option, Role::Type,
                                Role::Format,    Role::Family};

/// What the end of something that stays is to the blanks beside it.
constexpr char letter = 'x';

/// Something that stays as it is.
struct Fixed {
    TextSpan where;
    bool isRemark = false;
};

/// A statement, a directive or a substitution.
struct Item {
    TextSpan where;
    std::size_t indent;  ///< of its lines but the first
};

/// A text with what delimits it, if it lies in quotes or braces.
std::string_view withDelimiters(std::string_view prepared, std::string_view part) {
    std::size_t begin = static_cast<std::size_t>(part.data() - prepared.data());
    std::size_t end = begin + part.size();
    std::size_t before = begin;
    while (before > 0 && isBlank(prepared[before - 1])) --before;
    while (end < prepared.size() && isBlank(prepared[end])) ++end;
    if (before == 0 || end == prepared.size()) return part;
    const char opening = prepared[before - 1];
    const char closing = prepared[end];
    const bool isQuoted =
        (opening == '"' || opening == '\'') && (closing == '"' || closing == '\'');
    if (!isQuoted && (opening != '{' || closing != '}')) return part;
    return prepared.substr(before - 1, end + 1 - (before - 1));
}

/// The word that ends a text asks for a number.
bool endsWithFunction(std::string_view text) {
    const auto functions = Parser::WrapperLib::numberFunctions();
    return std::ranges::any_of(
        functions, [text](const auto& function) { return text.ends_with(function.keyword); });
}

/// The parts of a script's own file: what stays, and what begins a line.
class Layout {
public:
    /// @param script  with the statements of `text`
    Layout(std::string_view text, const Strict::ScriptAnalysis& script)
        : text_(text), script_(script.text()) {
        const std::vector<TextSpan> remarks = remarksIn(text);
        for (const TextSpan& remark : remarks) fixed_.push_back({remark, true});
        for (const Substitution& line : substitutionsIn(text, remarks)) fix(line.whole);
        addDirectives();
        addStatements(script.statements());
        std::ranges::sort(fixed_, {}, [](const Fixed& one) { return one.where.at; });
        std::ranges::sort(items_, {}, [](const Item& one) { return one.where.at; });
    }

    /// Ascending; one may lie in another.
    const std::vector<Fixed>& fixed() const { return fixed_; }
    const std::vector<Item>& items() const { return items_; }

    /// A statement begins in one file and ends in another.
    bool isTorn() const { return isTorn_; }

private:
    /// Keeps something that may begin a line.
    void fix(TextSpan where) {
        fixed_.push_back({where});
        items_.push_back({where, 0});
    }

    void addDirectives() {
        const Strict::Directives found = Strict::directivesIn(text_);
        for (const Strict::ParameterDirective& one : found.parameters) {
            items_.push_back({trimmedSpan(text_, one.whole), Strict::parameterWord.size() + 1});
            if (one.value) fixed_.push_back({*one.value});
        }
        for (const Strict::IncludeDirective& one : found.includes) {
            items_.push_back({trimmedSpan(text_, one.whole), Strict::includeWord.size() + 1});
            fixed_.push_back({withQuotes(one.path)});
            for (const auto& argument : one.arguments) fixed_.push_back({argument.value});
        }
    }

    TextSpan withQuotes(TextSpan path) const {
        const std::string_view whole = withDelimiters(text_, path.in(text_));
        return {static_cast<std::size_t>(whole.data() - text_.data()), whole.size()};
    }

    void addStatements(const Parser::StatementList& statements) {
        const std::string_view prepared = script_->prepared();
        std::size_t end = 0;
        for (const Statement& statement : statements) {
            const std::size_t begin = script_->offsetOf(statement.text);
            addOther(prepared.substr(end, begin - end));
            end = begin + statement.text.size();
            const std::string_view keyword = statement.parts.front().text;
            const auto place = placeOf(trimmed(statement.text));
            if (!place) continue;
            items_.push_back({*place, keyword.size() + 1});
            for (const Part& part : statement.parts)
                if (!numeric.has(part.role))
                    addText(part.role == Role::String ? withDelimiters(prepared, part.text)
                                                      : part.text);
        }
        addOther(prepared.substr(end));
    }

    /// What is not a statement, such as CALCULATE, stays.
    void addOther(std::string_view text) {
        text = trimmed(text);
        if (text.empty()) return;
        if (const auto place = placeOf(text)) fix(*place);
    }

    void addText(std::string_view part) {
        if (part.empty()) return;
        if (const auto place = placeOf(part)) fixed_.push_back({*place});
    }

    /// Where a part of the prepared text is in the file, from its first to its last character.
    std::optional<TextSpan> placeOf(std::string_view part) {
        const FilePlace first = filePlaceOf(*script_, part.substr(0, 1));
        const FilePlace last = filePlaceOf(*script_, part.substr(part.size() - 1));
        isTorn_ = isTorn_ || (first.file == 0) != (last.file == 0);
        if (first.file != 0 || last.file != 0) return std::nullopt;
        if (last.where.end() < first.where.at) {
            isTorn_ = true;
            return std::nullopt;
        }
        return TextSpan{first.where.at, last.where.end() - first.where.at};
    }

    std::string_view text_;
    const Strict::ScriptText* script_;
    std::vector<Fixed> fixed_;
    std::vector<Item> items_;
    bool isTorn_ = false;
};

/// Walks through a text and decides on the blanks between what stays.
class Formatter {
public:
    Formatter(std::string_view text, const Layout& layout) : text_(text), layout_(&layout) {}

    std::vector<Edit> edits() {
        while (at_ < text_.size()) {
            const Fixed* const fixed = fixedHere();
            if (at_ > 0 && !isBlank(text_[at_]) && !isBlank(text_[at_ - 1])) addBlank();
            if (fixed != nullptr) {
                keep(std::max(fixed->where.end(), at_ + 1));
                fixedEnd_ = at_;
            } else if (isBlank(text_[at_])) {
                const std::size_t end = endOfBlanks();
                replace(end, blanksBefore(end));
            } else {
                noteBrace();
                keep(at_ + 1);
            }
        }
        if (!text_.empty() && !isBlank(text_.back())) edits_.push_back({{text_.size(), 0}, "\n"});
        return std::move(edits_);
    }

private:
    const Fixed* fixedHere() {
        const auto& all = layout_->fixed();
        while (next_ < all.size() && all[next_].where.end() <= at_) ++next_;
        if (next_ == all.size() || all[next_].where.at > at_) return nullptr;
        return &all[next_];
    }

    std::size_t endOfBlanks() const {
        std::size_t end = at_;
        while (end < text_.size() && isBlank(text_[end])) ++end;
        return end;
    }

    void keep(std::size_t end) {
        for (; at_ < end; ++at_) {
            if (characterStart(text_, at_) != at_) continue;
            column_ = after(column_, text_[at_]);
            written_ = after(written_, text_[at_]);
        }
    }

    static std::size_t after(std::size_t column, char c) {
        constexpr std::size_t tab = 8;
        if (c == '\n') return 0;
        return c == '\t' ? column / tab * tab + tab : column + 1;
    }

    void replace(std::size_t end, std::string blanks) {
        for (const char c : blanks) column_ = after(column_, c);
        const std::string_view old = text_.substr(at_, end - at_);
        for (const char c : old) written_ = after(written_, c);
        if (old != blanks) edits_.push_back({{at_, end - at_}, std::move(blanks)});
        at_ = end;
    }

    /// The item that begins at `at`, or that has it within.
    const Item* itemAt(std::size_t at) {
        const auto& all = layout_->items();
        while (item_ < all.size() && all[item_].where.end() <= at) ++item_;
        return item_ < all.size() && all[item_].where.at <= at ? &all[item_] : nullptr;
    }

    /// What stays and begins at `at`, or null.
    const Fixed* fixedFrom(std::size_t at) const {
        const auto rest = std::span(layout_->fixed()).subspan(next_);
        const auto found =
            std::ranges::lower_bound(rest, at, {}, [](const Fixed& one) { return one.where.at; });
        return found != rest.end() && found->where.at == at ? &*found : nullptr;
    }
    bool isFixed(std::size_t at) const { return fixedFrom(at) != nullptr; }
    bool isRemark(std::size_t at) const { return isFixed(at) && fixedFrom(at)->isRemark; }

    /// A line break and the blanks with which the next line of an item begins.
    static std::string nextLineOf(const Item& item) {
        std::string blanks(item.indent + 1, ' ');
        blanks.front() = '\n';
        return blanks;
    }

    /// What replaces the blanks from here to `end`.
    std::string blanksBefore(std::size_t end) {
        if (at_ == 0) return "";
        if (end == text_.size()) return "\n";
        const auto feeds =
            static_cast<std::size_t>(std::ranges::count(text_.substr(at_, end - at_), '\n'));
        const Item* const item = itemAt(end);
        const bool isStart = item != nullptr && item->where.at == end;
        const bool isWithin = item != nullptr && !isStart;
        constexpr std::size_t most = 2;
        if (isRemark(end)) {
            if (feeds == 0) return std::string(distanceToRemark(end), ' ');
            if (isWithin) return nextLineOf(*item);
            return std::string(std::min(feeds, most), '\n');
        }
        if (isStart) return std::string(std::clamp<std::size_t>(feeds, 1, most), '\n');
        if (!isWithin) return std::string(text_.substr(at_, end - at_));
        if (feeds != 0) return nextLineOf(*item);
        return between(end);
    }

    /// A remark stays in its column, or comes two blanks after the text.
    std::size_t distanceToRemark(std::size_t end) const {
        constexpr std::size_t usual = 2;
        std::size_t column = written_;
        for (std::size_t i = at_; i < end; ++i) column = after(column, text_[i]);
        return column > column_ ? column - column_ : usual;
    }

    /// The blanks within a line of an item, before the character at `end`.
    std::string between(std::size_t end) const {
        const char left = fixedEnd_ == at_ ? letter : text_[at_ - 1];
        const char right = isFixed(end) ? letter : text_[end];
        const auto is = [](char c, std::string_view set) {
            return set.find(c) != std::string_view::npos;
        };
        if (is(right, ",;=)") || is(left, "=(")) return "";
        if (left == '{' || right == '}')
            return isWide_ && depth_ == 1 && !(left == '{' && right == '}') ? " " : "";
        if (right == '(' && endsWithFunction(text_.substr(0, at_))) return "";
        return " ";
    }

    /// Adds a blank where two characters of an item are to have one.
    void addBlank() {
        const Item* const item = itemAt(at_);
        if (isRemark(at_)) replace(at_, std::string(distanceToRemark(at_), ' '));
        if (item == nullptr || item->where.at == at_) return;
        const char left = fixedEnd_ == at_ ? letter : text_[at_ - 1];
        const char right = isFixed(at_) ? letter : text_[at_];
        const bool isSeparated =
            (left == ',' || left == ';') && right != ',' && right != ';' && right != '}';
        const bool isOpened = left == '{' && right != '}';
        const bool isClosed = right == '}' && left != '{';
        const bool isPadded = isWide_ && depth_ == 1 && (isOpened || isClosed);
        if (isSeparated || isPadded) replace(at_, " ");
    }

    /// Keeps account of braces: the blanks within the outermost hang on what is before it.
    void noteBrace() {
        const Item* const item = itemAt(at_);
        if (item != nullptr && item->where.at == at_) depth_ = 0;
        if (text_[at_] == '{') {
            const bool isAfterSign = trimmed(text_.substr(0, at_)).ends_with('=');
            if (depth_ == 0) isWide_ = at_ > 0 && isBlank(text_[at_ - 1]) && !isAfterSign;
            ++depth_;
        }
        if (text_[at_] == '}' && depth_ > 0) --depth_;
    }

    std::string_view text_;
    const Layout* layout_;
    std::vector<Edit> edits_;
    std::size_t at_ = 0;
    std::size_t next_ = 0;      ///< of what stays
    std::size_t item_ = 0;      ///< the first one that does not end before here
    std::size_t column_ = 0;    ///< of the result
    std::size_t written_ = 0;   ///< column of the text
    std::size_t depth_ = 0;     ///< of braces
    bool isWide_ = false;       ///< blanks are within the outermost braces
    std::size_t fixedEnd_ = 0;  ///< where the last one of what stays ends
};

std::string withoutBlanks(std::string_view text) {
    std::string result(text);
    std::erase_if(result, isBlank);
    return result;
}

/// Two scripts have the same statements, but for blanks that do not count.
bool haveSameStatements(const Strict::ScriptAnalysis& one, const Strict::ScriptAnalysis& other) {
    const auto isSame = [](const Statement& left, const Statement& right) {
        if (left.kind != right.kind || left.parts.size() != right.parts.size()) return false;
        for (std::size_t i = 0; i < left.parts.size(); ++i) {
            const Part& a = left.parts[i];
            const Part& b = right.parts[i];
            const bool isText = !numeric.has(a.role);
            if (a.role != b.role || a.choice != b.choice || a.numberCount != b.numberCount)
                return false;
            if (isText ? a.text != b.text : withoutBlanks(a.text) != withoutBlanks(b.text))
                return false;
        }
        for (std::size_t i = 0; i < left.numbers.size(); ++i)
            if (left.numbers[i].fixed != right.numbers[i].fixed) return false;
        return withoutBlanks(left.text) == withoutBlanks(right.text);
    };
    if (other.text() == nullptr || !other.broken().empty()) return false;
    if (one.statements().size() != other.statements().size()) return false;
    for (std::size_t i = 0; i < one.statements().size(); ++i)
        if (!isSame(one.statements()[i], other.statements()[i])) return false;
    return true;
}

}  // namespace

Formatting format(const std::string& name, std::string_view text, const Settings& settings,
                  const EditedText& edited) {
    const KnownScript before(name, std::string(text), settings, edited);
    if (before.analysis->text() == nullptr || !before.analysis->broken().empty())
        return {FormatOutcome::SyntaxError, {}, before.faults()};
    const Layout layout(text, *before.analysis);
    // A carriage return within a line counts in remarks.
    if (layout.isTorn() || text.find('\r') != std::string_view::npos)
        return {FormatOutcome::Uncertain, {}, {}};
    Formatting formatting{FormatOutcome::Formatted, Formatter(text, layout).edits(), {}};
    if (formatting.edits.empty()) return formatting;
    const std::string result = Editor::edited(text, formatting.edits);
    const KnownScript after(name, result, settings, edited);
    if (withoutBlanks(text) == withoutBlanks(result) &&
        haveSameStatements(*before.analysis, *after.analysis))
        return formatting;
    return {FormatOutcome::Uncertain, {}, {}};
}

}  // namespace Editor
