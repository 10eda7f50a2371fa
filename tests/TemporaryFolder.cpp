#include "tests/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace {

/// Gives the test program a temporary folder of its own and removes it when all tests are done.
class TemporaryFolder : public testing::Environment {
public:
    void SetUp() override {
        path_ = Tests::makeTemporaryFolder(testing::TempDir() + "tessaron-test-");
    }

    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

private:
    std::string path_;
};

// GoogleTest owns it.
const auto* const temporaryFolder = testing::AddGlobalTestEnvironment(new TemporaryFolder);

}  // namespace
