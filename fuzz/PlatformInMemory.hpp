#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

/// The machine that a program linked with PlatformInMemory.cpp runs on, for as long as the object
/// lives: files that exist nowhere else, little memory, no other programs, nobody who reads the
/// standard streams. There is one machine at a time.
///
/// Memory is short so that no input costs more than moments: what a large machine would hold comes
/// to the same end here as what no machine holds, std::bad_alloc out of `Platform::PageBlock` and
/// out of `operator new`.
class Machine {
public:
    /// Largest single block, in bytes: room for an image of more than 64 KiB addresses.
    static constexpr std::size_t mostPages = std::size_t{80} << 10U;
    /// Largest single allocation of everything else, in bytes.
    static constexpr std::size_t mostHeap = std::size_t{512} << 10U;
    /// Largest input, in bytes, that everything made of it has room for.
    static constexpr std::size_t mostInput = std::size_t{64} << 10U;
    /// Room for output files, in bytes; then the device is full.
    static constexpr std::size_t mostOutput = std::size_t{4} << 20U;

    Machine();
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void addFile(const std::string& path, std::string_view contents);

    /// Opens a file for reading and returns its descriptor, or -1.
    int open(const std::string& path);

    /// What an open file holds.
    std::string_view contents(int descriptor) const;

    /// Opens an empty file for writing and returns its descriptor, or -1.
    int create(const std::string& path);

    /// Appends to an open file, as much as the device takes; false when that is not all.
    bool write(int descriptor, std::string_view bytes);

private:
    /// Takes everything and keeps nothing.
    class Nowhere : public std::streambuf {
        int_type overflow(int_type character) override { return traits_type::not_eof(character); }
        std::streamsize xsputn(const char* /*text*/, std::streamsize length) override {
            return length;
        }
    };

    std::map<std::string, std::string> files_;
    std::vector<std::string*> opened_;
    std::size_t outputLeft_ = mostOutput;
    Nowhere nowhere_;
    std::streambuf* standardOutput_;
    std::streambuf* standardError_;
};

}  // namespace Fuzz
