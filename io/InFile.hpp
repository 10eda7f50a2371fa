#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "io/File.hpp"
#include "platform/Files.hpp"

namespace Io {

class TextLines;

/// Opens a file for reading.
///
/// @throws bad_open
Platform::InputFile openInput(const std::string& path);

/// A text file that is read line by line.
class TextInFile : public File {
protected:
    using File::File;

    /// Ends the reading of the file. A read that failed is reported: what was read counts.
    ///
    /// @throws bad_open  if the file has changed since it was opened
    void close(const TextLines& lines) const;
};

/// Any file, byte for byte.
class BinaryInFile : public File {
public:
    /// @throws bad_open
    explicit BinaryInFile(const std::string& path) : BinaryInFile(path, openInput(path)) {}

    /// The file `path` has been opened already.
    BinaryInFile(const std::string& path, Platform::InputFile file);

protected:
    std::uint64_t fileSize() const { return file_.size(); }

    /// Reads from byte `start` of the file on, to `out`, and returns the number of bytes read:
    /// fewer than asked for only at the end of the file, or where it cannot be read, which is
    /// reported.
    ///
    /// @throws bad_open  if the file has changed since it was opened
    std::size_t read(std::uint64_t start, std::span<std::uint8_t> out) const;

private:
    Platform::InputFile file_;
};

}  // namespace Io
