#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/Replace.hpp"
#include "tests/strict/RunFilesFixture.hpp"

namespace {

using namespace Tests;

class RunFilesLinuxTest : public RunFilesTest {
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

TEST_F(RunFilesLinuxTest, WhatCannotBeWrittenIsRefusedAtOnceWithTheReason) {
    put("file", "contents");
    fs::create_symlink("loop", at("loop"));
    RunFiles files(RunFiles::Mode::Disk);
    EXPECT_EQ(files.createOutput(at("file/out"), binary), nullptr);
    EXPECT_EQ(files.reasonFor(at("file/out")), "Not a directory");
    EXPECT_EQ(files.createOutput(at("loop"), binary), nullptr);
    EXPECT_EQ(files.reasonFor(at("loop")), "Too many levels of symbolic links");
    EXPECT_EQ(names(), (Names{"file", "loop"}));
}

TEST_F(RunFilesLinuxTest, ALinkStaysAndItsTargetIsReplaced) {
    fs::create_directory(at("real"));
    put("real/present", "before");
    for (const std::string name : {"present", "missing"}) {
        fs::create_symlink("real/" + name, at(name));
        fs::create_symlink(name, at("to-" + name));
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("to-" + name), "after"));
        for (const std::string& other : {"to-" + name, name, "real/../real/" + name})
            EXPECT_EQ(read(files, at(other)), "after") << other;
        EXPECT_FALSE(files.commit());
        EXPECT_EQ(contentsOf(at("real/" + name)), "after");
        EXPECT_EQ(fs::read_symlink(at("to-" + name)), name);
        EXPECT_EQ(fs::read_symlink(at(name)), "real/" + name);
    }
}

TEST_F(RunFilesLinuxTest, TheModeIsThatOfTheTargetOrOfANewFile) {
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
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "after"));
        EXPECT_EQ(modeOf(names().front()) & ~row.after, 0U) << "nobody may read it earlier";
        EXPECT_FALSE(files.commit());
        EXPECT_EQ(modeOf("out"), row.after);
    }
    ::umask(outer);
}

TEST_F(RunFilesLinuxTest, TheOwnerIsThatOfTheTarget) {
    put("out", "before");
    if (::chown(at("out").c_str(), 12345, 54321) != 0) GTEST_SKIP() << "needs the superuser";
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, at("out"), "after"));
    EXPECT_FALSE(files.commit());
    struct stat status {};
    ASSERT_EQ(::stat(at("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
}

TEST_F(RunFilesLinuxTest, SomebodyElseKeepsTheGroupAndGainsNoRights) {
    put("out", "before");
    if (::chown(at("out").c_str(), 12345, 54321) != 0) GTEST_SKIP() << "needs the superuser";
    ASSERT_EQ(::chmod(at("out").c_str(), 06775), 0);
    ASSERT_EQ(::chmod(folder_.c_str(), 0777), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // The folders above are closed to others, but not the working directory.
        const bool isOther = ::chdir(folder_.c_str()) == 0 && ::setgroups(0, nullptr) == 0 &&
                             ::setgid(54321) == 0 && ::setuid(1) == 0;
        RunFiles files(RunFiles::Mode::Disk);
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

TEST_F(RunFilesLinuxTest, ADeviceIsWrittenLast) {
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
        RunFiles files(RunFiles::Mode::Disk);
        EXPECT_TRUE(write(files, at("pipe"), "through the pipe"));
        EXPECT_TRUE(write(files, at("out"), "file"));
        EXPECT_FALSE(files.commit());
        ::close(probe);
    }
    EXPECT_EQ(arrived, "through the pipe");
    EXPECT_TRUE(isFileThere);
    EXPECT_EQ(names(), Names({"out", "pipe"}));
}

TEST_F(RunFilesLinuxTest, ADeviceGetsNothingIfAFileCannotTakeItsPlace) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    const int reader = ::open(at("pipe").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    {
        RunFiles files(RunFiles::Mode::Disk);
        EXPECT_TRUE(write(files, at("out"), "file"));
        EXPECT_TRUE(write(files, at("pipe"), "through the pipe"));
        fs::create_directory(at("out"));
        const auto failure = files.commit();
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->path, at("out"));
    }
    char first = 0;
    EXPECT_EQ(::read(reader, &first, 1), -1) << "there is " << first;
    ::close(reader);
}

TEST_F(RunFilesLinuxTest, ADeviceThatIsFullKeepsTheFilesAsTheyWere) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
    put("out", "before");
    {
        RunFiles files(RunFiles::Mode::Disk);
        EXPECT_TRUE(write(files, at("out"), "after"));
        EXPECT_TRUE(write(files, "/dev/full", "x"));
        const auto failure = files.commit();
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->path, "/dev/full");
        EXPECT_EQ(failure->reason, "No space left on device");
    }
    EXPECT_EQ(contentsOf(at("out")), "before");
    EXPECT_EQ(names(), Names({"out"}));
}

