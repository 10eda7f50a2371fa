#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "strict/files/RunFiles.hpp"

namespace Tests {

namespace fs = std::filesystem;
using Strict::RunFiles;

constexpr auto binary = Platform::FileMode::Binary;

inline std::string contentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A folder of the running test alone, empty at first.
class RunFilesTest : public testing::Test {
protected:
    void SetUp() override {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = fs::path(testing::TempDir()) / test->name();
        fs::create_directory(folder_);
    }

    void TearDown() override { fs::remove_all(folder_); }

    std::string at(const std::string& name) const { return (folder_ / name).string(); }

    void put(const std::string& name, std::string_view contents) const {
        std::ofstream(folder_ / name, std::ios::binary) << contents;
    }

    /// The names in the folder, in order.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder_))
            found.push_back(entry.path().filename().string());
        std::ranges::sort(found);
        return found;
    }

    /// Writes an output in one piece. False if it cannot be created or not all of it arrives.
    static bool write(RunFiles& files, const std::string& path, std::string_view contents) {
        const auto stream = files.createOutput(path, binary);
        if (stream == nullptr) return false;
        const bool isWritten = stream->write(contents);
        return stream->close() && isWritten;
    }

    static std::string read(RunFiles& files, const std::string& path) {
        const auto file = files.openInput(path);
        if (!file) return "not opened";
        std::string text(static_cast<std::size_t>(file->size()), '\0');
        text.resize(file->readAt(0, text));
        return text;
    }

    fs::path folder_;
};

using Names = std::vector<std::string>;

}  // namespace Tests
