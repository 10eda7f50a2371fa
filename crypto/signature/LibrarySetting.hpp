#pragma once

#include <optional>
#include <string>

namespace Crypto {

/// Lets the library find a value in the environment, the only place where it looks for settings,
/// while this object lives. Programs that are started later do not get it.
class LibrarySetting {
public:
    LibrarySetting(const char* name, const char* value);
    ~LibrarySetting();
    LibrarySetting(const LibrarySetting&) = delete;
    LibrarySetting& operator=(const LibrarySetting&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;  ///< what the user has set
};

}  // namespace Crypto
