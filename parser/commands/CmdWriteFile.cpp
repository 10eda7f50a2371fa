#include "parser/commands/CmdWriteFile.hpp"

#include <exception>
#include <utility>

#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "parser/commands/Conventions.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

CmdWriteFile::CmdWriteFile() {
    embeddedStyle.header =
        "// !!! Generated code, do not edit !!!\n"
        "// \n"
        "// Converted Hex to C data array.\n"
        "// See documentation of Vellumcraft for details\n"
        "// \n"
        "// Generated: @time\n"
        "\n"
        "/// \\cond assembler\n"
        "\n";
    embeddedStyle.linePrefix = "\t.byte ";
    embeddedStyle.elementSeparator = ", ";
    embeddedStyle.footer =
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
    fileName = cleanedPath(std::move(argument));
}

void CmdWriteFile::addBuffer(std::string name) {
    bufferNames.push_back(std::move(name));
}

void CmdWriteFile::setFormat(ExportFormat newFormat, std::optional<std::uint32_t> recordLength) {
    format = newFormat;
    // Nothing ever clears this again, so that a later IntelHexExtended keeps the segments.
    if (format == ExportFormat::IntelHexSegment) intelHexStyle.useSegmentAddressing = true;
    if (!recordLength) return;
    if (format == ExportFormat::MotorolaS)
        motorolaStyle.maximumRecordSize = *recordLength;
    else if (format == ExportFormat::EmbeddedC_Assembler)
        embeddedStyle.elementsPerLine = *recordLength;
    else
        intelHexStyle.dataRecordLength = *recordLength;
}

void CmdWriteFile::setExecutionStartAddress(std::uint32_t address) {
    executionStartAddress = address;
    hasExecutionStartAddress = true;
}

void CmdWriteFile::setSection(std::string name) {
    embeddedStyle.section = std::move(name);
}

bool CmdWriteFile::execute(CmdContext& context) {
    return guarded("File", fileName, "written", [&] { return write(context); });
}

bool CmdWriteFile::write(CmdContext& context) const {
    const auto writer = makeWriter();
    for (const std::string& name : bufferNames) {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, name);
        if (buffer == nullptr) return false;
        writer->insertMemoryBuffer(*buffer);
    }
    if (hasExecutionStartAddress) writer->setExecutionAddress(executionStartAddress);
    try {
        writer->saveToFile();
    } catch (const std::exception&) {
        Util::reportLine("Error: File ", fileName, " could not be written !");
        Util::reportLine("Operation aborted.");
        return false;
    }
    return true;
}

std::unique_ptr<Io::Export::TessaronExportApi> CmdWriteFile::makeWriter() const {
    using namespace Io::Export;
    const char* const path = fileName.c_str();
    switch (format) {
        case ExportFormat::RawBinary:
            return std::make_unique<RawBinaryOutFile>(path);
        case ExportFormat::IntelHexExtended:
        case ExportFormat::IntelHexSegment:
            return std::make_unique<IntelHexOutFile>(path, intelHexStyle);
        case ExportFormat::EmbeddedC_Assembler:
            return std::make_unique<EmbeddedC_AssemblerOutFile>(path, embeddedStyle);
        case ExportFormat::MotorolaS:
            return std::make_unique<MotorolaS_OutFile>(path, motorolaStyle);
        case ExportFormat::NotSet:
            break;
    }
    return std::make_unique<IntelHexOutFile>(path, IntelHexOutputStyle{});
}

}  // namespace Parser::WrapperLib
