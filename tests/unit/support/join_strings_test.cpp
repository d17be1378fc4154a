#include "support/join_strings.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

TEST(JoinStrings, PutsTheSeparatorBetweenNeighbours) {
    EXPECT_EQ(joinStrings({"a", "b", "c"}, ';'), "a;b;c");
    EXPECT_EQ(joinStrings({"a"}, ';'), "a");
    EXPECT_EQ(joinStrings({}, ';'), "");
}

TEST(JoinStrings, KeepsEmptyTextsAndSeparatorsInTexts) {
    EXPECT_EQ(joinStrings({"", "", ""}, ','), ",,");
    EXPECT_EQ(joinStrings({"a;b", "c"}, ';'), "a;b;c");
}

}  // namespace
}  // namespace Tarnwick::Parser
