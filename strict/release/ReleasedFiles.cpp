#include "strict/release/ReleasedFiles.hpp"

#include <set>
#include <string_view>

namespace Strict {

std::vector<const Inspect::FileRecord*> releasedFiles(const Inspect::RunRecord& record) {
    std::vector<const Inspect::FileRecord*> files;
    std::set<std::string_view> paths;
    for (const Inspect::FileRecord& output : record.outputs)
        if (!output.sha256.empty() && paths.insert(output.path).second) files.push_back(&output);
    return files;
}

}  // namespace Strict
