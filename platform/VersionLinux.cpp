#include "platform/Version.hpp"

#include "VersionData.hpp"

namespace Platform {

std::optional<VersionInfo> versionInfo(const char* /*programPath*/) {
    return VersionInfo{TESSARON_ORIGINAL_FILE_NAME, TESSARON_VERSION_MAJOR, TESSARON_VERSION_MINOR,
                       TESSARON_COPYRIGHT,          TESSARON_COMMIT,        TESSARON_BUILD_DATE};
}

}  // namespace Platform
