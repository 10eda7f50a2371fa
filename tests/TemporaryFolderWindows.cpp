#include <gtest/gtest.h>
#include <process.h>

#include <cstdlib>
#include <filesystem>

#include "tests/TemporaryFolder.hpp"

namespace Tests {

std::string makeTemporaryFolder(std::string start) {
    start += std::to_string(::_getpid());
    // A run that crashed may have left one of this number.
    std::filesystem::remove_all(start);
    EXPECT_TRUE(std::filesystem::create_directory(start)) << start;
    ::_putenv_s("TEST_TMPDIR", (start + "/").c_str());
    return start;
}

}  // namespace Tests
