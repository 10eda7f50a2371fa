#include "platform/Files.hpp"
#include "platform/Memory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <string>

namespace {

namespace fs = std::filesystem;

fs::path writtenFile(const std::string& contents) {
    fs::path path = fs::path(testing::TempDir()) / "platform-test-input";
    std::ofstream(path, std::ios::binary) << contents;
    return path;
}

struct Translation {
    std::string file;
    std::string text;
};

TEST(PlatformTest, TextModeDropsOneReturnInFrontOfALineFeedAndEndsAtItsEndCharacter) {
    for (const Translation& row :
         {Translation{"", ""}, Translation{"a\r\nb\r\n", "a\nb\n"}, Translation{"\r\n", "\n"},
          Translation{"a\r\r\nb", "a\r\nb"}, Translation{"a\rb\r", "a\rb\r"},
          Translation{"a\nb\x1A\nc", "a\nb"}, Translation{"a\r\x1A\n", "a\r"},
          Translation{std::string("a\0b\r\n", 5), std::string("a\0b\n", 4)}}) {
        auto contents = Platform::readFile(writtenFile(row.file).string());
        ASSERT_TRUE(contents);
        EXPECT_EQ(contents->text(), row.file);
        Platform::translateText(*contents);
        EXPECT_EQ(contents->text(), row.text);
    }
}

TEST(PlatformTest, AnOutputFileReplaces) {
    const fs::path path = writtenFile("something longer");
    {
        auto file = Platform::OutputFile::create(path.string(), Platform::FileMode::Binary);
        ASSERT_TRUE(file);
        EXPECT_TRUE(file->write("a\n"));
        EXPECT_TRUE(file->write("b"));
    }
    EXPECT_EQ(Platform::readFile(path.string())->text(), "a\nb");
}

TEST(PlatformTest, BlocksAreZeroAndRefusedBeyondTheMachine) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{1} << 20U, std::size_t{70} << 20U}) {
        const Platform::PageBlock block(size);
        EXPECT_EQ(block.data()[0], std::byte{0});
        EXPECT_EQ(block.data()[size - 1], std::byte{0});
    }
    EXPECT_THROW(Platform::PageBlock(std::size_t{1} << 46U), std::bad_alloc);
    EXPECT_EQ(Platform::PageBlock(0).data(), nullptr);
}

}  // namespace
