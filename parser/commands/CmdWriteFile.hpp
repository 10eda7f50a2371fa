#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"
#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// The settings of all writers. A statement gives those of one writer or of several; only those of
/// the last format count.
struct OutputStyles {
    Io::Export::MotorolaSOutputStyle motorolaStyle;
    Io::Export::IntelHexOutputStyle intelHexStyle;
    Io::Export::EmbeddedOutputStyle embeddedStyle;
};

/// A `-setFormat` keyword, the trace text of its parser action and the writer that it chooses.
struct ExportFormat {
    const char* keyword;
    const char* trace;
    /// Takes the number of the underscore form; null if the format has no such form.
    void (*setNumber)(OutputStyles& styles, std::uint32_t number);
    std::unique_ptr<Io::Export::TessaronExportApi> (*makeWriter)(const std::string& path,
                                                                 const OutputStyles& styles);
    bool hasAddresses = true;           ///< it can express gaps
    bool useSegmentAddressing = false;  ///< of Intel HEX, for this and all later formats
};

/// WRITE_FILE: writes images into one file. Without a format that is Intel HEX with linear
/// addressing and 16 data bytes a record.
class CmdWriteFile final : public CmdApi {
public:
    CmdWriteFile();

    /// The formats that a script can name, in the order in which the grammar tries them.
    static std::span<const ExportFormat> formats();

    /// @param argument  the path as written in the script, delimiters included
    void setFileName(std::string argument);
    void addBuffer(std::string name);

    /// @param newFormat  a row of `formats`
    /// @param number     the number of an underscore form; without one the record length, or the
    ///                   elements of a line, keep their value
    void setFormat(const ExportFormat& newFormat, std::optional<std::uint32_t> number);

    /// Lets addresses that nothing wrote stay gaps. A format without addresses refuses that.
    void skipUnwritten() { unwritten_ = Io::Export::Unwritten::Skipped; }

    /// The number form of the execution address.
    void setExecutionStartAddress(std::uint32_t address);

    /// The keyword form of the execution address. It does not set the number: its name becomes the
    /// section of the embedded format.
    void setSection(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::WriteFile); }

private:
    bool write(CmdContext& context) const;
    std::unique_ptr<Io::Export::TessaronExportApi> makeWriter() const;

    std::string fileName_;
    std::vector<std::string> bufferNames_;
    std::uint64_t executionStartAddress_ = 0;
    bool hasExecutionStartAddress_ = false;
    Io::Export::Unwritten unwritten_ = Io::Export::Unwritten::Filled;
    const ExportFormat* format_ = nullptr;  ///< null without `-setFormat`
    OutputStyles styles_;
};

}  // namespace Parser::WrapperLib
