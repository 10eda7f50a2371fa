#pragma once

#include <cstdint>

namespace Parser {

/// A position in the text of a script.
using Position = const char*;

/// Watches a parse, for a front end that needs to know where in the text each part of a statement
/// is. What it is shown may still be undone by a later failure of the statement.
class ParseObserver {
public:
    ParseObserver() = default;
    virtual ~ParseObserver() = default;
    ParseObserver(const ParseObserver&) = delete;
    ParseObserver& operator=(const ParseObserver&) = delete;

    /// An action of a statement ran on the text [`first`, `last`).
    ///
    /// @param trace  its trace text, which lives as long as the program
    virtual void onStep(const char* trace, Position first, Position last) = 0;

    /// The text [`first`, `last`) was read as a number of an area or of a list.
    virtual void onValue(std::uint32_t value, Position first, Position last) = 0;

    /// The statement [`first`, `last`) is finished.
    virtual void onStatement(Position first, Position last) = 0;
};

}  // namespace Parser
