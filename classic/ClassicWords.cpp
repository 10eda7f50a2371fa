#include "classic/ClassicWords.hpp"

#include <array>
#include <ios>
#include <string>

#include "facts/FormatFaultWords.hpp"
#include "io/formats/InputFormats.hpp"
#include "util/Hex.hpp"

namespace Classic {

namespace {

using namespace Facts;

const char* nameOf(OutputFormat writer) {
    switch (writer) {
        case OutputFormat::IntelHex:
            return "IntelHexOutFile";
        case OutputFormat::MotorolaS:
            return "MotorolaS_OutFile";
        case OutputFormat::EmbeddedC_Assembler:
            return "EmbeddedC_AssemblerOutFile";
        case OutputFormat::RawBinary:
            break;
    }
    return "RawBinaryOutFile";
}

const char* wordFor(NameKind kind) {
    constexpr std::array words{"Buffer", "Crc", "Hash", "Signature", "Symbol Ref"};
    return words.at(static_cast<std::size_t>(kind));
}

const char* wordFor(Subject subject) {
    constexpr std::array words{"Buffer", "Crc", "Hash", "Signature", "Text", "File", "Application"};
    return words.at(static_cast<std::size_t>(subject));
}

const char* wordFor(Work work) {
    constexpr std::array words{"created", "filled", "verified", "printed", "written", "called"};
    return words.at(static_cast<std::size_t>(work));
}

const char* wordsFor(KeyFault fault) {
    constexpr std::array words{"no key file was given",
                               "no type was given",
                               "the file has no key that is known",
                               "the key is of another type",
                               "the key is a public one",
                               "the key is encrypted",
                               "the passphrase is wrong",
                               "the key is encrypted in another way than by PBES2 with AES or 3DES",
                               "the key has fewer than 2048 or more than 4096 bits",
                               "this program was built without signatures"};
    return words.at(static_cast<std::size_t>(fault));
}

const char* wordsFor(VariableFault fault) {
    constexpr std::array words{"is no valid regular expression",
                               "is too complex a regular expression", "makes the script too long"};
    return words.at(static_cast<std::size_t>(fault));
}

const char* wordsFor(CrcParameter parameter) {
    constexpr std::array words{
        "a width that is not 1 to 64 bits", "a polynomial of more bits than its width",
        "an initial value of more bits than its width", "a final xor of more bits than its width"};
    return words.at(static_cast<std::size_t>(parameter));
}

std::string wordsFor(const BusRefused& fact) {
    switch (fact.fault) {
        case BusFault::WidthZero:
            return "A lane needs at least one byte.";
        case BusFault::LanesZero:
            return "A bus needs at least one lane.";
        case BusFault::LaneUnknown:
            return "Lane " + std::to_string(fact.lane) + " is not one of " +
                   std::to_string(fact.lanes) + " lanes, counted from 0.";
        case BusFault::RowTooLong:
            return "A row of all lanes is too long.";
        case BusFault::ImagesFew:
            break;
    }
    return "-interleave needs several images.";
}

/// Prints one fact. Each operator is one message.
class Sentences {
public:
    Sentences(std::ostream& output, std::ostream& errors) : output_(output), errors_(errors) {}

    void operator()(const ImageNotAddressable& /*fact*/) const {
        line(
            "MemoryBuffer(Constructor-Operation). The sum of startAddress + dataLength are not "
            "addressable.");
        line("  Nothing was filled!");
    }

    void operator()(const ImageTooLong& fact) const {
        line(
            "MemoryBuffer(Constructor-Operation). The dataLength was bigger than "
            "MAX_ALLOWED_MEMORY_BUFFER_SIZE int(0x",
            std::hex, fact.limit, ").");
        line("  An empty Memorybuffer was created!");
    }

    void operator()(const MoveTooFar& fact) const {
        line("MemoryBuffer(setStartingAddress-Operation). StartAddress (0x", std::hex, fact.start,
             ") is to big.");
        line("  Possible max startAddress for this object is (0x", std::hex, fact.highestStart,
             ").");
        line("  StartAddress has not been changed!");
    }

