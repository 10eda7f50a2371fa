#include "strict/diagnostics/FactWords.hpp"

#include <array>
#include <cstddef>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>

#include "facts/FormatFaultWords.hpp"
#include "inspect/Words.hpp"
#include "io/formats/InputFormats.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Facts;
using Inspect::addressesText;
using Inspect::addressText;
using Inspect::hexText;
using Parser::Role;
using Parser::Roles;
using Words = std::optional<FactWords>;

/// The parts that name a file to read.
constexpr Roles anyInput{Role::InputFile, Role::Template, Role::SymbolFile, Role::KeyFile};

/// The parts that say which addresses a statement works on.
constexpr Roles anyArea{Role::Area, Role::Range, Role::Address};

/// How a program ended that did not end well.
std::string outcome(int status) {
    constexpr int notRunnable = 126;
    constexpr int notFound = 127;
    if (status < 0) return " could not be started";
    if (status == notFound) return " was not found";
    if (status == notRunnable) return " cannot be run";
    return " ended with code " + std::to_string(status);
}

/// ": " and the reason, if there is one.
std::string afterColon(const std::string& reason) {
    return reason.empty() ? "" : ": " + reason;
}

/// What may be wrong with the name of a file that cannot be opened.
std::string adviceOn(std::string_view file) {
    if (!file.empty() && file.find_first_of("./\\") == std::string_view::npos)
        return "was the variable " + std::string(file) + " given?";
    if (file.ends_with(';')) return "a statement has no semicolon at its end";
    const bool isForeign =
        file.find('\\') != std::string_view::npos && Platform::pathSeparator != '\\';
    return isForeign ? "write / between folders" : "";
}

Words words(const ImageNotAddressable& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "an image of " + hexText(f.length) + " bytes at " + addressText(f.start) +
                 " passes the end of the address space",
             anyArea}};
}

Words words(const ImageTooLong& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "an image has less than " + hexText(f.limit) + " bytes, not " + hexText(f.length),
             anyArea, "an area is {start, length}"}};
}

Words words(const MoveTooFar& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "the image does not fit at " + addressText(f.start) + ": its highest start is " +
                 addressText(f.highestStart),
             anyArea}};
}

Words words(const FillPatternEmpty& /*f*/, const Circumstances& /*c*/) {
    return {{Kind::NoEffect,
             "there are no bytes, so nothing is done",
             {Role::Bytes, Role::Filler, Role::String, Role::UsesHash, Role::UsesSignature,
              Role::Area}}};
}

/// What filling and extracting say alike.
template <class Fact>
Words startOutside(const Fact& f) {
    return {{Kind::Outside,
             "an area that begins at " + addressText(f.start) +
                 " does not lie in the image, which has " +
                 addressesText({f.imageStart, f.imageEnd - f.imageStart}),
             anyArea}};
}

Words words(const FillStartOutside& f, const Circumstances& /*c*/) {
    return startOutside(f);
}

Words words(const ExtractStartOutside& f, const Circumstances& /*c*/) {
    return startOutside(f);
}

Words words(const FillTooLong& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             hexText(f.length) + " bytes from " + addressText(f.start) +
                 " on do not fit into the image, which ends before " + addressText(f.imageEnd),
             anyArea}};
}

Words words(const ExtractTooLong& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             hexText(f.length) + " bytes from " + addressText(f.start) +
                 " on leave the image, which ends before " + addressText(f.imageEnd),
             anyArea}};
}

Words words(const RawFileTooLong& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "the file has more than " + hexText(f.mostBytes) + " bytes",
             {Role::InputFile}}};
}

/// What a file may be that is not of the format as which it was read, or nothing.
std::string likelierFormat(const FileMalformed& f) {
    using enum Facts::InputFormat;
    // Words of one byte look the same in both formats.
    if (f.format == TiTxt && f.fault == FormatFault::EndMissing)
        return "a memory file of Verilog has no end: FROM_VMEM or --from Vmem reads it";
    // The suffix of USB Device Firmware Upgrade 1.1 makes a file a DFU file.
    if (f.format == DfuSe && f.fault == FormatFault::MagicMissing)
        return "a DFU file that is not DfuSe has no addresses: FROM_FILE_BINARY or --from "
               "RawBinary reads it with its suffix of 16 bytes";
    return "";
}

