#include "platform/ControlGroup.hpp"

#include <algorithm>
#include <limits>

#include "platform/KernelText.hpp"

namespace Platform {

namespace {

/// The names of a version's files, and of the two numbers of the cache in memory.stat.
struct Version {
    const char* limit;
    const char* used;
    const char* inactiveCache;
    const char* activeCache;
};
constexpr Version first{"/memory.limit_in_bytes", "/memory.usage_in_bytes",
                        "\ntotal_inactive_file ", "\ntotal_active_file "};
constexpr Version second{"/memory.max", "/memory.current", "\ninactive_file ", "\nactive_file "};

/// What the group with that folder may still take.
std::uint64_t freeIn(const std::string& folder, const Version& version) {
    const std::uint64_t limit = numberAfter(kernelText(folder + version.limit), "");
    const std::uint64_t used = numberAfter(kernelText(folder + version.used), "");
    if (limit == unknownNumber || used == unknownNumber) return unknownNumber;
    const std::string statistics = kernelText(folder + "/memory.stat");
    std::uint64_t cache = 0;
    for (const char* const label : {version.inactiveCache, version.activeCache}) {
        const std::uint64_t part = numberAfter(statistics, label);
        if (part != unknownNumber) cache += part;
    }
    const std::uint64_t held = used - std::min(used, cache);
    return limit - std::min(limit, held);
}

/// The tightest of a group and those around it. In a container, the file system may begin at a
/// group inside of the path.
std::uint64_t tightest(const std::string& mount, std::string path, const Version& version) {
    std::uint64_t least = freeIn(mount, version);
    while (path.size() > 1) {
        least = std::min(least, freeIn(mount + path, version));
        path.resize(path.rfind('/'));
    }
    return least;
}

}  // namespace

std::uint64_t freeGroupMemory(std::string_view membership, const std::string& root) {
    std::uint64_t least = unknownNumber;
    // A line is "number:controllers:/path", without controllers for version 2.
    while (!membership.empty()) {
        const std::string_view line = membership.substr(0, membership.find('\n'));
        membership.remove_prefix(std::min(line.size() + 1, membership.size()));
        const std::size_t slash = line.find(":/");
        if (slash == std::string_view::npos) continue;
        const std::string path(line.substr(slash + 1));
        if (line.starts_with("0::"))
            least = std::min(least, tightest(root, path, second));
        else if (line.substr(0, slash).ends_with(":memory"))
            least = std::min(least, tightest(root + "/memory", path, first));
    }
    return least;
}

}  // namespace Platform
