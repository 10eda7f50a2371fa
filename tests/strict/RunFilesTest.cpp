#include "tests/strict/RunFilesFixture.hpp"

namespace {

using namespace Tests;
using Strict::FileMatch;
using Strict::FileRole;

TEST_F(RunFilesTest, OutputsAppearTogetherOrNotAtAll) {
    for (const bool isGood : {true, false}) {
        put("old", "before");
        {
            RunFiles files(RunFiles::Mode::Disk);
            ASSERT_TRUE(write(files, at("old"), "after"));
            ASSERT_TRUE(write(files, at("new"), "made"));
            EXPECT_EQ(contentsOf(at("old")), "before");
            EXPECT_FALSE(fs::exists(at("new")));
            EXPECT_EQ(names().size(), 3U) << "the old file and two temporary ones";
            if (isGood) {
                EXPECT_FALSE(files.commit());
            }
        }
        EXPECT_EQ(contentsOf(at("old")), isGood ? "after" : "before");
        EXPECT_EQ(names(), isGood ? Names({"new", "old"}) : Names({"old"}));
        fs::remove(at("new"));
    }
}

TEST_F(RunFilesTest, WhatCannotBeWrittenIsRefusedAtOnceWithTheReason) {
    put("file", "contents");
    struct Row {
        const char* path;
        const char* reason;
    };
    for (const Row& row :
         {Row{"", "Is a directory"}, Row{"missing/out", "No such file or directory"},
          Row{"out/", "No such file or directory"}}) {
        for (const auto mode : {RunFiles::Mode::Disk, RunFiles::Mode::Memory}) {
            RunFiles files(mode);
            EXPECT_EQ(files.createOutput(at(row.path), binary), nullptr) << row.path;
            EXPECT_EQ(files.reasonFor(at(row.path)), row.reason) << row.path;
            EXPECT_EQ(names(), Names({"file"})) << row.path;
        }
    }
}

TEST_F(RunFilesTest, WhatTheRunHasWrittenIsRead) {
    put("both", "before");
    for (const auto mode : {RunFiles::Mode::Disk, RunFiles::Mode::Memory}) {
        RunFiles files(mode);
        for (const char* const name : {"both", "new", "missing"})
            EXPECT_FALSE(files.name(at(name), FileRole::Input));
        EXPECT_EQ(read(files, at("both")), "before");
        ASSERT_TRUE(write(files, at("both"), "first"));
        EXPECT_EQ(read(files, at("both")), "first");
        ASSERT_TRUE(write(files, at("./both"), "second"));
        ASSERT_TRUE(write(files, at("new"), "made"));
        EXPECT_EQ(read(files, at("both")), "second");
        EXPECT_EQ(read(files, at("new")), "made");
        EXPECT_EQ(read(files, at("missing")), "not opened");
        EXPECT_EQ(files.reasonFor(at("missing")), "No such file or directory");
        EXPECT_EQ(files.inputs(), Names({at("both"), at("missing")}));
        EXPECT_EQ(files.outputs(), Names({at("both"), at("new")})) << "by the first spelling";
        EXPECT_EQ(contentsOf(at("both")), "before");
        if (mode == RunFiles::Mode::Memory) {
            EXPECT_EQ(names(), Names({"both"}));
            EXPECT_EQ(files.contentsOf(at("new")), "made");
        }
    }
}

TEST_F(RunFilesTest, OutputsAreComparedWhileTheyAreWritten) {
    const std::string many(std::size_t{3} << 18U, 'x');
    struct Row {
        const char* name;
        std::string found;
        Names pieces;
        FileMatch match;
    };
    for (const Row& row : {Row{"equal", "abcd", {"ab", "cd"}, FileMatch::Equal},
                           Row{"empty", "", {""}, FileMatch::Equal},
                           Row{"cut", "abcd", {"ab", "c"}, FileMatch::Different},
                           Row{"longer", "abcd", {"abcd", "e"}, FileMatch::Different},
                           Row{"other", "abcd", {"ab", "ce", "f"}, FileMatch::Different},
                           Row{"nothing", "abcd", {""}, FileMatch::Different},
                           Row{"long", many + many, {many, many}, FileMatch::Equal},
                           Row{"end", many + "a", {many + "b"}, FileMatch::Different}}) {
        put(row.name, row.found);
        RunFiles files(RunFiles::Mode::Comparison);
        std::string made;
        {
            const auto stream = files.createOutput(at(row.name), binary);
            for (const std::string& piece : row.pieces) {
                EXPECT_TRUE(stream->write(piece));
                made += piece;
            }
            EXPECT_TRUE(stream->close());
        }
        EXPECT_EQ(files.matchOnDisk(at(row.name)), row.match) << row.name;
        EXPECT_EQ(files.contentsOf(at(row.name)), row.match == FileMatch::Equal ? "" : made)
            << row.name << ": what differs is explained, and nothing else needs memory";
        EXPECT_EQ(contentsOf(at(row.name)), row.found);
        ASSERT_TRUE(write(files, at("missing"), "made"));
        EXPECT_EQ(files.matchOnDisk(at("missing")), FileMatch::Missing);
    }
}

TEST_F(RunFilesTest, ARunInMemoryStartsNoProgram) {
    RunFiles files(RunFiles::Mode::Memory);
    EXPECT_EQ(files.runProgram("/bin/cp", "/dev/null " + at("out")), 0);
    EXPECT_EQ(names(), Names());
}

/// Roles that a file gets one after the other, the last under another spelling, and whether that
/// one is refused.
struct RolesRow {
    std::vector<FileRole> roles;
    bool isRefused;
};

TEST_F(RunFilesTest, AFileHasOnlyRolesThatGoTogether) {
    using enum FileRole;
    for (const RolesRow& row :
         {RolesRow{{Input, Input}, false}, RolesRow{{Script, Input}, false},
          RolesRow{{Input, Output}, false}, RolesRow{{Output, Input}, false},
          RolesRow{{Output, Output}, true}, RolesRow{{Script, Output}, true},
          RolesRow{{Input, Output, Output}, true}, RolesRow{{Script, DependencyFile}, true},
          RolesRow{{Input, Manifest}, true}, RolesRow{{Output, Map}, true},
          RolesRow{{Report, Map}, true}, RolesRow{{Manifest, Output}, true}}) {
        // Whether the file is there already makes no difference.
        for (const char* const name : {"present", "missing"}) {
            put("present", "contents");
            RunFiles files(RunFiles::Mode::Disk);
            for (std::size_t i = 0; i + 1 < row.roles.size(); ++i)
                EXPECT_FALSE(files.name(at(name), row.roles[i]));
            const auto collision = files.name(at("./" + std::string(name)), row.roles.back());
            EXPECT_EQ(collision.has_value(), row.isRefused)
                << nameOf(row.roles.front()) << " and " << nameOf(row.roles.back());
            if (collision) {
                EXPECT_EQ(collision->path, at(name));
            }
            EXPECT_FALSE(files.name(at("other"), row.roles.back()));
        }
    }
}

TEST_F(RunFilesTest, ACommitThatFailsChangesNothing) {
    for (const bool callsProgram : {false, true}) {
        put("a", "before");
        {
            RunFiles files(RunFiles::Mode::Disk);
            for (const char* const name : {"a", "b", "c"})
                ASSERT_TRUE(write(files, at(name), name));
            fs::create_directory(at("b"));
            if (callsProgram) {
                EXPECT_EQ(files.runProgram("/bin/cp", at("a") + " " + at("copy")), -1);
                EXPECT_EQ(files.reasonFor("/bin/cp"),
                          "cannot write " + at("b") + ": Is a directory");
            } else {
                const auto failure = files.commit();
                ASSERT_TRUE(failure);
                EXPECT_EQ(failure->path, at("b"));
                EXPECT_EQ(failure->reason, "Is a directory");
                EXPECT_EQ(failure->stillNew, Names());
            }
            EXPECT_EQ(files.inPlace(), Names());
        }
        EXPECT_EQ(contentsOf(at("a")), "before");
        EXPECT_EQ(names(), Names({"a", "b"}));
        fs::remove(at("b"));
    }
}

// SHA-256 of "abc" and of the empty message are from FIPS 180-4 and its example values.
constexpr const char* abc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
constexpr const char* nothing = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

TEST_F(RunFilesTest, DigestsAreOfTheBytesThatWereReadAndWritten) {
    put("in", "abc");
    put("empty", "");
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    EXPECT_EQ(read(files, at("in")), "abc");
    EXPECT_EQ(read(files, at("./in")), "abc");
    EXPECT_EQ(read(files, at("empty")), "");
    ASSERT_TRUE(write(files, at("out"), "abc"));
    EXPECT_EQ(files.changedInputs(), Names());
    // A file that replaces an input later on, and one that replaces an output by other means.
    put("other", "something else");
    fs::rename(at("other"), at("in"));
    put("out", "something else");
    ASSERT_EQ(files.inputDigests(at("in")).size(), 1U);
    EXPECT_EQ(files.inputDigests(at("in"))[0].sha256, abc);
    EXPECT_EQ(files.inputDigests(at("in"))[0].size, 3U);
    EXPECT_EQ(files.inputDigests(at("empty"))[0].sha256, nothing);
    EXPECT_EQ(files.outputDigest(at("./out")).sha256, abc);
    EXPECT_EQ(files.inputs(), Names({at("in"), at("empty")}));
    EXPECT_FALSE(files.openAsRead(at("in"))) << "it is another file";
    EXPECT_TRUE(files.openAsRead(at("empty")));
}

// Long enough that it is asked for while it is computed. SHA-256 by sha256sum.
TEST_F(RunFilesTest, ADigestIsWaitedFor) {
    const std::string zeros(std::size_t{1} << 24U, '\0');
    put("in", zeros);
    RunFiles files(RunFiles::Mode::Disk);
    files.keepDigests();
    files.openInput(at("in"));
    EXPECT_EQ(files.inputDigests(at("in"))[0].sha256,
              "080acf35a507ac9849cfcba47dc2ad83e01b75663a516279c8b9d243b719643e");
    ASSERT_TRUE(write(files, at("out"), zeros));
    EXPECT_EQ(files.outputDigest(at("out")).sha256,
              "080acf35a507ac9849cfcba47dc2ad83e01b75663a516279c8b9d243b719643e");
}

TEST_F(RunFilesTest, NothingHappensAfterAFailure) {
    put("out", "before");
    {
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "after"));
        files.stopEffects();
        EXPECT_FALSE(files.hasLeftOutProgram());
        EXPECT_EQ(files.runProgram("/bin/cp", at("out") + " " + at("copy")), 0);
        EXPECT_TRUE(files.hasLeftOutProgram());
        EXPECT_FALSE(files.commit());
    }
    EXPECT_EQ(contentsOf(at("out")), "before");
    EXPECT_EQ(names(), Names({"out"}));
}

TEST_F(RunFilesTest, WhatAKilledRunLeftIsInNobodysWay) {
    std::string left;
    {
        RunFiles killed(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(killed, at("out"), "never finished"));
        left = names().front();
    }
    put(left, "left");
    {
        RunFiles files(RunFiles::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "made")) << files.reasonFor(at("out"));
        EXPECT_FALSE(files.commit());
    }
    EXPECT_EQ(contentsOf(at("out")), "made");
    EXPECT_EQ(contentsOf(at(left)), "left");
}

}  // namespace
