#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <thread>

#include "platform/ControlGroup.hpp"
#include "platform/Files.hpp"
#include "platform/Memory.hpp"
#include "platform/Process.hpp"
#include "platform/SecretFile.hpp"

namespace {

namespace fs = std::filesystem;

/// A path of the running test alone.
fs::path ownPath(const std::string& name) {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    return fs::path(testing::TempDir()) / (test->name() + ("-" + name));
}

TEST(PlatformLinuxTest, WhatNeverEndsIsNoInput) {
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

TEST(PlatformLinuxTest, SecretFilesAreWholeAndLeaveNoCoreFile) {
    const fs::path path = ownPath("key");
    const auto read = [&](std::size_t size, fs::perms permissions) {
        std::ofstream(path) << std::string(size, 'k');
        fs::permissions(path, permissions);
        return Platform::SecretFile(*Platform::InputFile::open(path));
    };
    using enum fs::perms;
    const auto own = owner_read | owner_write;
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE), 1);
    const Platform::SecretFile file = read(3, own);
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE), 0);
    EXPECT_TRUE(file.isWhole());
    EXPECT_FALSE(file.isReadableByOthers());
    EXPECT_EQ(std::string(file.bytes().begin(), file.bytes().end()), "kkk");
    EXPECT_TRUE(read(Platform::SecretFile::longest, own).isWhole());
    EXPECT_FALSE(read(Platform::SecretFile::longest + 1, own).isWhole());
    EXPECT_FALSE(read(3, own | group_write | others_exec).isReadableByOthers());
    EXPECT_TRUE(read(3, own | group_read).isReadableByOthers());
    EXPECT_TRUE(read(3, own | others_read).isReadableByOthers());
    fs::remove(path);
    ::prctl(PR_SET_DUMPABLE, 1);
}

TEST(PlatformLinuxTest, ASecretInAPipeIsWiped) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    EXPECT_EQ(::write(ends[1], "secret", 6), 6);
    ::close(ends[1]);
    auto file = Platform::InputFile::open("/dev/fd/" + std::to_string(ends[0]));
    ASSERT_TRUE(file);
    file->wipe();
    std::string left(6, '?');
    EXPECT_EQ(file->readAt(0, left), 6U);
    EXPECT_EQ(left, std::string(6, '\0'));
    ::close(ends[0]);
}

TEST(PlatformLinuxTest, PipesAndDevicesAreReadToTheirEnd) {
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

TEST(PlatformLinuxTest, UntouchedBlocksCountAsUsed) {
#ifdef TESSARON_SANITIZED
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

TEST(PlatformLinuxTest, ReservedAddressesDoNotCountAsUsed) {
    constexpr std::size_t unit = Platform::PageBlock::reservedUnit;
    constexpr std::size_t large = std::size_t{1} << 38U;  // more than the machine has
    EXPECT_THROW(Platform::PageBlock::reserve(std::size_t{1} << 62U), std::bad_alloc);
    Platform::PageBlock reserved = Platform::PageBlock::reserve(large);
    EXPECT_THROW(reserved.take(0, large), std::bad_alloc);
    const Platform::PageBlock other(std::size_t{33} << 20U);
    EXPECT_NE(other.data(), nullptr);
    reserved.take(large - unit, unit);
    std::byte* const last = reserved.data() + large - 1;
    EXPECT_EQ(*last, std::byte{0});
    *last = std::byte{7};
    reserved.take(large - 2 * unit, 2 * unit);
    EXPECT_EQ(*last, std::byte{7});
}

TEST(PlatformLinuxTest, AProgramRunsWhateverItsPathHolds) {
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

TEST(PlatformLinuxTest, AFullDeviceSaysSo) {
    auto full = Platform::OutputFile::create("/dev/full", Platform::FileMode::Binary);
    ASSERT_TRUE(full);
    EXPECT_FALSE(full->write("a"));
}

/// A folder of a control group.
void makeGroup(const fs::path& folder, bool isFirst, const std::string& limit, int used,
               int cache) {
    fs::create_directories(folder);
    std::ofstream(folder / (isFirst ? "memory.limit_in_bytes" : "memory.max")) << limit << "\n";
    std::ofstream(folder / (isFirst ? "memory.usage_in_bytes" : "memory.current")) << used << "\n";
    const std::string total = isFirst ? "total_" : "";
    std::ofstream(folder / "memory.stat") << "anon 7\n"
                                          << total << "inactive_file " << cache << "\n"
                                          << total << "active_file 100\n";
}

TEST(PlatformLinuxTest, TheCacheOfFilesIsFreeMemoryOfAControlGroup) {
    constexpr auto none = ~std::uint64_t{0};
    const fs::path root = ownPath("groups");
    fs::remove_all(root);
    makeGroup(root / "outer" / "inner", false, "10000", 9000, 5000);
    const std::string membership = "0::/outer/inner\n";
    EXPECT_EQ(Platform::freeGroupMemory(membership, root), 6100U);
    EXPECT_EQ(Platform::freeGroupMemory("0::/other\n", root), none);
    EXPECT_EQ(Platform::freeGroupMemory("", root), none);
    // The group around it counts as well, and so does that which a container sees as the root.
    makeGroup(root / "outer", false, "9000", 9000, 1000);
    EXPECT_EQ(Platform::freeGroupMemory(membership, root), 1100U);
    makeGroup(root, false, "max", 9000, 0);
    EXPECT_EQ(Platform::freeGroupMemory(membership, root), 1100U);
    makeGroup(root / "memory", true, "5000", 5000, 20);
    EXPECT_EQ(Platform::freeGroupMemory("4:memory:/docker/1\n" + membership, root), 120U);
    EXPECT_EQ(Platform::freeGroupMemory("4:cpu:/docker/1\n", root), none);
    fs::remove_all(root);
}

}  // namespace
