#include "config/check/names.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

const std::vector<std::string_view> kNames{"Hostname", "HostName2", "Arch", "ID"};

struct NearRow {
    const char* name;
    std::string_view typed;
    std::string_view meant;  // empty: none is near
};
const NearRow kRows[] = {
    {"Swapped", "Hostnmae", "Hostname"},
    {"LeftOut", "Hostnam", "Hostname"},
    {"TooMuch", "Hosttname", "Hostname"},
    {"Replaced", "Hoxtname", "Hostname"},
    {"LetterCase", "HOSTNAME", "Hostname"},
    {"TwoEdits", "Hxstnxme", "Hostname"},
    {"ThreeEditsOfEightLetters", "Hxstnxmx", ""},
    {"ShortName", "Axch", "Arch"},
    {"TwoEditsOfFourLetters", "Axxh", ""},
    {"NothingInCommon", "zz", ""},
    {"Empty", "", ""},
    {"Longer than any", "Hostname0123456789012345678901234567890123456789", ""},
};

TEST(Names, SuggestTheNearestOfAList) {
    for (const NearRow& row : kRows) {
        const std::string expected =
            row.meant.empty() ? "" : "; did you mean '" + std::string(row.meant) + "'?";
        EXPECT_EQ(suggestion(row.typed, kNames), expected) << row.name;
    }
}

TEST(Names, SuggestTheFirstByByteOfTwoThatAreEquallyNear) {
    EXPECT_EQ(suggestion("Key", {"Kez", "Kea", "Keb"}), "; did you mean 'Kea'?");
    EXPECT_EQ(suggestion("Key", {"Kea", "Keb", "Kez"}), "; did you mean 'Kea'?");
}

TEST(Names, SuggestTheOneOfOtherLetterCaseBeforeAnEdit) {
    EXPECT_EQ(suggestion("arch", {"arc", "Arch"}), "; did you mean 'Arch'?");
    EXPECT_EQ(suggestion("aazz", {"aaz", "AAZZ"}), "; did you mean 'AAZZ'?");
}

TEST(Names, AreThoseOfTheVocabularyAndOnesOwn) {
    KnownNames names;
    EXPECT_TRUE(names.hasKey("Config", "Hostname"));
    EXPECT_FALSE(names.hasKey("Config", "Mine"));
    EXPECT_FALSE(names.hasGroup("Own"));
    names.add("Config/Mine");
    names.add("Own");
    EXPECT_TRUE(names.hasKey("Config", "Mine"));
    EXPECT_TRUE(names.hasKey("Own", "Whatever"));
    EXPECT_FALSE(names.lists("Own", "Whatever"));
    EXPECT_TRUE(names.lists("Config", "Mine"));
}

TEST(Names, TakeEveryKeyOfTheGroupLogging) {
    EXPECT_TRUE(KnownNames().hasKey("Logging", "any.category"));
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
