#include "platform/Files.hpp"
#include "platform/Memory.hpp"
#include "platform/Process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

/// A path of the running test alone, since several may run at a time.
fs::path ownPath(const std::string& name) {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    return fs::path(testing::TempDir()) / (test->name() + ("-" + name));
}

fs::path writtenFile(const std::string& contents) {
    fs::path path = ownPath("input");
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
        auto contents = Platform::readFile(writtenFile(row.file));
        ASSERT_TRUE(contents);
        EXPECT_EQ(contents->text(), row.file);
        Platform::translateText(*contents);
        EXPECT_EQ(contents->text(), row.text);
    }
}

TEST(PlatformTest, WhatNeverEndsIsNoInput) {
    const fs::path folder = fs::path(testing::TempDir());
    const fs::path pipe = ownPath("pipe");
    fs::remove(pipe);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path :
         {folder.string(), pipe.string(), std::string("/dev/zero"), std::string("/dev/ptmx"),
          (folder / "missing").string(), std::string()})
        EXPECT_FALSE(Platform::readFile(path)) << path;
    EXPECT_FALSE(Platform::OutputFile::create(pipe, Platform::FileMode::Binary));
    EXPECT_FALSE(Platform::OutputFile::create(folder, Platform::FileMode::Text));
    fs::remove(pipe);
}

TEST(PlatformTest, PipesAndDevicesAreReadToTheirEnd) {
    EXPECT_EQ(Platform::readFile("/dev/null")->text(), "");
    // More than a pipe holds, so that the reader waits for the writer again and again.
    const std::string contents(300'000, 'x');
    for (const std::string& text : {std::string(), std::string("short"), contents}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        const std::jthread writer([&text, end = ends[1]] {
            EXPECT_EQ(::write(end, text.data(), text.size()), static_cast<ssize_t>(text.size()));
            ::close(end);
        });
        EXPECT_EQ(Platform::readFile("/dev/fd/" + std::to_string(ends[0]))->text(), text);
        ::close(ends[0]);
    }
    const fs::path pipe = ownPath("pipe");
    fs::remove(pipe);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    // The first descriptor, for both directions, opens at once; the second one then finds a reader.
    const int both = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    const int end = ::open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
    ::close(both);
    const std::jthread writer([&contents, end] {
        // A pipe without a reader is in error.
        pollfd state{end, POLLOUT, 0};
        do {
            ::poll(&state, 1, -1);
        } while ((state.revents & POLLERR) != 0);
        EXPECT_EQ(::write(end, contents.data(), 1000), 1000);
        ::close(end);
    });
    EXPECT_EQ(Platform::readFile(pipe)->text(), contents.substr(0, 1000));
    fs::remove(pipe);
}

TEST(PlatformTest, AnOutputFileReplacesAndAFullDeviceSaysSo) {
    const fs::path path = writtenFile("something longer");
    {
        auto file = Platform::OutputFile::create(path, Platform::FileMode::Text);
        ASSERT_TRUE(file);
        EXPECT_TRUE(file->write("a\n"));
        EXPECT_TRUE(file->write("b"));
    }
    EXPECT_EQ(Platform::readFile(path)->text(), "a\nb");
    auto full = Platform::OutputFile::create("/dev/full", Platform::FileMode::Binary);
    ASSERT_TRUE(full);
    EXPECT_FALSE(full->write("a"));
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

TEST(PlatformTest, UntouchedBlocksCountAsUsed) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's shadow memory hides what is untouched";
#endif
    // Each block alone would fit; pages that were promised to the first are gone for the second.
    std::size_t size = std::size_t{1} << 30U;
    const auto fits = [](std::size_t bytes) {
        try {
            return Platform::PageBlock(bytes).size() == bytes;
        } catch (const std::bad_alloc&) {
            return false;
        }
    };
    while (fits(size * 2)) size *= 2;
    const Platform::PageBlock first(size);
    EXPECT_FALSE(fits(size));
}

TEST(PlatformTest, AProgramRunsWhateverItsPathHolds) {
    const fs::path folder = ownPath("a b$HOME'\"`c");
    fs::create_directories(folder);
    const fs::path program = folder / "it's;run.sh";
    const fs::path output = ownPath("output");
    std::ofstream(program) << "#!/bin/sh\necho \"$#:$1:$2\" > \"$3\"\n";
    fs::permissions(program, fs::perms::owner_all);
    Platform::runProgram(program, "one 'two  words' '" + output.string() + "'");
    EXPECT_EQ(Platform::readFile(output)->text(), "3:one:two  words\n");
    fs::remove_all(folder);
}

}  // namespace
