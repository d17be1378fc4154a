#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

#include "config_parser.h"
#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

using Texts = std::vector<std::string>;

class TypedLookup : public testing::Test {
protected:
    /// Makes these plain texts the values of the key "K".
    void store(const Texts& texts) {
        parser_.removeKey("G", "K");
        for (const std::string& text : texts) {
            parser_.valueList("G", "K").emplace_back().text = text;
        }
    }

    /// Adds a value to "K" whose whole text is the value of `key`.
    void storeReference(const std::string& key) {
        parser_.valueList("G", "K").emplace_back().addReference("G", key, 0);
    }

    void storeOther(const std::string& key, const std::string& text) {
        parser_.valueList("G", key).emplace_back().text = text;
    }

    template <typename T>
    T value() const {
        T value{};
        parser_.getValue("G", "K", value);
        return value;
    }

    /// The single value, which must come with the flag, whichever way the flag started.
    template <typename T>
    T value(bool expected) const {
        T value{};
        for (const bool start : {false, true}) {
            bool ok = start;
            parser_.getValue("G", "K", value, &ok);
            EXPECT_EQ(ok, expected);
        }
        return value;
    }

    template <typename T>
    std::vector<T> values(bool expected) const {
        bool ok = !expected;
        std::vector<T> values;
        parser_.getValue("G", "K", values, &ok);
        EXPECT_EQ(ok, expected);
        return values;
    }

    Testing::CapturedLog log_;
    ConfigParser parser_{-1};
};

// --- Single values ---

TEST_F(TypedLookup, TakesTheLastValue) {
    store({"1", "2", "3"});
    EXPECT_EQ(value<std::string>(), "3");
    EXPECT_EQ(value<int>(), 3);
    EXPECT_EQ(value<long long>(), 3);
    EXPECT_EQ(value<double>(), 3.0);
}

TEST_F(TypedLookup, ReplacesWhatTheTextHeld) {
    store({"new"});
    std::string text = "old";
    parser_.getValue("G", "K", text);
    EXPECT_EQ(text, "new");
    store({""});
    parser_.getValue("G", "K", text);
    EXPECT_EQ(text, "");
}

TEST_F(TypedLookup, ReadsIntegersWithTheirFlag) {
    store({"0x1F"});
    EXPECT_EQ(value<int>(true), 31);
    EXPECT_EQ(value<long long>(true), 31);
    store({"0X1F"});
    EXPECT_EQ(value<int>(false), 0);
    store({"-0x10"});
    EXPECT_EQ(value<long long>(false), 0);
    store({"12 "});
    EXPECT_EQ(value<int>(false), 12);
    store({" 12"});
    EXPECT_EQ(value<int>(true), 12);
}

TEST_F(TypedLookup, ReadsEachTypeInItsRange) {
    store({"9223372036854775807"});
    EXPECT_EQ(value<long long>(true), LLONG_MAX);
    EXPECT_EQ(value<int>(false), INT_MAX);
    store({"3.5"});
    EXPECT_EQ(value<double>(true), 3.5);
    EXPECT_EQ(value<int>(false), 3);
}

TEST_F(TypedLookup, ReadsBooleansWithTheirFlag) {
    store({"true"});
    EXPECT_TRUE(value<bool>(true));
    store({"false"});
    EXPECT_FALSE(value<bool>(true));
    store({"False"});
    EXPECT_FALSE(value<bool>(false));
    store({"1"});
    EXPECT_FALSE(value<bool>(false));
}

TEST_F(TypedLookup, ReadsBooleansWithoutAFlag) {
    store({"true"});
    EXPECT_TRUE(value<bool>());
    store({"True"});
    EXPECT_FALSE(value<bool>());
}

TEST_F(TypedLookup, WritesThroughNoNullFlag) {
    store({"x"});
    bool truth = true;
    int number = 1;
    parser_.getValue("G", "K", truth, nullptr);
    parser_.getValue("G", "K", number, nullptr);
    EXPECT_FALSE(truth);
    EXPECT_EQ(number, 0);
}

TEST_F(TypedLookup, FollowsTheReferencesOfASingleValue) {
    storeOther("Number", "42");
    store({"1"});
    storeReference("Number");
    EXPECT_EQ(value<std::string>(), "42");
    EXPECT_EQ(value<int>(true), 42);
}

TEST_F(TypedLookup, ConvertsTheEmptyTextOfAFailedResolution) {
    storeReference("K");
    std::string text = "old";
    parser_.getValue("G", "K", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(log_.take(), "ERROR: Max depth reached, possibly circular reference.\n");
    EXPECT_EQ(value<int>(false), 0);
}

TEST_F(TypedLookup, TakesAValueOfAnUnknownStateForOneWithoutText) {
    store({"text"});
    parser_.valueList("G", "K").back().hasReferences = 2;
    std::string text = "old";
    parser_.getValue("G", "K", text);
    EXPECT_EQ(text, "");
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, Texts{});
}

