#include "config_parser.h"

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

using Texts = std::vector<std::string>;

ConfigValue plain(const std::string& text) {
    ConfigValue value;
    value.text = text;
    return value;
}

class ConfigParserStore : public testing::Test {
protected:
    Texts textsOf(const std::string& group, const std::string& key) {
        Texts texts;
        for (const ConfigValue& value : parser_.valueList(group, key)) {
            texts.push_back(value.text);
        }
        return texts;
    }

    Testing::CapturedLog log_;
    ConfigParser parser_{-1};
};

// --- Registry ---

TEST_F(ConfigParserStore, BeginsWithoutKeysAndGroups) {
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_FALSE(parser_.hasGroup("G"));
    EXPECT_EQ(parser_.keyMode("G", "K"), -1);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigParserStore, KnowsTheModeOfARegisteredKey) {
    parser_.addKey("G", "R", KeyMode::Replace);
    parser_.addKey("G", "A", KeyMode::Append);
    parser_.addKey("G", "X", static_cast<KeyMode>(7));
    EXPECT_EQ(parser_.keyMode("G", "R"), 0);
    EXPECT_EQ(parser_.keyMode("G", "A"), 1);
    EXPECT_EQ(parser_.keyMode("G", "X"), 7);
    EXPECT_EQ(parser_.keyMode("R", "G"), -1);
}

TEST_F(ConfigParserStore, KeepsTheFirstModeOfAKey) {
    parser_.addKey("G", "K", KeyMode::Replace);
    parser_.addKey("G", "K", KeyMode::Append);
    EXPECT_EQ(parser_.keyMode("G", "K"), 0);
}

TEST_F(ConfigParserStore, TellsNamesApartByCase) {
    parser_.addKey("G", "K", KeyMode::Replace);
    EXPECT_EQ(parser_.keyMode("g", "K"), -1);
    EXPECT_EQ(parser_.keyMode("G", "k"), -1);
    parser_.appendValue("G", "K", plain("x"));
    EXPECT_FALSE(parser_.hasKey("G", "k"));
    EXPECT_FALSE(parser_.hasGroup("g"));
}

TEST_F(ConfigParserStore, SaysNothingAboutAnyKeyWhenNoneIsRegistered) {
    parser_.checkKeyAdded("G", "K");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigParserStore, WarnsOfAKeyThatIsNotRegisteredWhenAnotherIs) {
    parser_.addKey("G", "K", KeyMode::Append);
    parser_.checkKeyAdded("G", "K");
    EXPECT_EQ(log_.take(), "");
    parser_.checkKeyAdded("G", "Other");
    EXPECT_EQ(log_.take(), "WARNING: G/Other has not been added to the parser\n");
    parser_.checkKeyAdded("", "");
    EXPECT_EQ(log_.take(), "WARNING: / has not been added to the parser\n");
    EXPECT_EQ(parser_.keyMode("G", "Other"), -1);
}

TEST_F(ConfigParserStore, WarnsBeforeItTellsWhetherThereIsAKey) {
    parser_.addKey("G", "K", KeyMode::Append);
    EXPECT_FALSE(parser_.hasKey("G", "Other"));
    EXPECT_EQ(log_.take(), "WARNING: G/Other has not been added to the parser\n");
    parser_.appendValue("G", "Other", plain("x"));
    EXPECT_TRUE(parser_.hasKey("G", "Other"));
    EXPECT_EQ(log_.take(), "WARNING: G/Other has not been added to the parser\n");
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_EQ(log_.take(), "");
}

// --- Store ---

TEST_F(ConfigParserStore, AppendsInOrder) {
    parser_.appendValue("G", "K", plain("a"));
    const ConfigValue lvalue = plain("b");
    parser_.appendValue("G", "K", lvalue);
    parser_.appendValue("G", "K", plain("a"));
    EXPECT_EQ(textsOf("G", "K"), (Texts{"a", "b", "a"}));
    EXPECT_EQ(lvalue.text, "b");
    EXPECT_TRUE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(parser_.hasGroup("G"));
}