/// Runs `work` in a process of the user nobody, in the folder of the test; true if it returns true.
bool asNobody(const fs::path& folder, bool (*work)()) {
    const pid_t child = ::fork();
    if (child == 0) {
        // The folders above are closed to others, but not the working directory.
        const bool isOther = ::chdir(folder.c_str()) == 0 && ::setgroups(0, nullptr) == 0 &&
                             ::setgid(65534) == 0 && ::setuid(65534) == 0;
        ::_exit(isOther && work() ? 0 : 1);
    }
    int state = 0;
    return ::waitpid(child, &state, 0) == child && WIFEXITED(state) && WEXITSTATUS(state) == 0;
}

TEST_F(RunFilesLinuxTest, AFileOfSomebodyElseInAStickyFolderKeepsAllAsTheyWere) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs the superuser";
    ASSERT_EQ(::chmod(folder_.c_str(), 01777), 0);
    for (const char* const name : {"own", "other"}) {
        put(name, "before");
        ASSERT_EQ(::chmod(at(name).c_str(), 0666), 0);
    }
    ASSERT_EQ(::chown(at("own").c_str(), 65534, 65534), 0);
    EXPECT_TRUE(asNobody(folder_, [] {
        RunFiles files(RunFiles::Mode::Disk);
        if (!write(files, "own", "after") || !write(files, "other", "after")) return false;
        const auto failure = files.commit();
        return failure && failure->path == "other" &&
               failure->reason == "Operation not permitted" && failure->stillNew.empty();
    }));
    EXPECT_EQ(contentsOf(at("own")), "before");
    EXPECT_EQ(contentsOf(at("other")), "before");
    EXPECT_EQ(names(), Names({"other", "own"}));
}

TEST_F(RunFilesLinuxTest, AGroupThatCannotBeKeptTakesItsRightsAlong) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs the superuser";
    ASSERT_EQ(::chmod(folder_.c_str(), 0777), 0);
    struct Row {
        unsigned before;
        unsigned after;
    };
    // Members of either group may be among the others: all get what the group and the others had.
    for (const Row& row :
         {Row{0662, 0622}, Row{0646, 0644}, Row{0666, 0666}, Row{0626, 0622}, Row{0602, 0600}}) {
        put("out", "before");
        ASSERT_EQ(::chmod(at("out").c_str(), row.before), 0);
        ASSERT_EQ(::chown(at("out").c_str(), 12345, 54321), 0);
        const bool isWritten = asNobody(folder_, [] {
            RunFiles files(RunFiles::Mode::Disk);
            return write(files, "out", "after") && !files.commit();
        });
        EXPECT_EQ(isWritten, (row.before & 2U) != 0) << std::oct << row.before;
        if (isWritten) {
            EXPECT_EQ(modeOf("out"), row.after) << std::oct << row.before;
        }
        fs::remove(at("out"));
    }
}

TEST_F(RunFilesLinuxTest, ATemporaryFileThatSomebodySwapsIsNotPutInPlace) {
    put("out", "before");
    put("secret", "of somebody else");
    ASSERT_EQ(::chmod(at("secret").c_str(), 0600), 0);
    for (const bool isLink : {true, false}) {
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "after"));
        const std::string temporary = at(names().front());
        // Its number stays in use, so that no other file gets it.
        fs::rename(temporary, at("aside"));
        if (isLink)
            fs::create_symlink("secret", temporary);
        else
            put(fs::path(temporary).filename(), "swapped");
        EXPECT_EQ(read(files, at("out")), "not opened");
        const auto failure = files.commit();
        ASSERT_TRUE(failure);
        EXPECT_EQ(contentsOf(at("out")), "before");
        EXPECT_EQ(modeOf("secret"), 0600U);
    }
}

