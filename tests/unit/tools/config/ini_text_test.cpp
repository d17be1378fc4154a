#include "config/ini_text.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

using namespace std::string_view_literals;

TEST(IniProblem, NamesWhatALineLoses) {
    EXPECT_EQ(iniProblem(""), "it is empty");
    EXPECT_EQ(iniProblem("a;b"), "it holds ';'");
    EXPECT_EQ(iniProblem("a\nb"), "it holds a line feed");
    for (const auto* value : {" a", "a ", "\ta", "a\r", "a\v", "\f", " "}) {
        EXPECT_EQ(iniProblem(value), "it has white space at its ends") << value;
    }
}

TEST(IniProblem, HasNoneWithAnyOtherByte) {
    for (const auto value :
         {"a"sv, "a b"sv, "a\0b"sv, "\0"sv, "\xff\xa0"sv, "#"sv, "=["sv, "$"sv}) {
        EXPECT_EQ(iniProblem(value), "") << value;
    }
}

TEST(IniText, DoublesEveryDollar) {
    EXPECT_EQ(iniText("${HOME}$"), "$${HOME}$$");
    EXPECT_EQ(iniText("a\0b"sv), "a\0b"sv);
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
