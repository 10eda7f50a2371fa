#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

/// The simulated machine of a program that is linked with PlatformInMemory.cpp, for the lifetime of
/// the object: files in memory, little memory, no other programs, and standard streams that discard
/// their output. Only one machine exists at a time.
///
/// Memory is limited so that every input is handled quickly: a larger request fails as on a machine
/// without memory, with std::bad_alloc from `Platform::PageBlock` and `operator new`.
class Machine {
public:
    /// Largest page block, in bytes: enough for an image of more than 64 Ki addresses.
    static constexpr std::size_t mostPages = std::size_t{80} << 10U;
    /// Largest other allocation, in bytes.
    static constexpr std::size_t mostHeap = std::size_t{512} << 10U;
    /// Largest input, in bytes, whose derived data fits within the limits above.
    static constexpr std::size_t mostInput = std::size_t{64} << 10U;
    /// Total size of all output files, in bytes, at which the device is full.
    static constexpr std::size_t mostOutput = std::size_t{4} << 20U;

    Machine();
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void addFile(const std::string& path, std::string_view contents);

    /// Opens a file for reading and returns its descriptor, or -1.
    int open(const std::string& path);

    /// The contents of an open file.
    std::string_view contents(int descriptor) const;

    /// Opens an empty file for writing and returns its descriptor, or -1.
    int create(const std::string& path);

    /// Appends to an open file. Returns false if the device is full before all bytes are written.
    bool write(int descriptor, std::string_view bytes);

private:
    /// Discards all output.
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
