#pragma once

#include <exception>
#include <string>
#include <utility>

/// Files on their way between disk and memory. Nothing here knows a file format.
namespace Io {

/// Root of the exceptions of this namespace; never thrown by itself.
struct exception : std::exception {};

/// A file could not be opened.
struct bad_open : exception {
    const char* what() const noexcept override { return "Could not open file"; }
};

/// A path, kept as it was given. Touches no file.
class File {
public:
    explicit File(std::string path) : fileName_(std::move(path)) {}
    virtual ~File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

protected:
    std::string fileName_;
};

}  // namespace Io
