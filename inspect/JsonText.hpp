#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"

namespace Inspect {

/// The text of a JSON object that is made piece by piece, as `dump` makes it of a value: records
/// have so many entries that a value in memory would take ten times their text.
class JsonText {
public:
    JsonText() { open('{'); }

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

    /// Closes the whole.
    std::string take();

private:
    void begin();
    void begin(std::string_view name);
    void append(std::string_view text);
    void append(std::uint64_t number);
    void open(char bracket);

    std::string text_;
    std::string lineStart_ = "\n";  ///< a line feed and the blanks of the line
    std::vector<char> brackets_;    ///< that close what is open
    bool isEmpty_ = true;           ///< what was opened last has nothing
};

}  // namespace Inspect
