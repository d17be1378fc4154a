#include "support/trim.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tarnwick::Parser {
namespace {

TEST(Trim, TakesSixCharactersForWhiteSpace) {
    std::string spaces;
    for (int code = 0; code < 256; ++code) {
        if (isSpace(static_cast<char>(code))) {
            spaces += static_cast<char>(code);
        }
    }
    EXPECT_EQ(spaces, "\t\n\v\f\r ");
}

TEST(Trim, RemovesWhiteSpaceAtBothEnds) {
    EXPECT_EQ(trim("  a b  "), "a b");
    EXPECT_EQ(trim("a "), "a");
    EXPECT_EQ(trim(" a"), "a");
    EXPECT_EQ(trim("a"), "a");
    EXPECT_EQ(trim(" \t\n\v\f\ra\r\f\v\n\t "), "a");
}

TEST(Trim, LeavesTheEmptyTextEmpty) {
    EXPECT_EQ(trim(""), "");
}

TEST(Trim, ThrowsForWhiteSpaceAlone) {
    EXPECT_THROW((void)trim(" "), std::length_error);
    EXPECT_THROW((void)trim("\n"), std::length_error);
    EXPECT_THROW((void)trim(" \t\r\n"), std::length_error);
}

TEST(Trim, SaysWhatIsWrongWithWhiteSpaceAlone) {
    try {
        (void)trim(" \n");
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "a text of white space alone cannot be trimmed");
    }
}

TEST(Trim, KeepsEveryOtherByte) {
    EXPECT_EQ(trim(std::string_view("\0a\0", 3)), std::string("\0a\0", 3));
    EXPECT_EQ(trim("\xA0 \xFF"), "\xA0 \xFF");
}

}  // namespace
}  // namespace Tarnwick::Parser
