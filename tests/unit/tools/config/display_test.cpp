#include "config/display.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct ShownRow {
    const char* name;
    std::string_view text;
    std::string_view shown;
    std::size_t width;
};

void PrintTo(const ShownRow& row, std::ostream* out) {
    *out << row.name;
}

const ShownRow kRows[] = {
    {"Nothing", "", "", 0},
    {"Ascii", "a ~", "a ~", 3},
    {"Controls", {"\0\t\n\x1b\x7f", 5}, "\\x00\\x09\\x0A\\x1B\\x7F", 20},
    {"Latin1", "\u00e9", "\u00e9", 1},
    {"ControlsOfLatin1", "\u0085", "\\xC2\\x85", 8},
    {"Bidirectional", "\u202e\u2066\u200f\u061c",
     "\\xE2\\x80\\xAE\\xE2\\x81\\xA6\\xE2\\x80\\x8F\\xD8\\x9C", 44},
    {"ByteOrderMark", "\ufeff", "\\xEF\\xBB\\xBF", 12},
    {"Wide", "\u4e2d", "\u4e2d", 2},
    {"Combining", "e\u0301", "e\u0301", 1},
    {"FourBytes", "\U0001f600", "\U0001f600", 2},
    {"Vehicle", "\U0001f680", "\U0001f680", 2},
    {"ColoredCircle", "\U0001f7e2", "\U0001f7e2", 2},
    {"ExtendedPictograph", "\U0001fa90", "\U0001fa90", 2},
    {"LoneByte", "\xff", "\\xFF", 4},
    {"LoneContinuation", "\x80", "\\x80", 4},
    {"Overlong", "\xc0\xaf", "\\xC0\\xAF", 8},
    {"OverlongOfThree", "\xe0\x80\xaf", "\\xE0\\x80\\xAF", 12},
    {"Surrogate", "\xed\xa0\x80", "\\xED\\xA0\\x80", 12},
    {"BeyondTheLast", "\xf4\x90\x80\x80", "\\xF4\\x90\\x80\\x80", 16},
    {"CutShort", "\xe4\xb8", "\\xE4\\xB8", 8},
    {"CutShortByText", "\xe4\xb8x", "\\xE4\\xB8x", 9},
};

class Display : public testing::TestWithParam<ShownRow> {};

TEST_P(Display, ShowsWhatDrivesNoTerminal) {
    const Shown result = shown(GetParam().text);
    EXPECT_EQ(result.text, GetParam().shown);
    EXPECT_EQ(result.width, GetParam().width);
    EXPECT_EQ(escaped(GetParam().text), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Text, Display, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(Display, FindsTheFirstByteThatIsNoUtf8) {
    EXPECT_EQ(findInvalidUtf8("\u00e9\u4e2d\U0001f600"), std::string_view::npos);
    EXPECT_EQ(findInvalidUtf8("\u00e9\xff\xff"), 2U);
    EXPECT_EQ(findInvalidUtf8("a\xe4\xb8"), 1U);
    EXPECT_EQ(findInvalidUtf8(""), std::string_view::npos);
}

TEST(Display, ShortensALongTextBetweenCharacters) {
    EXPECT_EQ(shortened(std::string(80, 'x')), std::string(80, 'x'));
    EXPECT_EQ(shortened(std::string(81, 'x')), std::string(80, 'x') + "...");
    EXPECT_EQ(shortened(std::string(79, 'x') + "\u00e9\u00e9"), std::string(79, 'x') + "...");
    EXPECT_EQ(shortened(std::string(200, '\x80')), "...");
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