Words words(const FileMalformed& f, const Circumstances& /*c*/) {
    const Kind kind = f.fault == FormatFault::EndMissing      ? Kind::NoEnd
                      : f.fault == FormatFault::NothingToLoad ? Kind::EmptyImage
                      : f.fault == FormatFault::ChecksumWrong ? Kind::RecordChecksum
                                                              : Kind::WrongFormat;
    return {{kind,
             std::string(f.file) + " cannot be read as " +
                 std::string(Io::Formats::rowOf(f.format).name) + ": " + textOf(f),
             anyInput, likelierFormat(f)}};
}

Words words(const FileReadIncomplete& f, const Circumstances& /*c*/) {
    return {{Kind::ShortRead, std::string(f.file) + " could not be read completely", anyInput}};
}

Words words(const RecordLengthCorrected& f, const Circumstances& /*c*/) {
    const bool isMinimum = f.bound == Bound::Minimum;
    return {{Kind::LengthCorrected,
             "a record has at " + std::string(isMinimum ? "least " : "most ") +
                 Inspect::countText(f.allowed, "data byte") + ", which is used instead of " +
                 std::to_string(f.length),
             {Role::Format}}};
}

Words words(const AddressNotExpressible& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "Intel HEX cannot express the address " + addressText(f.address) + " in this mode",
             {Role::OutputFile}}};
}

Words words(const RecordTypeUnknown& /*f*/, const Circumstances& /*c*/) {
    return {{Kind::Outside, "Intel HEX has no such record", {Role::OutputFile}}};
}

Words words(const ImageBeyondSRecords& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "S-records cannot express addresses above " + addressText(f.highestAddress),
             {Role::OutputFile}}};
}

Words words(const TooManyBytes& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "the images have more than " + hexText(f.mostBytes) + " bytes together",
             {Role::OutputFile}}};
}

Words words(const GapsNotExpressible& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             std::string(f.format) + " has no addresses, so it cannot skip unwritten ones",
             {Role::Gaps, Role::ShortGaps},
             "choose a format with addresses, or leave the option out"}};
}

Words words(const AddressBeyondFormat& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             std::string(f.format) + " has no addresses above " + addressText(f.highest),
             {Role::OutputFile}}};
}

Words words(const FormatNumberWrong& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             std::string(f.format) + " does not take the number " + std::to_string(f.number),
             {Role::Format},
             std::string(f.allowed)}};
}

Words words(const FamiliesNotOfImages& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "there are " + std::to_string(f.families) + " families for " +
                 Inspect::countText(f.images, "image"),
             {Role::Format},
             "give one family for all images, or one for each"}};
}

Words words(const HeaderTooLong& f, const Circumstances& /*c*/) {
    return {{Kind::TextSize,
             "the header has " + std::to_string(f.length) + " bytes, and its record takes " +
                 std::to_string(f.longest),
             {Role::Header}}};
}

/// The lines of a text.
std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return lines;
}

Words words(const SectionUnfit& f, const Circumstances& c) {
    const std::string file(f.file);
    const std::string section(f.section);
    if (f.fault == SectionFault::NoSections)
        return {{Kind::Outside,
                 c.isScript() ? "only an ELF file that is read by FROM_ELF has sections"
                              : "only an ELF file has sections",
                 {},
                 {},
                 section}};
    if (f.fault == SectionFault::NotLoaded)
        return {{Kind::Outside,
                 "the section " + section + " of " + file + " has no bytes that are loaded",
                 {},
                 {},
                 section}};
    const auto close = nearest(section, linesOf(f.known));
    return {{Kind::UnknownName,
             file + " has no section " + section,
             {},
             close ? "did you mean " + *close + "?" : "",
             section}};
}

