#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "platform/Files.hpp"
#include "platform/Interrupts.hpp"

/// Files that take the place of others as a whole.
namespace Platform {

/// What a path is for somebody who wants to write there.
enum class TargetKind : std::uint8_t {
    Missing,    ///< nothing is there, but its folder is
    Regular,    ///< a regular file
    Device,     ///< a device, a pipe, a socket or an open stream, which cannot be replaced
    Impossible  ///< a folder, or a path that leads nowhere
};

/// A place where an output is to appear.
struct OutputTarget {
    TargetKind kind = TargetKind::Impossible;
    std::string path;       ///< the real place, with symbolic links followed
    std::error_code error;  ///< why it is impossible
    /// The descriptor of this process that the path names, as /dev/stdout does, or -1. It is
    /// written where it is, since it may be the end of a log.
    int descriptor = -1;
};

/// Finds out what is at `path`.
OutputTarget outputTarget(const std::string& path);

/// The place of a target, which is equal for paths of one file that look different. Only its folder
/// is looked up, since the file itself may not exist yet.
std::string placeOf(const OutputTarget& target);

/// The file at a path, if no other name leads to it. Files with several names (hard links) are kept
/// apart by their places: one name may be replaced and leave the others.
std::optional<FileIdentity> soleFileAt(const std::string& path);

/// Opens what cannot be replaced.
std::optional<OutputFile> openDevice(const OutputTarget& target);

/// The number of this process.
int processNumber();

/// A file beside its target whose place it is to take.
struct TemporaryFile {
    std::string path;
    FileIdentity identity;
};

/// Creates a new file for `target` in the folder of the target, under a name that nothing else
/// has and that says what it is. It has the owner, the group and the mode of the file that it is to
/// replace, as far as that is permitted; see OutputFile::takeAttributesOf. With an error nothing is
/// created.
///
/// @param guard   knows the file as soon as it exists
/// @param number  makes the name unique within this process; left at the number after the one used
/// @param file    filled in
std::optional<OutputFile> createTemporary(const OutputTarget& target, InterruptGuard& guard,
                                          unsigned& number, TemporaryFile& file,
                                          std::error_code& error);

class ReplacementState;

/// Puts temporary files in the places of their targets: all of them or none.
///
/// Whatever can fail is tried before the first one is renamed, each file that is replaced keeps a
/// second name until all is done, interrupts wait meanwhile, and so do other processes that want to
/// replace files in the same folders.
///
/// - A file system without hard links gives no second name: there, a file that was replaced cannot
///   be restored. Nor is there a second name of the last file if nothing can fail after it.
/// - A file system without locks has none.
/// - Windows refuses to replace a file while another program holds it, as virus scanners do for a
///   moment: it is tried again for up to three seconds.
class Replacement {
public:
    /// A file that could not be put in place.
    struct Failure {
        std::size_t file;  ///< the number of its `add`, from 0
        std::error_code error;
    };

    /// @param guard  knows the temporary files, and no longer those that were put in place
    explicit Replacement(InterruptGuard& guard);

    /// Takes back what was put in place and not kept.
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void add(const TemporaryFile& file, const OutputTarget& target);

    /// Tries what can fail and changes nothing.
    std::optional<Failure> tryAll();

    /// Puts all files in place. After a failure those that are in place already are to be taken
    /// back. Interrupts wait from now until `keep` or `takeBack`.
    ///
    /// @param canFailLater  whether the files may have to be taken back after all of them are in
    ///                      place
    std::optional<Failure> putInPlace(bool canFailLater);

    /// Restores the files that were replaced, and removes those that were new. Returns the numbers
    /// of those that stay in place since that was not possible.
    std::vector<std::size_t> takeBack();

    /// Removes what was replaced.
    void keep();

    /// Folders that another program kept locked for so long that they were written nevertheless.
    std::vector<std::string> busyFolders() const;

private:
    std::unique_ptr<ReplacementState> state_;
};

/// Removes a file, if it is there.
void removeFile(const std::string& path);

/// The reason why the last operation of this header or of Files.hpp failed; no error if the system
/// gave none.
std::error_code lastError();
void clearLastError();

}  // namespace Platform
