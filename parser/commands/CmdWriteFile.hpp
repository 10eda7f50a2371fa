#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "io/NamedNumber.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"
#include "parser/commands/CmdApi.hpp"
#include "parser/commands/Layering.hpp"
#include "parser/commands/Padding.hpp"

namespace Parser::WrapperLib {

/// The settings of all writers. A statement gives those of one writer or of several; only those of
/// the last format count.
struct OutputStyles {
    Io::Export::MotorolaSOutputStyle motorolaStyle;
    Io::Export::IntelHexOutputStyle intelHexStyle;
    Io::Export::EmbeddedOutputStyle embeddedStyle;
    Io::Export::TiTxtOutputStyle tiTxtStyle;
    Io::Export::Uf2OutputStyle uf2Style;
    Io::Export::WordStyle wordStyle;  ///< of memory files
    Io::Export::HexDumpOutputStyle hexDumpStyle;
    Io::Export::CArrayOutputStyle arrayStyle;
    Io::Export::DfuSeOutputStyle dfuSeStyle;
    Io::Export::ElfOutputStyle elfStyle;
};

/// What may follow the keyword of a format.
enum class FormatNumber : std::uint8_t {
    None,
    Optional,  ///< an underscore and a number, or nothing
    Required,  ///< an underscore and a number
    Named      ///< an underscore and one of the format's names or a number
};

/// What the system knows of a format of output files. Grammar, statement, conversion and the
/// comparison of outputs take everything from these rows.
struct ExportFormat {
    const char* keyword = nullptr;  ///< of `-setFormat`
    const char* meaning = nullptr;  ///< one line, for people
    const char* trace = nullptr;    ///< the trace text of its parser action
    std::unique_ptr<Io::Export::TessaronExportApi> (*makeWriter)(
        const std::string& path, const OutputStyles& styles) = nullptr;
    FormatNumber numberForm = FormatNumber::None;
    /// Takes the number of the underscore form; null if the format has no such form.
    void (*setNumber)(OutputStyles& styles, std::uint32_t number) = nullptr;
    /// The number of the settings, if the format does not take it; null if it takes all.
    std::optional<std::uint32_t> (*wrongNumber)(const OutputStyles& styles) = nullptr;
    const char* numbers = "";  ///< in words, those that it takes
    /// The names of the form `Named`.
    std::span<const Io::NamedNumber> (*names)() = nullptr;
    /// Takes a list of them, one for each image; null if the format has one for all.
    void (*setNumbers)(OutputStyles& styles, std::vector<std::uint32_t> numbers) = nullptr;
    bool hasAddresses = true;  ///< it can express gaps
    /// Lets addresses count words of that many bytes; null if they cannot.
    void (*setAddressUnit)(OutputStyles& styles, std::uint32_t bytes) = nullptr;
    bool hasStartAddress = false;       ///< it writes the execution address
    bool useSegmentAddressing = false;  ///< of Intel HEX, for this and all later formats
    bool needsTemplate = false;         ///< it is a copy of a file with other bytes
    bool isArray = false;               ///< of C: it has names in C, of an array and of a guard
    bool hasHeaderText = false;         ///< a text can be chosen that its files begin with
    bool hasUsbIds = false;             ///< numbers for USB, of a vendor and of a product
    bool isImageItself = false;         ///< the bytes of the images, one image after the other
    /// Its files are compared by the addresses of their data, not byte for byte.
    bool isComparedByAddress = false;
    std::span<const std::string_view> endings = {};  ///< of its files' names, in lower case
    /// Endings that its files may have as well, though they mean another format by themselves.
    std::span<const std::string_view> otherEndings = {};
    /// What an ending means, as `-setFormat` takes it; null for the keyword.
    const char* usualForm = nullptr;
    /// What the user has to choose from where an ending does not say enough; null otherwise.
    const char* choice = nullptr;
    /// The address of the byte at an offset of a file that was written, where the file is compared
    /// byte for byte and has addresses nevertheless.
    std::optional<std::uint64_t> (*addressAt)(const Buffer::MemoryBuffer& file,
                                              std::uint64_t offset) = nullptr;

    /// Files of the format may be called so.
    bool suits(std::string_view path) const;
};

/// WRITE_FILE: writes images into one file. Without a format that is Intel HEX with linear
/// addressing and 16 data bytes a record.
class CmdWriteFile final : public CmdApi {
public:
    CmdWriteFile();

    /// The formats that a script can name, in the order in which the grammar tries them.
    static std::span<const ExportFormat> formats();

    /// The format of which `text` is the keyword, or the keyword and a number; null if it is none.
    static const ExportFormat* formatNamed(std::string_view text);

    /// The format whose files end as `path` does, in either case, or null.
    static const ExportFormat* formatByEnding(std::string_view path);

    /// @param argument  the path as written in the script, delimiters included
    void setFileName(std::string argument);

