#include "config/shell_text.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

using namespace std::string_view_literals;

TEST(ShellName, HasAnUnderscoreForEveryByteThatNoNameHolds) {
    EXPECT_EQ(shellName("Key_9"), "Key_9");
    EXPECT_EQ(shellName("Net/my-key 1."), "Net_my_key_1_");
    EXPECT_EQ(shellName("\xc3\xa9="), "___");
    EXPECT_EQ(shellName("a\0b"sv), "a_b");
    EXPECT_EQ(shellName(""), "");
}

TEST(ShellName, BeginsWithALetterOrUnderscore) {
    for (const auto* name : {"A", "_", "z9", "_9"}) {
        EXPECT_TRUE(isShellName(name)) << name;
    }
    for (const auto* name : {"", "9", "0x", "a-b", "a b", "\xc3\xa9", "a="}) {
        EXPECT_FALSE(isShellName(name)) << name;
    }
}

TEST(ShellQuoted, LeavesEverythingButASingleQuoteAsItIs) {
    EXPECT_EQ(shellQuoted(""), "''");
    EXPECT_EQ(shellQuoted("-n *"), "'-n *'");
    EXPECT_EQ(shellQuoted("$(x) `y` \"\\\n\xff"), "'$(x) `y` \"\\\n\xff'");
}

TEST(ShellQuoted, WritesASingleQuoteBetweenTwoWords) {
    EXPECT_EQ(shellQuoted("it's"), "'it'\\''s'");
    EXPECT_EQ(shellQuoted("''"), "''\\'''\\'''");
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
