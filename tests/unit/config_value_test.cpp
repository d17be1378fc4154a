#include "config_value.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

using Target = std::pair<std::string, std::string>;
using Texts = std::vector<std::string>;

ConfigValue plain(const std::string& text) {
    ConfigValue value;
    value.text = text;
    return value;
}

ConfigValue withReferences(const std::string& text, const std::vector<std::uint32_t>& positions) {
    ConfigValue value = plain(text);
    for (const std::uint32_t position : positions) {
        value.addReference("G", "K", position);
    }
    return value;
}

TEST(ConfigValue, BeginsPlainAndEmpty) {
    const ConfigValue value;
    EXPECT_EQ(value.text, "");
    EXPECT_EQ(value.hasReferences, 0);
    EXPECT_EQ(value.references, nullptr);
    EXPECT_TRUE(value.isEmpty());
}

TEST(ConfigValue, IsEmptyWithoutTextReferencesAndReferenceState) {
    EXPECT_FALSE(plain("x").isEmpty());
    EXPECT_FALSE(withReferences("", {0}).isEmpty());

    ConfigValue value;
    value.hasReferences = 1;
    EXPECT_FALSE(value.isEmpty());
    value.hasReferences = 2;
    EXPECT_TRUE(value.isEmpty());
    value.references = std::make_unique<ReferenceBlock>();
    EXPECT_TRUE(value.isEmpty());
    value.references->targets.emplace_back("G", "K");
    EXPECT_FALSE(value.isEmpty());
}

TEST(ConfigValue, NotesReferencesInTheirOrder) {
    ConfigValue value = plain("ab");
    value.addReference("G", "K", 0);
    value.addReference("G", "L", 2);
    EXPECT_EQ(value.hasReferences, 1);
    ASSERT_NE(value.references, nullptr);
    EXPECT_EQ(value.references->targets, (std::vector<Target>{{"G", "K"}, {"G", "L"}}));
    EXPECT_EQ(value.references->positions, (std::vector<std::uint32_t>{0, 2}));
}

TEST(ConfigValue, HasReferencesAfterEachReferenceThatIsAdded) {
    ConfigValue value;
    value.addReference("G", "K", 0);
    value.hasReferences = 0;
    value.addReference("G", "L", 0);
    EXPECT_EQ(value.hasReferences, 1);
}

TEST(ConfigValue, HasReferencesFromTheFirstOneOnWhateverItsStateWas) {
    ConfigValue value;
    value.references = std::make_unique<ReferenceBlock>();
    value.hasReferences = 7;
    value.addReference("G", "K", 0);
    EXPECT_EQ(value.hasReferences, 1);
}

TEST(ConfigValue, IsClearedToAPlainEmptyValue) {
    ConfigValue value = withReferences("ab", {1});
    value.clear();
    EXPECT_EQ(value.text, "");
    EXPECT_EQ(value.hasReferences, 0);
    EXPECT_EQ(value.references, nullptr);
}

TEST(ConfigValue, CopiesItsReferencesToo) {
    const ConfigValue value = withReferences("ab", {1});
    ConfigValue copy = value;
    EXPECT_TRUE(copy == value);
    EXPECT_EQ(copy.hasReferences, 1);
    EXPECT_NE(copy.references, value.references);

    copy.addReference("G", "L", 2);
    EXPECT_EQ(value.references->targets.size(), 1U);
}

TEST(ConfigValue, CopiesItsStateWhateverItIs) {
    ConfigValue value = plain("ab");
    value.hasReferences = 7;
    EXPECT_EQ(ConfigValue(value).hasReferences, 7);
}

TEST(ConfigValue, IsAssignedAsACopy) {
    const ConfigValue value = withReferences("ab", {1});
    ConfigValue copy = plain("old");
    copy = value;
    EXPECT_TRUE(copy == value);
    EXPECT_NE(copy.references, value.references);

    const ConfigValue& itself = copy;
    copy = itself;
    EXPECT_TRUE(copy == value);
    copy = plain("new");
    EXPECT_EQ(copy.references, nullptr);
    EXPECT_EQ(copy.hasReferences, 0);
}

TEST(ConfigValue, MovesWithItsReferences) {
    ConfigValue value = withReferences("ab", {1});
    const ReferenceBlock* block = value.references.get();
    const ConfigValue moved = std::move(value);
    EXPECT_EQ(moved.references.get(), block);
    EXPECT_EQ(moved.text, "ab");
    EXPECT_EQ(moved.hasReferences, 1);
}

