#include "tests/strict/OutputSetFixture.hpp"

namespace {

using namespace Tests;

TEST_F(OutputSetTest, OutputsAppearTogetherOrNotAtAll) {
    for (const bool isGood : {true, false}) {
        put("old", "before");
        {
            OutputSet files(OutputSet::Mode::Disk);
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

TEST_F(OutputSetTest, WhatCannotBeWrittenIsRefusedAtOnceWithTheReason) {
    put("file", "contents");
    struct Row {
        const char* path;
        const char* reason;
    };
    for (const Row& row :
         {Row{"", "Is a directory"}, Row{"missing/out", "No such file or directory"},
          Row{"out/", "No such file or directory"}}) {
        for (const auto mode : {OutputSet::Mode::Disk, OutputSet::Mode::Memory}) {
            OutputSet files(mode);
            EXPECT_EQ(files.createOutput(at(row.path), binary), nullptr) << row.path;
            EXPECT_EQ(files.reasonFor(at(row.path)), row.reason) << row.path;
            EXPECT_EQ(names(), Names({"file"})) << row.path;
        }
    }
}

TEST_F(OutputSetTest, WhatTheRunHasWrittenIsRead) {
    put("both", "before");
    for (const auto mode : {OutputSet::Mode::Disk, OutputSet::Mode::Memory}) {
        OutputSet files(mode);
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
        EXPECT_EQ(files.outputs(), Names({at("both"), at("./both"), at("new")}));
        EXPECT_EQ(contentsOf(at("both")), "before");
        if (mode == OutputSet::Mode::Memory) {
            EXPECT_EQ(names(), Names({"both"}));
            EXPECT_EQ(files.contentsOf(at("new")), "made");
        }
    }
}

TEST_F(OutputSetTest, TheLaterOfTwoOutputsOfOneNameWins) {
    OutputSet files(OutputSet::Mode::Disk);
    ASSERT_TRUE(write(files, at("out"), "first, and longer"));
    ASSERT_TRUE(write(files, at("out"), "second"));
    EXPECT_FALSE(files.commit());
    EXPECT_EQ(contentsOf(at("out")), "second");
    EXPECT_EQ(names(), Names({"out"}));
}

TEST_F(OutputSetTest, ARunInMemoryStartsNoProgram) {
    OutputSet files(OutputSet::Mode::Memory);
    EXPECT_EQ(files.runProgram("/bin/cp", "/dev/null " + at("out")), 0);
    EXPECT_EQ(names(), Names());
}

TEST_F(OutputSetTest, ACommitStopsAtTheFirstFailure) {
    for (const bool callsProgram : {false, true}) {
        {
            OutputSet files(OutputSet::Mode::Disk);
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
            }
            EXPECT_EQ(files.inPlace(), Names({at("a")}));
        }
        EXPECT_EQ(names(), Names({"a", "b"}));
        fs::remove(at("a"));
        fs::remove(at("b"));
    }
}

TEST_F(OutputSetTest, WhatAKilledRunLeftIsInNobodysWay) {
    std::string left;
    {
        OutputSet killed(OutputSet::Mode::Disk);
        ASSERT_TRUE(write(killed, at("out"), "never finished"));
        left = names().front();
    }
    put(left, "left");
    {
        OutputSet files(OutputSet::Mode::Disk);
        ASSERT_TRUE(write(files, at("out"), "made")) << files.reasonFor(at("out"));
        EXPECT_FALSE(files.commit());
    }
    EXPECT_EQ(contentsOf(at("out")), "made");
    EXPECT_EQ(contentsOf(at(left)), "left");
}

}  // namespace