    void operator()(const FillPatternEmpty& /*fact*/) const {
        line("MemoryBuffer(fillMemory-Operation). dataPattern was empty, so nothing is filled");
        line("  Nothing was filled!");
    }

    void operator()(const FillStartOutside& fact) const {
        line("MemoryBuffer(fillMemory-Operation). StartAddress int (", fact.start,
             ") was not in range of memoryBuffer.");
        line("  Possible max range could be from int [ 0x", std::hex, fact.imageStart, " to 0x",
             std::hex, fact.imageEnd, "].");
        line("  Nothing was filled!");
    }

    void operator()(const FillTooLong& fact) const {
        line("MemoryBuffer(fillMemory - Operation). NumberOfElements int ( 0x", std::hex,
             fact.length, ") are too many.");
        line("  Nothing was filled!");
    }

    void operator()(const ExtractStartOutside& fact) const {
        line("MemoryBuffer(extractMemory-Operation). StartAddress (0x", std::hex, fact.start,
             ") is not in range.");
        line("  Possible max range could be from [0x", std::hex, fact.imageStart, " to 0x",
             std::hex, fact.imageEnd, "].");
        line("  Nothing has been extracted!");
    }

    void operator()(const ExtractTooLong& fact) const {
        line("MemoryBuffer(extractMemory-Operation). Requested dataLength (0x", std::hex,
             fact.length, ") are too large.");
        line("  Nothing has been extracted!");
    }

    void operator()(const ReadRangeOutside& fact) const {
        const bool isFill = fact.operation == ReadOperation::FillMemoryBuffer;
        line(Facts::readerName(fact.reader), isFill ? "(fillMemoryBuffer" : "(getMemory",
             "-Operation). The requested extraction range from int address [", fact.start, " to ",
             fact.end, "] was out of range. ",
             isFill ? "Nothing was filled" : "Empty buffer was returned.");
        line("  Possible max range could be from int [", fact.dataStart, " to ", fact.dataEnd,
             "].");
        output_ << fact.information << std::flush;
    }

    void operator()(const TextFileEmpty& fact) const {
        line("file: ", fact.file, " was empty. Execution aboarded. The file was not parsed.");
    }

    void operator()(const LastLineMismatched& fact) const {
        line("file: ", fact.file,
             " has no intel format (last line mismatched). Execution aboarded. The file was not "
             "parsed.");
    }

    void operator()(const RecordContradictory& fact) const {
        line("file: ", fact.file, " line: ", fact.line,
             " contains logical error. Please check line for Crc or Address/Type conflicts. "
             "Execution aboarded. The file was not parsed.");
    }

    void operator()(const LineNotARecord& fact) const {
        line("file: ", fact.file, " line: ", fact.line,
             " did not match parsing pattern. Execution aboarded. The file was not parsed.");
    }

    // The program passes over what is no record in silence.

    // The classic readers report none of these.
    void operator()(const FieldFact& /*fact*/) const {}

    void operator()(const RecordCountTooLow& fact) const {
        line("MotorolaS_InFile(storeParsedSize-Operation). Logical error");
        line("The value of counter is : (int)", fact.count,
             ". This is to low, because the addressSize is already : (int)", fact.addressSize);
        line(
            "This error could be also generated, if the SRecord Type was unknown or the counter "
            "was to less.");
    }

    void operator()(const DataSpanTooLong& fact) const {
        line(
            "MotorolaS_InFile(constructor-Operation). The information extracted from output file, "
            "contains too much DataElements.");
        line("  The max possible amount of Elements is : (int)", fact.mostBytes);
        line("  The max Address is changed from: (int)", fact.lastAddress, " to: (int)",
             fact.newLastAddress);
    }

    void operator()(const RawFileTooLong& fact) const {
        line(
            "RawBinaryInFile(constructor-Operation). The information extracted from output file, "
            "contains too much DataElements.");
        line("  The max possible amount of Elements is : (int)", fact.mostBytes);
        line("  The dataLength is changed from: (int)", fact.fileSize, " to: (int)",
             fact.mostBytes);
    }

