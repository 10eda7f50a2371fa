#include "parser/commands/CmdWriteFile.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <exception>
#include <utility>

#include "io/Uf2.hpp"
#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "io/export/carray/CArrayOutFile.hpp"
#include "io/export/dfuse/DfuSeOutFile.hpp"
#include "io/export/titxt/TiTxtOutFile.hpp"
#include "io/export/uf2/Uf2OutFile.hpp"
#include "io/export/vmem/VmemOutFile.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/Arrangement.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

namespace {

using Io::Export::TessaronExportApi;
using WriterPointer = std::unique_ptr<TessaronExportApi>;

WriterPointer makeIntelHex(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::IntelHexOutFile>(path.c_str(), styles.intelHexStyle);
}

WriterPointer makeRawBinary(const std::string& path, const OutputStyles& /*styles*/) {
    return std::make_unique<Io::Export::RawBinaryOutFile>(path.c_str());
}

WriterPointer makeEmbedded(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::EmbeddedC_AssemblerOutFile>(path.c_str(),
                                                                    styles.embeddedStyle);
}

WriterPointer makeMotorola(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::MotorolaS_OutFile>(path.c_str(), styles.motorolaStyle);
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
    return std::make_unique<Io::Export::TiTxtOutFile>(path.c_str(), styles.tiTxtStyle);
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
    return std::make_unique<Io::Export::Uf2OutFile>(path.c_str(), styles.uf2Style);
}

WriterPointer makeVmem(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::VmemOutFile>(path.c_str(), styles.vmemStyle);
}

WriterPointer makeArray(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::CArrayOutFile>(path.c_str(), styles.arrayStyle);
}

WriterPointer makeDfuSe(const std::string& path, const OutputStyles& styles) {
    return std::make_unique<Io::Export::DfuSeOutFile>(path.c_str(), styles.dfuSeStyle);
}

void setFamily(OutputStyles& styles, std::uint32_t number) {
    styles.uf2Style.family = number;
}

void setWordBytes(OutputStyles& styles, std::uint32_t number) {
    styles.vmemStyle.wordBytes = number;
}

void setArrayLine(OutputStyles& styles, std::uint32_t number) {
    styles.arrayStyle.elementsPerLine = number;
}

/// Bytes of the largest word of the Vmem format.
constexpr std::uint32_t largestWord = 8;

using enum FormatNumber;

constexpr auto hexEndings = std::to_array<std::string_view>({".hex", ".ihx", ".ihex"});
constexpr auto sRecordEndings =
    std::to_array<std::string_view>({".mot", ".s19", ".s28", ".s37", ".srec", ".sre"});
constexpr auto rawEndings = std::to_array<std::string_view>({".bin", ".raw", ".img"});
constexpr auto tiTxtEndings = std::to_array<std::string_view>({".txt"});
constexpr auto uf2Endings = std::to_array<std::string_view>({".uf2"});
constexpr auto vmemEndings = std::to_array<std::string_view>({".vmem"});
constexpr auto arrayEndings = std::to_array<std::string_view>({".h"});
/// Any text may be called so.
constexpr auto textEndings = std::to_array<std::string_view>({".txt"});
constexpr auto hexTextEndings = std::to_array<std::string_view>({".hex", ".ihx", ".ihex", ".txt"});
constexpr auto arrayTextEndings = std::to_array<std::string_view>({".h", ".txt"});
constexpr auto dfuSeEndings = std::to_array<std::string_view>({".dfu"});

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
     .endings = sRecordEndings,
     .otherEndings = textEndings,
     .usualForm = "MotorolaS_32"},
    {.keyword = "TiTxt",
     .meaning = "TI-TXT",
     .trace = "SetExportFormatOptionTiTxt -> ",
     .makeWriter = &makeTiTxt,
     .setAddressUnit = &setTiTxtUnit,
     .endings = tiTxtEndings},
    {.keyword = "Uf2",
     .meaning = "UF2, for the loader of a family of devices",
     .trace = "SetExportFormatOptionUf2 -> ",
     .makeWriter = &makeUf2,
     .numberForm = Named,
     .setNumber = &setFamily,
     .names = &Io::Uf2::families,
     .endings = uf2Endings,
     .choice = "a family, such as Uf2_RP2040"},
    {.keyword = "Vmem",
     .meaning = "a memory file of Verilog, in words",
     .trace = "SetExportFormatOptionVmem -> ",
     .makeWriter = &makeVmem,
     .numberForm = Required,
     .setNumber = &setWordBytes,
     .endings = vmemEndings,
     // Verilog's $readmemh files are often called so.
     .otherEndings = hexTextEndings,
     .choice = "Vmem_1, Vmem_2, Vmem_4 or Vmem_8"},
    {.keyword = "CArray",
     .meaning = "an array in C",
     .trace = "SetExportFormatOptionCArray -> ",
     .makeWriter = &makeArray,
     .numberForm = Optional,
     .setNumber = &setArrayLine,
     .hasAddresses = false,
     .endings = arrayEndings},
    {.keyword = "DfuSe",
     .meaning = "DfuSe, for USB loaders",
     .trace = "SetExportFormatOptionDfuSe -> ",
     .makeWriter = &makeDfuSe,
     .endings = dfuSeEndings,
     .addressAt = &Io::Export::DfuSeOutFile::addressAt},
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

