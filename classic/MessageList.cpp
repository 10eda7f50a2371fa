#include "classic/MessageList.hpp"

#include <array>
#include <boost/algorithm/string/replace.hpp>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "classic/ClassicWords.hpp"

namespace Classic {

namespace {

using namespace Facts;

/// Its digits occur in no message. It fits into 32 bits.
constexpr std::uint32_t number = 987654321;
constexpr std::uint8_t byte = 0xA5;
constexpr std::array<std::uint8_t, 4> bytes{0x3A, 0xDE, 0x68, 0xB1};

/// Selects the overload for a type.
template <class Example>
struct Of {};

std::vector<Fact> examples(Of<ImageNotAddressable> /*type*/) {
    return {ImageNotAddressable{number, number}};
}
std::vector<Fact> examples(Of<ImageTooLong> /*type*/) {
    return {ImageTooLong{number, number}};
}
std::vector<Fact> examples(Of<MoveTooFar> /*type*/) {
    return {MoveTooFar{number, number}};
}
std::vector<Fact> examples(Of<FillPatternEmpty> /*type*/) {
    return {FillPatternEmpty{}};
}
std::vector<Fact> examples(Of<FillStartOutside> /*type*/) {
    return {FillStartOutside{number, number, number}};
}
std::vector<Fact> examples(Of<FillTooLong> /*type*/) {
    return {FillTooLong{number, number, number}};
}
std::vector<Fact> examples(Of<ExtractStartOutside> /*type*/) {
    return {ExtractStartOutside{number, number, number}};
}
std::vector<Fact> examples(Of<ExtractTooLong> /*type*/) {
    return {ExtractTooLong{number, number, number}};
}
std::vector<Fact> examples(Of<ReadRangeOutside> /*type*/) {
    using enum InputFormat;
    using enum ReadOperation;
    const auto fact = [](InputFormat reader, ReadOperation operation) {
        return ReadRangeOutside{reader, operation, number, number, number, number, ""};
    };
    return {fact(IntelHex, GetMemory), fact(MotorolaS, GetMemory), fact(IntelHex, FillMemoryBuffer),
            fact(MotorolaS, FillMemoryBuffer), fact(RawBinary, FillMemoryBuffer)};
}
std::vector<Fact> examples(Of<TextFileEmpty> /*type*/) {
    return {TextFileEmpty{"PATH"}};
}
std::vector<Fact> examples(Of<LastLineMismatched> /*type*/) {
    return {LastLineMismatched{"PATH"}};
}
std::vector<Fact> examples(Of<RecordContradictory> /*type*/) {
    return {RecordContradictory{"PATH", number, "LINE"}};
}
std::vector<Fact> examples(Of<LineNotARecord> /*type*/) {
    return {LineNotARecord{"PATH", number, "LINE"}};
}
std::vector<Fact> examples(Of<FieldFact> /*type*/) {
    return {};
}
std::vector<Fact> examples(Of<RecordCountTooLow> /*type*/) {
    return {RecordCountTooLow{number, number}};
}
std::vector<Fact> examples(Of<DataSpanTooLong> /*type*/) {
    return {DataSpanTooLong{number, number, number}};
}
std::vector<Fact> examples(Of<RawFileTooLong> /*type*/) {
    return {RawFileTooLong{number, number}};
}

/// The first and the last of the faults that a reader reports; nothing for one that has facts of
/// its own.
std::optional<std::pair<FormatFault, FormatFault>> faultsOf(InputFormat format) {
    switch (format) {
        case InputFormat::IntelHex:
        case InputFormat::MotorolaS:
        case InputFormat::RawBinary:
            break;
        case InputFormat::Elf:
            return {{FormatFault::MagicMissing, FormatFault::AddressTooHigh}};
        case InputFormat::Uf2:
            return {{FormatFault::SizeNotWhole, FormatFault::BlockCountWrong}};
        case InputFormat::TiTxt:
            return {{FormatFault::LineUnknown, FormatFault::WordCut}};
        case InputFormat::Vmem:
            return {{FormatFault::WordUneven, FormatFault::CommentOpen}};
        case InputFormat::DfuSe:
            return {{FormatFault::LengthWrong, FormatFault::ChecksumWrong}};
    }
    return std::nullopt;
}

std::vector<Fact> examples(Of<FileMalformed> /*type*/) {
    std::vector<Fact> facts;
    for (std::uint8_t i = 0; i < inputFormatCount; ++i) {
        const auto format = static_cast<InputFormat>(i);
        const auto faults = faultsOf(format);
        if (!faults) continue;
        for (auto fault = static_cast<std::uint8_t>(faults->first);
             fault <= static_cast<std::uint8_t>(faults->second); ++fault)
            facts.emplace_back(
                FileMalformed{format, "PATH", static_cast<FormatFault>(fault), number, number});
    }
    return facts;
}
std::vector<Fact> examples(Of<FileReadIncomplete> /*type*/) {
    return {FileReadIncomplete{"PATH"}};
}
std::vector<Fact> examples(Of<RecordLengthCorrected> /*type*/) {
    return {RecordLengthCorrected{OutputFormat::IntelHex, number, Bound::Minimum, 1},
            RecordLengthCorrected{OutputFormat::IntelHex, number, Bound::Maximum, 255},
            RecordLengthCorrected{OutputFormat::MotorolaS, number, Bound::Minimum, 21},
            RecordLengthCorrected{OutputFormat::MotorolaS, number, Bound::Maximum, 32}};
}
std::vector<Fact> examples(Of<AddressNotExpressible> /*type*/) {
    return {AddressNotExpressible{number, "PATH"}};
}
std::vector<Fact> examples(Of<RecordTypeUnknown> /*type*/) {
    return {RecordTypeUnknown{number}};
}
std::vector<Fact> examples(Of<ImageBeyondSRecords> /*type*/) {
    return {ImageBeyondSRecords{0xFFFFFFFF}};
}
std::vector<Fact> examples(Of<TooManyBytes> /*type*/) {
    return {TooManyBytes{OutputFormat::RawBinary, 0xFFFFFFFF},
            TooManyBytes{OutputFormat::EmbeddedC_Assembler, 0xFFFFFFFF}};
}
std::vector<Fact> examples(Of<GapsNotExpressible> /*type*/) {
    return {GapsNotExpressible{"FORMAT", "PATH"}};
}
std::vector<Fact> examples(Of<AddressBeyondFormat> /*type*/) {
    return {AddressBeyondFormat{"FORMAT", "PATH", 0xFFFFFFFF}};
}
std::vector<Fact> examples(Of<FormatNumberWrong> /*type*/) {
    return {FormatNumberWrong{"FORMAT", "PATH", number}};
}
std::vector<Fact> examples(Of<FamiliesNotOfImages> /*type*/) {
    return {FamiliesNotOfImages{"PATH", number, number}};
}
std::vector<Fact> examples(Of<HeaderTooLong> /*type*/) {
    return {HeaderTooLong{"PATH", number, 252}};
}
std::vector<Fact> examples(Of<SectionUnfit> /*type*/) {
    std::vector<Fact> facts;
    for (const SectionFault fault :
         {SectionFault::Unknown, SectionFault::NotLoaded, SectionFault::NoSections})
        facts.emplace_back(SectionUnfit{"PATH", "NAME", fault, ""});
    return facts;
}
std::vector<Fact> examples(Of<FamilyUnfit> /*type*/) {
    std::vector<Fact> facts;
    for (const FamilyFault fault :
         {FamilyFault::Shared, FamilyFault::Unknown, FamilyFault::NoFamilies})
        facts.emplace_back(FamilyUnfit{"PATH", fault, number, number, "NAMES"});
    return facts;
}
std::vector<Fact> examples(Of<ElfTemplateUnfit> /*type*/) {
    std::vector<Fact> facts;
    for (const TemplateFault fault :
         {TemplateFault::ByteOutside, TemplateFault::ByteMissing, TemplateFault::SegmentsShared})
        facts.emplace_back(ElfTemplateUnfit{
            "PATH", fault, number, fault == TemplateFault::SegmentsShared ? number : number + 1});
    return facts;
}
std::vector<Fact> examples(Of<FileWriteIncomplete> /*type*/) {
    return {FileWriteIncomplete{"PATH"}};
}
std::vector<Fact> examples(Of<NameNotFound> /*type*/) {
    std::vector<Fact> facts;
    for (const NameKind kind :
         {NameKind::Buffer, NameKind::Crc, NameKind::Hash, NameKind::Signature, NameKind::Symbol})
        facts.emplace_back(NameNotFound{kind, "NAME"});
    return facts;
}
std::vector<Fact> examples(Of<ImageWithout> /*type*/) {
    return {ImageWithout{"NAME", ImageLack::Addresses}, ImageWithout{"NAME", ImageLack::Bytes}};
}
std::vector<Fact> examples(Of<SymbolUnfit> /*type*/) {
    std::vector<Fact> facts;
    for (const SymbolFault fault :
         {SymbolFault::Missing, SymbolFault::Several, SymbolFault::TooWide})
        facts.emplace_back(SymbolUnfit{"PATH", "NAME", fault, number, ""});
    return facts;
}
std::vector<Fact> examples(Of<OverlapRefused> /*type*/) {
    const OverlapRefused refused{Subject::Buffer, "NAME", "NAME", number, number + 1, true,
                                 number,          byte,   byte};
    OverlapRefused equal = refused;
    equal.isDifferent = false;
    return {refused, equal};
}
std::vector<Fact> examples(Of<ImageDiffers> /*type*/) {
    return {ImageDiffers{"NAME", "", number, byte, byte, number + 1},
            ImageDiffers{"NAME", "NAME", number, byte, byte, 1},
            ImageDiffers{"NAME", "", number, std::nullopt, byte, number + 1},
            ImageDiffers{"NAME", "NAME", number, std::nullopt, byte, 1}};
}
std::vector<Fact> examples(Of<NothingCompared> /*type*/) {
    return {NothingCompared{"NAME"}};
}
std::vector<Fact> examples(Of<StatementExhausted> /*type*/) {
    std::vector<Fact> facts;
    for (const auto& [subject, work] :
         {std::pair{Subject::Buffer, Work::Created}, std::pair{Subject::Buffer, Work::Filled},
          std::pair{Subject::Buffer, Work::Verified}, std::pair{Subject::Buffer, Work::Printed},
          std::pair{Subject::Crc, Work::Created}, std::pair{Subject::Crc, Work::Printed},
          std::pair{Subject::Hash, Work::Created}, std::pair{Subject::Hash, Work::Printed},
          std::pair{Subject::Signature, Work::Created},
          std::pair{Subject::Signature, Work::Verified},
          std::pair{Subject::Signature, Work::Printed}, std::pair{Subject::Text, Work::Printed},
          std::pair{Subject::File, Work::Written}, std::pair{Subject::Application, Work::Called}})
        facts.emplace_back(StatementExhausted{subject, "NAME", work});
    return facts;
}
std::vector<Fact> examples(Of<CrcParameterRefused> /*type*/) {
    std::vector<Fact> facts;
    for (const CrcParameter parameter : {CrcParameter::Width, CrcParameter::Polynomial,
                                         CrcParameter::Initial, CrcParameter::FinalXor})
        facts.emplace_back(CrcParameterRefused{"NAME", parameter});
    return facts;
}
std::vector<Fact> examples(Of<WordIncomplete> /*type*/) {
    return {WordIncomplete{Subject::Crc, "NAME", number, 4},
            WordIncomplete{Subject::Hash, "NAME", number, 4}};
}
std::vector<Fact> examples(Of<BusRefused> /*type*/) {
    std::vector<Fact> facts;
    for (const BusFault fault : {BusFault::WidthZero, BusFault::LanesZero, BusFault::LaneUnknown,
                                 BusFault::RowTooLong, BusFault::ImagesFew})
        facts.emplace_back(BusRefused{"NAME", fault, number, number});
    return facts;
}
std::vector<Fact> examples(Of<ImageNotOfWords> /*type*/) {
    return {ImageNotOfWords{Subject::Buffer, "NAME", WordUse::SwappedBytes, number, number, number},
            ImageNotOfWords{Subject::File, "PATH", WordUse::SwappedBytes, number, number, number}};
}
std::vector<Fact> examples(Of<AddressUnitRefused> /*type*/) {
    return {AddressUnitRefused{Subject::Buffer, "NAME", "FORMAT"},
            AddressUnitRefused{Subject::File, "PATH", "FORMAT"}};
}
std::vector<Fact> examples(Of<AlignmentZero> /*type*/) {
    return {AlignmentZero{"PATH"}};
}
std::vector<Fact> examples(Of<FileNotOpened> /*type*/) {
    return {FileNotOpened{"PATH"}};
}
std::vector<Fact> examples(Of<FileNotWritten> /*type*/) {
    return {FileNotWritten{"PATH"}};
}
std::vector<Fact> examples(Of<FileSpanTooLong> /*type*/) {
    return {FileSpanTooLong{number}};
}
std::vector<Fact> examples(Of<BufferPrinted> /*type*/) {
    return {BufferPrinted{"NAME", number, number}};
}
std::vector<Fact> examples(Of<ContentPrinted> /*type*/) {
    return {ContentPrinted{number, {}}};
}
std::vector<Fact> examples(Of<CrcPrinted> /*type*/) {
    return {CrcPrinted{"NAME", bytes}};
}
std::vector<Fact> examples(Of<HashPrinted> /*type*/) {
    return {HashPrinted{"NAME", bytes}};
}
std::vector<Fact> examples(Of<SignaturePrinted> /*type*/) {
    return {SignaturePrinted{"NAME", bytes}};
}
std::vector<Fact> examples(Of<KeyRefused> /*type*/) {
    std::vector<Fact> facts;
    for (const KeyFault fault :
         {KeyFault::NotGiven, KeyFault::NoType, KeyFault::NotAKey, KeyFault::WrongType,
          KeyFault::Public, KeyFault::Encrypted, KeyFault::PassphraseWrong,
          KeyFault::EncryptionUnknown, KeyFault::Size, KeyFault::NotSupported})
        facts.emplace_back(KeyRefused{"PATH", "TYPE", fault});
    return facts;
}
std::vector<Fact> examples(Of<KeyReadable> /*type*/) {
    return {KeyReadable{"PATH"}};
}
std::vector<Fact> examples(Of<SignatureWrong> /*type*/) {
    return {SignatureWrong{"NAME", "PATH"}};
}
std::vector<Fact> examples(Of<TextPrinted> /*type*/) {
    // The text is the script's own.
    return {};
}
std::vector<Fact> examples(Of<ProgramCalled> /*type*/) {
    return {ProgramCalled{"PATH", "ARGUMENTS"}};
}
std::vector<Fact> examples(Of<ProgramEnded> /*type*/) {
    return {};
}
std::vector<Fact> examples(Of<ScriptNotOpened> /*type*/) {
    return {ScriptNotOpened{"PATH"}};
}
std::vector<Fact> examples(Of<VariableRejected> /*type*/) {
    std::vector<Fact> facts;
    for (const VariableFault fault : {VariableFault::NotARegularExpression,
                                      VariableFault::TooComplex, VariableFault::ScriptTooLong})
        facts.emplace_back(VariableRejected{"NAME", fault});
    return facts;
}
std::vector<Fact> examples(Of<ScriptNotPrepared> /*type*/) {
    return {ScriptNotPrepared{"PATH"}};
}
std::vector<Fact> examples(Of<SyntaxError> /*type*/) {
    // The manual shows the whole report by an example that runs.
    return {};
}
std::vector<Fact> examples(Of<RunEnded> /*type*/) {
    return {RunEnded{number}};
}

/// What `print` prints in the words of a new run.
template <class Print>
std::string shown(Print print) {
    std::ostringstream text;
    ClassicWords words(text, text);
    print(words);
    std::string lines = text.str();
    boost::algorithm::replace_all(lines, "987654321", "N");
    boost::algorithm::replace_all(lines, "9.87654e+08", "N");
    boost::algorithm::replace_all(lines, "3ade68b1", "HEX");
    boost::algorithm::replace_all(lines, "3ADE68B1", "HEX");
    boost::algorithm::replace_all(lines, "00000000", "HEX");
    boost::algorithm::replace_all(lines, "0xA5", "0xHEX");
    return lines;
}

std::string lostOutput() {
    std::ostringstream errors;
    std::ostream nowhere(nullptr);
    ClassicWords words(nowhere, errors);
    words.printEmptyLine();
    words.reportLostOutput();
    return errors.str();
}

/// Each alternative needs its examples, or this does not compile.
template <class... Types>
std::vector<Fact> allExamples(Of<std::variant<Types...>> /*facts*/) {
    std::vector<Fact> facts;
    const auto add = [&facts](const std::vector<Fact>& more) {
        facts.insert(facts.end(), more.begin(), more.end());
    };
    (add(examples(Of<Types>{})), ...);
    return facts;
}

}  // namespace

std::string messageList() {
    std::string list =
        shown([](auto& words) { words.printBanner("CmdTessaron", number, number, "DATE", ""); }) +
        shown([](auto& words) { words.printUsage(); }) +
        shown([](auto& words) { words.printUnexpected("TEXT"); }) +
        shown([](auto& words) { words.printDifference(number); }) +
        shown([](auto& words) { words.printTestFrame(0); }) +
        shown([](auto& words) { words.printTestFrame(number); }) + lostOutput();
    for (const Fact& fact : allExamples(Of<Fact>{}))
        list += shown([&fact](auto& words) { words.hear(fact); });
    return list;
}

}  // namespace Classic
