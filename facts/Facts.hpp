#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "facts/FieldFacts.hpp"
#include "facts/InputFormat.hpp"

/// What a run has to report, as values without words.
///
/// The code that meets a problem describes it by one of these structs and hands it to `report`
/// (Listener.hpp). A front end chooses the words. Addresses and lengths are in bytes; an `end` is
/// the address one past the last one. Texts and bytes are views that are valid during the report.
namespace Facts {

// Images

/// The range of a new image passes the end of the address space; the image is empty.
struct ImageNotAddressable {
    std::uint64_t start;
    std::uint64_t length;
    bool operator==(const ImageNotAddressable&) const = default;
};

/// A new image reaches `limit`, an exclusive bound; the image is empty.
struct ImageTooLong {
    std::uint64_t length;
    std::uint64_t limit;
    bool operator==(const ImageTooLong&) const = default;
};

/// An image was not moved: its range would pass the end of the address space.
struct MoveTooFar {
    std::uint64_t start;
    std::uint64_t highestStart;
    bool operator==(const MoveTooFar&) const = default;
};

/// A fill had no pattern; nothing was filled.
struct FillPatternEmpty {
    bool operator==(const FillPatternEmpty&) const = default;
};

/// A fill begins outside the image; nothing was filled.
struct FillStartOutside {
    std::uint64_t start;
    std::uint64_t imageStart;
    std::uint64_t imageEnd;
    bool operator==(const FillStartOutside&) const = default;
};

/// A fill begins in the image and leaves it; nothing was filled.
struct FillTooLong {
    std::uint64_t start;
    std::uint64_t length;
    std::uint64_t imageEnd;
    bool operator==(const FillTooLong&) const = default;
};

/// An extract begins outside the image; it is empty.
struct ExtractStartOutside {
    std::uint64_t start;
    std::uint64_t imageStart;
    std::uint64_t imageEnd;
    bool operator==(const ExtractStartOutside&) const = default;
};

/// An extract begins in the image and leaves it; it is empty.
struct ExtractTooLong {
    std::uint64_t start;
    std::uint64_t length;
    std::uint64_t imageEnd;
    bool operator==(const ExtractTooLong&) const = default;
};

// Input files

enum class ReadOperation : std::uint8_t { GetMemory, FillMemoryBuffer };

/// A reader was asked for a range that its file does not have; nothing was read.
struct ReadRangeOutside {
    InputFormat reader;
    ReadOperation operation;
    std::uint64_t start;
    std::uint64_t end;
    std::uint64_t dataStart;
    std::uint64_t dataEnd;
    std::string_view information;  ///< what the reader says of itself, whole lines
    bool operator==(const ReadRangeOutside&) const = default;
};

/// A text file has no line.
struct TextFileEmpty {
    std::string_view file;
    bool operator==(const TextFileEmpty&) const = default;
};

/// The last line of an Intel HEX file is not an end-of-file record; nothing of the file was used.
struct LastLineMismatched {
    std::string_view file;
    bool operator==(const LastLineMismatched&) const = default;
};

/// A record contradicts its checksum or the format; nothing of the file was used.
struct RecordContradictory {
    std::string_view file;
    std::uint64_t lineNumber;  ///< counted from 1
    std::string_view line;
    bool operator==(const RecordContradictory&) const = default;
};

/// A line of an S-record file is not a record; the lines before it were used.
struct LineNotARecord {
    std::string_view file;
    std::uint64_t lineNumber;  ///< counted from 1
    std::string_view line;
    bool operator==(const LineNotARecord&) const = default;
};

/// The count of an S-record leaves no room for data after its address.
struct RecordCountTooLow {
    std::uint32_t count;
    std::size_t addressSize;
    bool operator==(const RecordCountTooLow&) const = default;
};

/// The data of an S-record file spans more than `mostBytes`; it ends at `newLastAddress`.
struct DataSpanTooLong {
    std::uint64_t mostBytes;
    std::uint64_t lastAddress;
    std::uint64_t newLastAddress;
    bool operator==(const DataSpanTooLong&) const = default;
};

/// A file has more than `mostBytes` raw bytes, and the rest is not used.
struct RawFileTooLong {
    std::uint64_t mostBytes;
    std::uint64_t fileSize;
    bool operator==(const RawFileTooLong&) const = default;
};

/// A read failed before the end of the file; what was read is used.
struct FileReadIncomplete {
    std::string_view file;
    bool operator==(const FileReadIncomplete&) const = default;
};

/// What a file of a format that is read as a whole or not at all has wrong.
enum class FormatFault : std::uint8_t {
    MagicMissing,      ///< the mark of the format is not at byte `where`
    VariantUnknown,    ///< byte `where` has `number`, which names no variant of the format
    Truncated,         ///< the file ends before byte `where` and `number` more bytes
    EntryTooShort,     ///< a table at byte `where` has entries of `number` bytes
    NothingToLoad,     ///< there is no data
    DataRepeated,      ///< `number` bytes in total are more than the file has
    SegmentTooLong,    ///< segment `where` has `number` bytes in the file and fewer in memory
    AddressTooHigh,    ///< data from `number` on passes the end of the address space
    SizeNotWhole,      ///< the size `where` is not a multiple of `number`
    PayloadTooLong,    ///< block `where` has `number` bytes of data, more than there is room for
    BlockNumberWrong,  ///< block `where` has the number `number`, twice or beyond the count
    BlockCountWrong,   ///< there are `where` blocks, but the file says `number`
    LineUnknown,       ///< line `where` is nothing that the format has
    AddressMissing,    ///< line `where` has data, and no line before has an address
    EndMissing,        ///< the file has no end after line `where`
    AfterEnd,          ///< line `where` comes after the end
    WordCut,           ///< before line `where` a run of data has no whole number of `number` bytes
    WordUneven,        ///< line `where` has a word of `number` digits, which are not whole bytes
    WordsDiffer,   ///< line `where` has a word of `number` digits, and others have more or fewer
    BitsUnknown,   ///< line `where` has a digit for bits without a value
    CommentOpen,   ///< the comment that begins in line `where` does not end
    LengthWrong,   ///< the length at byte `where` is `number`, which what follows contradicts
    ChecksumWrong  ///< the checksum of the file is `where`, and its bytes give `number`
};

/// A file contradicts its format; nothing of it was used and the statement failed.
struct FileMalformed {
    InputFormat format;
    std::string_view file;
    FormatFault fault;
    std::uint64_t where;
    std::uint64_t number;
    bool operator==(const FileMalformed&) const = default;
};

enum class SectionFault : std::uint8_t {
    Unknown,    ///< the file has no section of the name
    NotLoaded,  ///< it has no bytes in the file that are loaded
    NoSections  ///< what the image is made of has no sections
};

/// A section that was asked for cannot be read; the statement failed.
struct SectionUnfit {
    std::string_view file;
    std::string_view section;
    SectionFault fault;
    std::string_view known;  ///< the names of the file's sections that are loaded, a line each
    bool operator==(const SectionUnfit&) const = default;
};

enum class FamilyFault : std::uint8_t {
    Shared,     ///< several families have blocks for `address`, and none was asked for
    Unknown,    ///< no block is for the family that was asked for
    NoFamilies  ///< what the image is made of has no families
};

/// No blocks for one family of devices can be read from a file; the statement failed.
struct FamilyUnfit {
    std::string_view file;
    FamilyFault fault;
    std::uint32_t family;  ///< that was asked for
    std::uint64_t address;
    std::string_view known;  ///< the families of the file, in words
    bool operator==(const FamilyUnfit&) const = default;
};

// Output files

enum class OutputFormat : std::uint8_t { IntelHex, MotorolaS, RawBinary, EmbeddedC_Assembler };
enum class Bound : std::uint8_t { Minimum, Maximum };

/// A writer replaced a record length outside its bounds by the bound.
struct RecordLengthCorrected {
    OutputFormat writer;
    std::uint32_t length;
    Bound bound;
    std::uint32_t allowed;
    bool operator==(const RecordLengthCorrected&) const = default;
};

/// Intel HEX cannot express the address of a block; the file was not written.
struct AddressNotExpressible {
    std::uint64_t address;
    std::string_view file;
    bool operator==(const AddressNotExpressible&) const = default;
};

/// Intel HEX has no record of this kind.
struct RecordTypeUnknown {
    std::uint32_t type;
    bool operator==(const RecordTypeUnknown&) const = default;
};

/// S-records cannot express the addresses of an image; the image is left out.
struct ImageBeyondSRecords {
    std::uint64_t highestAddress;
    bool operator==(const ImageBeyondSRecords&) const = default;
};

/// An image would make more than `mostBytes` bytes of output; the image is left out.
struct TooManyBytes {
    OutputFormat writer;
    std::uint64_t mostBytes;
    bool operator==(const TooManyBytes&) const = default;
};

/// A format cannot express an address above `highest`; the file was not written.
struct AddressBeyondFormat {
    std::string_view format;
    std::string_view file;
    std::uint64_t highest;
    bool operator==(const AddressBeyondFormat&) const = default;
};

/// A format that takes only some numbers was given another one; the statement failed.
struct FormatNumberWrong {
    std::string_view format;  ///< the keyword of the language
    std::string_view file;
    std::uint32_t number;
    std::string_view allowed = {};  ///< the numbers that it takes, in words
    bool operator==(const FormatNumberWrong&) const = default;
};

/// A file for several families of devices does not have a family for each image; the statement
/// failed.
struct FamiliesNotOfImages {
    std::string_view file;
    std::size_t families;
    std::size_t images;
    bool operator==(const FamiliesNotOfImages&) const = default;
};

/// The text of a header record is too long; the statement failed.
struct HeaderTooLong {
    std::string_view file;
    std::size_t length;   ///< in bytes
    std::size_t longest;  ///< that a record takes
    bool operator==(const HeaderTooLong&) const = default;
};

/// A format without addresses was asked to leave gaps; the statement failed.
struct GapsNotExpressible {
    std::string_view format;  ///< the keyword of the language
    std::string_view file;
    bool operator==(const GapsNotExpressible&) const = default;
};

/// What an ELF file that is to be copied has against the images.
enum class TemplateFault : std::uint8_t {
    ByteOutside,    ///< an image has written bytes that no segment has in the file
    ByteMissing,    ///< a segment has bytes that no image has
    SegmentsShared  ///< the segments at the two addresses share bytes or addresses
};

/// An ELF file does not fit the images that a copy of it is to get; the statement failed.
struct ElfTemplateUnfit {
    std::string_view file;
    TemplateFault fault;
    std::uint64_t start;
    std::uint64_t end;
    /// The bytes of the words that the addresses of the file count by its machine; 1 if they count
    /// bytes, or were read as those of words.
    std::uint32_t likelyUnit = 1;
    bool operator==(const ElfTemplateUnfit&) const = default;
};

/// A write failed; the file holds what was written before.
struct FileWriteIncomplete {
    std::string_view file;
    bool operator==(const FileWriteIncomplete&) const = default;
};

// Statements

/// What a name of a statement refers to. A symbol is a CRC or a hash.
enum class NameKind : std::uint8_t { Buffer, Crc, Hash, Signature, Symbol };

/// No statement before has made the name; the statement failed.
struct NameNotFound {
    NameKind kind;
    std::string_view name;
    bool operator==(const NameNotFound&) const = default;
};

enum class ImageLack : std::uint8_t { Addresses, Bytes };

/// A number asks for an address of an image that has none, or to which nothing gave a byte.
struct ImageWithout {
    std::string_view image;
    ImageLack lack;
    bool operator==(const ImageWithout&) const = default;
};

enum class SymbolFault : std::uint8_t { Missing, Several, TooWide };

/// A number asks for a symbol that an ELF file does not have, has several times, or has at an
/// address of more than 32 bits.
struct SymbolUnfit {
    std::string_view file;
    std::string_view symbol;
    SymbolFault fault;
    std::uint64_t address;   ///< that is too wide
    std::string_view known;  ///< the names of the file's symbols, a line each, if one is missing
    bool operator==(const SymbolUnfit&) const = default;
};

enum class Subject : std::uint8_t { Buffer, Crc, Hash, Signature, Text, File, Application };
enum class Work : std::uint8_t { Created, Filled, Verified, Printed, Written, Called };

enum class KeyFault : std::uint8_t {
    NotGiven,   ///< the statement names no key file
    NoType,     ///< the statement names no type
    NotAKey,    ///< no PEM, damaged, or of an unknown algorithm or curve
    WrongType,  ///< a key of another algorithm than the type needs
    Public,     ///< where a private key is needed
    Encrypted,  ///< and there is no passphrase
    PassphraseWrong,
    EncryptionUnknown,  ///< otherwise than by PBES2 with AES or 3DES
    Size,               ///< an RSA key of fewer than 2,048 or more than 4,096 bits
    NotSupported        ///< the program was built without signatures
};

/// A key cannot be used; the statement failed.
struct KeyRefused {
    std::string_view file;
    std::string_view type;  ///< of the signature; empty if any will do
    KeyFault fault;
    bool operator==(const KeyRefused&) const = default;
};

/// Others than its owner may read the file of a private key, which is used all the same.
struct KeyReadable {
    std::string_view file;
    bool operator==(const KeyReadable&) const = default;
};

/// A signature is not that of the bytes by the key; the statement failed.
struct SignatureWrong {
    std::string_view signature;
    std::string_view file;  ///< of the key
    bool operator==(const SignatureWrong&) const = default;
};

/// An image has other bytes than a statement compares it with, which fails.
struct ImageDiffers {
    std::string_view image;
    std::string_view other;             ///< the image that it is compared with; empty for a pattern
    std::uint64_t address;              ///< the first one that differs
    std::optional<std::uint8_t> found;  ///< nothing if the image does not have the address
    std::uint8_t wanted;
    std::uint64_t count;  ///< of addresses that differ
    bool operator==(const ImageDiffers&) const = default;
};

/// A statement that compares an image has compared no byte; it failed.
struct NothingCompared {
    std::string_view image;
    bool operator==(const NothingCompared&) const = default;
};

/// Two sources of an image, or two records of its file, write the same addresses, which the
/// statement refuses; it failed.
struct OverlapRefused {
    Subject subject;          ///< an image or a file
    std::string_view name;    ///< of that
    std::string_view source;  ///< the later image, or the file
    std::uint64_t start;
    std::uint64_t end;
    bool isDifferent;       ///< their bytes at `address` differ
    std::uint64_t address;  ///< the first address with different bytes, or `start`
    std::uint8_t earlier;   ///< the bytes there, if they differ
    std::uint8_t later;
    /// The bytes of the words that the addresses of the file seem to count; 1 if they count bytes.
    std::uint32_t likelyUnit = 1;
    std::optional<InputFormat> format = {};  ///< of the file; nothing if images overlap
    std::uint32_t addressUnit = 1;           ///< by which the file was read
    bool operator==(const OverlapRefused&) const = default;
};

/// A statement ran out of memory and failed.
struct StatementExhausted {
    Subject subject;
    std::string_view name;
    Work work;
    bool operator==(const StatementExhausted&) const = default;
};

/// A parameter of a CRC that a script describes.
enum class CrcParameter : std::uint8_t { Width, Polynomial, Initial, FinalXor };

/// The width of a CRC is out of its range, or another parameter has a bit beyond the width; the
/// statement failed.
struct CrcParameterRefused {
    std::string_view name;
    CrcParameter parameter;
    bool operator==(const CrcParameterRefused&) const = default;
};

/// The data of a CRC or hash is not a whole number of words; the statement failed.
struct WordIncomplete {
    Subject subject;
    std::string_view name;
    std::uint64_t length;    ///< of the data
    std::uint32_t wordSize;  ///< in bytes
    bool isOfType = false;   ///< the words are those of the type, not those of the option
    bool operator==(const WordIncomplete&) const = default;
};

/// What is wrong with the bus of -useLane or -interleave.
enum class BusFault : std::uint8_t {
    WidthZero,    ///< a lane has no byte of a row
    LanesZero,    ///< there is no lane
    LaneUnknown,  ///< the lane is not one of the bus
    RowTooLong,   ///< a row of all lanes has 2^32 bytes or more
    ImagesFew     ///< less than two images are to be interleaved
};

/// A statement describes a bus that cannot be; it failed.
struct BusRefused {
    std::string_view name;
    BusFault fault;
    std::uint32_t lane;   ///< counted from 0
    std::uint32_t lanes;  ///< of the bus, or the images that are to be interleaved
    bool operator==(const BusRefused&) const = default;
};

/// What needs words as a whole.
enum class WordUse : std::uint8_t { SwappedBytes, Lane, Interleaved, AddressUnit };

/// An image does not begin and end with a whole word; the statement failed.
struct ImageNotOfWords {
    Subject subject;        ///< that the statement makes
    std::string_view name;  ///< of that
    WordUse use;
    std::uint64_t start;  ///< of the image
    std::uint64_t end;
    std::uint32_t wordSize;  ///< in bytes
    bool operator==(const ImageNotOfWords&) const = default;
};

/// A source, or a format, whose addresses do not count words was given an address unit; the
/// statement failed.
struct AddressUnitRefused {
    Subject subject;  ///< that the statement makes
    std::string_view name;
    std::string_view format;  ///< the keyword of the language
    bool operator==(const AddressUnitRefused&) const = default;
};

/// The ends of a file's data were to be multiples of 0; the statement failed.
struct AlignmentZero {
    std::string_view file;
    bool operator==(const AlignmentZero&) const = default;
};

/// An input file could not be opened or held; the statement failed.
struct FileNotOpened {
    std::string_view file;
    bool operator==(const FileNotOpened&) const = default;
};

/// An output file could not be opened; the statement failed.
struct FileNotWritten {
    std::string_view file;
    bool operator==(const FileNotWritten&) const = default;
};

/// The data of a file spans more than FROM_FILE takes; the statement failed.
struct FileSpanTooLong {
    std::uint64_t length;
    bool operator==(const FileSpanTooLong&) const = default;
};

// What statements print

/// PRINT_BUFFER begins.
struct BufferPrinted {
    std::string_view name;
    std::uint64_t start;
    std::uint64_t length;
    bool operator==(const BufferPrinted&) const = default;
};

/// A block of PRINT_BUFFER: the effective bytes from `start` on.
struct ContentPrinted {
    std::uint64_t start;
    std::span<const std::uint8_t> bytes;
};

/// PRINT_CRC; the value least significant byte first.
struct CrcPrinted {
    std::string_view name;
    std::span<const std::uint8_t> value;
};

/// PRINT_HASH.
struct HashPrinted {
    std::string_view name;
    std::span<const std::uint8_t> value;
};

/// PRINT_SIGNATURE.
struct SignaturePrinted {
    std::string_view name;
    std::span<const std::uint8_t> value;
};

/// PRINT_TEXT.
struct TextPrinted {
    std::string_view text;
    bool operator==(const TextPrinted&) const = default;
};

/// CALL_APP is about to start a program.
struct ProgramCalled {
    std::string_view location;
    std::string_view arguments;
    bool operator==(const ProgramCalled&) const = default;
};

/// The program of a CALL_APP has ended.
struct ProgramEnded {
    std::string_view location;
    int status;  ///< its exit code, 128 and the signal that ended it, or -1 if it was not started
    bool operator==(const ProgramEnded&) const = default;
};

// The run

/// The script could not be opened.
struct ScriptNotOpened {
    std::string_view path;
    bool operator==(const ScriptNotOpened&) const = default;
};

enum class VariableFault : std::uint8_t { NotARegularExpression, TooComplex, ScriptTooLong };

/// A variable cannot be applied to the script; nothing is executed.
struct VariableRejected {
    std::string_view name;
    VariableFault fault;
    bool operator==(const VariableRejected&) const = default;
};

/// Memory ran out while the script was prepared, or the script was not read as a whole.
struct ScriptNotPrepared {
    std::string_view path;
    bool operator==(const ScriptNotPrepared&) const = default;
};

/// The text of the script does not parse; nothing is executed.
struct SyntaxError {
    std::string_view lastCommand;  ///< the last statement that parsed, if no keyword followed
    std::string_view lastTokens;   ///< the steps of the parser's actions
    std::size_t line;              ///< where the statement that failed begins, counted from 1
    bool operator==(const SyntaxError&) const = default;
};

/// The run is over.
struct RunEnded {
    double seconds;
    bool operator==(const RunEnded&) const = default;
};

using Fact = std::variant<
    ImageNotAddressable, ImageTooLong, MoveTooFar, FillPatternEmpty, FillStartOutside, FillTooLong,
    ExtractStartOutside, ExtractTooLong, ReadRangeOutside, TextFileEmpty, LastLineMismatched,
    RecordContradictory, LineNotARecord, RecordCountTooLow, DataSpanTooLong, RawFileTooLong,
    FileMalformed, SectionUnfit, FamilyUnfit, FileReadIncomplete, RecordLengthCorrected,
    AddressNotExpressible, RecordTypeUnknown, ImageBeyondSRecords, TooManyBytes, GapsNotExpressible,
    AddressBeyondFormat, FormatNumberWrong, FamiliesNotOfImages, HeaderTooLong, ElfTemplateUnfit,
    FileWriteIncomplete, NameNotFound, ImageWithout, SymbolUnfit, OverlapRefused, ImageDiffers,
    NothingCompared, StatementExhausted, CrcParameterRefused, WordIncomplete, BusRefused,
    ImageNotOfWords, AddressUnitRefused, AlignmentZero, FileNotOpened, FileNotWritten,
    FileSpanTooLong, BufferPrinted, ContentPrinted, CrcPrinted, HashPrinted, SignaturePrinted,
    KeyRefused, KeyReadable, SignatureWrong, TextPrinted, ProgramCalled, ProgramEnded,
    ScriptNotOpened, VariableRejected, ScriptNotPrepared, SyntaxError, RunEnded, FieldFact>;

}  // namespace Facts
