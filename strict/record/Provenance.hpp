#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "buffer/Regrouping.hpp"
#include "facts/InputFormat.hpp"
#include "inspect/Names.hpp"
#include "inspect/RunRecord.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/ImageObserver.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/record/OriginMap.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// Notes on the lines of a file that gave the first byte of an overlap that a statement refuses,
/// or, where the file has no lines, on what is there.
///
/// @param name  of what is at that address; empty if nobody knows
std::vector<Note> notesOnLines(const Facts::OverlapRefused& refused, const std::string& name);

/// Knows where every byte of every image of a run came from, and reports what got lost on the way:
/// bytes that another source replaced, that were cropped or wiped, and addresses that a checksum
/// covers though nothing gave them a byte.
class Provenance final : public Parser::WrapperLib::ImageObserver {
public:
    /// A statement that gave bytes to images, by itself or from a file that it read.
    struct Origin {
        std::string file;           ///< as the script names it; empty for a statement by itself
        Facts::InputFormat format;  ///< of the file
        Place statement;
        std::uint32_t addressUnit = 1;  ///< bytes of the words that addresses of the file count
    };

    /// Bytes that follow each other in a file and in the address space, or all of a statement.
    /// There are as many as a file has areas, so they are small.
    struct Source {
        /// In place of a number of `regrouped_`, for bytes of a file or a statement.
        static constexpr std::uint32_t notRegrouped = ~std::uint32_t{0};

        Buffer::Area area;            ///< in the file; of length 0 for a statement by itself
        std::uint64_t firstLine = 0;  ///< 0 in a file without lines
        std::uint64_t lastLine = 0;
        std::uint32_t origin = 0;  ///< its place among `origins`
        /// Of `regrouped_`, which says where the bytes were before.
        std::uint32_t regrouped = notRegrouped;
    };

    /// Lines of an input file; 0 and 0 for one without lines.
    struct Lines {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
    };

    /// A file that was read into an image, and how far its addresses were moved since.
    struct NamedFile {
        std::size_t origin;   ///< its place among `origins`
        std::uint64_t moved;  ///< modulo 2^64
    };

    /// The origins of one image.
    struct Image {
        OriginMap written;
        OriginMap fillers;                          ///< what FILL_BUFFER WITH_FILLER laid
        std::optional<std::uint64_t> startAddress;  ///< that its input file names
        /// The script gives its range, and not the distance between parts of what it is made of.
        bool hasNamedRange = false;
        /// Whose names are those of the image's addresses, the ones that count first. None once
        /// the bytes have gone to other places.
        std::vector<NamedFile> named;
    };

    /// A file that became a part of an image.
    struct Input {
        std::string file;  ///< as the script names it
        Facts::InputFormat format;
        Place statement;
        std::size_t firstSource;  ///< of its bytes
        std::size_t endOfSources;
    };

    explicit Provenance(StatementReports& reports) : reports_(&reports) {}

    /// Gives the names at the addresses of files that count bytes, for reports about these bytes.
    /// Without them, the symbols of an ELF file name the bytes that come from it.
    void setNames(Inspect::Names names) { names_ = std::move(names); }

    /// The given name of what the file that the statement reads has at an address; empty if nobody
    /// knows.
    std::string givenNameAt(std::uint64_t address) const;

    /// The statement is about to run.
    void enter(const Parser::Statement& statement);

    /// Reports the addresses without a byte or a filler that a CRC or hash is going to cover.
    void checkCovered(const Parser::Statement& statement,
                      const Parser::WrapperLib::CmdContext& context) const;

    const std::map<std::string, Image>& images() const { return images_; }
    const Source& source(std::size_t number) const { return sources_[number]; }
    const Origin& originOf(const Source& source) const { return origins_[source.origin]; }
    const std::vector<Input>& inputs() const { return inputs_; }

    /// The addresses that an input has bytes for, in ascending areas that do not touch.
    Buffer::AreaList areasOf(const Input& input) const;

    /// The lines of the file that gave a range of an image.
    Lines linesOf(const OriginMap::Range& range) const;

    /// All lines of a source's file. The first call for a file reads it once more.
    const std::vector<Inspect::LineRun>& lineRunsOf(const Source& source) const;

    /// What is at addresses of an image, by the names of the files that gave it its bytes: bytes
    /// of a file have their names in it, and those of a statement the names of what they replaced.
    /// Empty if nobody knows.
    std::string namesAt(const std::string& image, const Buffer::Area& area) const;

