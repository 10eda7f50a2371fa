#include "tests/strict/OutputSetFixture.hpp"

namespace {

using namespace Tests;

TEST_F(OutputSetTest, NamesThatDifferInCaseNameOneOutput) {
    OutputSet files(OutputSet::Mode::Disk);
    ASSERT_TRUE(write(files, at("Out.hex"), "first"));
    ASSERT_TRUE(write(files, at("OUT.HEX"), "second"));
    EXPECT_EQ(read(files, at("out.hex")), "second");
    EXPECT_FALSE(files.commit());
    EXPECT_EQ(contentsOf(at("out.hex")), "second");
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(OutputSetTest, ADeviceTakesAnOutput) {
    OutputSet files(OutputSet::Mode::Disk);
    ASSERT_TRUE(write(files, "NUL", "nowhere"));
    EXPECT_EQ(read(files, "nul"), "nowhere");
    EXPECT_FALSE(files.commit());
    EXPECT_EQ(names(), Names());
}

TEST_F(OutputSetTest, AProgramFindsWhatWasWritten) {
    OutputSet files(OutputSet::Mode::Disk);
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
