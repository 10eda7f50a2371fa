#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What paths of the operating system mean.
namespace Platform {

/// Separator between the folders of a path.
extern const char pathSeparator;

/// Where the name of the file begins in a path, after its folders.
std::size_t fileNameStart(const std::string& path);

/// The path that the system makes of a text: it ends at a zero byte.
inline std::string terminatedPath(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

/// The path leads to a regular file.
bool isRegularFile(const std::string& path);

/// A file or a folder in a folder.
struct FolderEntry {
    std::string name;
    bool isFolder = false;
};

/// The first `most` entries of a folder, in no order; none if it cannot be read. An empty path is
/// the current folder.
std::vector<FolderEntry> entriesOf(const std::string& folder, std::size_t most);

/// The absolute path of what is at a path, without "." and ".." in it.
std::string absolutePath(const std::string& path);

/// The path without what depends on where the folders of the user are: an absolute path as seen
/// from the current folder, with '/' between folders; any other one unchanged.
std::string portablePath(const std::string& path);

/// The path of what is at a relative path from the folder of the running program, without symbolic
/// links to the program; empty if the system does not say where that is.
std::string besideProgram(const std::string& path);

}  // namespace Platform
