#pragma once

#include <cstdint>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Files.hpp"

namespace Strict {

/// SHA-256 and the length of a file.
struct FileDigest {
    std::string sha256;
    std::uint64_t size = 0;
};

/// Computes the digest of what it is given, in a thread of its own: a hash takes about as long as
/// the work on the file, and a machine has more than one core.
class BackgroundDigest {
public:
    BackgroundDigest();
    ~BackgroundDigest();
    BackgroundDigest(const BackgroundDigest&) = delete;
    BackgroundDigest& operator=(const BackgroundDigest&) = delete;

    void take(std::string_view bytes);

    /// Waits for the digest of all bytes. Called once.
    FileDigest finish();

private:
    class Worker;
    std::unique_ptr<Worker> worker_;
};

/// The digests of the files of a run.
class FileDigests {
public:
    /// Begins to compute the digest of an input that was opened.
    void addInput(const std::string& path, const Platform::InputFile& file);

    /// The digest that the writer of an output fills; a later writer of the path replaces it.
    BackgroundDigest& addOutput(const std::string& path);

    /// Waits for the digest of a file that was added.
    FileDigest input(const std::string& path);
    FileDigest output(const std::string& path);

private:
    std::map<std::string, std::future<FileDigest>> inputs_;
    std::map<std::string, std::unique_ptr<BackgroundDigest>> outputs_;
};

/// The digest of a file on disk; an empty one if it cannot be read.
FileDigest digestOfFile(const std::string& path);

}  // namespace Strict