TEST_F(RunFilesLinuxTest, TwoRunsPutTheirOutputsInPlaceOneAfterTheOther) {
    constexpr int runs = 20;
    constexpr int outputs = 5;
    for (int run = 0; run < runs; ++run) {
        std::array<pid_t, 4> children{};
        for (std::size_t i = 0; i < children.size(); ++i) {
            children[i] = ::fork();
            if (children[i] != 0) continue;
            RunFiles files(RunFiles::Mode::Disk);
            bool isGood = true;
            for (int j = 0; j < outputs; ++j)
                isGood = isGood && write(files, at("out" + std::to_string(j)), std::to_string(i));
            isGood = isGood && !files.commit();
            ::_exit(isGood ? 0 : 1);
        }
        for (const pid_t child : children) {
            int state = 0;
            ASSERT_EQ(::waitpid(child, &state, 0), child);
            EXPECT_EQ(state, 0);
        }
        for (int j = 1; j < outputs; ++j)
            ASSERT_EQ(contentsOf(at("out" + std::to_string(j))), contentsOf(at("out0")));
        EXPECT_EQ(names().size(), static_cast<std::size_t>(outputs));
    }
}

TEST_F(RunFilesLinuxTest, WhoKeepsTheFolderLockedIsWaitedForAndNotForEver) {
    const int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(folder, LOCK_EX), 0);
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, at("out"), "after"));
    {
        const std::jthread other([folder] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            ::close(folder);
        });
        EXPECT_FALSE(fs::exists(at("out")));
        EXPECT_FALSE(files.commit());
    }
    EXPECT_EQ(contentsOf(at("out")), "after");
    EXPECT_EQ(files.busyFolders(), Names());
}

