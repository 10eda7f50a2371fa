#pragma once

namespace Parser {

/// What a part of a statement is to it. A statement that gives its parts their roles is checked for
/// missing names, values and files without further ado.
enum class Role : unsigned char {
    Keyword,  ///< the word that begins the statement
    MakesImage,
    MakesCrc,
    MakesHash,
    UsesImage,     ///< reads it
    ChangesImage,  ///< writes into it
    UsesCrc,
    UsesHash,
    UsesValue,  ///< a CRC or, if none has the name, a hash, which its text names
    InputFile,
    OutputFile,
    Program,
    Text,     ///< to print, or arguments of a program
    Bytes,    ///< a list of numbers of which the low eight bits count
    Filler,   ///< the same, laid under what nothing writes
    String,   ///< characters to write
    Area,     ///< {start, length} in an image
    Range,    ///< {start, length} of a new image
    Address,  ///< where an image is moved to
    Start,    ///< where a program begins to run
    Section,  ///< the name of a section
    Type,     ///< of a CRC or a hash
    Format,   ///< of a file that is written
    Overlap,  ///< which byte counts
    ByteOrder,
    WordSize,
    Gaps,       ///< unwritten addresses are left out
    ArrayName,  ///< a name in C
    Option,
    None,  ///< of a step of the parser that says nothing new
};

/// The choice of an `InputFile`.
enum class FileReading : unsigned char {
    Detected,  ///< its contents say of what format it is
    Named      ///< the statement says it
};

}  // namespace Parser