    void operator()(const FileMalformed& fact) const {
        line("file: ", fact.file, " has no ", Io::Formats::rowOf(fact.format).name, " format (",
             Facts::textOf(fact), "). Execution aboarded. The file was not parsed.");
    }

    void operator()(const FileReadIncomplete& fact) const {
        errors_ << "Warning: File " << fact.file << " could not be read completely !" << std::endl;
    }

    void operator()(const RecordLengthCorrected& fact) const {
        const bool isHex = fact.writer == OutputFormat::IntelHex;
        const char* const label = isHex ? "" : "(int)";
        line(nameOf(fact.writer), "(Constructor-Operation). outputStyle.",
             isHex ? "dataRecordLength" : "maximumRecordSize", " was :", fact.length);
        line("The allowed ", fact.bound == Bound::Minimum ? "minimum" : "maximum", " have to be ",
             label, fact.allowed, ", so the value was reset to ", label, isHex ? "" : " ",
             fact.allowed);
    }

    void operator()(const AddressNotExpressible& fact) const {
        line("IntelHexOutFile(setOffsetInformation-Operation). StartAddress int (", fact.address,
             ") is not addressable with");
        line("LinearAddressing. Nothing was written in file (", fact.file, ")!");
    }

    void operator()(const RecordTypeUnknown& fact) const {
        line("IntelHexOutFile(getStringRepresentationFor-Operation). Wrong addressing type int (",
             fact.type, ")");
    }

    void operator()(const ImageBeyondSRecords& fact) const {
        line(
            "MotorolaS_OutFile(insertMemoryBuffer-Operation). The inserted MemoryBuffer has a to "
            "big Offset for Motorola Format.");
        line("The MemoryBuffer will not be inserted.");
        line("The allowed maximum Offset have to be (int)", fact.highestAddress);
    }

    void operator()(const TooManyBytes& fact) const {
        line(nameOf(fact.writer),
             "(insertMemoryBuffer-Operation). The operation was not successful, because the "
             "resulting");
        line("Number of elements will be bigger than (int) ", fact.mostBytes);
        line("Nothing was inserted.");
    }

    void operator()(const GapsNotExpressible& fact) const {
        line("Error: File ", fact.file, " could not be written ! Format ", fact.format,
             " cannot skip addresses.");
        line("Operation aborted.");
    }

    void operator()(const AddressBeyondFormat& fact) const {
        line("Error: File ", fact.file, " could not be written ! ", fact.format,
             " has no addresses above 0xFFFFFFFF.");
        line("Operation aborted.");
    }

    void operator()(const FormatNumberWrong& fact) const {
        line("Error: File ", fact.file, " could not be written ! Format ", fact.format,
             " does not take the number ", std::to_string(fact.number), ".");
        line("Operation aborted.");
    }

    void operator()(const FamiliesNotOfImages& fact) const {
        line("Error: File ", fact.file, " could not be written ! It has ",
             std::to_string(fact.families), " families for ", std::to_string(fact.images),
             " images.");
        line("Operation aborted.");
    }

    void operator()(const HeaderTooLong& fact) const {
        line("Error: File ", fact.file, " could not be written ! Its header has more than ",
             std::to_string(fact.longest), " bytes.");
        line("Operation aborted.");
    }

    void operator()(const SectionUnfit& fact) const {
        if (fact.fault == SectionFault::NoSections)
            line("Error: Section ", fact.section,
                 " could not be read ! Only FROM_ELF has sections.");
        else
            line("Error: File ", fact.file,
                 fact.fault == SectionFault::Unknown ? " has no section " : " loads no section ",
                 fact.section, " !");
        line("Operation aborted.");
    }

