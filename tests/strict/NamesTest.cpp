#include "inspect/Names.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Inspect {
namespace {

const Buffer::AreaList stretches{{0, 0x20}, {0x20, 8}, {0x2C, 0x10}, {0x60, 4}};

// A label, which has no size, goes on to the next name or to the end of what is loaded.
TEST(NamesTest, ANameReachesAsFarAsItsSizeOrItsPlaceSays) {
    using Kind = Name::Kind;
    const Names names({{{0x20, 4}, "b", Kind::Data},
                       {{0x10, 2}, "short", Kind::Data},
                       {{0x10, 4}, "a", Kind::Function},
                       {{0x10, 0}, "alias", Kind::Other},
                       {{0x13, 9}, "within", Kind::Data},
                       {{0x14, 0}, "label", Kind::Other},
                       {{0x30, 0}, "end", Kind::Other},
                       {{0x50, 0}, "lost", Kind::Other},
                       {{0x60, 4}, "c", Kind::Data},
                       {{0x64, 0}, "behind", Kind::Other}},
                      stretches);
    const std::vector<std::pair<std::uint64_t, std::string>> expected{
        {0x0F, ""},          {0x10, "a"},   {0x13, "a+0x3"},   {0x14, "label"},
        {0x1F, "label+0xB"}, {0x20, "b"},   {0x23, "b+0x3"},   {0x24, ""},
        {0x2F, ""},          {0x30, "end"}, {0x3B, "end+0xB"}, {0x3C, ""},
        {0x50, ""},          {0x60, "c"},   {0x63, "c+0x3"},   {0x64, ""}};
    for (const auto& [address, name] : expected) EXPECT_EQ(names.at(address), name) << address;
    std::string all;
    for (const Name& name : names.all()) all += name.text + " ";
    EXPECT_EQ(all, "a label b end c ");
    struct Row {
        Buffer::Area area;
        const char* text;
    };
    for (const Row& row : {Row{{0x10, 0}, ""}, Row{{0x10, 1}, "a"}, Row{{0x11, 1}, "a+0x1"},
                           Row{{0x10, 4}, "a to +0x3"}, Row{{0x12, 0x10}, "a+0x2 to b+0x1"},
                           Row{{0, 0x11}, "a"}, Row{{0x13, 0x30}, "a+0x3"}, Row{{0x24, 4}, ""}})
        EXPECT_EQ(names.of(row.area), row.text) << row.area.start << ", " << row.area.length;
}

TEST(NamesTest, AreNoneWhereNothingIs) {
    using Kind = Name::Kind;
    EXPECT_TRUE(Names().isEmpty());
    EXPECT_EQ(Names().find(0), nullptr);
    EXPECT_EQ(Names().of({0, 5}), "");
    EXPECT_TRUE(Names({{{0x28, 0}, "label", Kind::Other}}, stretches).isEmpty()) << "in no stretch";
    EXPECT_FALSE(Names({{{0x27, 0}, "label", Kind::Other}}, stretches).isEmpty());
    const Names touching({{{0x1F, 0}, "label", Kind::Other}}, stretches);
    EXPECT_EQ(touching.at(0x27), "label+0x8") << "stretches that touch are one";
}

TEST(NamesTest, TwoNamesAreARange) {
    EXPECT_EQ(fromTo("", ""), "");
    EXPECT_EQ(fromTo("a", "b"), "a to b");
}

}  // namespace
}  // namespace Inspect
