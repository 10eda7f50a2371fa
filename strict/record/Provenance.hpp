#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/ImageObserver.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/record/OriginMap.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// Knows where every byte of every image of a run came from, and reports what got lost on the way:
/// bytes that another source replaced, that were cropped or wiped, and addresses that a checksum
/// covers though nothing gave them a byte.
class Provenance final : public Parser::WrapperLib::ImageObserver {
public:
    /// What gave bytes to images: lines of an input file, or a statement by itself.
    struct Source {
        std::string file;             ///< as the script names it; empty for a statement
        std::uint64_t firstLine = 0;  ///< 0 in a file without lines
        std::uint64_t lastLine = 0;
        Place statement;
    };

    /// The origins of one image.
    struct Image {
        OriginMap written;
        OriginMap fillers;                          ///< what FILL_BUFFER WITH_FILLER laid
        std::optional<std::uint64_t> startAddress;  ///< that its input file names
    };

    /// A file that became a part of an image.
    struct Input {
        std::string file;  ///< as the script names it
        bool isRaw;        ///< taken byte for byte, whatever its format
        Buffer::AreaList areas;
        std::size_t line;  ///< of the statement
    };

    /// @param reading  reads an input file once more, if a line of it is to be named
    Provenance(StatementReports& reports, const Io::Import::InputReading& reading)
        : reports_(&reports), reading_(&reading) {}

    /// A statement is about to run.
    void enter();

    /// Reports the addresses without a byte or a filler that a CRC or hash is going to cover.
    void checkCovered(const Parser::Statement& statement,
                      const Parser::WrapperLib::CmdContext& context) const;

    const std::map<std::string, Image>& images() const { return images_; }
    const std::vector<Source>& sources() const { return sources_; }
    const std::vector<Input>& inputs() const { return inputs_; }

    void onRead(const Parser::WrapperLib::CmdNewBuffer& statement,
                const Io::Import::TessaronImportApi& reader, const Buffer::Area& range) override;
    void onOverlay(const Parser::WrapperLib::CmdNewBuffer& statement,
                   const Buffer::MemoryBuffer& image, const std::string& name,
                   const Buffer::MemoryBuffer& part) override;
    void onWrite(const std::string& name, const Buffer::Area& area) override;
    void onFill(const std::string& name, const Buffer::Area& area) override;
    void onMade(const std::string& name, const Buffer::MemoryBuffer& image,
                std::uint64_t distance) override;

private:
    std::size_t thisStatement();
    OriginMap originsIn(const Parser::WrapperLib::CmdNewBuffer& statement,
                        const Io::Import::TessaronImportApi& reader);
    void reportCropped(const std::string& file, const OriginMap& all, const OriginMap& kept);
    void reportOverlaps(const Buffer::MemoryBuffer& image, const std::string& name,
                        const Buffer::MemoryBuffer& part) const;
    void reportWiped(const Buffer::MemoryBuffer& image, const std::string& name,
                     const Buffer::MemoryBuffer& part) const;
    std::uint64_t lineOf(const Source& source, std::uint64_t address) const;
    Note originNote(const char* what, const OriginMap& origins, std::uint64_t address) const;

    StatementReports* reports_;
    const Io::Import::InputReading* reading_;
    std::optional<std::size_t> statement_;  ///< the source that the statement is, once needed
    Image current_;                         ///< the image that is being made
    std::map<std::string, Image> images_;
    std::vector<Source> sources_;
    std::vector<Input> inputs_;
};

}  // namespace Strict