    void operator()(const FamilyUnfit& fact) const {
        const std::string family = "0x" + Util::hexWord(fact.family);
        if (fact.fault == FamilyFault::Shared)
            line("Error: File ", fact.file, " has bytes of several families for 0x",
                 Util::hexWord(fact.address), " ! They are ", fact.known, ".");
        else if (fact.fault == FamilyFault::Unknown)
            line("Error: File ", fact.file, " has no blocks for the family ", family, " !");
        else
            line("Error: Family ", family, " could not be read ! Only FROM_UF2 has families.");
        line("Operation aborted.");
    }

    void operator()(const ElfTemplateUnfit& fact) const {
        const auto range = [&fact] {
            return "0x" + Util::hexWord(fact.start) + " to 0x" + Util::hexWord(fact.end - 1);
        };
        if (fact.fault == TemplateFault::ByteOutside)
            line("Error: Template ", fact.file, " has no segment for the bytes from ", range(),
                 " !");
        else if (fact.fault == TemplateFault::ByteMissing)
            line("Error: Template ", fact.file, " loads bytes that no image has, from ", range(),
                 " !");
        else
            line("Error: Template ", fact.file, " has segments that share bytes, at 0x",
                 Util::hexWord(fact.start), " and 0x", Util::hexWord(fact.end), " !");
        line("Operation aborted.");
    }

    void operator()(const FileWriteIncomplete& fact) const {
        errors_ << "Warning: File " << fact.file << " could not be written completely !"
                << std::endl;
    }

    void operator()(const NameNotFound& fact) const {
        line("Error: ", wordFor(fact.kind), " Variable ", fact.name, " not found !");
        line("Operation aborted.");
    }

    void operator()(const ImageWithout& fact) const {
        line("Error: ", wordFor(NameKind::Buffer), " Variable ", fact.image,
             fact.lack == ImageLack::Addresses ? " has no address !" : " has no written byte !");
        line("Operation aborted.");
    }

    void operator()(const SymbolUnfit& fact) const {
        const auto* const fault = fact.fault == SymbolFault::Missing ? " not found in "
                                  : fact.fault == SymbolFault::Several
                                      ? " is not unique in "
                                      : " has no 32 bit address in ";
        line("Error: Symbol ", fact.symbol, fault, fact.file, " !");
        line("Operation aborted.");
    }

    void operator()(const OverlapRefused& fact) const {
        line("Error: ", wordFor(fact.subject), " ", fact.name, " could not be ",
             wordFor(fact.subject == Subject::File ? Work::Written : Work::Created), " !");
        if (fact.isDifferent)
            line(fact.source, " has 0x", Util::hexByte(fact.later), " at address 0x",
                 Util::hexWord(fact.address), ", written before as 0x",
                 Util::hexByte(fact.earlier));
        else
            line(fact.source, " has the same bytes as written before from 0x",
                 Util::hexWord(fact.start), " to 0x", Util::hexWord(fact.end - 1));
        line("Operation aborted.");
    }

    void operator()(const ImageDiffers& fact) const {
        line("Error: ", wordFor(Subject::Buffer), " ", fact.image, " could not be verified !");
        std::string text = "Address 0x" + Util::hexWord(fact.address);
        if (fact.found)
            text += " has 0x" + Util::hexByte(*fact.found) + " instead of 0x";
        else
            text += " is not there to have 0x";
        text += Util::hexByte(fact.wanted);
        if (fact.count > 1) text += ", and " + std::to_string(fact.count - 1) + " more differ";
        line(text);
        line("Operation aborted.");
    }

    void operator()(const NothingCompared& fact) const {
        line("Error: ", wordFor(Subject::Buffer), " ", fact.image, " could not be verified !");
        line("No byte was compared");
        line("Operation aborted.");
    }

    void operator()(const StatementExhausted& fact) const {
        line("Error: ", wordFor(fact.subject), " ", fact.name, " could not be ", wordFor(fact.work),
             " !");
        line("Operation aborted. Maybe stack overflow, buffer too big");
    }

    void operator()(const CrcParameterRefused& fact) const {
        line("Error: Crc ", fact.name, " has ", wordsFor(fact.parameter), " !");
        line("Operation aborted.");
    }

    void operator()(const WordIncomplete& fact) const {
        line("Error: The data of ", wordFor(fact.subject), " ", fact.name,
             " does not end with a whole word !");
        line("Operation aborted.");
    }

