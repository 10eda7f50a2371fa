#include "lsp/Uri.hpp"

#include <algorithm>

#include "platform/Paths.hpp"

namespace Lsp {

namespace {

constexpr std::string_view scheme = "file://";

int digitOf(char c) {
    constexpr int ten = 10;
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + ten;
    return c >= 'a' && c <= 'f' ? c - 'a' + ten : -1;
}

/// A path that begins with the letter of a drive.
bool hasDrive(std::string_view path) {
    return Platform::pathSeparator == '\\' && path.size() > 1 && path[1] == ':';
}

}  // namespace

std::optional<std::string> pathOf(std::string_view uri) {
    if (!uri.starts_with(scheme)) return std::nullopt;
    uri.remove_prefix(scheme.size());
    // The name of a machine ends where the path begins.
    uri.remove_prefix(std::min(uri.find('/'), uri.size()));
    if (uri.empty()) return std::nullopt;
    std::string path;
    for (std::size_t at = 0; at < uri.size(); ++at) {
        constexpr int base = 16;
        const int high = uri[at] == '%' && at + 2 < uri.size() ? digitOf(uri[at + 1]) : -1;
        const int low = high < 0 ? -1 : digitOf(uri[at + 2]);
        if (low < 0) {
            path += uri[at];
            continue;
        }
        path += static_cast<char>(high * base + low);
        at += 2;
    }
    if (hasDrive(std::string_view(path).substr(1))) path.erase(0, 1);
    return path.find('\0') == std::string::npos ? std::optional(path) : std::nullopt;
}

}  // namespace Lsp
