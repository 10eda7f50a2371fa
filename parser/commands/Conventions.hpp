#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "facts/Listener.hpp"
#include "parser/commands/CmdContext.hpp"
#include "platform/Memory.hpp"

/// What all statements do alike: looking up names, reporting failures, gathering bytes.
namespace Parser::WrapperLib {

/// The named image, or nullptr after a report.
Buffer::MemoryBuffer* findBuffer(CmdContext& context, const std::string& name);

/// The byte order of the first of the named images that has one; `NotSet` if none has.
Buffer::ByteOrder byteOrderOf(const CmdContext& context, const std::vector<std::string>& names);

/// The named CRC, or nullptr after a report.
const ByteList* findCrc(const CmdContext& context, const std::string& name);

/// The named hash, or nullptr after a report.
const ByteList* findHash(const CmdContext& context, const std::string& name);

/// The named signature, or nullptr after a report.
const ByteList* findSignature(const CmdContext& context, const std::string& name);

/// Puts the value of the CRC or hash `name` in place of every occurrence of the name in `text`:
/// each byte in stored order as two upper-case hexadecimal digits, with "0x" before those of a CRC.
/// A CRC wins over a hash of the same name. False, after a report, if there is neither; the text
/// need not hold the name.
///
/// @throws std::length_error  if the text would grow beyond 64 MiB and its own length
bool resolveSymbol(const CmdContext& context, const std::string& name, std::string& text);

/// Contiguous bytes of images. They are valid while the images are not written to.
class GatheredBytes {
public:
    /// The effective bytes of `ranges`, in order. Those of a single range are not copied if they
    /// are contiguous already.
    explicit GatheredBytes(const std::vector<Buffer::ElementView>& ranges);

    std::span<const std::uint8_t> view() const { return bytes_; }

    /// Reverses the bytes of each word of 2, 4 or 8 bytes, of which there is a whole number.
    void reverseWords(std::uint32_t wordSize);

private:
    /// A vector would clear its memory before the bytes come in.
    Platform::PageBlock block_;
    std::span<const std::uint8_t> bytes_;
};

/// The effective bytes of the named images, in order; of each image the given areas in order, or
/// the whole of it when there are none. An area that reaches outside an image adds nothing from it.
/// Nothing, after a report, if an image is missing.
std::optional<GatheredBytes> gatherBytes(CmdContext& context, const std::vector<std::string>& names,
                                         const AreaList& areas);

/// The text of a path argument: all braces and all quotes of both kinds removed, white space
/// trimmed from both ends.
std::string cleanedPath(std::string text);

/// The text of a text argument: all braces removed, white space trimmed from both ends.
std::string cleanedText(std::string text);

/// Runs the work of a statement. Whatever it throws and does not handle itself is reported as
/// memory that ran out, and the result is false, so that the run goes on.
template <class Execution>
bool guarded(Facts::Subject subject, std::string_view name, Facts::Work work, Execution execute) {
    try {
        return execute();
    } catch (const std::exception&) {
        Facts::report(Facts::StatementExhausted{subject, name, work});
        return false;
    }
}

}  // namespace Parser::WrapperLib
