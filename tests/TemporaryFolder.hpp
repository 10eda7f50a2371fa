#pragma once

#include <string>

namespace Tests {

/// Makes a folder whose name begins with `start` and that nobody else has, and lets
/// `testing::TempDir` return it from now on.
std::string makeTemporaryFolder(std::string start);

}  // namespace Tests