// --- Lists ---

TEST_F(TypedLookup, ListsEveryValueInOrder) {
    store({"1", "2", "3"});
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, (Texts{"1", "2", "3"}));
    EXPECT_EQ(values<int>(true), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(values<long long>(true), (std::vector<long long>{1, 2, 3}));
    EXPECT_EQ(values<double>(true), (std::vector<double>{1, 2, 3}));
}

TEST_F(TypedLookup, AppendsToTheList) {
    store({"2", "3"});
    std::vector<int> numbers{1};
    parser_.getValue("G", "K", numbers);
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3}));
    Texts texts{"1"};
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, (Texts{"1", "2", "3"}));
}

TEST_F(TypedLookup, ListsInvalidValuesTooAndClearsTheFlag) {
    store({"1", "x", "3"});
    EXPECT_EQ(values<int>(false), (std::vector<int>{1, 0, 3}));
    EXPECT_EQ(values<long long>(false), (std::vector<long long>{1, 0, 3}));
    EXPECT_EQ(values<double>(false), (std::vector<double>{1, 0, 3}));
    store({"x", "2", "3"});
    EXPECT_EQ(values<int>(false), (std::vector<int>{0, 2, 3}));
}

TEST_F(TypedLookup, ListsBooleans) {
    store({"true", "false", "true"});
    EXPECT_EQ(values<bool>(true), (std::vector<bool>{true, false, true}));
    store({"true", "yes", "false"});
    EXPECT_EQ(values<bool>(false), (std::vector<bool>{true, false, false}));
    std::vector<bool> truths{true};
    parser_.getValue("G", "K", truths);
    EXPECT_EQ(truths, (std::vector<bool>{true, true, false, false}));
}

TEST_F(TypedLookup, CallsAnEmptyListValid) {
    (void)parser_.valueList("G", "K");
    EXPECT_TRUE(values<int>(true).empty());
    EXPECT_TRUE(values<bool>(true).empty());
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_TRUE(texts.empty());
}

TEST_F(TypedLookup, SetsTheFlagBeforeItFollowsReferences) {
    ConfigValue value;
    value.addReference("G", "Missing", 5);
    parser_.appendValue("G", "K", value);
    int number = 0;
    bool ok = false;
    EXPECT_THROW(parser_.getValue("G", "K", number, &ok), std::out_of_range);
    EXPECT_TRUE(ok);
}

TEST_F(TypedLookup, LeavesAnEmptyEntryForAMissingKeyWhoseListItTook) {
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(values<int>(true).empty());
    EXPECT_TRUE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(parser_.valueList("G", "K").empty());
}

TEST_F(TypedLookup, ListsWithoutAFlagToo) {
    store({"1", "x"});
    EXPECT_EQ(value<std::vector<long long>>(), (std::vector<long long>{1, 0}));
    EXPECT_EQ(value<std::vector<double>>(), (std::vector<double>{1, 0}));
}

TEST_F(TypedLookup, LeavesOutAReferenceThatResolvesToNothingAndKeepsTheFlag) {
    store({"1"});
    storeReference("Missing");
    EXPECT_EQ(values<int>(true), (std::vector<int>{1}));
    EXPECT_EQ(values<bool>(false), (std::vector<bool>{false}));
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, (Texts{"1"}));
}

TEST_F(TypedLookup, ListsAPlainEmptyValue) {
    store({"", "1"});
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, (Texts{"", "1"}));
    EXPECT_EQ(values<int>(false), (std::vector<int>{0, 1}));
}

TEST_F(TypedLookup, FollowsTheReferencesOfEachListedValue) {
    storeOther("A", "1");
    storeOther("B", "x");
    storeReference("A");
    storeReference("B");
    EXPECT_EQ(values<int>(false), (std::vector<int>{1, 0}));
}

TEST_F(TypedLookup, LeavesStoredValuesAsTheyAre) {
    storeOther("A", "1");
    storeReference("A");
    const ConfigValue before = parser_.valueList("G", "K").back();
    EXPECT_EQ(values<int>(true), (std::vector<int>{1}));
    EXPECT_TRUE(parser_.valueList("G", "K").back() == before);
}

using TypedLookupDeathTest = TypedLookup;

TEST_F(TypedLookupDeathTest, AbortsForASingleValueOfAnEmptyList) {
    (void)parser_.valueList("G", "K");
    EXPECT_DEATH((void)value<std::string>(), "Assertion `!values\\.empty\\(\\)' failed");
    EXPECT_DEATH((void)value<int>(), "Assertion `!values\\.empty\\(\\)' failed");
}

}  // namespace
}  // namespace Tarnwick::Parser
