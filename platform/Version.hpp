#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The version data of the running program.
namespace Platform {

/// The version block of a program file.
struct VersionInfo {
    std::string fileName;
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::string copyright;
    std::string commit;     ///< of the source; "unknown" if the build does not know it
    std::string buildDate;  ///< day of compilation, as in "Aug 18 2021"
};

/// The version data of the running program, or nothing if it has none.
///
/// @param programPath  the path by which the program was started
std::optional<VersionInfo> versionInfo(const char* programPath);

/// "1.1 (commit)", for people; empty if the running program has no version data.
inline std::string versionText() {
    const auto info = versionInfo("");
    if (!info) return {};
    return std::to_string(info->major) + "." + std::to_string(info->minor) + " (" + info->commit +
           ")";
}

}  // namespace Platform
