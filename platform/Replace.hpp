#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <system_error>

#include "platform/Files.hpp"

/// Files that take the place of others as a whole.
namespace Platform {

/// What a path is for somebody who wants to write there.
enum class TargetKind : std::uint8_t {
    Missing,    ///< nothing is there, but its folder is
    Regular,    ///< a regular file
    Device,     ///< a device, a pipe or a socket, which cannot be replaced
    Impossible  ///< a folder, or a path that leads nowhere
};

/// A place where an output is to appear.
struct OutputTarget {
    TargetKind kind = TargetKind::Impossible;
    std::string path;       ///< the real place, with symbolic links followed
    std::error_code error;  ///< why it is impossible
};

/// Finds out what is at `path`.
OutputTarget outputTarget(const std::string& path);

/// The real place of an existing file, or `path` itself.
std::string realPath(const std::string& path);

/// Creates a new file for `target` in the folder of the target, under a name that nothing else
/// has and that says what it is. With an error nothing is created.
///
/// @param number  makes the name unique within this process; left at the number after the one used
/// @param path    its name
std::optional<OutputFile> createTemporary(const OutputTarget& target, unsigned& number,
                                          std::string& path, std::error_code& error);

/// Lets the file `temporary` take the place of `target`, with the mode and, if that is permitted,
/// the owner of the file that it replaces. With an error the target is as it was.
std::error_code replaceTarget(const std::string& temporary, const OutputTarget& target);

/// Removes a file, if it is there.
void removeFile(const std::string& path);

/// The reason why the last operation of this header or of Files.hpp failed; no error if the system
/// gave none.
std::error_code lastError();
void clearLastError();

/// Removes the named files when the process is interrupted (SIGHUP, SIGINT, SIGQUIT, SIGTERM,
/// SIGXCPU), and then lets the signal end it. One at a time may exist in a process.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    void add(const std::string& path);
    void remove(const std::string& path);

private:
    std::set<std::string> files_;
};

}  // namespace Platform
