#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "editor/Script.hpp"

namespace Editor {

/// What a name in a script can be that of.
enum class Thing : unsigned char { Image, Crc, Hash, Signature, Parameter };

/// "image", "CRC" and so on.
const char* wordFor(Thing thing);

/// A place at which a script makes or uses something that has a name.
struct Mention {
    Thing thing;
    std::string name;
    std::size_t owner = 0;  ///< of a parameter: the file that declares it
    FilePlace where;
    bool isMaking = false;  ///< the thing is made, or declared, here
    /// The file has the name itself here, and not that of a variable or parameter.
    bool isWritten = true;
    bool isValue = false;  ///< it is the value of a parameter

    bool isOfSame(const Mention& other) const {
        return thing == other.thing && name == other.name && owner == other.owner;
    }
};

/// All mentions of a script and the files that it includes, by their places.
class Mentions {
public:
    explicit Mentions(const Script& script);

    const std::vector<Mention>& all() const { return all_; }

    /// The one at an offset of a file, or with its end there; null if there is none. What a
    /// parameter is replaced by gives way to the parameter.
    const Mention* at(std::size_t file, std::size_t offset) const;

    /// Those of the same thing.
    std::vector<Mention> ofSame(const Mention& mention) const;

    /// The places that have to change for the thing to have another name: with the value of a
    /// parameter, all that has the same name by it.
    std::vector<Mention> toRename(const Mention& mention) const;

    /// Where the thing is made: the first place, or null.
    const Mention* makingOf(const Mention& mention) const;

private:
    /// What is made under each name.
    using MadeThings = std::map<std::string, std::set<Thing>, std::less<>>;

    void addStatements(const Script& script);
    void addParameters(const Script& script);
    void addValue(const Script& script, const MadeThings& made, std::size_t file, TextSpan where);
    void sort();

    std::vector<Mention> all_;
};

/// Why something cannot have another name; empty if it can.
std::string obstacleToRename(const Script& script, const Mentions& mentions, const Mention& mention,
                             const std::string& name);

}  // namespace Editor