Words words(const FamilyUnfit& f, const Circumstances& /*c*/) {
    const std::string file(f.file);
    const std::string known(f.known);
    if (f.fault == FamilyFault::NoFamilies)
        return {{Kind::Outside,
                 "only a UF2 file that is read by FROM_UF2 has families",
                 {Role::Family}}};
    if (f.fault == FamilyFault::Unknown)
        return {{Kind::UnknownName,
                 file + " has no blocks for the family " + addressText(f.family),
                 {Role::Family},
                 known.empty() ? "its blocks name no family" : "it has some for " + known}};
    return {{Kind::WrongFormat,
             file + " has bytes of several families for " + addressText(f.address),
             {Role::InputFile},
             "choose one of " + known + " by -useFamily in a script, or by --family"}};
}

Words words(const ElfTemplateUnfit& f, const Circumstances& c) {
    const std::string file(f.file);
    const std::string range = addressesText({f.start, f.end - f.start});
    if (f.likelyUnit != 1) {
        const std::string unit = std::to_string(f.likelyUnit);
        return {{Kind::WrongFormat,
                 "the addresses of " + file + " count words of " + unit +
                     " bytes, and as addresses of bytes they do not fit the images",
                 {Role::Template},
                 (c.isScript() ? "-setAddressUnit=" : "--unit-out ") + unit + " writes it"}};
    }
    if (f.fault == TemplateFault::ByteOutside)
        return {{Kind::Outside,
                 "no segment of " + file + " has " + range + ", which the images have",
                 {Role::Template},
                 "is it the ELF file of these images?"}};
    if (f.fault == TemplateFault::ByteMissing)
        return {{Kind::Outside,
                 file + " loads " + range + ", which no image has",
                 {Role::Template},
                 c.isScript() ? "-skipUnwritten keeps the bytes of the file there" : ""}};
    return {{Kind::WrongFormat,
             "the segments of " + file + " at " + addressText(f.start) + " and " +
                 addressText(f.end) + " share bytes",
             {Role::Template}}};
}

Words words(const FileWriteIncomplete& f, const Circumstances& c) {
    return {
        {Kind::ShortWrite,
         std::string(f.file) + " could not be written completely" + afterColon(c.reason(f.file)),
         {Role::OutputFile}}};
}

/// A name that no statement makes was reported before the run.
Words words(const NameNotFound& f, const Circumstances& c) {
    if (!c.isMade(f.name)) return std::nullopt;
    return {{Kind::UnknownName,
             "there is no " + std::string(f.name) + ": the statement that makes it failed",
             {},
             {},
             std::string(f.name)}};
}

Words words(const ImageWithout& f, const Circumstances& /*c*/) {
    const std::string image(f.image);
    if (f.lack == ImageLack::Addresses)
        return {{Kind::EmptyImage, image + " has no addresses here", {}, {}, image}};
    return {{Kind::EmptyImage, "nothing wrote a byte to " + image, {}, {}, image}};
}

Words words(const SymbolUnfit& f, const Circumstances& /*c*/) {
    const std::string file(f.file);
    const std::string symbol(f.symbol);
    if (f.fault == SymbolFault::Several)
        return {{Kind::UnknownName, file + " has several symbols " + symbol, {}, {}, symbol}};
    if (f.fault == SymbolFault::TooWide)
        return {
            {Kind::Outside,
             "the address of " + symbol + ", " + addressText(f.address) + ", has more than 32 bits",
             {},
             {},
             symbol}};
    const auto names = linesOf(f.known);
    const auto close = nearest(symbol, names);
    return {{Kind::UnknownName,
             file + " has no symbol " + symbol,
             {},
             close           ? "did you mean " + *close + "?"
             : names.empty() ? "it has no symbols at all: was it stripped?"
                             : "",
             symbol}};
}

