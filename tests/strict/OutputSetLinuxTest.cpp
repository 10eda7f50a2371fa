#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "tests/strict/OutputSetFixture.hpp"

namespace {

using namespace Tests;

class OutputSetLinuxTest : public OutputSetTest {
protected:
    unsigned modeOf(const std::string& name) const {
        struct stat status {};
        return ::stat(at(name).c_str(), &status) == 0 ? status.st_mode & 07777U : ~0U;
    }
};

/// Limits the size of files, as a full disk does, while it lives.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &outer_);
        const rlimit limit{bytes, outer_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &outer_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*handler_)(int);
    rlimit outer_{};
};

TEST_F(OutputSetLinuxTest, WhatCannotBeWrittenIsRefusedAtOnceWithTheReason) {
    put("file", "contents");
    fs::create_symlink("loop", at("loop"));
    OutputSet files(OutputSet::Mode::Disk);
    EXPECT_EQ(files.createOutput(at("file/out"), binary), nullptr);
    EXPECT_EQ(files.reasonFor(at("file/out")), "Not a directory");
    EXPECT_EQ(files.createOutput(at("loop"), binary), nullptr);
    EXPECT_EQ(files.reasonFor(at("loop")), "Too many levels of symbolic links");
    EXPECT_EQ(names(), (Names{"file", "loop"}));
}

TEST_F(OutputSetLinuxTest, ALinkStaysAndItsTargetIsReplaced) {
    fs::create_directory(at("real"));
    put("real/present", "before");
    for (const std::string name : {"present", "missing"}) {
        fs::create_symlink("real/" + name, at(name));
        fs::create_symlink(name, at("to-" + name));
        OutputSet files(OutputSet::Mode::Disk);
        ASSERT_TRUE(write(files, at("to-" + name), "after"));
        for (const std::string& other : {"to-" + name, name, "real/../real/" + name})
            EXPECT_EQ(read(files, at(other)), "after") << other;
        EXPECT_FALSE(files.commit());
        EXPECT_EQ(contentsOf(at("real/" + name)), "after");
        EXPECT_EQ(fs::read_symlink(at("to-" + name)), name);
        EXPECT_EQ(fs::read_symlink(at(name)), "real/" + name);
    }
}

TEST_F(OutputSetLinuxTest, TheModeIsThatOfTheTargetOrOfANewFile) {
    const mode_t outer = ::umask(027);
    struct Row {
        unsigned before;  ///< 0: no file
        unsigned after;
    };
    for (const Row& row : {Row{0, 0640}, Row{0600, 0600}, Row{0755, 0755}, Row{0666, 0666}}) {
        fs::remove(at("out"));
        if (row.before != 0) {
            put("out", "before");
            ASSERT_EQ(::chmod(at("out").c_str(), row.before), 0);
        }
        OutputSet files(OutputSet::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "after"));
        EXPECT_EQ(modeOf(names().front()) & ~row.after, 0U) << "nobody may read it earlier";
        EXPECT_FALSE(files.commit());
        EXPECT_EQ(modeOf("out"), row.after);
    }
    ::umask(outer);
}

