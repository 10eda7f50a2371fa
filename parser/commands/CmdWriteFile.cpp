#include "parser/commands/CmdWriteFile.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <deque>
#include <exception>
#include <utility>

#include "io/Uf2.hpp"
#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "io/export/carray/CArrayOutFile.hpp"
#include "io/export/coe/CoeOutFile.hpp"
#include "io/export/dfuse/DfuSeOutFile.hpp"
#include "io/export/elf/ElfOutFile.hpp"
#include "io/export/hexdump/HexDumpOutFile.hpp"
#include "io/export/mif/MifOutFile.hpp"
#include "io/export/titxt/TiTxtOutFile.hpp"
#include "io/export/uf2/Uf2OutFile.hpp"
#include "io/export/vmem/VmemOutFile.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/Arrangement.hpp"
#include "parser/commands/Conventions.hpp"
#include "platform/Paths.hpp"

namespace Parser::WrapperLib {

namespace {

using Io::Export::TessaronExportApi;
using WriterPointer = std::unique_ptr<TessaronExportApi>;

WriterPointer makeIntelHex(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::IntelHexOutFile>(path, styles.intelHexStyle);
}

WriterPointer makeRawBinary(const std::string& path, const OutputStyles& /*styles*/) {
    return std::make_unique<Io::Export::RawBinaryOutFile>(path);
}

WriterPointer makeEmbedded(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::EmbeddedC_AssemblerOutFile>(path, styles.embeddedStyle);
}

WriterPointer makeMotorola(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::MotorolaS_OutFile>(path, styles.motorolaStyle);
}

void setRecordLength(OutputStyles& styles, std::uint32_t number) {
    styles.intelHexStyle.dataRecordLength = number;
}

void setElementsPerLine(OutputStyles& styles, std::uint32_t number) {
    styles.embeddedStyle.elementsPerLine = number;
}

void setRecordSize(OutputStyles& styles, std::uint32_t number) {
    styles.motorolaStyle.maximumRecordSize = number;
}

WriterPointer makeTiTxt(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::TiTxtOutFile>(path, styles.tiTxtStyle);
}

void setHexUnit(OutputStyles& styles, std::uint32_t bytes) {
    styles.intelHexStyle.addressUnit = bytes;
}

void setMotorolaUnit(OutputStyles& styles, std::uint32_t bytes) {
    styles.motorolaStyle.addressUnit = bytes;
}

void setTiTxtUnit(OutputStyles& styles, std::uint32_t bytes) {
    styles.tiTxtStyle.addressUnit = bytes;
}

WriterPointer makeUf2(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::Uf2OutFile>(path, styles.uf2Style);
}

WriterPointer makeVmem(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::VmemOutFile>(path, styles.wordStyle);
}

WriterPointer makeMif(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::MifOutFile>(path, styles.wordStyle);
}

WriterPointer makeCoe(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::CoeOutFile>(path, styles.wordStyle);
}

WriterPointer makeHexDump(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::HexDumpOutFile>(path, styles.hexDumpStyle);
}

WriterPointer makeArray(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::CArrayOutFile>(path, styles.arrayStyle);
}

/// With wider elements, and with a guard.
template <std::uint32_t ElementBytes>
WriterPointer makeWideArray(const std::string& path, const OutputStyles& styles) {
    Io::Export::CArrayOutputStyle style = styles.arrayStyle;
    style.element.wordBytes = ElementBytes;
    if (style.includeGuard.empty()) {
        style.includeGuard = "INCLUDED_" + style.name;
        for (char& c : style.includeGuard)
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return std::make_unique<Io::Export::CArrayOutFile>(path, std::move(style));
}

WriterPointer makeDfuSe(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::DfuSeOutFile>(path, styles.dfuSeStyle);
}

WriterPointer makeElf(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::ElfOutFile>(path, styles.elfStyle);
}

void setElfUnit(OutputStyles& styles, std::uint32_t bytes) {
    styles.elfStyle.addressUnit = bytes;
}

void setFamily(OutputStyles& styles, std::uint32_t number) {
    styles.uf2Style.families = {number};
}

void setFamilies(OutputStyles& styles, std::vector<std::uint32_t> numbers) {
    styles.uf2Style.families = std::move(numbers);
}

void setWordBytes(OutputStyles& styles, std::uint32_t number) {
    styles.wordStyle.wordBytes = number;
}

void setDumpLine(OutputStyles& styles, std::uint32_t number) {
    styles.hexDumpStyle.bytesPerLine = number;
}

std::optional<std::uint32_t> wrongWordSize(const OutputStyles& styles) {
    constexpr std::uint32_t largestWord = 8;
    const std::uint32_t size = styles.wordStyle.wordBytes;
    return std::has_single_bit(size) && size <= largestWord ? std::nullopt : std::optional(size);
}

std::optional<std::uint32_t> wrongDumpLine(const OutputStyles& styles) {
    const std::uint32_t bytes = styles.hexDumpStyle.bytesPerLine;
    const bool isRight = bytes >= 1 && bytes <= Io::Export::HexDumpOutFile::longestLine;
    return isRight ? std::nullopt : std::optional(bytes);
}

void setArrayLine(OutputStyles& styles, std::uint32_t number) {
    styles.arrayStyle.elementsPerLine = number;
}

constexpr const char* wordSizes = "a word has 1, 2, 4 or 8 bytes";

using enum FormatNumber;

constexpr auto hexEndings = std::to_array<std::string_view>({".hex", ".ihx", ".ihex"});
constexpr auto sRecordEndings =
    std::to_array<std::string_view>({".mot", ".s19", ".s28", ".s37", ".srec", ".sre"});
constexpr auto rawEndings = std::to_array<std::string_view>({".bin", ".raw", ".img"});
constexpr auto tiTxtEndings = std::to_array<std::string_view>({".txt"});
constexpr auto uf2Endings = std::to_array<std::string_view>({".uf2"});
constexpr auto vmemEndings = std::to_array<std::string_view>({".vmem"});
constexpr auto arrayEndings = std::to_array<std::string_view>({".h"});
constexpr auto headerEndings = std::to_array<std::string_view>({".h", ".hpp", ".inc"});
constexpr auto mifEndings = std::to_array<std::string_view>({".mif"});
constexpr auto coeEndings = std::to_array<std::string_view>({".coe"});
constexpr auto dumpEndings = std::to_array<std::string_view>({".xxd", ".hexdump"});
/// Any text may be called so.
constexpr auto textEndings = std::to_array<std::string_view>({".txt"});
constexpr auto hexTextEndings = std::to_array<std::string_view>({".hex", ".ihx", ".ihex", ".txt"});
constexpr auto arrayTextEndings = std::to_array<std::string_view>({".h", ".txt"});
constexpr auto dfuSeEndings = std::to_array<std::string_view>({".dfu"});
constexpr auto elfEndings = std::to_array<std::string_view>({".elf"});
/// What compilers of several vendors call an ELF file.
constexpr auto otherElfEndings = std::to_array<std::string_view>({".axf", ".out"});

constexpr auto exportFormats = std::to_array<ExportFormat>({
    {.keyword = "RawBinary",
     .meaning = "the bytes alone",
     .trace = "SetExportFormatOptionRawBinary -> ",
     .makeWriter = &makeRawBinary,
     .hasAddresses = false,
     .isImageItself = true,
     .endings = rawEndings},
    {.keyword = "IntelHexExtended",
     .meaning = "Intel HEX with linear addresses",
     .trace = "SetExportFormatOptionIntelHexExtended -> ",
     .makeWriter = &makeIntelHex,
     .numberForm = Optional,
     .setNumber = &setRecordLength,
     .setAddressUnit = &setHexUnit,
     .hasStartAddress = true,
     .isComparedByAddress = true,
     .endings = hexEndings,
     .otherEndings = textEndings},
    {.keyword = "IntelHexSegment",
     .meaning = "Intel HEX with segment addresses",
     .trace = "SetExportFormatOptionIntelHexSegment -> ",
     .makeWriter = &makeIntelHex,
     .numberForm = Optional,
     .setNumber = &setRecordLength,
     .setAddressUnit = &setHexUnit,
     .hasStartAddress = true,
     .useSegmentAddressing = true,
     .isComparedByAddress = true,
     .otherEndings = hexTextEndings},
    {.keyword = "EmbeddedC_Assembler",
     .meaning = ".byte directives for assemblers",
     .trace = "SetExportFormatOptionEmbeddedC_Assembler -> ",
     .makeWriter = &makeEmbedded,
     .numberForm = Optional,
     .setNumber = &setElementsPerLine,
     .hasAddresses = false,
     .otherEndings = arrayTextEndings},
    {.keyword = "MotorolaS",
     .meaning = "S-records",
     .trace = "SetExportFormatOptionMotorolaS -> ",
     .makeWriter = &makeMotorola,
     .numberForm = Optional,
     .setNumber = &setRecordSize,
     .setAddressUnit = &setMotorolaUnit,
     .hasStartAddress = true,
     .hasHeaderText = true,
     .isComparedByAddress = true,
     .endings = sRecordEndings,
     .otherEndings = textEndings,
     .usualForm = "MotorolaS_32"},
    {.keyword = "TiTxt",
     .meaning = "TI-TXT",
     .trace = "SetExportFormatOptionTiTxt -> ",
     .makeWriter = &makeTiTxt,
     .setAddressUnit = &setTiTxtUnit,
     .isComparedByAddress = true,
     .endings = tiTxtEndings},
    {.keyword = "Uf2",
     .meaning = "UF2, for the loader of a family of devices",
     .trace = "SetExportFormatOptionUf2 -> ",
     .makeWriter = &makeUf2,
     .numberForm = Named,
     .setNumber = &setFamily,
     .names = &Io::Uf2::families,
     .setNumbers = &setFamilies,
     .isComparedByAddress = true,
     .endings = uf2Endings,
     .choice = "a family, such as Uf2_RP2040"},
    {.keyword = "Vmem",
     .meaning = "a memory file of Verilog, in words",
     .trace = "SetExportFormatOptionVmem -> ",
     .makeWriter = &makeVmem,
     .numberForm = Required,
     .setNumber = &setWordBytes,
     .wrongNumber = &wrongWordSize,
     .numbers = wordSizes,
     .endings = vmemEndings,
     // Verilog's $readmemh files are often called so.
     .otherEndings = hexTextEndings,
     .choice = "Vmem_1, Vmem_2, Vmem_4 or Vmem_8"},
    {.keyword = "Mif",
     .meaning = "a memory initialization file for FPGAs, in words",
     .trace = "SetExportFormatOptionMif -> ",
     .makeWriter = &makeMif,
     .numberForm = Required,
     .setNumber = &setWordBytes,
     .wrongNumber = &wrongWordSize,
     .numbers = wordSizes,
     .endings = mifEndings,
     .choice = "Mif_1, Mif_2, Mif_4 or Mif_8"},
    {.keyword = "Coe",
     .meaning = "a coefficient file for memories of FPGAs, in words",
     .trace = "SetExportFormatOptionCoe -> ",
     .makeWriter = &makeCoe,
     .numberForm = Required,
     .setNumber = &setWordBytes,
     .wrongNumber = &wrongWordSize,
     .numbers = wordSizes,
     .hasAddresses = false,
     .endings = coeEndings,
     .choice = "Coe_1, Coe_2, Coe_4 or Coe_8"},
    {.keyword = "HexDump",
     .meaning = "a hex dump, as xxd writes and reads it",
     .trace = "SetExportFormatOptionHexDump -> ",
     .makeWriter = &makeHexDump,
     .numberForm = Optional,
     .setNumber = &setDumpLine,
     .wrongNumber = &wrongDumpLine,
     .numbers = "a line has 1 to 256 bytes",
     .endings = dumpEndings,
     .otherEndings = textEndings},
    {.keyword = "CArray16",
     .meaning = "an array in C of words of 16 bits",
     .trace = "SetExportFormatOptionCArray16 -> ",
     .makeWriter = &makeWideArray<2>,
     .numberForm = Optional,
     .setNumber = &setArrayLine,
     .hasAddresses = false,
     .isArray = true,
     .otherEndings = headerEndings},
    {.keyword = "CArray32",
     .meaning = "an array in C of words of 32 bits",
     .trace = "SetExportFormatOptionCArray32 -> ",
     .makeWriter = &makeWideArray<4>,
     .numberForm = Optional,
     .setNumber = &setArrayLine,
     .hasAddresses = false,
     .isArray = true,
     .otherEndings = headerEndings},
    {.keyword = "CArray64",
     .meaning = "an array in C of words of 64 bits",
     .trace = "SetExportFormatOptionCArray64 -> ",
     .makeWriter = &makeWideArray<8>,
     .numberForm = Optional,
     .setNumber = &setArrayLine,
     .hasAddresses = false,
     .isArray = true,
     .otherEndings = headerEndings},
    {.keyword = "CArray",
     .meaning = "an array in C",
     .trace = "SetExportFormatOptionCArray -> ",
     .makeWriter = &makeArray,
     .numberForm = Optional,
     .setNumber = &setArrayLine,
     .hasAddresses = false,
     .isArray = true,
     .endings = arrayEndings},
    {.keyword = "DfuSe",
     .meaning = "DfuSe, for USB loaders",
     .trace = "SetExportFormatOptionDfuSe -> ",
     .makeWriter = &makeDfuSe,
     .hasUsbIds = true,
     .endings = dfuSeEndings,
     .addressAt = &Io::Export::DfuSeOutFile::addressAt},
    {.keyword = "Elf",
     .meaning = "a copy of an ELF file with the bytes of the images",
     .trace = "SetExportFormatOptionElf -> ",
     .makeWriter = &makeElf,
     .setAddressUnit = &setElfUnit,
     .needsTemplate = true,
     .isComparedByAddress = true,
     .endings = elfEndings,
     .otherEndings = otherElfEndings},
});

}  // namespace

bool ExportFormat::suits(std::string_view path) const {
    return Io::Formats::hasEnding(path, endings) || Io::Formats::hasEnding(path, otherEndings);
}

std::span<const ExportFormat> CmdWriteFile::formats() {
    return exportFormats;
}

const ExportFormat* CmdWriteFile::formatNamed(std::string_view text) {
    const auto* const found = std::ranges::find_if(exportFormats, [text](const ExportFormat& row) {
        const std::string_view keyword = row.keyword;
        return text == keyword ||
               (text.starts_with(keyword) && text.substr(keyword.size()).starts_with('_'));
    });
    return found == exportFormats.end() ? nullptr : found;
}

const ExportFormat* CmdWriteFile::formatByEnding(std::string_view path) {
    const auto* const found = std::ranges::find_if(exportFormats, [path](const ExportFormat& row) {
        return Io::Formats::hasEnding(path, row.endings);
    });
    return found == exportFormats.end() ? nullptr : found;
}

CmdWriteFile::CmdWriteFile() {
    styles_.embeddedStyle.header =
        "// !!! Generated code, do not edit !!!\n"
        "// \n"
        "// Converted Hex to C data array.\n"
        "// See documentation of Vellumcraft for details\n"
        "// \n"
        "// Generated: @time\n"
        "\n"
        "/// \\cond assembler\n"
        "\n";
    styles_.embeddedStyle.linePrefix = "\t.byte ";
    styles_.embeddedStyle.elementSeparator = ", ";
    styles_.embeddedStyle.footer =
        "\n"
        "#pragma endasm\n"
        "\n"
        "/// \\endcond\n"
        "\n"
        "\n"
        "// End of flash code data \n"
        "// @size bytes of code, padded to @elementsPerLine of flash blocks\n";
}

void CmdWriteFile::setFileName(std::string argument) {
    setPath(cleanedPath(std::move(argument)));
}

void CmdWriteFile::setElfTemplate(std::string argument) {
    setElfTemplatePath(cleanedPath(std::move(argument)));
}

bool CmdWriteFile::lacksTemplate() const {
    return format_ != nullptr && format_->needsTemplate && styles_.elfStyle.templatePath.empty();
}

void CmdWriteFile::addBuffer(std::string name) {
    bufferNames_.push_back(std::move(name));
}

void CmdWriteFile::setFormat(const ExportFormat& newFormat) {
    format_ = &newFormat;
    // Nothing clears this again: an IntelHexExtended after an IntelHexSegment keeps the segments.
    if (newFormat.useSegmentAddressing) styles_.intelHexStyle.useSegmentAddressing = true;
}

void CmdWriteFile::setFormatNumber(const ExportFormat& numbered, std::uint32_t number) {
    numbered.setNumber(styles_, number);
}

void CmdWriteFile::setFormatNumbers(const ExportFormat& numbered,
                                    std::vector<std::uint32_t> numbers) {
    numbered.setNumbers(styles_, std::move(numbers));
}

void CmdWriteFile::setHeaderText(std::string argument) {
    styles_.motorolaStyle.headerText = cleanedPath(std::move(argument));
}

void CmdWriteFile::setExecutionStartAddress(std::uint32_t address) {
    executionStartAddress_ = address;
    hasExecutionStartAddress_ = true;
}

void CmdWriteFile::setSection(std::string name) {
    styles_.embeddedStyle.section = std::move(name);
}

bool CmdWriteFile::execute(CmdContext& context) {
    context.symbols.forget();
    return guarded(Facts::Subject::File, fileName_, Facts::Work::Written,
                   [&] { return write(context); });
}

const ExportFormat& CmdWriteFile::format() const {
    return format_ == nullptr ? *formatNamed(usualFormat) : *format_;
}

bool CmdWriteFile::isPossible() const {
    if (addressUnit_ != 1 && format().setAddressUnit == nullptr) {
        Facts::report(Facts::AddressUnitRefused{Facts::Subject::File, fileName_, format().keyword});
        return false;
    }
    if (format_ == nullptr) return true;
    if (unwritten_ == Io::Export::Unwritten::Skipped && !format_->hasAddresses) {
        Facts::report(Facts::GapsNotExpressible{format_->keyword, fileName_});
        return false;
    }
    const auto wrong =
        format_->wrongNumber == nullptr ? std::nullopt : format_->wrongNumber(styles_);
    if (wrong) {
        Facts::report(
            Facts::FormatNumberWrong{format_->keyword, fileName_, *wrong, format_->numbers});
        return false;
    }
    if (groupCount() != 1 && groupCount() != bufferNames_.size()) {
        Facts::report(Facts::FamiliesNotOfImages{fileName_, groupCount(), bufferNames_.size()});
        return false;
    }
    const auto& header = styles_.motorolaStyle.headerText;
    // Of a format that was named before no setting counts.
    if (header && header->size() > longestHeader && format_->hasHeaderText) {
        Facts::report(Facts::HeaderTooLong{fileName_, header->size(), longestHeader});
        return false;
    }
    return true;
}

bool CmdWriteFile::write(CmdContext& context) const {
    if (!isPossible()) return false;
    OutputStyles styles = styles_;
    const Buffer::ByteOrder order = byteOrderOf(context, bufferNames_);
    styles.wordStyle.isLittleEndian = order == Buffer::ByteOrder::LittleEndian;
    // Elements of an array are numbers of a program, and as such of the order of other values.
    styles.arrayStyle.element.isLittleEndian = order != Buffer::ByteOrder::BigEndian;
    const auto writer = makeWriter(styles);
    std::deque<Layers> layers;
    std::deque<Buffer::MemoryBuffer> padded;
    std::deque<Buffer::MemoryBuffer> swapped;
    const bool isSkipping = unwritten_ == Io::Export::Unwritten::Skipped;
    for (std::size_t group = 0; group < groupCount(); ++group) {
        if (!layImages(context, group, layers.emplace_back())) return false;
        std::vector<const Buffer::MemoryBuffer*> images = layers.back().images();
        if (!padding_.apply(images, padded, isSkipping, fileName_)) return false;
        if (!swapBytes(images, swapped) || !areOfWords(images)) return false;
        for (const Buffer::MemoryBuffer* const image : images) {
            Io::Export::ImageView view(image->getStartAddress(), image->viewElements(), unwritten_);
            view.group = group;
            writer->insert(view);
        }
    }
    if (hasExecutionStartAddress_) writer->setExecutionAddress(executionStartAddress_);
    try {
        writer->saveToFile();
    } catch (const Io::Export::GivenUp&) {
        return false;
    } catch (const std::exception&) {
        Facts::report(Facts::FileNotWritten{fileName_});
        return false;
    }
    return true;
}

/// Of a file for several families, the images of each are a group.
std::size_t CmdWriteFile::groupCount() const {
    const bool hasGroups = format_ != nullptr && format_->setNumbers != nullptr;
    return hasGroups ? styles_.uf2Style.families.size() : 1;
}

/// The place of the image's family, where it occurs first.
std::size_t CmdWriteFile::groupOf(std::size_t image) const {
    if (groupCount() == 1) return 0;
    const auto& families = styles_.uf2Style.families;
    const auto first = std::ranges::find(families, families[image]);
    return static_cast<std::size_t>(first - families.begin());
}

bool CmdWriteFile::layImages(CmdContext& context, std::size_t group, Layers& layers) const {
    std::vector<NamedImage> images;
    for (std::size_t i = 0; i < bufferNames_.size(); ++i) {
        if (groupOf(i) != group) continue;
        images.push_back({findBuffer(context, bufferNames_[i]), bufferNames_[i]});
        if (images.back().image == nullptr) return false;
    }
    return layers.add(images, overlapRule_, {Facts::Subject::File, fileName_});
}

bool CmdWriteFile::areOfWords(const std::vector<const Buffer::MemoryBuffer*>& images) const {
    if (addressUnit_ == 1) return true;
    bool areWhole = true;
    for (const Buffer::MemoryBuffer* const image : images)
        Io::Export::forStretches(
            {image->getStartAddress(), image->viewElements(), unwritten_},
            [&](const Io::Export::ImageView& stretch) {
                const std::uint64_t start = stretch.startAddress;
                const std::uint64_t end = start + stretch.elements.size();
                if (!areWhole || (start % addressUnit_ == 0 && end % addressUnit_ == 0)) return;
                areWhole = false;
                Facts::report(Facts::ImageNotOfWords{Facts::Subject::File, fileName_,
                                                     Facts::WordUse::AddressUnit, start, end,
                                                     addressUnit_});
            });
    return areWhole;
}

bool CmdWriteFile::swapBytes(std::vector<const Buffer::MemoryBuffer*>& images,
                             std::deque<Buffer::MemoryBuffer>& swapped) const {
    if (swappedWord_ == 0) return true;
    for (const Buffer::MemoryBuffer*& image : images) {
        if (!isOfWords(*image, swappedWord_, Facts::WordUse::SwappedBytes, Facts::Subject::File,
                       fileName_))
            return false;
        swapped.push_back(
            Buffer::regrouped(std::array{image}, Buffer::Regrouping::swapped(swappedWord_)));
        image = &swapped.back();
    }
    return true;
}

std::unique_ptr<Io::Export::TessaronExportApi> CmdWriteFile::makeWriter(
    const OutputStyles& styles) const {
    // Without a format none of its settings counts.
    OutputStyles counting = format_ == nullptr ? OutputStyles{} : styles;
    if (addressUnit_ != 1) format().setAddressUnit(counting, addressUnit_);
    return format().makeWriter(Platform::terminatedPath(fileName_), counting);
}

}  // namespace Parser::WrapperLib
