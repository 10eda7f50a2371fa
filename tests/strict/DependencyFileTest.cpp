#include "strict/files/DependencyFile.hpp"

#include <gtest/gtest.h>

namespace {

using Strict::dependencyRule;

TEST(DependencyFileTest, EscapesWhatMakeAndNinjaReadOtherwise) {
    EXPECT_EQ(dependencyRule({"out.hex", "b c"}, {"a b", "c$d", "e#f", "g\\h", "i\\ j", "k:l"}),
              "out.hex b\\ c: \\\n  a\\ b \\\n  c$$d \\\n  e\\#f \\\n  g\\h \\\n  i\\\\\\ j \\\n"
              "  k\\:l\n");
    EXPECT_EQ(dependencyRule({"c:/fw/out.hex"}, {"d:\\in"}), "c:/fw/out.hex: \\\n  d:\\in\n")
        << "drives";
}

}  // namespace
