#include "strict/diagnostics/Uri.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/Paths.hpp"
#include "util/Hex.hpp"

namespace Strict {

std::string uriOf(std::string path) {
    constexpr std::string_view kept =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    const bool hasDrives = Platform::pathSeparator == '\\';
    if (hasDrives) std::ranges::replace(path, '\\', '/');
    const bool hasDrive = hasDrives && path.size() > 2 && path.compare(1, 2, ":/") == 0;
    std::string uri = hasDrive ? "file:///" : path.starts_with("/") ? "file://" : "";
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (kept.find(path[i]) != std::string_view::npos || (hasDrive && i == 1))
            uri += path[i];
        else
            uri += '%' + Util::hexByte(static_cast<std::uint8_t>(path[i]));
    }
    return uri;
}

}  // namespace Strict