TEST_F(RunFilesLinuxTest, AnAppendedStreamIsWrittenWhereItIs) {
    put("log", "line\n");
    const int log = ::open(at("log").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    const std::string stream = "/dev/fd/" + std::to_string(log);
    RunFiles files(RunFiles::Mode::Disk);
    EXPECT_FALSE(files.name(stream, Strict::FileRole::Output));
    EXPECT_FALSE(files.name(stream, Strict::FileRole::Output)) << "one after the other";
    EXPECT_TRUE(files.name(at("log"), Strict::FileRole::Output)) << "would replace the log";
    ASSERT_TRUE(write(files, stream, "first"));
    ASSERT_TRUE(write(files, stream, "second"));
    EXPECT_FALSE(files.commit());
    ::close(log);
    EXPECT_EQ(contentsOf(at("log")), "line\nfirstsecond");
}

TEST_F(RunFilesLinuxTest, AFileThatEndsBeforeItsSizeIsNotComplete) {
    // The files there have the size of a page, and a few bytes.
    const std::string path = "/sys/devices/system/cpu/online";
    if (!fs::exists(path)) GTEST_SKIP() << "there is no " << path;
    RunFiles files(RunFiles::Mode::Disk);
    const auto file = files.openInput(path);
    ASSERT_TRUE(file);
    std::string text(static_cast<std::size_t>(file->size()), '\0');
    EXPECT_LT(file->readAt(0, text), text.size());
    EXPECT_EQ(file->reading(), Platform::Reading::Failed);
    const auto whole = Platform::InputFile::open(path);
    EXPECT_LT(whole->readAt(0, text), text.size());
    EXPECT_EQ(whole->reading(), Platform::Reading::Complete) << "for those who do not ask";
}

TEST_F(RunFilesLinuxTest, DigestsOutliveWhatAProgramDoesToAnInput) {
    put("in", "abc");
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    EXPECT_EQ(read(files, at("in")), "abc");
    EXPECT_EQ(files.runProgram("/bin/sh", "-c 'printf xyz >\"" + at("in") + "\"'"), 0);
    EXPECT_EQ(files.inputDigests(at("in")).size(), 1U);
    EXPECT_EQ(files.inputDigests(at("in"))[0].sha256,
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(read(files, at("in")), "xyz");
    EXPECT_EQ(files.inputDigests(at("in")).size(), 2U) << "both were read";
    EXPECT_EQ(files.changedInputs(), Names());
}

TEST_F(RunFilesLinuxTest, AProgramMayLeadAPathToAnotherFile) {
    put("one", "abc");
    put("two", "xyz");
    fs::create_symlink("one", at("link"));
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    EXPECT_EQ(read(files, at("link")), "abc");
    EXPECT_EQ(files.runProgram("/bin/ln", "-sf two " + at("link")), 0);
    EXPECT_EQ(read(files, at("link")), "xyz");
    EXPECT_EQ(files.inputDigests(at("one")).size(), 1U);
    EXPECT_EQ(files.inputDigests(at("two")).size(), 1U);
}

TEST_F(RunFilesLinuxTest, AnInputThatChangesDuringItsDigestIsNamed) {
    put("small", "abc");
    put("large", "");
    fs::resize_file(at("large"), std::uintmax_t{1} << 30U);  // takes the digest a while
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    EXPECT_EQ(read(files, at("small")), "abc");
    ASSERT_TRUE(files.openInput(at("large")));
    fs::resize_file(at("large"), 1);
    EXPECT_EQ(files.changedInputs(), Names({at("large")}));
}

TEST_F(RunFilesLinuxTest, WithoutDigestsAnInputThatChangesIsNamedByItsState) {
    for (const char* const name : {"same", "cut", "gone", "program"}) put(name, "abc");
    RunFiles files(RunFiles::Mode::Disk);
    files.keepStates();
    EXPECT_EQ(read(files, at("program")), "abc");
    EXPECT_EQ(files.runProgram("/bin/sh", "-c 'echo x >" + at("program") + "'"), 0);
    for (const char* const name : {"same", "cut", "gone"}) EXPECT_EQ(read(files, at(name)), "abc");
    fs::resize_file(at("cut"), 1);
    fs::remove(at("gone"));
    EXPECT_EQ(files.changedInputs(), Names({at("cut"), at("gone")}));
}

TEST_F(RunFilesLinuxTest, NoDescriptorStaysOpen) {
    const auto open = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    fs::create_directory(at("below"));
    put("in", "abc");
    put("out", "before");
    const auto before = open();
    {
        RunFiles files(RunFiles::Mode::Disk);
        files.keepDigests();
        EXPECT_EQ(read(files, at("in")), "abc");
        for (const char* const name : {"out", "below/out"})
            ASSERT_TRUE(write(files, at(name), "after"));
        EXPECT_FALSE(files.commit());
    }
    EXPECT_EQ(open(), before);
}

TEST_F(RunFilesLinuxTest, ADigestNeedsNoFurtherDescriptor) {
#ifdef TESSARON_SANITIZED
    GTEST_SKIP() << "the sanitizers look at memory by a pipe, which needs descriptors";
#endif
    put("in", "abc");
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    rlimit outer{};
    ::getrlimit(RLIMIT_NOFILE, &outer);
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(next);
    const rlimit one{static_cast<rlim_t>(next) + 1, outer.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &one);
    EXPECT_EQ(read(files, at("in")), "abc");
    ::setrlimit(RLIMIT_NOFILE, &outer);
    EXPECT_EQ(files.inputDigests(at("in"))[0].size, 3U);
    EXPECT_EQ(files.inputDigests(at("in"))[0].sha256.substr(0, 8), "ba7816bf");
}

TEST_F(RunFilesLinuxTest, AnIncompleteOutputIsNeverPutInPlace) {
    put("short", "before");
    put("open", "before");
    RunFiles files(RunFiles::Mode::Disk);
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

TEST_F(RunFilesLinuxTest, AProgramFindsWhatWasWritten) {
    put("second", "before");
    {
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("first"), "made in vain"));
        ASSERT_TRUE(write(files, at("./first"), "made"));
        EXPECT_EQ(files.runProgram("/bin/cp", "'" + at("first") + "' '" + at("copy") + "'"), 0);
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

TEST_F(RunFilesLinuxTest, AnInterruptRemovesTheTemporaryFiles) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU}) {
        put("out", "before");
        const pid_t child = ::fork();
        if (child == 0) {
            // A shell lets what it starts in the background ignore some of them.
            ::signal(signal, SIG_DFL);
            RunFiles files(RunFiles::Mode::Disk);
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

TEST_F(RunFilesLinuxTest, NeitherAnInterruptNorACommitRemovesFilesOfSomebodyElse) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGINT, SIG_DFL);
        Names taken;
        {
            RunFiles killed(RunFiles::Mode::Disk);
            write(killed, at("a"), "never finished");
            taken = names();
        }
        put(taken.front(), "other");
        for (const char* const name : {"a", "b"}) put(name, "before");
        RunFiles files(RunFiles::Mode::Disk);
        bool isGood = write(files, at("a"), "after") && write(files, at("b"), "after");
        // Names of temporary files, free once these are in place, and of what they replace.
        taken = names();
        std::erase_if(taken, [](const std::string& name) { return !name.ends_with(".tmp"); });
        for (const std::string& name : taken) put(name + ".old", "other");
        isGood = isGood && taken.size() == 3 && !files.commit();
        for (const std::string& name : taken) put(name, "other");
        if (isGood) ::raise(SIGINT);
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
    EXPECT_EQ(names().size(), 2U + 3 + 3);
    for (const std::string& name : names())
        EXPECT_EQ(contentsOf(at(name)), name.starts_with('.') ? "other" : "after") << name;
}

TEST_F(RunFilesLinuxTest, WithoutASecondNameAFileIsReplacedAllTheSame) {
    for (const char* const name : {"a", "b"}) put(name, "before");
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, at("a"), "after"));
    const std::string temporary = names().front();
    ASSERT_TRUE(write(files, at("b"), "after"));
    put(temporary + ".old", "other");
    for (int i = 1; i < 1000; ++i) put(temporary + "-" + std::to_string(i) + ".old", "other");
    EXPECT_FALSE(files.commit());
    EXPECT_EQ(contentsOf(at("a")), "after");
    EXPECT_EQ(names().size(), 2U + 1000) << "those of somebody else stay";
}