Words words(const OverlapRefused& f, const Circumstances& c) {
    const std::string range = addressesText({f.start, f.end - f.start});
    if (f.likelyUnit != 1) {
        const std::string unit = std::to_string(f.likelyUnit);
        return {{Kind::Conflict,
                 "the addresses of " + std::string(f.source) + " count words of " + unit +
                     " bytes, so that as addresses of bytes they overlap",
                 {Role::InputFile},
                 adviceOnUnit(f.likelyUnit, c.options)}};
    }
    if (!f.isDifferent)
        return {{Kind::Conflict,
                 std::string(f.source) + " writes " + range + " a second time, with equal bytes",
                 {Role::Overlap},
                 "-onOverlap=Same lets equal bytes pass"}};
    return {{Kind::Conflict,
             std::string(f.source) + " has " + Util::hexByte(f.later) + " at " +
                 addressText(f.address) + ", written before as " + Util::hexByte(f.earlier) +
                 ", within " + range,
             {Role::Overlap, Role::InputFile}}};
}

Words words(const ImageDiffers& f, const Circumstances& /*c*/) {
    const std::string address = addressText(f.address);
    const std::string image(f.image);
    std::string text = f.found ? image + " has " + Util::hexByte(*f.found) + " at " + address +
                                     " instead of " + Util::hexByte(f.wanted)
                               : image + " does not have the address " + address + ", where " +
                                     Util::hexByte(f.wanted) + " should be";
    if (f.count > 1)
        text += ", and " + Inspect::countText(f.count - 1, "more byte") +
                (f.count == 2 ? " differs" : " differ");
    return {{Kind::Verify,
             std::move(text),
             {Role::UsesCrc, Role::UsesHash, Role::UsesSignature, Role::Bytes, Role::String,
              Role::UsesImage}}};
}

Words words(const NothingCompared& f, const Circumstances& /*c*/) {
    return {{Kind::Verify,
             "nothing of " + std::string(f.image) + " is compared",
             {Role::Area, Role::UsesImage}}};
}

Words words(const StatementExhausted& /*f*/, const Circumstances& /*c*/) {
    return {{Kind::OutOfMemory, "there is not enough memory for this statement", {}}};
}

Words words(const CrcParameterRefused& f, const Circumstances& /*c*/) {
    constexpr std::array names{"", "polynomial", "initial value", "final xor"};
    if (f.parameter == CrcParameter::Width)
        return {{Kind::CrcParameter, "the width is not 1 to 64 bits", {Role::Type}}};
    return {{Kind::CrcParameter,
             std::string("the ") + names.at(static_cast<std::size_t>(f.parameter)) +
                 " has more bits than the width",
             {Role::Type}}};
}

Words words(const WordIncomplete& f, const Circumstances& /*c*/) {
    return {{Kind::WordSize,
             "the data has " + std::to_string(f.length) + " bytes, which is not a multiple of " +
                 std::to_string(f.wordSize),
             {f.isOfType ? Role::Type : Role::WordSize}}};
}

Words words(const BusRefused& f, const Circumstances& /*c*/) {
    constexpr Roles bus{Role::Lane, Role::Interleave};
    switch (f.fault) {
        case BusFault::WidthZero:
            return {{Kind::Outside, "a lane of 0 bytes has nothing of the bus", bus}};
        case BusFault::LanesZero:
            return {{Kind::Outside, "a bus of 0 lanes has no byte", bus}};
        case BusFault::LaneUnknown:
            return {{Kind::Outside,
                     "there is no lane " + std::to_string(f.lane) + " of " +
                         std::to_string(f.lanes) + ": they are counted from 0",
                     bus, "a lane is {which, of how many, bytes of each}"}};
        case BusFault::RowTooLong:
            return {{Kind::Outside, "the lanes have 2^32 bytes or more together", bus}};
        case BusFault::ImagesFew:
            break;
    }
    return {{Kind::Outside, "there are not several images to interleave", bus,
             "the lanes of a bus are named by FROM_BUFFERS {@Even, @Odd}"}};
}

/// The part of a statement that needs words.
Role roleOf(WordUse use) {
    constexpr std::array roles{Role::SwapBytes, Role::Lane, Role::Interleave, Role::AddressUnit};
    return roles.at(static_cast<std::size_t>(use));
}

