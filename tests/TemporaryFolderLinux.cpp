#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/TemporaryFolder.hpp"

namespace Tests {

std::string makeTemporaryFolder(std::string start) {
    start += "XXXXXX";
    EXPECT_NE(::mkdtemp(start.data()), nullptr) << start;
    ::setenv("TEST_TMPDIR", (start + "/").c_str(), 1);
    return start;
}

}  // namespace Tests
