#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/Files.hpp"

namespace Platform {

/// The contents of a file that nobody else should see, such as a private key. They are wiped from
/// memory with this object. Once there was one, the system writes no core file of this process.
class SecretFile {
public:
    /// Longer files hold no key.
    static constexpr std::size_t longest = std::size_t{1} << 16U;

    /// Reads an open file, and wipes what that holds of it in memory.
    ///
    /// @throws std::bad_alloc
    explicit SecretFile(InputFile file);
    ~SecretFile();
    SecretFile(SecretFile&& other) noexcept = default;
    SecretFile& operator=(SecretFile&& other) = delete;
    SecretFile(const SecretFile&) = delete;
    SecretFile& operator=(const SecretFile&) = delete;

    /// The file was read as a whole, and is not longer than `longest`.
    bool isWhole() const { return isWhole_; }

    /// Users other than its owner may read the file.
    bool isReadableByOthers() const { return isReadableByOthers_; }

    std::span<const std::uint8_t> bytes() const { return bytes_; }

private:
    std::vector<std::uint8_t> bytes_;
    bool isWhole_;
    bool isReadableByOthers_;
};

/// Overwrites memory that nothing reads any more.
void wipe(std::span<std::byte> bytes);

/// Lets no program that this one starts have an open descriptor of a secret file. What is not a
/// descriptor of this process changes nothing.
void keepFromPrograms(int descriptor);

/// Lets the system write no core file of this process.
void forbidCoreFile();

}  // namespace Platform