TEST_F(RunFilesLinuxTest, WhatIsNotKeptIsTakenBack) {
    struct Row {
        bool canFailLater;
        bool isNew;                           ///< nothing is at the places
        std::vector<std::size_t> left;        ///< that cannot be taken back
        std::array<std::string, 2> contents;  ///< in the end; empty where there is no file
    };
    for (const Row& row :
         {Row{true, false, {}, {"before", "before"}}, Row{false, false, {1}, {"before", "after"}},
          Row{true, true, {}, {"", ""}}, Row{false, true, {}, {"", ""}}})
        for (const bool isExplicit : {true, false}) {
            Platform::InterruptGuard guard;
            unsigned number = 0;
            std::optional<Platform::Replacement> replacement(guard);
            for (const char* const name : {"a", "b"}) {
                fs::remove(at(name));
                if (!row.isNew) put(name, "before");
                const auto target = Platform::outputTarget(at(name));
                Platform::TemporaryFile file;
                std::error_code error;
                auto output = Platform::createTemporary(target, guard, number, file, error);
                ASSERT_TRUE(output && output->write("after") && output->close());
                replacement->add(file, target);
            }
            EXPECT_FALSE(replacement->putInPlace(row.canFailLater));
            EXPECT_EQ(contentsOf(at("a")) + contentsOf(at("b")), "afterafter");
            if (isExplicit) {
                EXPECT_EQ(replacement->takeBack(), row.left);
            }
            replacement.reset();
            EXPECT_EQ(contentsOf(at("a")), row.contents[0]);
            EXPECT_EQ(contentsOf(at("b")), row.contents[1]);
            EXPECT_EQ(names(), row.isNew ? Names() : Names({"a", "b"}));
        }
}

TEST_F(RunFilesLinuxTest, ADescriptorIsADevice) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    RunFiles files(RunFiles::Mode::Disk);
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
