#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

namespace Parser {

/// What a part of a statement is to it. A statement that gives its parts their roles is checked for
/// missing names, values and files without further ado.
enum class Role : unsigned char {
    Keyword,  ///< the word that begins the statement
    MakesImage,
    MakesCrc,
    MakesHash,
    MakesSignature,
    UsesImage,     ///< reads it
    ChangesImage,  ///< writes into it
    UsesCrc,
    UsesHash,
    UsesSignature,
    MeasuresImage,  ///< a number asks for its addresses
    SymbolFile,     ///< a number asks for a symbol of that file
    Symbol,
    UsesValue,  ///< a CRC or, if none has the name, a hash or a signature, which its text names
    InputFile,
    Template,  ///< a file that an output is a copy of
    OutputFile,
    Program,
    Text,      ///< to print, or arguments of a program
    Bytes,     ///< a list of numbers of which the low eight bits count
    Filler,    ///< the same, laid under what nothing writes
    String,    ///< characters to write
    Area,      ///< {start, length} in an image
    Range,     ///< {start, length} of a new image
    Address,   ///< where an image is moved to
    Start,     ///< where a program begins to run
    Section,   ///< the name of a section that is written
    Sections,  ///< the name of a section of an input
    Family,    ///< of devices, whose blocks of an input count
    Type,      ///< of a CRC, a hash or a signature
    Format,    ///< of a file that is written
    Overlap,   ///< which byte counts
    ByteOrder,
    WordSize,
    ValueSize,    ///< bytes of each number of a list
    Gaps,         ///< unwritten addresses are left out
    Lane,         ///< one chip of a bus
    Interleave,   ///< a bus of its chips
    SwapBytes,    ///< in words
    AddressUnit,  ///< of a file
    ShortGaps,    ///< of a file that are filled
    Alignment,    ///< of the ends of a file's data
    ArrayName,    ///< a name in C
    GuardName,    ///< of a macro in C
    Header,       ///< the text of a header record
    Stored,       ///< an image holds the signature that the statement makes known
    KeyFile,      ///< its contents are secret
    Form,         ///< of a signature
    Option,       ///< a number for USB
    None,         ///< of a step of the parser that says nothing new
};

/// A set of roles, such as those of a statement's parts: they are asked for far more often than
/// they are there.
class Roles {
public:
    constexpr Roles() = default;
    constexpr Roles(std::initializer_list<Role> roles) {
        for (const Role role : roles) add(role);
    }

    constexpr void add(Role role) { bits_ |= bitOf(role); }
    constexpr bool has(Role role) const { return (bits_ & bitOf(role)) != 0; }
    constexpr bool hasAny(Roles roles) const { return (bits_ & roles.bits_) != 0; }
    bool operator==(const Roles&) const = default;

private:
    static_assert(static_cast<unsigned>(Role::None) < 64, "a bit for each role");
    static constexpr std::uint64_t bitOf(Role role) {
        return std::uint64_t{1} << static_cast<unsigned>(role);
    }

    std::uint64_t bits_ = 0;
};

/// A kind of values that statements make under a name and put into images.
struct ValueKind {
    Role makes;
    Role uses;
    const char* word;  ///< "CRC"
};

/// All of them. What they have in common asks this table, so that it holds for each.
inline constexpr std::array valueKinds{
    ValueKind{Role::MakesCrc, Role::UsesCrc, "CRC"},
    ValueKind{Role::MakesHash, Role::UsesHash, "hash"},
    ValueKind{Role::MakesSignature, Role::UsesSignature, "signature"}};

/// The roles of names of values, where they are made and where they are used.
inline constexpr Roles makesValue{Role::MakesCrc, Role::MakesHash, Role::MakesSignature};
inline constexpr Roles usesValue{Role::UsesCrc, Role::UsesHash, Role::UsesSignature};

/// The kind of the value that a part with that role makes or uses; null for any other role.
constexpr const ValueKind* valueKindOf(Role role) {
    for (const ValueKind& kind : valueKinds)
        if (role == kind.makes || role == kind.uses) return &kind;
    return nullptr;
}

/// The choice of an `Option`.
enum class UsbId : unsigned char { Vendor, Product };

/// The choice of an `InputFile`.
enum class FileReading : unsigned char {
    Detected,  ///< its contents say of what format it is
    Named      ///< the statement says it
};

}  // namespace Parser