Words words(const ImageNotOfWords& f, const Circumstances& c) {
    std::string text = "the data from " + Inspect::rangeText({f.start, f.end - f.start}) +
                       " does not begin and end with whole words of " +
                       Inspect::countText(f.wordSize, "byte");
    const std::string size = std::to_string(f.wordSize);
    std::string hint = f.subject == Subject::File
                           ? "-alignTo=" + size + " fills up the words at the ends"
                           : "-useBufferRange={start, length} gives an image whole words";
    if (!c.isScript())
        hint = f.subject == Subject::File
                   ? "--fill BYTE with --align " + size + " fills up the words at the ends"
                   : "--crop START,LENGTH keeps whole words";
    return {{Kind::WordSize, std::move(text), {roleOf(f.use)}, std::move(hint)}};
}

Words words(const AddressUnitRefused& f, const Circumstances& /*c*/) {
    return {{Kind::Outside,
             "the addresses of " + std::string(f.format) + " cannot count words",
             {Role::AddressUnit},
             "those of Intel HEX, S-records, TI-TXT and ELF can"}};
}

Words words(const AlignmentZero& /*f*/, const Circumstances& /*c*/) {
    return {{Kind::Outside, "an end cannot be a multiple of 0", {Role::Alignment}}};
}

/// Why a key was refused, after "the key FILE ".
std::string reasonOf(const KeyRefused& f) {
    switch (f.fault) {
        case KeyFault::WrongType:
            return "is not one for " + std::string(f.type);
        case KeyFault::Public:
            return "is public, and only a private key signs";
        case KeyFault::Encrypted:
            return "is encrypted";
        case KeyFault::PassphraseWrong:
            return "cannot be decrypted: the passphrase is wrong, or the file is damaged";
        case KeyFault::EncryptionUnknown:
            return "is encrypted in another way than by PBES2 with AES or 3DES";
        case KeyFault::Size:
            return "has fewer than 2048 or more than 4096 bits";
        default:
            break;
    }
    return "is not a sound key in PEM, or of an unknown algorithm or curve";
}

std::string adviceOn(const KeyRefused& f) {
    if (f.fault == KeyFault::Encrypted) return "--passphrase-file FILE gives its passphrase";
    if (f.fault == KeyFault::EncryptionUnknown)
        return "openssl pkcs8 -topk8 writes such a key, or one that is not encrypted";
    return "";
}

/// A statement without a type or a key was reported before the run.
Words words(const KeyRefused& f, const Circumstances& /*c*/) {
    if (f.fault == KeyFault::NoType || f.fault == KeyFault::NotGiven) return std::nullopt;
    if (f.fault == KeyFault::NotSupported)
        return {{Kind::Key, "this program was built without signatures", {Role::KeyFile}}};
    return {{Kind::Key,
             "the key " + std::string(f.file) + " " + reasonOf(f),
             {Role::KeyFile},
             adviceOn(f)}};
}

Words words(const KeyReadable& f, const Circumstances& /*c*/) {
    const std::string file(f.file);
    return {{Kind::KeyReadable,
             "others than its owner may read the private key " + file,
             {Role::KeyFile},
             "chmod go= " + file}};
}

Words words(const SignatureWrong& f, const Circumstances& /*c*/) {
    return {{Kind::Signature,
             std::string(f.signature) + " is not the signature of these bytes by the key " +
                 std::string(f.file),
             {Role::UsesSignature}}};
}

Words words(const FileNotOpened& f, const Circumstances& c) {
    const std::string file(f.file);
    const std::string reason = c.reason(f.file);
    if (reason.empty())
        return {{Kind::OutOfMemory, "there is not enough memory for " + file, anyInput}};
    return {{Kind::CannotOpen, "cannot open " + file + ": " + reason, anyInput,
             c.isScript() ? adviceOn(f.file) : ""}};
}

Words words(const FileNotWritten& f, const Circumstances& c) {
    const std::string reason = c.reason(f.file);
    if (reason.empty())
        return {{Kind::OutOfMemory,
                 "there is not enough memory for " + std::string(f.file),
                 {Role::OutputFile}}};
    return {{Kind::CannotWrite,
             "cannot write " + std::string(f.file) + ": " + reason,
             {Role::OutputFile},
             adviceOnUnwritten(reason)}};
}

