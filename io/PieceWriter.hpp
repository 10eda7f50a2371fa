#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "io/Host.hpp"
#include "platform/Files.hpp"

namespace Io {

/// Collects the output of a writer and writes it to its file in large pieces.
///
/// The file is created, or an existing one cut to length zero, when the first piece is complete. A
/// writer that gives up or runs out of memory before leaves the file as it is, and no memory is
/// needed after that: the buffer is reserved by the constructor.
class PieceWriter {
public:
    /// Reserves memory and touches no file.
    ///
    /// @param path             borrowed
    /// @param longestReserve   the most that `reserve` will be asked for
    PieceWriter(const std::string& path, Platform::FileMode mode, std::size_t longestReserve = 0);

    /// Room for `size` characters. What the caller writes there becomes output by `commit`.
    ///
    /// @throws Io::bad_open
    char* reserve(std::size_t size) {
        if (capacity_ - used_ < size) makeRoom(size);
        return piece_.get() + used_;
    }

    /// Ends the output at `end`, which lies in the room of the last `reserve`.
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - piece_.get()); }

    /// @throws Io::bad_open
    void append(std::string_view text);
    void append(std::span<const std::uint8_t> bytes) {
        append({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    /// Writes what is left and closes the file. A write that failed, up to this last one, has left
    /// a shorter file and is reported.
    ///
    /// @throws Io::bad_open
    void finish();

private:
    void makeRoom(std::size_t size);
    void flush(std::size_t size);
    void write(std::string_view text);

    const std::string& path_;
    Platform::FileMode mode_;
    std::unique_ptr<OutputStream> file_;
    bool isComplete_ = true;
    std::size_t capacity_;
    /// Not initialised, so that a short output touches few pages.
    std::unique_ptr<char[]> piece_;
    std::size_t used_ = 0;
};

}  // namespace Io
