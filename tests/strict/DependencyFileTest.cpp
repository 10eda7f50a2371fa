#include "strict/files/DependencyFile.hpp"

#include <gtest/gtest.h>

namespace {

using Strict::dependencyRule;

TEST(DependencyFileTest, EscapesWhatMakeAndNinjaReadOtherwise) {
    EXPECT_EQ(dependencyRule({"out.hex", "b c"}, {"a b", "c$d", "e#f", "g\\h", "i\\ j", "k:l"}),
              "out.hex b\\ c: \\\n  a\\ b \\\n  c$$d \\\n  e\\#f \\\n  g\\h \\\n  i\\\\\\ j \\\n"
              "  k\\:l\n");
    // Only backslashes right before a blank are doubled.
    EXPECT_EQ(dependencyRule({"a"}, {"b\\\\ c", "d\\e f", "g\th", "\\ i"}),
              "a: \\\n  b\\\\\\\\\\ c \\\n  d\\e\\ f \\\n  g\\\th \\\n  \\\\\\ i\n");
    EXPECT_EQ(dependencyRule({"a"}, {"c:", "c:x", "1:/x", "xc:/y", "Z:/y"}),
              "a: \\\n  c\\: \\\n  c\\:x \\\n  1\\:/x \\\n  xc\\:/y \\\n  Z:/y\n");
    EXPECT_EQ(dependencyRule({"c:/fw/out.hex"}, {"d:\\in"}), "c:/fw/out.hex: \\\n  d:\\in\n")
        << "drives";
}

}  // namespace