    void operator()(const BusRefused& fact) const {
        line("Error: Buffer ", fact.name, " could not be created ! ", wordsFor(fact));
        line("Operation aborted.");
    }

    void operator()(const ImageNotOfWords& fact) const {
        line("Error: ", wordFor(fact.subject), " ", fact.name, " could not be ",
             wordFor(fact.subject == Subject::File ? Work::Written : Work::Created), " !");
        line("The data from 0x", Util::hexWord(fact.start), " to 0x", Util::hexWord(fact.end),
             " is not made of whole words of ", std::to_string(fact.wordSize), " bytes");
        line("Operation aborted.");
    }

    void operator()(const AddressUnitRefused& fact) const {
        line("Error: ", wordFor(fact.subject), " ", fact.name, " could not be ",
             wordFor(fact.subject == Subject::File ? Work::Written : Work::Created),
             " ! The addresses of ", fact.format, " cannot count words.");
        line("Operation aborted.");
    }

    void operator()(const AlignmentZero& fact) const {
        line("Error: File ", fact.file, " could not be written ! -alignTo needs a number above 0.");
        line("Operation aborted.");
    }

    void operator()(const FileNotOpened& fact) const {
        line("Error: File ", fact.file, " could not be opened !");
        line("Operation aborted. Maybe stack overflow, buffer too big");
    }

    void operator()(const FileNotWritten& fact) const {
        line("Error: File ", fact.file, " could not be written !");
        line("Operation aborted.");
    }

    void operator()(const FileSpanTooLong& fact) const {
        line("Error: Buffer Length 0x", std::hex, fact.length,
             " is too big 0xFFF FFFF is the maximum!");
        line("Use Param -useBufferRange= to create a fixed length Buffer of the size.");
    }

    void operator()(const BufferPrinted& fact) const {
        line("Buffer : ", fact.name);
        line("  StartAddress: 0x", Util::hexWord(fact.start));
        line("  DataLength  : 0x", Util::hexNumber(fact.length, 8));
    }

    void operator()(const ContentPrinted& fact) const {
        constexpr std::size_t bytesPerRow = 13;
        // Rows are handed to the stream in pieces of about this many characters.
        constexpr std::size_t pieceLength = std::size_t{1} << 16U;
        line("    Content Area (0x", Util::hexWord(fact.start), " , 0x",
             Util::hexWord(fact.bytes.size()), ")");
        std::string rows = "     ";
        std::size_t inRow = 0;
        for (const std::uint8_t byte : fact.bytes) {
            rows += " 0x000000";
            Util::appendHex(rows, std::array{byte});
            if (++inRow < bytesPerRow) continue;
            rows += "\n     ";
            inRow = 0;
            if (rows.size() < pieceLength) continue;
            output_ << rows;
            rows.clear();
        }
        line(rows);
    }

    void operator()(const CrcPrinted& fact) const {
        const std::string digits = digitsOf(fact.value);
        line("Crc : ", fact.name);
        line("  CrcValue: 0x", digits);
    }

    void operator()(const HashPrinted& fact) const {
        const std::string digits = digitsOf(fact.value);
        line("Hash : ", fact.name);
        line("  HashValue: ", digits);
    }

    void operator()(const SignaturePrinted& fact) const {
        const std::string digits = digitsOf(fact.value);
        line("Signature : ", fact.name);
        line("  SignatureValue: ", digits);
    }

    void operator()(const KeyRefused& fact) const {
        line("Error: Key ", fact.file, " could not be used !");
        line("For ", fact.type.empty() ? "any type" : fact.type, ": ", wordsFor(fact.fault));
        line("Operation aborted.");
    }

    void operator()(const KeyReadable& fact) const {
        line("Warning: Key ", fact.file, " can be read by others !");
    }

    void operator()(const SignatureWrong& fact) const {
        line("Error: ", wordFor(Subject::Signature), " ", fact.signature,
             " could not be verified !");
        line("It is not that of the bytes by the key ", fact.file);
        line("Operation aborted.");
    }