TEST_F(OutputSetLinuxTest, TheOwnerIsThatOfTheTarget) {
    put("out", "before");
    if (::chown(at("out").c_str(), 12345, 54321) != 0) GTEST_SKIP() << "needs the superuser";
    OutputSet files(OutputSet::Mode::Disk);
    ASSERT_TRUE(write(files, at("out"), "after"));
    EXPECT_FALSE(files.commit());
    struct stat status {};
    ASSERT_EQ(::stat(at("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
}

TEST_F(OutputSetLinuxTest, SomebodyElseKeepsTheGroupAndGainsNoRights) {
    put("out", "before");
    if (::chown(at("out").c_str(), 12345, 54321) != 0) GTEST_SKIP() << "needs the superuser";
    ASSERT_EQ(::chmod(at("out").c_str(), 06775), 0);
    ASSERT_EQ(::chmod(folder_.c_str(), 0777), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // The folders above are closed to others, but not the working directory.
        const bool isOther = ::chdir(folder_.c_str()) == 0 && ::setgroups(0, nullptr) == 0 &&
                             ::setgid(54321) == 0 && ::setuid(1) == 0;
        OutputSet files(OutputSet::Mode::Disk);
        const bool isWritten = write(files, "out", "after");
        ::_exit(isOther && isWritten && !files.commit() ? 0 : 1);
    }
    int state = 0;
    ASSERT_EQ(::waitpid(child, &state, 0), child);
    EXPECT_EQ(state, 0);
    struct stat status {};
    ASSERT_EQ(::stat(at("out").c_str(), &status), 0);
    EXPECT_EQ(contentsOf(at("out")), "after");
    EXPECT_EQ(status.st_uid, 1U);
    EXPECT_EQ(status.st_gid, 54321U);
    EXPECT_EQ(modeOf("out"), 0775U);
}

TEST_F(OutputSetLinuxTest, ADeviceIsWrittenLast) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    std::string arrived;
    bool isFileThere = false;
    {
        std::jthread reader([&] {
            std::ifstream pipe(at("pipe"), std::ios::binary);
            arrived.assign(std::istreambuf_iterator<char>(pipe), {});
            isFileThere = fs::exists(at("out"));
        });
        // Until the reader has opened the pipe, a writer is refused.
        int probe = -1;
        while ((probe = ::open(at("pipe").c_str(), O_WRONLY | O_NONBLOCK)) < 0)
            std::this_thread::yield();
        OutputSet files(OutputSet::Mode::Disk);
        EXPECT_TRUE(write(files, at("pipe"), "through the pipe"));
        EXPECT_TRUE(write(files, at("out"), "file"));
        EXPECT_FALSE(files.commit());
        ::close(probe);
    }
    EXPECT_EQ(arrived, "through the pipe");
    EXPECT_TRUE(isFileThere);
    EXPECT_EQ(names(), Names({"out", "pipe"}));
}

TEST_F(OutputSetLinuxTest, AFullDeviceIsReportedByTheCommit) {
    if (!fs::exists("/dev/full")) GTEST_SKIP();
    OutputSet files(OutputSet::Mode::Disk);
    EXPECT_TRUE(write(files, "/dev/full", "x"));
    const auto failure = files.commit();
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->path, "/dev/full");
    EXPECT_EQ(failure->reason, "No space left on device");
}

TEST_F(OutputSetLinuxTest, AnIncompleteOutputIsNeverPutInPlace) {
    put("short", "before");
    put("open", "before");
    OutputSet files(OutputSet::Mode::Disk);
    {
        const FullDisk full(4);
        EXPECT_FALSE(write(files, at("short"), "longer than that"));
    }
    EXPECT_EQ(files.reasonFor(at("short")), "File too large");
    // A writer that gives up never closes its output.
    EXPECT_TRUE(files.createOutput(at("open"), binary)->write("half"));
    ASSERT_TRUE(write(files, at("good"), "made"));
    EXPECT_EQ(files.runProgram("/bin/true", ""), 0);
    EXPECT_EQ(contentsOf(at("short")), "before");
    EXPECT_EQ(contentsOf(at("open")), "before");
    EXPECT_EQ(files.inPlace(), Names({at("good")}));
}

TEST_F(OutputSetLinuxTest, AProgramFindsWhatWasWritten) {
    put("second", "before");
    {
        OutputSet files(OutputSet::Mode::Disk);
        ASSERT_TRUE(write(files, at("first"), "made"));
        EXPECT_EQ(files.runProgram("/bin/cp", at("first") + " " + at("copy")), 0);
        EXPECT_EQ(contentsOf(at("copy")), "made");
        EXPECT_EQ(files.runProgram("/bin/sh", "-c 'exit 3'"), 3);
        ASSERT_TRUE(write(files, at("second"), "after"));
        EXPECT_EQ(files.inPlace(), Names({at("first")}));
        // The program may have changed the output.
        put("first", "changed");
        EXPECT_EQ(read(files, at("first")), "changed");
    }
    EXPECT_EQ(contentsOf(at("second")), "before");
    EXPECT_EQ(names(), Names({"copy", "first", "second"}));
}

TEST_F(OutputSetLinuxTest, AnInterruptRemovesTheTemporaryFiles) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU}) {
        put("out", "before");
        const pid_t child = ::fork();
        if (child == 0) {
            // A shell lets what it starts in the background ignore some of them.
            ::signal(signal, SIG_DFL);
            OutputSet files(OutputSet::Mode::Disk);
            write(files, at("out"), "after");
            write(files, at("new"), "made");
            if (names().size() == 3) ::raise(signal);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_EQ(names(), Names({"out"})) << signal;
        EXPECT_EQ(contentsOf(at("out")), "before");
    }
}

TEST_F(OutputSetLinuxTest, ADescriptorIsADevice) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    OutputSet files(OutputSet::Mode::Disk);
    const std::string path = "/dev/fd/" + std::to_string(ends[1]);
    EXPECT_TRUE(write(files, path, "piped")) << files.reasonFor(path);
    EXPECT_FALSE(files.commit());
    ::close(ends[1]);
    std::array<char, 16> text{};
    EXPECT_EQ(::read(ends[0], text.data(), text.size()), 5);
    EXPECT_STREQ(text.data(), "piped");
    ::close(ends[0]);
}

}  // namespace
