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

/// The place of a target, which is equal for paths of one file that look different. Only its folder
/// is looked up, since the file itself may not exist yet.
std::string placeOf(const OutputTarget& target);

/// The number of this process.
int processNumber();

/// Creates a new file for `target` in the folder of the target, under a name that nothing else
/// has and that says what it is. With an error nothing is created.
///
/// @param number  makes the name unique within this process; left at the number after the one used
/// @param path    its name
std::optional<OutputFile> createTemporary(const OutputTarget& target, unsigned& number,
                                          std::string& path, std::error_code& error);

/// Lets the file `temporary` take the place of `target`, with the mode and, if that is permitted,
/// the owner of the file that it replaces. With an error the target is as it was.
///
/// Windows refuses this while another program holds one of the files, as virus scanners do for a
/// moment: it is tried again for up to three seconds.
std::error_code replaceTarget(const std::string& temporary, const OutputTarget& target);

/// Removes a file, if it is there.
void removeFile(const std::string& path);

/// The reason why the last operation of this header or of Files.hpp failed; no error if the system
/// gave none.
std::error_code lastError();
void clearLastError();

/// Removes the named files when the process is interrupted (SIGHUP, SIGINT, SIGQUIT, SIGTERM,
/// SIGXCPU; on Windows Ctrl+C, Ctrl+Break, a closed console, the end of the session), and then lets
/// the interrupt end it. One at a time may exist in a process.
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
