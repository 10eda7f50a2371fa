#include "tests/strict/RunFilesFixture.hpp"

namespace {

using namespace Tests;

TEST_F(RunFilesTest, NamesThatDifferInCaseNameOneOutput) {
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, at("Out.hex"), "first"));
    EXPECT_EQ(read(files, at("out.hex")), "first");
    EXPECT_FALSE(files.name(at("Out.hex"), Strict::FileRole::Output));
    EXPECT_TRUE(files.name(at("OUT.HEX"), Strict::FileRole::Output));
}

TEST_F(RunFilesTest, ADeviceTakesAnOutput) {
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, "NUL", "nowhere"));
    EXPECT_EQ(read(files, "nul"), "nowhere");
    EXPECT_FALSE(files.commit());
    for (const char* const name : {"aux.hex", "NUL.hex", "com1.hex"}) {
        // Newer systems take them for files.
        const bool isRefused = files.createOutput(at(name), binary) == nullptr;
        EXPECT_EQ(isRefused, files.reasonFor(at(name)) == "No such device or address") << name;
    }
    EXPECT_EQ(names(), Names());
}

TEST_F(RunFilesTest, AProgramFindsWhatWasWritten) {
    RunFiles files(RunFiles::Mode::Disk);
    ASSERT_TRUE(write(files, at("first"), "made"));
    std::string folder = folder_.string();
    for (char& c : folder)
        if (c == '/') c = '\\';
    EXPECT_EQ(files.runProgram("copy", folder + "\\first " + folder + "\\copy >NUL"), 0);
    EXPECT_EQ(contentsOf(at("copy")), "made");
    EXPECT_EQ(files.runProgram("exit", "3"), 3);
    EXPECT_EQ(files.inPlace(), Names({at("first")}));
}

}  // namespace