Words words(const FileSpanTooLong& f, const Circumstances& c) {
    return {
        {Kind::Outside,
         "the range has " + hexText(f.length) + " bytes, and 32 bits address 0x100000000 of them",
         {Role::InputFile},
         c.isScript() ? "name a part of it with -useBufferRange={start, length}"
                      : "--crop START,LENGTH keeps a part of it"}};
}

Words words(const ProgramEnded& f, const Circumstances& c) {
    if (f.status == 0) return std::nullopt;
    return {{Kind::CallFailed,
             std::string(f.location) + outcome(f.status) +
                 (f.status >= 0 ? "" : afterColon(c.reason(f.location))),
             {Role::Program}}};
}

/// A fact that is one of these has no words.
template <class Fact, class... Facts>
concept OneOf = (std::is_same_v<Fact, Facts> || ...);

/// The classic readers, of which the strict program has its own, report the first of these. It
/// reads and parses the script itself, and shows the words of an input file and the output of a
/// PRINT_* another way: the listener prints it if `isPrinted`.
template <class Fact>
requires isPrinted<Fact> ||
    OneOf<Fact, ReadRangeOutside, TextFileEmpty, LastLineMismatched, RecordContradictory,
          LineNotARecord, RecordCountTooLow, DataSpanTooLong, FieldFact, ScriptNotOpened,
          VariableRejected, ScriptNotPrepared, SyntaxError, RunEnded, ProgramCalled>
        Words words(const Fact& /*f*/, const Circumstances& /*c*/) {
    return std::nullopt;
}

template <class Fact>
concept Refusal =
    OneOf<Fact, ImageNotAddressable, ImageTooLong, MoveTooFar, FillStartOutside, FillTooLong,
          ExtractStartOutside, ExtractTooLong, RawFileTooLong, FileReadIncomplete,
          AddressNotExpressible, RecordTypeUnknown, ImageBeyondSRecords, TooManyBytes,
          AddressBeyondFormat, FileWriteIncomplete>;

/// With these a statement has done its work, or its own result says that it has not.
template <class Fact>
concept NotARefusal = isPrinted<Fact> ||
    OneOf<Fact, FillPatternEmpty, ReadRangeOutside, TextFileEmpty, LastLineMismatched,
          RecordContradictory, LineNotARecord, RecordCountTooLow, DataSpanTooLong, FileMalformed,
          RecordLengthCorrected, GapsNotExpressible, FormatNumberWrong, FamiliesNotOfImages,
          HeaderTooLong, ElfTemplateUnfit, SectionUnfit, FamilyUnfit, NameNotFound, ImageWithout,
          SymbolUnfit, OverlapRefused, ImageDiffers, NothingCompared, StatementExhausted,
          CrcParameterRefused, WordIncomplete, BusRefused, ImageNotOfWords, AddressUnitRefused,
          AlignmentZero, KeyRefused, KeyReadable, SignatureWrong, FileNotOpened, FileNotWritten,
          FileSpanTooLong, ProgramCalled, ProgramEnded, ScriptNotOpened, VariableRejected,
          ScriptNotPrepared, SyntaxError, RunEnded, FieldFact>;

}  // namespace

std::string adviceOnUnwritten(const std::string& reason) {
    const std::string noSuchFile =
        std::make_error_code(std::errc::no_such_file_or_directory).message();
    return reason == noSuchFile ? "its folder does not exist" : "";
}

std::optional<FactWords> wordsFor(const Fact& fact, const Circumstances& circumstances) {
    return std::visit([&](const auto& f) { return words(f, circumstances); }, fact);
}

bool isRefusal(const Fact& fact) {
    return std::visit(
        []<class F>(const F& /*f*/) {
            static_assert(Refusal<F> != NotARefusal<F>, "each fact is one of the two");
            return Refusal<F>;
        },
        fact);
}

}  // namespace Strict
