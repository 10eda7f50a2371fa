// All that the program says of the facts of a run. A fact, a fault or a tolerance without a row
// fails.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "facts/Facts.hpp"
#include "inspect/Words.hpp"
#include "strict/diagnostics/FactWords.hpp"
#include "strict/diagnostics/FieldWords.hpp"

namespace Strict {
namespace {

using namespace Facts;
using Parser::Role;
using Parser::Roles;

constexpr Roles area{Role::Area, Role::Range, Role::Address};
constexpr Roles input{Role::InputFile};
constexpr Roles anyInput{Role::InputFile, Role::Template, Role::SymbolFile, Role::KeyFile};
constexpr Roles key{Role::KeyFile};
constexpr Roles output{Role::OutputFile};
constexpr Roles bus{Role::Lane, Role::Interleave};

/// The system gives a reason for all that fails but "silent", and a statement makes "@made".
Circumstances circumstances(OptionsOf options) {
    return {[](std::string_view path) {
                if (path == "nowhere/out") return std::string("No such file or directory");
                return std::string(path == "silent" ? "" : "it broke");
            },
            [](std::string_view name) { return name == "@made"; }, options};
}

struct FactRow {
    Fact fact;
    std::optional<FactWords> words;
    bool isRefusal = false;
};

constexpr bool refuses = true;

std::vector<FactRow> malformedRows() {
    struct Row {
        InputFormat format;
        FormatFault fault;
        std::uint64_t where, number;
        Kind kind;
        const char* text;
        const char* hint = "";
    };
    using enum FormatFault;
    constexpr auto elf = InputFormat::Elf;
    constexpr auto uf2 = InputFormat::Uf2;
    constexpr auto titxt = InputFormat::TiTxt;
    constexpr auto vmem = InputFormat::Vmem;
    constexpr auto dfuSe = InputFormat::DfuSe;
    const std::vector<Row> rows{
        {elf, MagicMissing, 0, 0, Kind::WrongFormat,
         "ELF: the mark of the format is missing at byte 0"},
        {elf, VariantUnknown, 4, 9, Kind::WrongFormat,
         "ELF: byte 4 is 9, which names no variant of the format"},
        {elf, Truncated, 52, 32, Kind::WrongFormat,
         "ELF: the file ends before byte 52 and the 32 after it"},
        {elf, EntryTooShort, 52, 8, Kind::WrongFormat,
         "ELF: the entries of the table at byte 52 have only 8 bytes"},
        {elf, NothingToLoad, 0, 0, Kind::EmptyImage, "ELF: there is no data to load"},
        {elf, DataRepeated, 0, 99, Kind::WrongFormat,
         "ELF: parts of the file count several times, 99 bytes in total"},
        {elf, SegmentTooLong, 1, 99, Kind::WrongFormat,
         "ELF: segment 1 has 99 bytes in the file and fewer in memory"},
        {elf, AddressTooHigh, 0, 0xFFFFFFF0, Kind::WrongFormat,
         "ELF: the data at 0xfffffff0 passes the end of the address space"},
        {uf2, SizeNotWhole, 513, 512, Kind::WrongFormat,
         "UF2: the size of the file, 513, is no multiple of 512"},
        {uf2, PayloadTooLong, 2, 477, Kind::WrongFormat,
         "UF2: block 2 has 477 bytes, more than there is room for"},
        {uf2, BlockNumberWrong, 2, 7, Kind::WrongFormat,
         "UF2: block 2 has the number 7, which is there already or beyond the count"},
        {uf2, BlockCountWrong, 2, 3, Kind::WrongFormat, "UF2: there are 2 blocks, not 3"},
        {titxt, LineUnknown, 3, 0, Kind::WrongFormat,
         "TI-TXT: line 3 is neither an address nor bytes"},
        {titxt, AddressMissing, 1, 0, Kind::WrongFormat,
         "TI-TXT: line 1 has bytes without an address before them"},
        {titxt, EndMissing, 4, 0, Kind::NoEnd, "TI-TXT: there is no end after line 4",
         "a memory file of Verilog has no end: FROM_VMEM or --from Vmem reads it"},
        {titxt, AfterEnd, 5, 0, Kind::WrongFormat, "TI-TXT: line 5 comes after the end"},
        {titxt, WordCut, 5, 2, Kind::WrongFormat,
         "TI-TXT: the data before line 5 does not end with a whole word of 2 bytes"},
        {vmem, WordUneven, 2, 3, Kind::WrongFormat,
         "VMEM: line 2 has a word of 3 digits, which are not whole bytes"},
        {vmem, WordsDiffer, 2, 4, Kind::WrongFormat,
         "VMEM: line 2 has a word of 4 digits, and the words before it have another number of "
         "them"},
        {vmem, BitsUnknown, 2, 0, Kind::WrongFormat,
         "VMEM: line 2 has a digit x or z, whose bits have no value"},
        {vmem, CommentOpen, 2, 0, Kind::WrongFormat,
         "VMEM: the comment that begins in line 2 does not end"},
        {dfuSe, MagicMissing, 0, 0, Kind::WrongFormat,
         "DfuSe: the mark of the format is missing at byte 0",
         "a DFU file that is not DfuSe has no addresses: FROM_FILE_BINARY or --from RawBinary "
         "reads it with its suffix of 16 bytes"},
        {dfuSe, LengthWrong, 6, 99, Kind::WrongFormat,
         "DfuSe: the length at byte 6 is 99, which is not that of the data after it"},
        {dfuSe, ChecksumWrong, 0x1A, 0x2B, Kind::RecordChecksum,
         "DfuSe: the checksum is 0x1a, the bytes of the file give 0x2b"},
    };
    std::vector<FactRow> list;
    for (const Row& row : rows)
        list.push_back(
            {FileMalformed{row.format, "f", row.fault, row.where, row.number},
             {{row.kind, std::string("f cannot be read as ") + row.text, anyInput, row.hint}}});
    return list;
}

std::vector<FactRow> imageRows() {
    constexpr Roles verified{Role::UsesCrc, Role::UsesHash, Role::UsesSignature,
                             Role::Bytes,   Role::String,   Role::UsesImage};
    return {
        {ImageNotAddressable{0xFFFFFFF0, 0x20},
         {{Kind::Outside,
           "an image of 0x20 bytes at 0xFFFFFFF0 passes the end of the address space", area}},
         refuses},
        {ImageTooLong{0x20000000, 0x10000000},
         {{Kind::Outside, "an image has less than 0x10000000 bytes, not 0x20000000", area,
           "an area is {start, length}"}},
         refuses},
        {MoveTooFar{0xFFFFFFF0, 0xFFFFFF00},
         {{Kind::Outside, "the image does not fit at 0xFFFFFFF0: its highest start is 0xFFFFFF00",
           area}},
         refuses},
        {FillPatternEmpty{},
         {{Kind::NoEffect,
           "there are no bytes, so nothing is done",
           {Role::Bytes, Role::Filler, Role::String, Role::UsesHash, Role::UsesSignature,
            Role::Area}}}},
        {FillStartOutside{0x300, 0x100, 0x200},
         {{Kind::Outside,
           "an area that begins at 0x00000300 does not lie in the image, which has the addresses "
           "0x00000100 to 0x000001FF",
           area}},
         refuses},
        {FillStartOutside{0x300, 0x100, 0x100},
         {{Kind::Outside,
           "an area that begins at 0x00000300 does not lie in the image, which has no addresses",
           area}},
         refuses},
        {ExtractStartOutside{0x300, 0x100, 0x101},
         {{Kind::Outside,
           "an area that begins at 0x00000300 does not lie in the image, which has the address "
           "0x00000100",
           area}},
         refuses},
        {FillTooLong{0x1F0, 0x20, 0x200},
         {{Kind::Outside,
           "0x20 bytes from 0x000001F0 on do not fit into the image, which ends before 0x00000200",
           area}},
         refuses},
        {ExtractTooLong{0x1F0, 0x20, 0x200},
         {{Kind::Outside,
           "0x20 bytes from 0x000001F0 on leave the image, which ends before 0x00000200", area}},
         refuses},
        {OverlapRefused{Subject::Buffer, "@a", "@b", 0x10, 0x20, true, 0x14, 0x01, 0xFE},
         {{Kind::Conflict,
           "@b has FE at 0x00000014, written before as 01, within the addresses 0x00000010 to "
           "0x0000001F",
           {Role::Overlap, Role::InputFile}}}},
        {OverlapRefused{Subject::Buffer, "@a", "@b", 0x10, 0x20, false, 0x10, 0, 0},
         {{Kind::Conflict,
           "@b writes the addresses 0x00000010 to 0x0000001F a second time, with equal bytes",
           {Role::Overlap},
           "-onOverlap=Same lets equal bytes pass"}}},
        {ImageDiffers{"@a", "", 0x14, 0x01, 0xFE, 1},
         {{Kind::Verify, "@a has 01 at 0x00000014 instead of FE", verified}}},
        {ImageDiffers{"@a", "@b", 0x14, 0x01, 0xFE, 2},
         {{Kind::Verify, "@a has 01 at 0x00000014 instead of FE, and 1 more byte differs",
           verified}}},
        {ImageDiffers{"@a", "", 0x14, std::nullopt, 0xFE, 1003},
         {{Kind::Verify,
           "@a does not have the address 0x00000014, where FE should be, and 1,002 more bytes "
           "differ",
           verified}}},
        {NothingCompared{"@a"},
         {{Kind::Verify, "nothing of @a is compared", {Role::Area, Role::UsesImage}}}},
        {NameNotFound{NameKind::Buffer, "@made"},
         {{Kind::UnknownName,
           "there is no @made: the statement that makes it failed",
           {},
           {},
           "@made"}}},
        {NameNotFound{NameKind::Buffer, "@none"}, {}},
        {StatementExhausted{Subject::Crc, "@c", Work::Created},
         {{Kind::OutOfMemory, "there is not enough memory for this statement", {}}}},
        {CrcParameterRefused{"@c", CrcParameter::Width},
         {{Kind::CrcParameter, "the width is not 1 to 64 bits", {Role::Type}}}},
        {CrcParameterRefused{"@c", CrcParameter::Polynomial},
         {{Kind::CrcParameter, "the polynomial has more bits than the width", {Role::Type}}}},
        {CrcParameterRefused{"@c", CrcParameter::Initial},
         {{Kind::CrcParameter, "the initial value has more bits than the width", {Role::Type}}}},
        {CrcParameterRefused{"@c", CrcParameter::FinalXor},
         {{Kind::CrcParameter, "the final xor has more bits than the width", {Role::Type}}}},
        {WordIncomplete{Subject::Hash, "@h", 7, 4},
         {{Kind::WordSize,
           "the data has 7 bytes, which is not a multiple of 4",
           {Role::WordSize}}}},
        {BusRefused{"@l", BusFault::WidthZero, 0, 2},
         {{Kind::Outside, "a lane of 0 bytes has nothing of the bus", bus}}},
        {BusRefused{"@l", BusFault::LanesZero, 0, 0},
         {{Kind::Outside, "a bus of 0 lanes has no byte", bus}}},
        {BusRefused{"@l", BusFault::LaneUnknown, 2, 2},
         {{Kind::Outside, "there is no lane 2 of 2: they are counted from 0", bus,
           "a lane is {which, of how many, bytes of each}"}}},
        {BusRefused{"@l", BusFault::RowTooLong, 0, 2},
         {{Kind::Outside, "the lanes have 2^32 bytes or more together", bus}}},
        {BusRefused{"@l", BusFault::ImagesFew, 0, 1},
         {{Kind::Outside, "there are not several images to interleave", bus,
           "the lanes of a bus are named by FROM_BUFFERS {@Even, @Odd}"}}},
        {AddressUnitRefused{Subject::Buffer, "@raw", "raw bytes"},
         {{Kind::Outside,
           "the addresses of raw bytes cannot count words",
           {Role::AddressUnit},
           "those of Intel HEX, S-records, TI-TXT and ELF can"}}},
        {AlignmentZero{"out"},
         {{Kind::Outside, "an end cannot be a multiple of 0", {Role::Alignment}}}},
        {ImageNotOfWords{Subject::File, "out", WordUse::AddressUnit, 1, 5, 2},
         {{Kind::WordSize,
           "the data from 0x00000001 to 0x00000004 does not begin and end with whole words of 2 "
           "bytes",
           {Role::AddressUnit},
           "-alignTo=2 fills up the words at the ends"}}},
    };
}

std::vector<FactRow> fileRows() {
    const char* const folder = "its folder does not exist";
    return {
        {RawFileTooLong{0xFFFFFFF, 0x10000000},
         {{Kind::Outside, "the file has more than 0xFFFFFFF bytes", input}},
         refuses},
        {FileReadIncomplete{"f"},
         {{Kind::ShortRead, "f could not be read completely", anyInput}},
         refuses},
        {FileSpanTooLong{0x100000001},
         {{Kind::Outside,
           "the range has 0x100000001 bytes, and 32 bits address 0x100000000 of them", input,
           "name a part of it with -useBufferRange={start, length}"}}},
        {FileNotOpened{"a.hex"}, {{Kind::CannotOpen, "cannot open a.hex: it broke", anyInput}}},
        {FileNotOpened{"inFile"},
         {{Kind::CannotOpen, "cannot open inFile: it broke", anyInput,
           "was the variable inFile given?"}}},
        {FileNotOpened{"a.hex;"},
         {{Kind::CannotOpen, "cannot open a.hex;: it broke", anyInput,
           "a statement has no semicolon at its end"}}},
        {FileNotOpened{"silent"},
         {{Kind::OutOfMemory, "there is not enough memory for silent", anyInput}}},
        {FileNotWritten{"out"}, {{Kind::CannotWrite, "cannot write out: it broke", output}}},
        {FileNotWritten{"nowhere/out"},
         {{Kind::CannotWrite, "cannot write nowhere/out: No such file or directory", output,
           folder}}},
        {FileNotWritten{"silent"},
         {{Kind::OutOfMemory, "there is not enough memory for silent", output}}},
        {FileWriteIncomplete{"out"},
         {{Kind::ShortWrite, "out could not be written completely: it broke", output}},
         refuses},
        {FileWriteIncomplete{"silent"},
         {{Kind::ShortWrite, "silent could not be written completely", output}},
         refuses},
        {RecordLengthCorrected{OutputFormat::IntelHex, 0, Bound::Minimum, 1},
         {{Kind::LengthCorrected,
           "a record has at least 1 data byte, which is used instead of 0",
           {Role::Format}}}},
        {RecordLengthCorrected{OutputFormat::MotorolaS, 99, Bound::Maximum, 32},
         {{Kind::LengthCorrected,
           "a record has at most 32 data bytes, which is used instead of 99",
           {Role::Format}}}},
        {AddressNotExpressible{0x12345, "out"},
         {{Kind::Outside, "Intel HEX cannot express the address 0x00012345 in this mode", output}},
         refuses},
        {RecordTypeUnknown{9}, {{Kind::Outside, "Intel HEX has no such record", output}}, refuses},
        {ImageBeyondSRecords{0xFFFFFFFF},
         {{Kind::Outside, "S-records cannot express addresses above 0xFFFFFFFF", output}},
         refuses},
        {TooManyBytes{OutputFormat::RawBinary, 0xFFFFFFF},
         {{Kind::Outside, "the images have more than 0xFFFFFFF bytes together", output}},
         refuses},
        {AddressBeyondFormat{"UF2", "out", 0xFFFFFFFF},
         {{Kind::Outside, "UF2 has no addresses above 0xFFFFFFFF", output}},
         refuses},
        {FormatNumberWrong{"VMEM", "out", 3, "a word has 1, 2, 4 or 8 bytes"},
         {{Kind::Outside,
           "VMEM does not take the number 3",
           {Role::Format},
           "a word has 1, 2, 4 or 8 bytes"}}},
        {FamiliesNotOfImages{"out", 2, 1},
         {{Kind::Outside,
           "there are 2 families for 1 image",
           {Role::Format},
           "give one family for all images, or one for each"}}},
        {HeaderTooLong{"out", 300, 252},
         {{Kind::TextSize, "the header has 300 bytes, and its record takes 252", {Role::Header}}}},
        {GapsNotExpressible{"RawBinary", "out"},
         {{Kind::Outside,
           "RawBinary has no addresses, so it cannot skip unwritten ones",
           {Role::Gaps, Role::ShortGaps},
           "choose a format with addresses, or leave the option out"}}},
        {ElfTemplateUnfit{"app.elf", TemplateFault::SegmentsShared, 0x100, 0x180},
         {{Kind::WrongFormat,
           "the segments of app.elf at 0x00000100 and 0x00000180 share bytes",
           {Role::Template}}}},
        {SectionUnfit{"app.elf", ".txt", SectionFault::Unknown, ".data\n.text\n"},
         {{Kind::UnknownName, "app.elf has no section .txt", {}, "did you mean .text?", ".txt"}}},
        {SectionUnfit{"app.elf", ".stack", SectionFault::Unknown, ".data\n"},
         {{Kind::UnknownName, "app.elf has no section .stack", {}, "", ".stack"}}},
        {SectionUnfit{"app.elf", ".bss", SectionFault::NotLoaded, ".data\n"},
         {{Kind::Outside,
           "the section .bss of app.elf has no bytes that are loaded",
           {},
           {},
           ".bss"}}},
        {ImageWithout{"@a", ImageLack::Addresses},
         {{Kind::EmptyImage, "@a has no addresses here", {}, {}, "@a"}}},
        {ImageWithout{"@a", ImageLack::Bytes},
         {{Kind::EmptyImage, "nothing wrote a byte to @a", {}, {}, "@a"}}},
        {SymbolUnfit{"app.elf", "mian", SymbolFault::Missing, 0, "main\ntable\n"},
         {{Kind::UnknownName, "app.elf has no symbol mian", {}, "did you mean main?", "mian"}}},
        {SymbolUnfit{"app.elf", "main", SymbolFault::Missing, 0, ""},
         {{Kind::UnknownName,
           "app.elf has no symbol main",
           {},
           "it has no symbols at all: was it stripped?",
           "main"}}},
        {SymbolUnfit{"app.elf", "main", SymbolFault::Missing, 0, "table\n"},
         {{Kind::UnknownName, "app.elf has no symbol main", {}, "", "main"}}},
        {SymbolUnfit{"app.elf", "main", SymbolFault::Several, 0, ""},
         {{Kind::UnknownName, "app.elf has several symbols main", {}, "", "main"}}},
        {SymbolUnfit{"app.elf", "main", SymbolFault::TooWide, 0x123456789, ""},
         {{Kind::Outside,
           "the address of main, 0x123456789, has more than 32 bits",
           {},
           "",
           "main"}}},
        {FamilyUnfit{"a.uf2", FamilyFault::Shared, 0, 0x100, "RP2040 (0xE48BFF56), 0x00000001"},
         {{Kind::WrongFormat,
           "a.uf2 has bytes of several families for 0x00000100",
           {Role::InputFile},
           "choose one of RP2040 (0xE48BFF56), 0x00000001 by -useFamily in a script, or by "
           "--family"}}},
        {FamilyUnfit{"a.uf2", FamilyFault::Unknown, 2, 0, "0x00000001"},
         {{Kind::UnknownName,
           "a.uf2 has no blocks for the family 0x00000002",
           {Role::Family},
           "it has some for 0x00000001"}}},
        {FamilyUnfit{"a.uf2", FamilyFault::Unknown, 2, 0, ""},
         {{Kind::UnknownName,
           "a.uf2 has no blocks for the family 0x00000002",
           {Role::Family},
           "its blocks name no family"}}},
        {FamilyUnfit{"", FamilyFault::NoFamilies, 2, 0, ""},
         {{Kind::Outside,
           "only a UF2 file that is read by FROM_UF2 has families",
           {Role::Family}}}},
        {SectionUnfit{"", ".bss", SectionFault::NoSections, ""},
         {{Kind::Outside,
           "only an ELF file that is read by FROM_ELF has sections",
           {},
           {},
           ".bss"}}},
        {ProgramEnded{"sign", 0}, {}},
        {ProgramEnded{"sign", 3}, {{Kind::CallFailed, "sign ended with code 3", {Role::Program}}}},
        {ProgramEnded{"sign", 126}, {{Kind::CallFailed, "sign cannot be run", {Role::Program}}}},
        {ProgramEnded{"sign", 127}, {{Kind::CallFailed, "sign was not found", {Role::Program}}}},
        {ProgramEnded{"sign", -1},
         {{Kind::CallFailed, "sign could not be started: it broke", {Role::Program}}}},
        {ProgramEnded{"silent", -1},
         {{Kind::CallFailed, "silent could not be started", {Role::Program}}}},
    };
}

std::vector<FactRow> signatureRows() {
    using enum KeyFault;
    const auto refused = [](KeyFault fault, const char* text, const char* hint = "") {
        return FactRow{KeyRefused{"k.pem", "Ed25519", fault}, {{Kind::Key, text, key, hint}}};
    };
    return {
        {KeyRefused{"", "Ed25519", NotGiven}, {}},
        {KeyRefused{"k.pem", "", NoType}, {}},
        refused(NotAKey,
                "the key k.pem is not a sound key in PEM, or of an unknown algorithm or curve"),
        refused(WrongType, "the key k.pem is not one for Ed25519"),
        refused(Public, "the key k.pem is public, and only a private key signs"),
        refused(Encrypted, "the key k.pem is encrypted",
                "--passphrase-file FILE gives its passphrase"),
        refused(PassphraseWrong,
                "the key k.pem cannot be decrypted: the passphrase is wrong, or the file is "
                "damaged"),
        refused(EncryptionUnknown,
                "the key k.pem is encrypted in another way than by PBES2 with AES or 3DES",
                "openssl pkcs8 -topk8 writes such a key, or one that is not encrypted"),
        refused(Size, "the key k.pem has fewer than 2048 or more than 4096 bits"),
        refused(NotSupported, "this program was built without signatures"),
        {KeyReadable{"k.pem"},
         {{Kind::KeyReadable, "others than its owner may read the private key k.pem", key,
           "chmod go= k.pem"}}},
        {SignatureWrong{"@Sig", "k.pem"},
         {{Kind::Signature,
           "@Sig is not the signature of these bytes by the key k.pem",
           {Role::UsesSignature}}}},
    };
}

/// What is reported elsewhere, or is printed.
std::vector<FactRow> silentRows() {
    return {{ReadRangeOutside{}, {}},   {TextFileEmpty{}, {}},
            {LastLineMismatched{}, {}}, {RecordContradictory{}, {}},
            {LineNotARecord{}, {}},     {RecordCountTooLow{}, {}},
            {DataSpanTooLong{}, {}},    {FieldFact{}, {}},
            {ScriptNotOpened{}, {}},    {VariableRejected{}, {}},
            {ScriptNotPrepared{}, {}},  {SyntaxError{}, {}},
            {RunEnded{}, {}},           {BufferPrinted{}, {}},
            {ContentPrinted{}, {}},     {CrcPrinted{}, {}},
            {HashPrinted{}, {}},        {SignaturePrinted{}, {}},
            {TextPrinted{}, {}},        {ProgramCalled{}, {}}};
}

void expectWords(const FactRow& row, OptionsOf options = OptionsOf::Statements) {
    const std::string what = row.words ? row.words->text : std::to_string(row.fact.index());
    EXPECT_EQ(isRefusal(row.fact), row.isRefusal) << what;
    const auto words = wordsFor(row.fact, circumstances(options));
    ASSERT_EQ(words.has_value(), row.words.has_value()) << what;
    if (!words) return;
    EXPECT_EQ(words->text, what);
    EXPECT_STREQ(nameOf(words->kind), nameOf(row.words->kind)) << what;
    EXPECT_EQ(words->roles, row.words->roles) << what;
    EXPECT_EQ(words->hint, row.words->hint) << what;
    EXPECT_EQ(words->name, row.words->name) << what;
}

TEST(FactWordsTest, EveryFactHasItsKindItsWordsAndThePartToBlame) {
    std::set<std::size_t> facts;
    std::set<FormatFault> faults;
    for (const auto& rows :
         {imageRows(), fileRows(), malformedRows(), signatureRows(), silentRows()})
        for (const FactRow& row : rows) {
            expectWords(row);
            facts.insert(row.fact.index());
            if (const auto* const malformed = std::get_if<FileMalformed>(&row.fact))
                faults.insert(malformed->fault);
        }
    EXPECT_EQ(facts.size(), std::variant_size_v<Fact>) << "each fact has a row";
    EXPECT_EQ(faults.size(), static_cast<std::size_t>(FormatFault::ChecksumWrong) + 1);
}

TEST(FactWordsTest, AdviceNamesOptionsThatTheCommandHas) {
    using enum OptionsOf;
    struct Row {
        Fact fact;
        OptionsOf options;
        const char* hint;
    };
    const OverlapRefused words{Subject::Buffer, "@a", "in.elf", 0, 4, true, 0, 1, 2, 4};
    const ElfTemplateUnfit elf{"in.elf", TemplateFault::ByteOutside, 0, 4, 2};
    const ImageNotOfWords file{Subject::File, "out", WordUse::AddressUnit, 1, 5, 2};
    const ImageNotOfWords image{Subject::Buffer, "@a", WordUse::SwappedBytes, 1, 5, 2};
    for (const Row& row : {
             Row{words, Statements, "-setAddressUnit=4 reads it"},
             Row{words, Convert, "--unit-in 4 reads it"},
             Row{words, Inspection, "tessaron convert --unit-in 4 reads it"},
             Row{elf, Statements, "-setAddressUnit=2 writes it"},
             Row{elf, Convert, "--unit-out 2 writes it"},
             Row{file, Convert, "--fill BYTE with --align 2 fills up the words at the ends"},
             Row{image, Convert, "--crop START,LENGTH keeps whole words"},
             Row{FileSpanTooLong{0x100000001}, Convert, "--crop START,LENGTH keeps a part of it"},
             Row{FileNotOpened{"inFile"}, Convert, ""},
             Row{FileNotOpened{"inFile"}, Inspection, ""},
         }) {
        const auto found = wordsFor(row.fact, circumstances(row.options));
        ASSERT_TRUE(found) << row.hint;
        EXPECT_EQ(found->hint, row.hint);
    }
}

TEST(NumbersInWordsTest, ReadAsPeopleWriteThem) {
    using namespace Inspect;
    struct Row {
        std::uint64_t number;
        const char* size;
        const char* count;
        const char* address;
        const char* hex;
    };
    for (const Row& row : {
             Row{0, "0 bytes", "0 bytes", "0x00000000", "0x0"},
             Row{1, "1 byte", "1 byte", "0x00000001", "0x1"},
             Row{999, "999 bytes", "999 bytes", "0x000003E7", "0x3E7"},
             Row{1023, "1,023 bytes", "1,023 bytes", "0x000003FF", "0x3FF"},
             Row{1024, "1.0 KiB", "1,024 bytes", "0x00000400", "0x400"},
             Row{1535, "1.4 KiB", "1,535 bytes", "0x000005FF", "0x5FF"},
             Row{1536, "1.5 KiB", "1,536 bytes", "0x00000600", "0x600"},
             Row{0xFFFFF, "1,023.9 KiB", "1,048,575 bytes", "0x000FFFFF", "0xFFFFF"},
             Row{0x100000, "1.0 MiB", "1,048,576 bytes", "0x00100000", "0x100000"},
             Row{0x123456789, "4,660.3 MiB", "4,886,718,345 bytes", "0x123456789", "0x123456789"},
         }) {
        EXPECT_EQ(sizeText(row.number), row.size);
        EXPECT_EQ(countText(row.number, "byte"), row.count);
        EXPECT_EQ(addressText(row.number), row.address);
        EXPECT_EQ(hexText(row.number), row.hex);
    }
    EXPECT_EQ(addressesText({16, 0}), "no addresses");
    EXPECT_EQ(addressesText({16, 1}), "the address 0x00000010");
    EXPECT_EQ(addressesText({16, 2}), "the addresses 0x00000010 to 0x00000011");
    EXPECT_EQ(linesText(3, 3), "line 3");
    EXPECT_EQ(linesText(3, 1024), "lines 3 to 1,024");
}

struct FieldRow {
    FieldFact fact;
    FieldWords words;
};

/// A fault of line 7.
struct FaultRow {
    RecordFault fault;
    std::uint64_t found, expected;
    Kind kind;
    const char* text;
    InputFormat format = InputFormat::IntelHex;
};

const std::vector<FaultRow>& faultRows() {
    using enum RecordFault;
    constexpr auto motorola = InputFormat::MotorolaS;
    static const std::vector<FaultRow> rows{
        {NotARecord, 0, 0, Kind::RecordLine, "the line is not a record"},
        {WordCut, 3, 2, Kind::RecordLength,
         "the record has 3 data bytes, not a whole number of words of 2"},
        {ForeignText, 0x1A, 6, Kind::RecordLine,
         "text goes on after the byte 1A at the end of line 6"},
        {OtherFormat, 0, 0, Kind::WrongFormat, "an S-record in a file of Intel HEX"},
        {OtherFormat, 0, 0, Kind::WrongFormat, "a record of Intel HEX in a file of S-records",
         motorola},
        {Digit, 'G', 3, Kind::RecordDigit, "G is not a hexadecimal digit"},
        {Digit, ' ', 3, Kind::RecordDigit, "the byte 20 is not a hexadecimal digit"},
        {Digit, 0x7F, 3, Kind::RecordDigit, "the byte 7F is not a hexadecimal digit"},
        {Digits, 11, 12, Kind::RecordLength, "the record's count gives 12 digits, the line has 11"},
        {Digits, 2, 1, Kind::RecordLength, "the record's count gives 1 digit, the line has 2"},
        {CountTooLow, 2, 3, Kind::RecordLength, "count is 2, a record of this type has at least 3",
         motorola},
        {DataSize, 1, 2, Kind::RecordLength, "the record has 1 data byte, one of this type has 2"},
        {DataSize, 3, 2, Kind::RecordLength, "the record has 3 data bytes, one of this type has 2"},
        {Checksum, 0x0F, 0xF0, Kind::RecordChecksum, "checksum is 0F, the record's bytes give F0"},
        {Type, 6, 0, Kind::RecordType, "Intel HEX has no record of type 06"},
        {Type, '4', 0, Kind::RecordType, "there is no S-record of type 4", motorola},
        {Type, 's', 0, Kind::RecordType, "an S-record begins with S, not with s", motorola},
        {Address, 0x10, 0, Kind::RecordAddress,
         "the address field is 0x10, in a record of this type it is 0"},
        {AddressSpace, 0xFFFFFFFF, 0, Kind::RecordAddress,
         "the data from 0xFFFFFFFF on goes beyond 0xFFFFFFFF"},
        {AfterEnd, 1, 0, Kind::AfterEnd, "1 data byte after the end record"},
        {AfterEnd, 16, 0, Kind::AfterEnd, "16 data bytes after the end record"},
        {RecordCount, 3, 1, Kind::RecordCount, "count is 3, the file has 1 data record before it",
         motorola},
        {RecordCount, 3, 2, Kind::RecordCount, "count is 3, the file has 2 data records before it",
         motorola},
        {InRemark, 0, 0, Kind::RecordLine,
         "the remark is a whole record: take the line out, or its mark"},
    };
    return rows;
}

struct ToleranceRow {
    Tolerance tolerance;
    std::uint64_t count;
    const char* text;
};

const std::vector<ToleranceRow>& toleranceRows() {
    using enum Tolerance;
    static const std::vector<ToleranceRow> rows{
        {BlankLine, 1, "1 blank line"},
        {BlankLine, 2, "2 blank lines, this is the first"},
        {TrailingBlank, 1, "1 line has blanks at the end"},
        {TrailingBlank, 2, "2 lines have blanks at the end"},
        {LoneReturn, 1, "1 line ends with a carriage return alone"},
        {LoneReturn, 2, "2 lines end with a carriage return alone"},
        {TextEndMark, 1, "bytes 1A at the end of the text"},
        {NulBytes, 1, "zero bytes at the end of the text"},
        {LowerCase, 1, "1 record has lower-case digits"},
        {LowerCase, 2, "2 records have lower-case digits"},
        {Utf8Mark, 1, "the file begins with a byte order mark"},
        {Remark, 1, "1 line is a remark"},
        {Remark, 2, "2 lines are remarks"},
        {SymbolTable, 1, "1 line of a symbol table"},
        {SymbolTable, 2, "2 lines of a symbol table"},
        {SegmentBorder, 1,
         "1 record goes on upward after the highest address that its field can express"},
        {SegmentBorder, 2,
         "2 records go on upward after the highest address that its field can express"},
        {RecordAfterEnd, 1, "1 record without data after the end record"},
        {RecordAfterEnd, 2, "2 records without data after the end record"},
        {EndAddress, 1, "the end record has an address, which is not used"},
    };
    return rows;
}

std::vector<FieldRow> fieldRows() {
    constexpr auto hex = InputFormat::IntelHex;
    constexpr auto motorola = InputFormat::MotorolaS;
    const char* const pass = "if it is complete, --warn no-end lets it pass";
    std::vector<FieldRow> rows{
        {LinesDamaged{"f", RecordFault::Checksum, 1},
         {Kind::RecordChecksum, "1 more line of f is damaged", "", "f"}},
        {LinesDamaged{"f", RecordFault::Type, 2},
         {Kind::RecordType, "2 more lines of f are damaged", "", "f", 0, 0, {}, 2}},
        {EndMissing{"f", hex},
         {Kind::NoEnd, "f has no end-of-file record; it may have been cut off", pass, "f"}},
        {EndMissing{"f", motorola},
         {Kind::NoEnd, "f has no S7, S8 or S9 record; it may have been cut off", pass, "f"}},
        {FormatForeign{"f", {}},
         {Kind::WrongFormat, "f has no record of Intel HEX and no S-record",
          "FROM_FILE_BINARY takes a file byte for byte", "f"}},
        {FormatForeign{"f", {}, "a source file of C"},
         {Kind::WrongFormat, "f is a source file of C",
          "FROM_FILE_BINARY takes a file byte for byte", "f"}},
        {FormatForeign{"f", InputFormat::Uf2},
         {Kind::WrongFormat, "f has the format UF2", "use FROM_UF2", "f"}},
        {StartAddressesDiffer{"f", 0x100, 2, 0x200, 9},
         {Kind::StartAddress, "a second start address, 0x00000200: line 2 names 0x00000100", "",
          "f", 9}},
        {RecordsOverlap{"f", 0x10, 0x11, 2, 9},
         {Kind::Overlap, "the address 0x00000010 again, with the same bytes as from line 2 on", "",
          "f", 9}},
        {RecordsConflict{"f", 0x10, 0x20, 0x14, 0x0A, 2, 0xB0, 9},
         {Kind::Conflict,
          "other bytes for the addresses 0x00000010 to 0x0000001F: 0x00000014 is 0A in line 2 and "
          "B0 in this one",
          "", "f", 9}},
        {FurtherOverlaps{"f", true, 1},
         {Kind::Conflict, "1 more range of f with other bytes", "", "f"}},
        {FurtherOverlaps{"f", false, 2},
         {Kind::Overlap, "2 more ranges of f with the same bytes again", "", "f", 0, 0, {}, 2}},
        {AddressesCountWords{"f", 2},
         {Kind::Conflict,
          "the addresses of f count words of 2 bytes, so that as addresses of bytes they overlap",
          "-setAddressUnit=2 reads it", "f"}},
    };
    for (const FaultRow& row : faultRows()) {
        // The digit is the only fault with a place in its line.
        const std::size_t column = row.fault == RecordFault::Digit ? 3 : 0;
        rows.push_back({LineDamaged{"f", row.format, 7, "LINE", row.fault, row.found, row.expected},
                        {row.kind, row.text, "", "f", 7, column, "LINE"}});
    }
    for (const ToleranceRow& row : toleranceRows())
        rows.push_back({LinesTolerated{"f", row.tolerance, row.count, 7},
                        {Kind::Tolerated, row.text, "", "f", 7}});
    return rows;
}

TEST(FieldWordsTest, EveryFactHasItsKindItsWordsAndItsPlace) {
    std::set<std::size_t> facts;
    for (const auto& [fact, wanted] : fieldRows()) {
        const FieldWords words = wordsFor(fact, OptionsOf::Statements);
        EXPECT_EQ(words.text, wanted.text);
        EXPECT_STREQ(nameOf(words.kind), nameOf(wanted.kind)) << wanted.text;
        EXPECT_EQ(words.hint, wanted.hint) << wanted.text;
        EXPECT_EQ(words.file, wanted.file) << wanted.text;
        EXPECT_EQ(words.line, wanted.line) << wanted.text;
        EXPECT_EQ(words.column, wanted.column) << wanted.text;
        EXPECT_EQ(words.excerpt, wanted.excerpt) << wanted.text;
        EXPECT_EQ(words.count, wanted.count) << wanted.text;
        facts.insert(fact.index());
    }
    EXPECT_EQ(facts.size(), std::variant_size_v<FieldFact>) << "each fact has a row";
    std::set<RecordFault> faults;
    for (const FaultRow& row : faultRows()) faults.insert(row.fault);
    EXPECT_EQ(faults.size(), static_cast<std::size_t>(RecordFault::WordCut) + 1);
    std::set<Tolerance> tolerances;
    for (const ToleranceRow& row : toleranceRows()) tolerances.insert(row.tolerance);
    EXPECT_EQ(tolerances.size(), toleranceCount);
}

TEST(FieldWordsTest, AdviceNamesOptionsThatTheCommandHas) {
    const auto hint = [](const FieldFact& fact, OptionsOf options) {
        return wordsFor(fact, options).hint;
    };
    for (const OptionsOf options : {OptionsOf::Convert, OptionsOf::Inspection}) {
        const std::string convert = options == OptionsOf::Convert ? "" : "tessaron convert ";
        EXPECT_EQ(hint(AddressesCountWords{"f", 2}, options), convert + "--unit-in 2 reads it");
        EXPECT_EQ(hint(FormatForeign{"f", {}}, options),
                  "--from RawBinary takes a file byte for byte");
        EXPECT_EQ(hint(FormatForeign{"f", {}, "a source file of C"}, options),
                  "--from RawBinary takes a file byte for byte");
        EXPECT_EQ(hint(FormatForeign{"f", InputFormat::TiTxt}, options), "use --from TiTxt");
    }
}

}  // namespace
}  // namespace Strict
