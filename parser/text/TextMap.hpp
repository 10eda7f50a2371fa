#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Parser {

/// Where a character of a prepared script comes from.
struct TextOrigin {
    /// In the text as it was read: of the character itself, or of the name that was replaced.
    std::size_t offset;
    /// The variable whose value the character belongs to, as an index of `TextMap::variables`.
    std::optional<std::size_t> variable;
};

/// One stage of the preparation of a text, as it is carried out from its beginning to its end.
class TextStage {
public:
    /// `length` characters from `at` of the text before the stage stay.
    void keep(std::size_t at, std::size_t length);

    /// `length` characters of the value of `variable` replace what was at `at` before the stage.
    void insert(std::size_t at, std::size_t length, std::size_t variable);

    /// Appends the stage of the next part of the text, which begins at `at` before this stage.
    void append(const TextStage& part, std::size_t at);

private:
    friend class TextMap;
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct Piece {
        std::size_t start;     ///< in the text after the stage
        std::size_t source;    ///< in the text before it
        std::size_t variable;  ///< `none` for text that stayed
    };

    /// This stage after the stage `before`.
    TextStage after(const TextStage& before) const;
    const Piece& pieceAt(std::size_t offset) const;

    std::vector<Piece> pieces_;
    std::size_t length_ = 0;
};

/// Leads from the prepared text of a script back to the text as it was read. Costs memory for each
/// replacement and none for the text between them.
class TextMap {
public:
    struct Variable {
        std::string name;
        std::string value;
        bool isUsed = false;
        /// A place, as an offset of the text as it was read, where the name was replaced within a
        /// longer word.
        std::optional<std::size_t> inWord;
    };

    /// Sets the variables that stages speak of.
    void setVariables(std::vector<Variable> variables) { variables_ = std::move(variables); }
    const std::vector<Variable>& variables() const { return variables_; }

    /// Notes that a name was replaced in `text` at [`first`, `last`).
    ///
    /// @param at  where that is in the text before the stage that is not added yet
    void use(std::size_t variable, std::string_view text, std::size_t first, std::size_t last,
             std::size_t at);

    /// The text has gone through another stage.
    void add(const TextStage& stage);

    TextOrigin originOf(std::size_t offset) const;

    /// All stages in one; at least one was added.
    const TextStage& stage() const { return *stages_; }

private:
    std::optional<TextStage> stages_;  ///< all of them in one; none leaves the text as it is
    std::vector<Variable> variables_;
};

}  // namespace Parser
