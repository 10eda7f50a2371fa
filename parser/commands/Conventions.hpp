#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "parser/commands/CmdContext.hpp"
#include "platform/Platform.hpp"

/// What all statements do alike: looking up names, reporting, gathering bytes.
namespace Parser::WrapperLib {

/// The named image, or nullptr after the two lines of the convention.
Buffer::MemoryBuffer* findBuffer(CmdContext& context, const std::string& name);

/// The named CRC, or nullptr after the two lines of the convention.
const ByteList* findCrc(const CmdContext& context, const std::string& name);

/// The named hash, or nullptr after the two lines of the convention.
const ByteList* findHash(const CmdContext& context, const std::string& name);

/// Puts the value of the CRC or hash `name` in place of every occurrence of the name in `text`:
/// each byte in stored order as two upper-case hexadecimal digits, behind "0x" for a CRC. A CRC
/// wins over a hash of the same name. False, after the two lines of the convention, if there is
/// neither; the text need not hold the name.
///
/// @throws std::length_error  if the text would grow beyond 64 MiB and its own length
bool resolveSymbol(const CmdContext& context, const std::string& name, std::string& text);

/// Bytes that stand one behind the other in memory, while their images are not written to.
class GatheredBytes {
public:
    /// The effective bytes of `ranges`, in order. Those of one range are not copied if they stand
    /// one behind the other already.
    explicit GatheredBytes(const std::vector<Buffer::ElementView>& ranges);

    std::span<const std::uint8_t> view() const { return bytes_; }

private:
    /// Not a vector, which would write to all of it before the bytes come in.
    Platform::PageBlock block_;
    std::span<const std::uint8_t> bytes_;
};

/// The effective bytes of the named images, in order; of each image the given areas in order, or
/// the whole of it when there are none. An area that reaches outside an image adds nothing from it.
/// Nothing, after the two lines of the convention, when an image is missing.
std::optional<GatheredBytes> gatherBytes(CmdContext& context, const std::vector<std::string>& names,
                                         const AreaList& areas);

/// The text of a path argument: braces and quotes of both kinds removed wherever they stand, white
/// space trimmed from both ends.
std::string cleanedPath(std::string text);

/// The text of a text argument: braces removed wherever they stand, white space trimmed.
std::string cleanedText(std::string text);

/// "Error: " + `what` + " " + `name` + " could not be " + `done` + " !" and the line behind it:
/// how a statement ends that ran out of memory.
void reportExhausted(std::string_view what, std::string_view name, std::string_view done);

/// Runs `work`. An exception that it does not handle itself becomes the report of
/// `reportExhausted` and the result false, so that the run goes on.
template <class Work>
bool guarded(std::string_view what, std::string_view name, std::string_view done, Work work) {
    try {
        return work();
    } catch (const std::exception&) {
        reportExhausted(what, name, done);
        return false;
    }
}

}  // namespace Parser::WrapperLib