void CmdWriteFile::addBuffer(std::string name) {
    bufferNames_.push_back(std::move(name));
}

void CmdWriteFile::setFormat(const ExportFormat& newFormat, std::optional<std::uint32_t> number) {
    format_ = &newFormat;
    // Nothing clears this again: an IntelHexExtended after an IntelHexSegment keeps the segments.
    if (format_->useSegmentAddressing) styles_.intelHexStyle.useSegmentAddressing = true;
    if (number) format_->setNumber(styles_, *number);
}

void CmdWriteFile::setExecutionStartAddress(std::uint32_t address) {
    executionStartAddress_ = address;
    hasExecutionStartAddress_ = true;
}

void CmdWriteFile::setSection(std::string name) {
    styles_.embeddedStyle.section = std::move(name);
}

bool CmdWriteFile::execute(CmdContext& context) {
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
    const std::uint32_t width = styles_.vmemStyle.wordBytes;
    // A format that was named before does not count.
    const bool hasWords = format_->setNumber == &setWordBytes;
    if (hasWords && (!std::has_single_bit(width) || width > largestWord)) {
        Facts::report(Facts::FormatNumberWrong{format_->keyword, fileName_, width});
        return false;
    }
    return true;
}

bool CmdWriteFile::write(CmdContext& context) const {
    if (!isPossible()) return false;
    OutputStyles styles = styles_;
    styles.vmemStyle.isLittleEndian =
        byteOrderOf(context, bufferNames_) == Buffer::ByteOrder::LittleEndian;
    const auto writer = makeWriter(styles);
    Layers layers;
    if (!layImages(context, layers)) return false;
    std::vector<const Buffer::MemoryBuffer*> images = layers.images();
    std::deque<Buffer::MemoryBuffer> padded;
    std::deque<Buffer::MemoryBuffer> swapped;
    const bool isSkipping = unwritten_ == Io::Export::Unwritten::Skipped;
    if (!padding_.apply(images, padded, isSkipping, fileName_)) return false;
    if (!swapBytes(images, swapped) || !areOfWords(images)) return false;
    for (const Buffer::MemoryBuffer* const image : images)
        writer->insert({image->getStartAddress(), image->viewElements(), unwritten_});
    if (hasExecutionStartAddress_) writer->setExecutionAddress(executionStartAddress_);
    try {
        writer->saveToFile();
    } catch (const std::exception&) {
        Facts::report(Facts::FileNotWritten{fileName_});
        return false;
    }
    return true;
}

bool CmdWriteFile::layImages(CmdContext& context, Layers& layers) const {
    std::vector<NamedImage> images;
    for (const std::string& name : bufferNames_) {
        images.push_back({findBuffer(context, name), name});
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
    return format().makeWriter(fileName_, counting);
}

}  // namespace Parser::WrapperLib