TEST(ConfigValue, EqualsAnotherOfTheSameTextAndReferences) {
    EXPECT_TRUE(plain("a") == plain("a"));
    EXPECT_FALSE(plain("a") == plain("b"));
    EXPECT_TRUE(withReferences("a", {0, 1}) == withReferences("a", {0, 1}));
    EXPECT_FALSE(withReferences("a", {0, 1}) == withReferences("a", {0, 0}));
    EXPECT_FALSE(withReferences("a", {0, 1}) == withReferences("a", {0}));
    EXPECT_FALSE(withReferences("a", {0}) == withReferences("b", {0}));
    EXPECT_FALSE(withReferences("a", {0}) == plain("a"));
}

TEST(ConfigValue, ComparesBothNamesOfATarget) {
    const auto referring = [](const char* group, const char* key) {
        ConfigValue value;
        value.addReference(group, key, 0);
        return value;
    };
    EXPECT_TRUE(referring("G", "K") == referring("G", "K"));
    EXPECT_FALSE(referring("G", "K") == referring("G", "k"));
    EXPECT_FALSE(referring("G", "K") == referring("H", "K"));
}

TEST(ConfigValue, LeavesTheReferenceStateOutOfTheComparison) {
    ConfigValue value = plain("a");
    value.hasReferences = 1;
    EXPECT_TRUE(value == plain("a"));
    value.references = std::make_unique<ReferenceBlock>();
    EXPECT_TRUE(value == plain("a"));
}

TEST(ApplyReferences, ReturnsThePlainTextAsItIs) {
    EXPECT_EQ(plain("ab").applyReferences({}), "ab");
    EXPECT_EQ(plain("ab").applyReferences({"x"}), "ab");
}

TEST(ApplyReferences, InsertsEachTextAtItsPlaceInTheOriginalText) {
    EXPECT_EQ(withReferences("xy", {1}).applyReferences({"-"}), "x-y");
    EXPECT_EQ(withReferences("xy", {0, 1, 2}).applyReferences({"1", "22", "333"}), "1x22y333");
    EXPECT_EQ(withReferences("xy", {1, 1}).applyReferences({"1", "2"}), "x12y");
    EXPECT_EQ(withReferences("xy", {0, 2}).applyReferences({"", ""}), "xy");
    EXPECT_EQ(withReferences("", {0}).applyReferences({"all"}), "all");
}

// A place is moved by all insertions before it in the list, also by those behind it in the text.
TEST(ApplyReferences, MovesEachPlaceByAllEarlierInsertions) {
    EXPECT_EQ(withReferences("xyz", {1, 0}).applyReferences({"1", "2"}), "x21yz");
    EXPECT_EQ(withReferences("xyz", {2, 0}).applyReferences({"12", "-"}), "xy-12z");
    EXPECT_EQ(withReferences("xyz", {3, 1, 2}).applyReferences({"12", "-", "!"}), "xyz-1!2");
}

TEST(ApplyReferences, InsertsTextsLongerThanTheValue) {
    const std::string text(100, 'a');
    EXPECT_EQ(withReferences("xy", {0, 1}).applyReferences({text, text}), text + 'x' + text + 'y');
}

TEST(ApplyReferences, LeavesTheValueAsItWas) {
    const ConfigValue value = withReferences("xy", {1});
    EXPECT_EQ(value.applyReferences({"-"}), "x-y");
    EXPECT_EQ(value.text, "xy");
}

TEST(ApplyReferences, ReportsAListOfAnotherLengthInRawCharacters) {
    Testing::CapturedLog log;
    const ConfigValue value = withReferences("xy", std::vector<std::uint32_t>(65, 1));
    EXPECT_EQ(value.applyReferences(Texts(66)), "xy");
    EXPECT_EQ(log.take(),
              "WARNING: ConfigValue references size A mismatch with resolve list size B\n");
}

TEST(ApplyReferences, CutsTheReportedLengthsToEightBits) {
    Testing::CapturedLog log;
    const ConfigValue value = withReferences("xy", std::vector<std::uint32_t>(256 + 48, 0));
    EXPECT_EQ(value.applyReferences({}), "xy");
    const std::string zero(1, '\0');
    EXPECT_EQ(
        log.take(),
        "WARNING: ConfigValue references size 0 mismatch with resolve list size " + zero + "\n");
}

TEST(ApplyReferences, ThrowsForAPositionPastTheEnd) {
    EXPECT_EQ(withReferences("xy", {2}).applyReferences({"-"}), "xy-");
    EXPECT_THROW((void)withReferences("xy", {3}).applyReferences({"-"}), std::out_of_range);
    EXPECT_THROW((void)withReferences("xy", {0, 3}).applyReferences({"-", "-"}), std::out_of_range);
    EXPECT_THROW((void)withReferences("xy", {3}).applyReferences({""}), std::out_of_range);
}

}  // namespace
}  // namespace Tarnwick::Parser