    /// A note on what gave an image its byte at `address`.
    Note noteOf(const char* what, const std::string& image, std::uint64_t address) const;

    /// A note on where the value that the statement uses is made; none if it uses none.
    std::vector<Note> notesOnValue() const;

    /// Notes on what gave two images, or two lines of a file, a byte of an overlap that a statement
    /// refuses.
    std::vector<Note> notesOn(const Facts::OverlapRefused& refused) const;

    /// Notes on what gave both sides of a comparison their first byte that differs.
    std::vector<Note> notesOn(const Facts::ImageDiffers& difference) const;

    void onRead(const Parser::WrapperLib::CmdNewBuffer& statement,
                const Io::Import::TessaronImportApi& reader, const Buffer::Area& range) override;
    void onOverlay(const Parser::WrapperLib::CmdNewBuffer& statement,
                   const Buffer::MemoryBuffer& image, const std::string& name,
                   const Buffer::MemoryBuffer& part) override;
    void onWrite(const std::string& name, const Buffer::Area& area) override;
    void onFill(const std::string& name, const Buffer::Area& area) override;
    void onRegroup(const Buffer::Regrouping& regrouping) override;
    void onInterleave(const Buffer::Regrouping& regrouping, std::span<const std::string> names,
                      std::span<const Buffer::MemoryBuffer* const> lanes,
                      const Buffer::MemoryBuffer& image) override;
    void onMade(const std::string& name, const Buffer::MemoryBuffer& image,
                std::uint64_t distance) override;

private:
    /// Images whose bytes have gone to other places, as they were before.
    struct Regrouped {
        Buffer::Regrouping how;
        std::vector<OriginMap> before;  ///< of each image
    };
    /// A byte of a file, or of a statement by itself.
    struct Byte {
        std::size_t source;
        std::uint64_t address;  ///< in that
    };
    /// An address of which names may say what is there.
    struct NamedByte {
        const Inspect::Names* names;
        std::uint64_t address;
    };

    std::size_t thisStatement();
    std::uint32_t nextOrigin() const { return static_cast<std::uint32_t>(origins_.size()); }
    std::size_t regroupedSource(const Source& source);
    OriginMap regroupedOrigins(const OriginMap& before, const Buffer::Regrouping& regrouping);
    std::optional<Byte> byteAt(std::size_t source, std::uint64_t address) const;
    std::vector<OriginMap::Range> addSources(const Parser::WrapperLib::CmdNewBuffer& statement,
                                             const Io::Import::TessaronImportApi& reader);
    OriginMap originsIn(const Parser::WrapperLib::CmdNewBuffer& statement,
                        const Io::Import::TessaronImportApi& reader);
    void reportCropped(const Origin& input, const OriginMap& all, const OriginMap& kept);
    void reportOverlaps(const Buffer::MemoryBuffer& image, const std::string& name,
                        const Buffer::MemoryBuffer& part) const;
    void reportWiped(const Buffer::MemoryBuffer& image, const std::string& name,
                     const Buffer::MemoryBuffer& part) const;
    bool areGivenNamesOf(const Origin& origin) const;
    bool mayHaveNames(const Origin& origin) const;
    bool haveSameNames(const NamedFile& one, const NamedFile& other) const;
    const Inspect::Names& namesOf(const Origin& origin) const;
    std::optional<NamedByte> namedByteAt(const Image& image, std::uint64_t address) const;
    Note originNote(const char* what, const OriginMap& origins, std::uint64_t address) const;

    StatementReports* reports_;
    /// The names of the values that were computed, where their statements have them.
    std::set<std::string_view> values_;
    std::optional<std::size_t> statement_;  ///< the source that the statement is, once needed
    Image current_;                         ///< the image that is being made
    std::map<std::string, Image> images_;
    std::vector<Origin> origins_;
    std::deque<Source> sources_;  ///< which takes no more memory while it grows
    std::vector<Regrouped> regrouped_;
    /// By path and address unit.
    mutable std::map<std::pair<std::string, std::uint32_t>, std::vector<Inspect::LineRun>> lines_;
    std::vector<Input> inputs_;
    Inspect::Names names_;  ///< of all images; empty if nobody gave them
    /// By path and address unit.
    mutable std::map<std::pair<std::string, std::uint32_t>, Inspect::Names> elfNames_;
};

}  // namespace Strict
