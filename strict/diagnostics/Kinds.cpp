#include "strict/diagnostics/Kinds.hpp"

#include <algorithm>
#include <array>

namespace Strict {

namespace {

using enum Severity;

constexpr std::array<KindRow, static_cast<std::size_t>(Kind::Count)> allKinds{{
    KindRow{Kind::Syntax, "syntax", Error, true, "a text that is not a statement"},
    KindRow{Kind::CannotOpen, "cannot-open", Error, true, "a file that cannot be opened"},
    KindRow{Kind::CannotWrite, "cannot-write", Error, true,
            "a file that cannot be created or put in place"},
    KindRow{Kind::ShortRead, "short-read", Error, true, "a file that could not be read to its end"},
    KindRow{Kind::ShortWrite, "short-write", Error, true,
            "an output that could not be written to its end"},
    KindRow{Kind::OutOfMemory, "out-of-memory", Error, true, "not enough memory"},
    KindRow{Kind::RecordChecksum, "record-checksum", Error, true,
            "a record whose checksum is wrong"},
    KindRow{Kind::RecordLine, "record-line", Error, true, "a line that is not a record"},
    KindRow{Kind::Differs, "differs", Error, true, "a file that is not what the script makes"},
    KindRow{Kind::NoEnd, "no-end", Error, false, "a text file without its end record"},
    KindRow{Kind::UnknownName, "unknown-name", Error, false,
            "a name that no statement before it makes"},
    KindRow{Kind::DuplicateName, "duplicate-name", Error, false,
            "a second image, CRC, hash or signature of one name"},
    KindRow{Kind::Outside, "outside", Error, false,
            "an area or address that does not lie in its image or format"},
    KindRow{Kind::Wiped, "wiped", Error, false,
            "unwritten addresses of a later image replace written bytes"},
    KindRow{Kind::EmptyImage, "empty-image", Error, false, "a file without a data byte"},
    KindRow{Kind::EmptyDigest, "empty-digest", Error, false,
            "a hash that computes nothing, or a CRC, hash or signature over no byte"},
    KindRow{Kind::CallFailed, "call-failed", Error, false,
            "a program that failed or could not be started"},
    KindRow{Kind::UnusedVariable, "unused-variable", Error, false,
            "a variable of the command line that the script does not have"},
    KindRow{Kind::CrcParameter, "crc-parameter", Error, false,
            "a parameter of a CRC that does not fit its width"},
    KindRow{Kind::WordSize, "word-size", Error, false, "data that is not a whole number of words"},
    KindRow{Kind::Cropped, "cropped", Warning, false, "bytes of a file that are left out"},
    KindRow{Kind::Unwritten, "unwritten", Warning, false,
            "a CRC, hash or signature over addresses that nothing wrote"},
    KindRow{Kind::TruncatedValue, "truncated-value", Warning, false,
            "a value above 0xFF in a list of bytes"},
    KindRow{Kind::ExpressionOrder, "expression-order", Warning, false,
            "an expression with another value in the usual order"},
    KindRow{Kind::NumberPair, "number-pair", Warning, false, "two numbers side by side"},
    KindRow{Kind::VariableInWord, "variable-in-word", Warning, false,
            "a variable that is replaced within a longer word"},
    KindRow{Kind::VariableDollar, "variable-dollar", Warning, false, "a value with a dollar sign"},
    KindRow{Kind::SymbolUnused, "symbol-unused", Warning, false,
            "a name to resolve that its text does not have"},
    KindRow{Kind::ExecutionAddress, "execution-address", Warning, false,
            "-setExecutionAddress with a number"},
    KindRow{Kind::LengthCorrected, "length-corrected", Warning, false,
            "a record length that its format does not have"},
    KindRow{Kind::Swallowed, "swallowed", Warning, false,
            "a text that goes on over the next statement"},
    KindRow{Kind::NoEffect, "no-effect", Warning, false,
            "a statement or an option that does nothing"},
    KindRow{Kind::EndAsLength, "end-as-length", Warning, false,
            "a length that looks like an end address"},
    KindRow{Kind::RecordDigit, "record-digit", Error, true,
            "a record with a character that is not a digit"},
    KindRow{Kind::RecordLength, "record-length", Error, true,
            "a record that is shorter or longer than it says"},
    KindRow{Kind::RecordType, "record-type", Error, true, "a record of an unknown type"},
    KindRow{Kind::RecordAddress, "record-address", Error, true,
            "a record whose address field is wrong"},
    KindRow{Kind::AfterEnd, "after-end", Error, true, "data after the end record"},
    KindRow{Kind::RecordCount, "record-count", Error, true,
            "a count that is not the number of records"},
    KindRow{Kind::WrongFormat, "wrong-format", Error, true,
            "a file of another format than the statement names"},
    KindRow{Kind::Conflict, "conflict", Error, false, "two different bytes for one address"},
    KindRow{Kind::StartAddress, "start-address", Error, false,
            "two different start addresses in a file"},
    KindRow{Kind::Overlap, "overlap", Warning, false, "the same byte twice for one address"},
    KindRow{Kind::Tolerated, "tolerated", Warning, false, "an oddity of a file that loses no data"},
    KindRow{Kind::SameFile, "same-file", Error, true, "two files of a run in one place"},
    KindRow{Kind::ValueSize, "value-size", Error, false,
            "a CRC, hash, signature or list of values that does not fit its area"},
    KindRow{Kind::WholeImage, "whole-image", Error, false,
            "a CRC, hash or signature put over a whole image"},
    KindRow{Kind::TextSize, "text-size", Error, false, "a text that is longer than its area"},
    KindRow{Kind::NumberRange, "number-range", Error, false,
            "an expression that leaves 32 bits or divides by zero"},
    KindRow{Kind::EmptyArea, "empty-area", Error, false, "an area of length 0"},
    KindRow{Kind::DigestSelf, "digest-self", Error, false,
            "a CRC, hash or signature over the bytes that it is put into"},
    KindRow{Kind::DigestStale, "digest-stale", Error, false,
            "bytes that were changed after the CRC, hash or signature over them"},
    KindRow{Kind::FormatEnding, "format-ending", Error, false,
            "an output whose name ends as those of another format"},
    KindRow{Kind::EmptyOutput, "empty-output", Error, false, "an output without a byte"},
    KindRow{Kind::DoubleArea, "double-area", Warning, false, "areas of one list that overlap"},
    KindRow{Kind::RepeatedOption, "repeated-option", Warning, false,
            "an option of which only the last one counts"},
    KindRow{Kind::InPlace, "in-place", Warning, false, "an output that replaces an input"},
    KindRow{Kind::UnusedImage, "unused-image", Warning, false, "an image that nothing reads"},
    KindRow{Kind::BareWord, "bare-word", Warning, false,
            "a file name or text that looks like a variable"},
    KindRow{Kind::UnknownText, "unknown-text", Warning, false,
            "a file that is all text and is read as raw bytes"},
    KindRow{Kind::LeadingZero, "leading-zero", Warning, false,
            "a decimal number that looks like a hexadecimal address"},
    KindRow{Kind::BackslashPath, "backslash-path", Warning, false,
            "a path with a backslash on a system that separates folders by /"},
    KindRow{Kind::TypographicQuote, "typographic-quote", Error, false,
            "a text that begins with a typographic quote"},
    KindRow{Kind::WideGap, "wide-gap", Error, false,
            "more than 64 MiB of gaps that would be filled"},
    KindRow{Kind::Verify, "verify", Error, false,
            "an image that VERIFY_BUFFER finds to have other bytes"},
    KindRow{Kind::Key, "key", Error, true, "a key that cannot be used"},
    KindRow{Kind::Signature, "signature", Error, false,
            "a signature that is not that of the bytes by the key"},
    KindRow{Kind::KeyReadable, "key-readable", Warning, false,
            "a private key, or its passphrase, that others may read"},
    KindRow{Kind::MissingParameter, "missing-parameter", Error, true,
            "a PARAMETER without a value and a default"},
}};

/// A kind is the index of its row.
constexpr bool isInOrder() {
    for (std::size_t i = 0; i < allKinds.size(); ++i)
        if (static_cast<std::size_t>(allKinds[i].kind) != i) return false;
    return true;
}
static_assert(isInOrder(), "a row for each kind, in the order of the enumerators");

}  // namespace

const char* wordFor(Severity severity) {
    if (severity == Error) return "error";
    return severity == Warning ? "warning" : "note";
}

std::span<const KindRow> kinds() {
    return allKinds;
}

std::optional<Kind> kindCalled(std::string_view name) {
    const auto* const row = std::ranges::find(allKinds, name, &KindRow::name);
    return row == allKinds.end() ? std::nullopt : std::optional(row->kind);
}

}  // namespace Strict
