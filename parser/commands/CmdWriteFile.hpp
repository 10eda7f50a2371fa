#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
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
    Io::Export::Uf2OutputStyle uf2Style;
    Io::Export::VmemOutputStyle vmemStyle;
    Io::Export::CArrayOutputStyle arrayStyle;
    Io::Export::DfuSeOutputStyle dfuSeStyle;
};

/// What may follow the keyword of a format.
enum class FormatNumber : std::uint8_t {
    None,
    Optional,  ///< an underscore and a number, or nothing
    Required,  ///< an underscore and a number
    Family     ///< an underscore and the name of a family of devices or its number
};

/// A `-setFormat` keyword, the trace text of its parser action and the writer that it chooses.
struct ExportFormat {
    const char* keyword;
    const char* trace;
    /// Takes the number of the underscore form; null if the format has no such form.
    void (*setNumber)(OutputStyles& styles, std::uint32_t number);
    std::unique_ptr<Io::Export::TessaronExportApi> (*makeWriter)(const std::string& path,
                                                                 const OutputStyles& styles);
    FormatNumber numberForm = FormatNumber::None;
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

    /// The path, in which every character counts.
    void setPath(std::string path) { fileName_ = std::move(path); }
    const std::string& fileName() const { return fileName_; }
    void addBuffer(std::string name);

    /// @param newFormat  a row of `formats`
    /// @param number     the number of an underscore form; without one the record length, or the
    ///                   elements of a line, keep their value
    void setFormat(const ExportFormat& newFormat, std::optional<std::uint32_t> number);

    /// The name of the array of the CArray format.
    void setArrayName(std::string name) { styles_.arrayStyle.name = std::move(name); }

    /// The vendor and the product that a DfuSe file is for; the low 16 bits count.
    void setVendorId(std::uint32_t id) { styles_.dfuSeStyle.vendorId = id; }
    void setProductId(std::uint32_t id) { styles_.dfuSeStyle.productId = id; }

    /// Lets addresses that nothing wrote stay gaps. A format without addresses refuses that.
    void skipUnwritten() { unwritten_ = Io::Export::Unwritten::Skipped; }

    /// The number form of the execution address.
    void setExecutionStartAddress(std::uint32_t address);

    /// The keyword form of the execution address. It does not set the number: its name becomes the
    /// section of the embedded format.
    void setSection(std::string name);

    /// The keyword of the format of a statement that names none.
    static constexpr const char* usualFormat() { return "IntelHexExtended"; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::WriteFile); }

private:
    bool write(CmdContext& context) const;
    bool isPossible() const;
    std::unique_ptr<Io::Export::TessaronExportApi> makeWriter(const OutputStyles& styles) const;
    bool isLittleEndian(const CmdContext& context) const;

    std::string fileName_;
    std::vector<std::string> bufferNames_;
    std::uint64_t executionStartAddress_ = 0;
    bool hasExecutionStartAddress_ = false;
    Io::Export::Unwritten unwritten_ = Io::Export::Unwritten::Filled;
    const ExportFormat* format_ = nullptr;  ///< null without `-setFormat`
    OutputStyles styles_;
};

}  // namespace Parser::WrapperLib