    /// The path, in which every character counts.
    void setPath(std::string path) { fileName_ = std::move(path); }
    void addBuffer(std::string name);

    /// @param newFormat  a row of `formats`
    void setFormat(const ExportFormat& newFormat);

    /// The number of the underscore form of a format; without one the record length, or the
    /// elements of a line, keep their value.
    void setFormatNumber(const ExportFormat& numbered, std::uint32_t number);

    /// The numbers of a format of the form `Named`, one for each image.
    void setFormatNumbers(const ExportFormat& numbered, std::vector<std::uint32_t> numbers);

    /// The text of the header record of S-records, at most 252 bytes.
    void setHeaderText(std::string argument);
    static constexpr std::size_t longestHeader = 252;

    /// The macro around the arrays of C.
    void setIncludeGuard(std::string name) { styles_.arrayStyle.includeGuard = std::move(name); }

    /// The name of the array of the formats with CArray in their name.
    void setArrayName(std::string name) { styles_.arrayStyle.name = std::move(name); }

    /// The vendor and the product that a DfuSe file is for; the low 16 bits count.
    void setVendorId(std::uint32_t id) { styles_.dfuSeStyle.vendorId = id; }
    void setProductId(std::uint32_t id) { styles_.dfuSeStyle.productId = id; }

    /// The ELF file that the Elf format copies.
    ///
    /// @param argument  the path as written in the script, delimiters included
    void setElfTemplate(std::string argument);

    /// The same by its path, in which every character counts.
    void setElfTemplatePath(std::string path) { styles_.elfStyle.templatePath = std::move(path); }

    /// The format copies a file, and none was named.
    bool lacksTemplate() const;

    /// Lets addresses that nothing wrote stay gaps. A format without addresses refuses that.
    void skipUnwritten() { unwritten_ = Io::Export::Unwritten::Skipped; }

    /// Fills gaps of up to `most` addresses that nothing wrote, and lets longer ones stay gaps.
    void setShortGaps(std::uint32_t most) {
        padding_.shortGaps = most;
        skipUnwritten();
    }

    /// Lets what the file has of the images begin and end at multiples of `alignment`.
    void setAlignment(std::uint32_t alignment) { padding_.alignment = alignment; }

    /// Which byte counts where images have one for the same address. Without a rule the file has
    /// them all, one after the other.
    void setOverlapRule(Buffer::OverlapRule rule) { overlapRule_ = rule; }

    /// Reverses the bytes of each word of 2, 4 or 8 bytes in the file.
    void setSwappedWord(std::uint32_t size) { swappedWord_ = size; }

    /// Lets the addresses of the file count words of that many bytes; those of images, and the
    /// execution address, count bytes.
    void setAddressUnit(std::uint32_t bytes) { addressUnit_ = bytes; }

    /// The number form of the execution address.
    void setExecutionStartAddress(std::uint32_t address);

    /// The keyword form of the execution address. It does not set the number: its name becomes the
    /// section of the embedded format.
    void setSection(std::string name);

    /// The keyword of the format of a statement that names none.
    static constexpr const char* usualFormat = "IntelHexExtended";

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::WriteFile); }

private:
    bool write(CmdContext& context) const;
    bool isPossible() const;
    std::size_t groupCount() const;
    std::size_t groupOf(std::size_t image) const;
    std::unique_ptr<Io::Export::TessaronExportApi> makeWriter(const OutputStyles& styles) const;

    /// Fills `layers` with the images of a group in the order in which they are written. False
    /// after a report.
    bool layImages(CmdContext& context, std::size_t group, Layers& layers) const;

    /// What the file has of `images` is made of the words that its addresses count; reports it if
    /// not.
    bool areOfWords(const std::vector<const Buffer::MemoryBuffer*>& images) const;

    /// The format of the statement, or the one that counts without `-setFormat`.
    const ExportFormat& format() const;

    /// Replaces `images` by those with reversed words, which `swapped` keeps. False after a report.
    bool swapBytes(std::vector<const Buffer::MemoryBuffer*>& images,
                   std::deque<Buffer::MemoryBuffer>& swapped) const;

    std::string fileName_;
    std::vector<std::string> bufferNames_;
    std::uint64_t executionStartAddress_ = 0;
    bool hasExecutionStartAddress_ = false;
    Buffer::OverlapRule overlapRule_ = Buffer::OverlapRule::NotSet;
    Io::Export::Unwritten unwritten_ = Io::Export::Unwritten::Filled;
    Padding padding_;
    std::uint32_t addressUnit_ = 1;
    std::uint32_t swappedWord_ = 0;         ///< bytes; 0 leaves them in their order
    const ExportFormat* format_ = nullptr;  ///< null without `-setFormat`
    OutputStyles styles_;
};

}  // namespace Parser::WrapperLib