TEST_F(ConfigParserStore, AppendsNoEmptyValue) {
    parser_.appendValue("G", "K", ConfigValue());
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_FALSE(parser_.hasGroup("G"));
}

TEST_F(ConfigParserStore, AppendsAValueOfReferencesAlone) {
    ConfigValue value;
    value.addReference("G", "Other", 0);
    parser_.appendValue("G", "K", value);
    ASSERT_EQ(parser_.valueList("G", "K").size(), 1U);
    EXPECT_TRUE(parser_.valueList("G", "K").front() == value);
}

TEST_F(ConfigParserStore, ReplacesAllEarlierValues) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.appendValue("G", "K", plain("b"));
    const ConfigValue lvalue = plain("c");
    parser_.replaceValues("G", "K", lvalue);
    EXPECT_EQ(textsOf("G", "K"), (Texts{"c"}));
    parser_.replaceValues("G", "New", plain("d"));
    EXPECT_EQ(textsOf("G", "New"), (Texts{"d"}));
}

TEST_F(ConfigParserStore, ReplacesByAnEmptyValueToo) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.replaceValues("G", "K", ConfigValue());
    EXPECT_EQ(textsOf("G", "K"), (Texts{""}));
}

TEST_F(ConfigParserStore, CopiesAValueOfItsOwnThatReplacesTheOthers) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.appendValue("G", "K", plain("b"));
    parser_.replaceValues("G", "K", parser_.valueList("G", "K").back());
    EXPECT_EQ(textsOf("G", "K"), (Texts{"b"}));
    parser_.appendValue("G", "K", parser_.valueList("G", "K").front());
    EXPECT_EQ(textsOf("G", "K"), (Texts{"b", "b"}));
}

TEST_F(ConfigParserStore, MovesAValueOfItsOwnThatReplacesTheOthers) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.appendValue("G", "K", plain("b"));
    parser_.replaceValues("G", "K", std::move(parser_.valueList("G", "K").front()));
    EXPECT_EQ(textsOf("G", "K"), (Texts{"a"}));
}

TEST_F(ConfigParserStore, RemovesAKeyButKeepsItsGroup) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.removeKey("G", "K");
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(parser_.hasGroup("G"));
}

TEST_F(ConfigParserStore, RemovesNothingElse) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.removeKey("G", "Other");
    parser_.removeKey("H", "K");
    EXPECT_TRUE(parser_.hasKey("G", "K"));
    EXPECT_FALSE(parser_.hasGroup("H"));
}

TEST_F(ConfigParserStore, MakesAnEntryForAListThatIsAskedFor) {
    EXPECT_TRUE(parser_.valueList("G", "K").empty());
    EXPECT_TRUE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(parser_.hasGroup("G"));
}

TEST_F(ConfigParserStore, ShowsAListAsTheStandardVectorOfValues) {
    parser_.appendValue("G", "K", plain("a"));
    std::vector<ConfigValue>& list = parser_.valueList("G", "K");
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ConfigParserStore, LetsTheListBeChanged) {
    parser_.valueList("G", "K").push_back(plain("a"));
    EXPECT_EQ(textsOf("G", "K"), (Texts{"a"}));
}

TEST_F(ConfigParserStore, KeepsTheGroupsApart) {
    parser_.appendValue("G", "K", plain("a"));
    parser_.appendValue("H", "K", plain("b"));
    parser_.appendValue("", "", plain("c"));
    EXPECT_EQ(textsOf("G", "K"), (Texts{"a"}));
    EXPECT_EQ(textsOf("H", "K"), (Texts{"b"}));
    EXPECT_EQ(textsOf("", ""), (Texts{"c"}));
}

// --- Variables ---

TEST_F(ConfigParserStore, KeepsTheFirstTextOfAVariable) {
    parser_.setVariable("HOME", "/first");
    parser_.setVariable("HOME", "/second");
    ConfigValue value;
    EXPECT_TRUE(parser_.parseTemplates("${HOME}", value));
    EXPECT_EQ(value.text, "/first");
}

}  // namespace
}  // namespace Tarnwick::Parser
