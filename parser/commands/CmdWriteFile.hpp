#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"
#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

enum class ExportFormat : std::uint32_t {
    NotSet = 0,
    RawBinary = 1,
    IntelHexExtended = 2,
    IntelHexSegment = 3,
    EmbeddedC_Assembler = 4,
    MotorolaS = 5
};

/// WRITE_FILE: writes images into one file. Without a format that is Intel HEX with linear
/// addressing and 16 data bytes a record.
class CmdWriteFile final : public CmdApi {
public:
    CmdWriteFile();

    /// @param argument  the path as it stands in the script, delimiters included
    void setFileName(std::string argument);
    void addBuffer(std::string name);

    /// @param recordLength  the number of an underscore form; the record length, or the elements
    ///                      of a line, keeps its value without one
    void setFormat(ExportFormat newFormat, std::optional<std::uint32_t> recordLength);

    /// The number form of the execution address.
    void setExecutionStartAddress(std::uint32_t address);

    /// The keyword form of the execution address. It never reaches the number: what follows the
    /// equals sign of `option` becomes the section of the embedded format.
    void setSection(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::WriteFile); }

private:
    bool write(CmdContext& context) const;
    std::unique_ptr<Io::Export::TessaronExportApi> makeWriter() const;

    std::string fileName;
    std::vector<std::string> bufferNames;
    std::uint64_t executionStartAddress = 0;
    bool hasExecutionStartAddress = false;
    ExportFormat format = ExportFormat::NotSet;
    Io::Export::MotorolaSOutputStyle motorolaStyle;
    Io::Export::IntelHexOutputStyle intelHexStyle;
    Io::Export::EmbeddedOutputStyle embeddedStyle;
};

}  // namespace Parser::WrapperLib
