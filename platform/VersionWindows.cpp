#include "platform/Version.hpp"

#include <windows.h>

#include <vector>

#include "VersionData.hpp"
#include "platform/WideText.hpp"

namespace Platform {

namespace {

using Block = std::vector<std::byte>;

/// The version block of a program file, empty if it has none.
Block versionBlock(const std::wstring& path) {
    unsigned long ignored = 0;
    Block block(::GetFileVersionInfoSizeW(path.c_str(), &ignored));
    const bool isRead =
        !block.empty() &&
        ::GetFileVersionInfoW(path.c_str(), 0, static_cast<unsigned long>(block.size()),
                              block.data()) != 0;
    return isRead ? block : Block();
}

/// The file of the running program.
std::wstring modulePath() {
    // The longest path that there is.
    constexpr unsigned long longest = 32'768;
    std::wstring path(longest, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), longest));
    return path;
}

/// A text of the block in English (United States), in Unicode; empty if it is missing.
std::string textIn(const Block& block, const std::wstring& name) {
    void* text = nullptr;
    unsigned size = 0;
    const std::wstring key = L"\\StringFileInfo\\040904b0\\" + name;
    if (::VerQueryValueW(block.data(), key.c_str(), &text, &size) == 0 || size == 0) return {};
    return narrowText(static_cast<const wchar_t*>(text));
}

}  // namespace

std::optional<VersionInfo> versionInfo(const char* programPath) {
    Block block = versionBlock(systemPath(programPath));
    // A shell may start "CmdTessaron" for CmdTessaron.exe, or search for it.
    if (block.empty()) block = versionBlock(modulePath());
    void* root = nullptr;
    unsigned size = 0;
    if (block.empty() || ::VerQueryValueW(block.data(), L"\\", &root, &size) == 0 ||
        size < sizeof(VS_FIXEDFILEINFO))
        return std::nullopt;
    const auto version = static_cast<const VS_FIXEDFILEINFO*>(root)->dwFileVersionMS;
    return VersionInfo{textIn(block, L"OriginalFilename"), HIWORD(version), LOWORD(version),
                       textIn(block, L"LegalCopyright"),   TESSARON_COMMIT, TESSARON_BUILD_DATE};
}

}  // namespace Platform
