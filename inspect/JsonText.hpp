#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"

namespace Inspect {

/// Takes the next piece of a text.
using TakeText = std::function<void(std::string_view)>;

/// The text of a JSON object that is made piece by piece, as `dump` makes it of a value: records
/// have so many entries that their text is a large part of the memory of a run, and a value ten
/// times that.
class JsonText {
public:
    /// @param take  gets the text as it is made
    explicit JsonText(TakeText take);

    /// Add a property to the object that is open.
    void addText(std::string_view name, std::string_view text);
    void addNumber(std::string_view name, std::uint64_t number);
    void addFlag(std::string_view name, bool value);

    /// Add an entry to the list that is open.
    void addText(std::string_view text);
    void addNumber(std::uint64_t number);

    /// What is added goes to this object or list until it is closed. Without a name it is an entry
    /// of a list.
    void openObject();
    void openObject(std::string_view name);
    void openList(std::string_view name);
    void close();

    /// Adds the properties of an area.
    void addArea(const Buffer::Area& area);
    void addAreas(std::string_view name, const Buffer::AreaList& areas);

    /// Closes the whole, and lets the rest of the text be taken.
    void finish();

private:
    void begin();
    void begin(std::string_view name);
    void append(std::string_view text);
    void append(std::uint64_t number);
    void open(char bracket);

    TakeText take_;
    std::string text_;              ///< that was not taken yet
    std::string lineStart_ = "\n";  ///< a line feed and the blanks of the line
    std::vector<char> brackets_;    ///< that close what is open
    bool isEmpty_ = true;           ///< what was opened last has nothing
};

}  // namespace Inspect
