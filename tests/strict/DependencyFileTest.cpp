#include "strict/files/DependencyFile.hpp"

#include <gtest/gtest.h>

namespace {

using Strict::dependencyRule;

TEST(DependencyFileTest, EscapesWhatMakeAndNinjaReadOtherwise) {
    EXPECT_EQ(dependencyRule({"out.hex", "b c"}, {"a b", "c$d", "e#f", "g\\h", "i\\ j"}),
              "out.hex b\\ c: \\\n  a\\ b \\\n  c$$d \\\n  e\\#f \\\n  g\\h \\\n  i\\\\\\ j\n");
}

TEST(DependencyFileTest, LeavesOutAnInputThatTheRunWritesAnew) {
    EXPECT_EQ(dependencyRule({"image.hex"}, {"s.tsn", "image.hex"}), "image.hex: \\\n  s.tsn\n");
}

}  // namespace
