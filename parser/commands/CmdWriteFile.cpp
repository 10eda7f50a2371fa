#include "parser/commands/CmdWriteFile.hpp"

#include <array>
#include <exception>
#include <utility>

#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
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

constexpr std::array<ExportFormat, 5> exportFormats{{
    {"RawBinary", "SetExportFormatOptionRawBinary -> ", nullptr, &makeRawBinary, false},
    {"IntelHexExtended", "SetExportFormatOptionIntelHexExtended -> ", &setRecordLength,
     &makeIntelHex},
    {"IntelHexSegment", "SetExportFormatOptionIntelHexSegment -> ", &setRecordLength, &makeIntelHex,
     true, true},
    {"EmbeddedC_Assembler", "SetExportFormatOptionEmbeddedC_Assembler -> ", &setElementsPerLine,
     &makeEmbedded, false},
    {"MotorolaS", "SetExportFormatOptionMotorolaS -> ", &setRecordSize, &makeMotorola},
}};

}  // namespace

std::span<const ExportFormat> CmdWriteFile::formats() {
    return exportFormats;
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
    fileName_ = cleanedPath(std::move(argument));
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

bool CmdWriteFile::write(CmdContext& context) const {
    if (unwritten_ == Io::Export::Unwritten::Skipped && format_ != nullptr &&
        !format_->hasAddresses) {
        Facts::report(Facts::GapsNotExpressible{format_->keyword, fileName_});
        return false;
    }
    const auto writer = makeWriter();
    for (const std::string& name : bufferNames_) {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, name);
        if (buffer == nullptr) return false;
        writer->insert({buffer->getStartAddress(), buffer->viewElements(), unwritten_});
    }
    if (hasExecutionStartAddress_) writer->setExecutionAddress(executionStartAddress_);
    try {
        writer->saveToFile();
    } catch (const std::exception&) {
        Facts::report(Facts::FileNotWritten{fileName_});
        return false;
    }
    return true;
}

std::unique_ptr<Io::Export::TessaronExportApi> CmdWriteFile::makeWriter() const {
    // Without a format no setting counts.
    return format_ == nullptr ? makeIntelHex(fileName_, {})
                              : format_->makeWriter(fileName_, styles_);
}

}  // namespace Parser::WrapperLib
