#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Files.hpp"

namespace Strict {

/// SHA-256 and the length of a file.
struct FileDigest {
    std::string sha256;
    std::uint64_t size = 0;
    /// The file has changed, or could not be read, since it was opened: the digest may not be that
    /// of the bytes that the run has read.
    bool hasChanged = false;
};

/// Computes digests in as many threads as the machine has cores, each of which is started when
/// there is work for it: a hash takes about as long as the work on the file. Where no thread can be
/// had, the caller's own does the work.
class DigestPool {
public:
    /// A digest that is being computed.
    class Digest;

    DigestPool();
    ~DigestPool();
    DigestPool(const DigestPool&) = delete;
    DigestPool& operator=(const DigestPool&) = delete;

    static std::shared_ptr<Digest> begin();

    /// Adds bytes to a digest. Waits while too many are waiting already.
    ///
    /// @throws std::bad_alloc  if the memory of the process is used up, here or in the thread
    void take(Digest& digest, std::string_view bytes);

    /// Adds a whole file that is open. It may be read by others meanwhile.
    void takeFile(Digest& digest, const Platform::InputFile& file);

    /// Lets other work be done beside that of the caller, who keeps what it needs until `settle`.
    void takeWork(std::function<void()> work);

    /// Waits for the digest of all bytes that were added so far, of which there are no more.
    ///
    /// @throws std::bad_alloc  as above
    FileDigest finish(Digest& digest);

    /// Waits until everything that was added is in its digest, and all other work is done.
    ///
    /// @throws std::bad_alloc  as above
    void wait();

    /// The same, whether there was enough memory or not.
    void settle() noexcept;

private:
    struct Task;
    class Workers;
    std::unique_ptr<Workers> workers_;
};

/// The digest of a file that is open.
FileDigest digestOf(const Platform::InputFile& file);

/// The digest of a file on disk; an empty one if it cannot be read.
FileDigest digestOfFile(const std::string& path);

}  // namespace Strict
