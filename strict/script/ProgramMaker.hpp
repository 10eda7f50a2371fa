#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "strict/script/Program.hpp"

namespace Strict {

/// A piece of a statement's text.
class Piece {
public:
    /// A number and where it is in the text.
    struct PlacedNumber {
        std::uint32_t value;
        std::size_t at;
        std::size_t size;
    };

    explicit Piece(std::string text) : text_(std::move(text)) {}

    Piece& operator<<(std::string_view text) {
        text_ += text;
        return *this;
    }

    /// Adds a number as `text`.
    void addNumber(std::uint32_t value, std::string_view text) {
        numbers_.push_back({value, text_.size(), text.size()});
        text_ += text;
    }

    const std::string& text() const { return text_; }
    const std::vector<PlacedNumber>& numbers() const { return numbers_; }

private:
    std::string text_;
    std::vector<PlacedNumber> numbers_;
};

/// Makes a program without a script: statements from commands, and beside them the text that shows
/// what they do. The text is not parsed, so it need not be one that a script can have.
class ProgramMaker {
public:
    /// Begins a statement with its keyword.
    ///
    /// @return what executes it, to be given what the text says
    template <class Command>
    Command& begin(std::string_view keyword) {
        auto command = std::make_unique<Command>();
        Command& begun = *command;
        begin(std::move(command), keyword);
        return begun;
    }

    /// Adds text to the statement that is not a part of it by itself.
    void add(std::string_view text) { text_ += text; }

    /// Adds a part of the statement.
    void add(Parser::Role role, const Piece& piece, std::uint32_t choice = 0);
    void add(Parser::Role role, std::string_view text, std::uint32_t choice = 0) {
        add(role, Piece(std::string(text)), choice);
    }

    /// Adds a blank and a part.
    template <class Text>
    void addWord(Parser::Role role, const Text& text) {
        add(" ");
        add(role, text);
    }

    /// Adds a blank and the part that names a file, of any path.
    void addPath(Parser::Role role, const std::string& path, std::uint32_t choice = 0);

    /// Ends the statement, and its line.
    void end();

    /// All statements. Called once, at the end.
    ///
    /// @param name  in place of a script's, for diagnostics
    Program finish(std::string name);

private:
    struct DraftPart {
        Parser::Role role;
        std::uint32_t choice;
        std::size_t at;
        std::size_t size;
        std::vector<Piece::PlacedNumber> numbers;  ///< placed in the part
        std::string path;                          ///< of the file that it names
    };
    struct Draft {
        std::size_t at;
        std::size_t size;
        std::vector<DraftPart> parts;
    };

    void begin(std::unique_ptr<Parser::WrapperLib::CmdApi> command, std::string_view keyword);

    std::string text_;
    std::vector<Draft> drafts_;  ///< one for each of `commands_`
    Program::Commands commands_;
};

}  // namespace Strict
