#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace Strict {

enum class Severity : unsigned char {
    Error,
    Warning,
    Note,  ///< adds to the diagnostics before it, and has no kind
    Ignored
};

/// "error", "warning" or "note".
const char* wordFor(Severity severity);

/// What a diagnostic is about, in the order of the book's table. Each has a row in `kinds`.
enum class Kind : unsigned char {
    Syntax,
    CannotOpen,
    CannotWrite,
    ShortRead,
    ShortWrite,
    OutOfMemory,
    RecordChecksum,
    RecordLine,
    Differs,
    NoEnd,
    UnknownName,
    DuplicateName,
    Outside,
    Wiped,
    EmptyImage,
    EmptyDigest,
    CallFailed,
    UnusedVariable,
    CrcParameter,
    WordSize,
    Cropped,
    Unwritten,
    TruncatedValue,
    ExpressionOrder,
    NumberPair,
    VariableInWord,
    VariableDollar,
    SymbolUnused,
    ExecutionAddress,
    LengthCorrected,
    Swallowed,
    NoEffect,
    EndAsLength,
    RecordDigit,
    RecordLength,
    RecordType,
    RecordAddress,
    AfterEnd,
    RecordCount,
    WrongFormat,
    Conflict,
    StartAddress,
    Overlap,
    Tolerated,
    SameFile,
    ValueSize,
    WholeImage,
    TextSize,
    NumberRange,
    EmptyArea,
    DigestSelf,
    DigestStale,
    FormatEnding,
    EmptyOutput,
    DoubleArea,
    RepeatedOption,
    InPlace,
    UnusedImage,
    BareWord,
    UnknownText,
    LeadingZero,
    BackslashPath,
    TypographicQuote,
    WideGap,
    Verify,
    Key,
    Signature,
    KeyReadable,
    MissingParameter,
    Count,  ///< of the kinds, itself not one
};

/// What the program knows of a kind.
struct KindRow {
    Kind kind;
    const char* name;     ///< as the book, `--ignore` and the brackets of a diagnostic have it
    Severity severity;    ///< what it counts as unless the user says otherwise
    bool isFixed;         ///< always an error: damage, syntax, keys and the file system
    const char* meaning;  ///< one line, for lists of the kinds
};

/// All kinds, in the order of their enumerators.
std::span<const KindRow> kinds();

inline const KindRow& rowOf(Kind kind) {
    return kinds()[static_cast<std::size_t>(kind)];
}

inline const char* nameOf(Kind kind) {
    return rowOf(kind).name;
}

/// The kind of that name, or nothing.
std::optional<Kind> kindCalled(std::string_view name);

}  // namespace Strict
