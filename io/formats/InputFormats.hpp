#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "facts/InputFormat.hpp"
#include "io/import/InputReading.hpp"
#include "io/import/ReadOptions.hpp"
#include "io/import/RecordVisitor.hpp"
#include "io/import/SectionChoice.hpp"
#include "io/import/TessaronImportApi.hpp"
#include "platform/Files.hpp"

/// What the system knows of each format of input files, and how it reads a file of it.
///
/// Grammar, statements, detection, inspection, conversion and the words of both programs take
/// everything from these rows. A format that is added needs nothing in any of them.
namespace Io::Formats {

/// Reads the open file `path`. Null after a report if a text file is damaged.
///
/// @param visitor  learns which records a text file has; null for nobody
/// @throws Io::bad_open  if the file has changed since it was opened
/// @throws Import::Malformed  after a report, if a file of another kind is damaged
using Open = std::unique_ptr<Import::TessaronImportApi> (*)(const std::string& path,
                                                            Platform::InputFile file,
                                                            const Import::ReadOptions& options,
                                                            Import::RecordVisitor* visitor);

/// Reads the chosen sections of the open file `path`.
///
/// @throws Io::bad_open  if the file has changed since it was opened
/// @throws Import::Malformed  after a report
using OpenSections = std::unique_ptr<Import::TessaronImportApi> (*)(
    const std::string& path, Platform::InputFile file, const Import::ReadOptions& options,
    const Import::SectionChoice& choice);

/// Visits the records of an open file that has been read before, without a report.
///
/// @param addressUnit  the addresses of the file count words of that many bytes
using Walk = void (*)(const std::string& path, Platform::InputFile file, std::uint32_t addressUnit,
                      Import::RecordVisitor& visitor);

/// What a format can say of a start address.
enum class StartAddress : std::uint8_t {
    Never,
    Optional,
    Always  ///< its files have a field for it, in which 0 may mean none
};

/// A format.
struct InputFormatRow {
    Facts::InputFormat format;
    std::string_view name;  ///< for people
    std::string_view word;  ///< the name as one word, for the command line
    /// The source of NEW_BUFFER for it, and the trace text of the parser action; null for a format
    /// that FROM_FILE recognises.
    const char* keyword = nullptr;
    const char* trace = nullptr;
    std::span<const std::string_view> endings = {};        ///< of its files' names, in lower case
    std::span<const std::string_view> sharedEndings = {};  ///< that other files have as well
    StartAddress startAddress = StartAddress::Never;
    bool mayCountWords = false;  ///< its addresses count words for some devices
    bool hasFamilies = false;    ///< of devices, one of which may be chosen
    /// Whether a file that begins with `head` has the format; null for one that has no mark there.
    bool (*looksLike)(std::string_view head) = nullptr;
    Open open = nullptr;
    OpenSections openSections = nullptr;  ///< null for a format without sections
    Walk walk = nullptr;                  ///< null for a format without lines
    /// The names of its kinds of records, by their numbers; empty if they are not counted.
    std::span<const std::string_view> recordKinds = {};
};

/// All formats, in the order of their numbers.
std::span<const InputFormatRow> inputFormats();

const InputFormatRow& rowOf(Facts::InputFormat format);

/// The source of NEW_BUFFER that reads the format.
std::string_view sourceOf(const InputFormatRow& row);

/// A format that FROM_FILE recognises by its records.
bool isOfRecords(const InputFormatRow& row);

/// The row that `text` names by its word or its name, or null. Case, blanks and hyphens do not
/// count.
const InputFormatRow* rowCalled(std::string_view text);

/// The row with the ending of `path`, one that is shared as well, in either case, or null.
const InputFormatRow* rowByEnding(std::string_view path);

/// Whether `path` ends with one of the endings, which are in lower case, in either case.
bool hasEnding(std::string_view path, std::span<const std::string_view> endings);

}  // namespace Io::Formats