    void operator()(const TextPrinted& fact) const { line(fact.text); }

    void operator()(const ProgramCalled& fact) const {
        const char* const quote = fact.location.find(' ') != std::string_view::npos ? "\"" : "";
        line("Calling: ", quote, fact.location, quote, " ", fact.arguments);
    }

    // What becomes of the program is not looked at.
    void operator()(const ProgramEnded& /*fact*/) const {}

    void operator()(const ScriptNotOpened& fact) const {
        errors_ << "Could not open input file: " << fact.path << std::endl;
    }

    void operator()(const VariableRejected& fact) const {
        line("Error: Variable name ", fact.name, " ", wordsFor(fact.fault), " !");
        line("Operation aborted.");
    }

    void operator()(const ScriptNotPrepared& fact) const {
        line("Error: Script ", fact.path, " could not be prepared !");
        line("Operation aborted. Maybe stack overflow, script too big");
    }

    void operator()(const SyntaxError& fact) const {
        constexpr std::string_view title =
            "SCRIPT PARSING ERROR DETECTED!  DETAILLED DESCRIPTION FOLLOWS";
        const std::string rule(title.size(), '-');
        line();
        line(rule);
        line(rule);
        line(title);
        line(rule);
        line(rule);
        line(rule);
        line("SCRIPT PARSING ERROR -> STACK LAST COMMAND: ");
        line(rule);
        line(fact.lastCommand);
        line(rule);
        line("SCRIPT PARSING ERROR -> STACK LAST COMMAND TOKENS: ");
        line(rule);
        line(fact.lastTokens);
        line("LINE: ", std::to_string(fact.line));
    }

    void operator()(const RunEnded& fact) const {
        line("\nKvTessaron Total Time: ", fact.seconds, " seconds");
    }

private:
    static std::string digitsOf(std::span<const std::uint8_t> bytes) {
        std::string digits;
        Util::appendHex(digits, bytes);
        return digits;
    }

    /// Manipulators pass through: std::hex stays in force.
    template <class... Parts>
    void line(const Parts&... parts) const {
        (output_ << ... << parts) << std::endl;
    }

    std::ostream& output_;
    std::ostream& errors_;
};

}  // namespace

ClassicWords::ClassicWords(std::ostream& output, std::ostream& errors)
    : output_(output.rdbuf()), errors_(errors.rdbuf()) {}

void ClassicWords::hear(const Fact& fact) {
    std::visit(Sentences(output_, errors_), fact);
}

void ClassicWords::printBanner(std::string_view fileName, unsigned majorVersion,
                               unsigned minorVersion, std::string_view buildDate,
                               std::string_view copyright) {
    output_ << fileName << " version " << majorVersion << "." << minorVersion << " from "
            << buildDate << std::endl;
    output_ << copyright << std::endl;
}

void ClassicWords::printEmptyLine() {
    output_ << std::endl;
}

void ClassicWords::printUsage() {
    constexpr std::string_view usage =
        "Program Usage: CmdTessaron [variableName=variableValue]* scriptFile";
    output_ << usage << std::endl;
    output_ << std::string(usage.size(), ' ') << std::endl;
    output_ << "\t\t\tFor detailed information see CmdTessaronManual.txt" << std::endl;
}

void ClassicWords::printDifference(std::size_t number) {
    output_ << "Difference at line number: " << std::to_string(number) << std::endl;
}

void ClassicWords::printTestFrame(unsigned code) {
    if (code == 0)
        output_ << "No problem running CUnit: CU_get_error() == CUE_SUCCESS." << std::endl;
    else
        output_ << "Problem running CUnit: CU_get_error() == " << std::to_string(code) << std::endl;
}

void ClassicWords::printUnexpected(std::string_view text) {
    errors_ << "Error: " << text << std::endl;
}

void ClassicWords::reportLostOutput() {
    if (hasLostOutput())
        errors_ << "Warning: Standard output could not be written completely !" << std::endl;
}

}  // namespace Classic
