#include "config/json.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

std::string printedText(std::string_view text) {
    Json object;
    setText(object, "t", text);
    return printed(object);
}

TEST(Json, PrintsATextInAscii) {
    EXPECT_EQ(printedText("a\"\\\n\u00e9\u2028\U0001f600"),
              R"({"t":"a\"\\\n\u00e9\u2028\ud83d\ude00"})");
}

TEST(Json, PrintsNulAndControls) {
    EXPECT_EQ(printedText({"\0\x1b\x7f", 3}), R"({"t":"\u0000\u001b\u007f"})");
}

TEST(Json, PutsTheBytesBesideATextThatIsNoUtf8) {
    EXPECT_EQ(printedText("\xff"), R"({"t":"\ufffd","tBase64":"/w=="})");
    EXPECT_EQ(printedText("a\xff"), R"({"t":"a\ufffd","tBase64":"Yf8="})");
    EXPECT_EQ(printedText("ab\xff"), R"({"t":"ab\ufffd","tBase64":"YWL/"})");
    EXPECT_EQ(printedText("abc\xfb\xef"), R"({"t":"abc\ufffd\ufffd","tBase64":"YWJj++8="})");
}

TEST(Json, AppendsTheMembersThatAnObjectWouldHave) {
    std::string all;
    for (int byte = 0; byte <= 0xff; ++byte) {
        const std::string text = "a" + std::string(1, static_cast<char>(byte)) + "b";
        all += text;
        std::string line;
        appendText(line, "t", text);
        EXPECT_EQ('{' + line + '}', printedText(text)) << byte;
    }
    for (const std::string& text : {std::string(), all, std::string("\u00e9\U0001f600")}) {
        std::string line;
        appendText(line, "t", text);
        EXPECT_EQ('{' + line + '}', printedText(text));
    }
}

TEST(Json, KeepsTheOrderOfMembers) {
    Json object;
    setText(object, "z", "1");
    setText(object, "a", "2");
    EXPECT_EQ(printed(object), R"({"z":"1","a":"2"})");
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
