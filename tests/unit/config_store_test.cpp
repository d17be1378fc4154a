#include "config_store.h"

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

using Names = std::vector<std::string>;

ConfigValue plain(const std::string& text) {
    ConfigValue value;
    value.text = text;
    return value;
}

TEST(ConfigStore, RegistersAKeyOnceWithItsFirstMode) {
    ConfigStore store;
    EXPECT_FALSE(store.hasRegistry());
    store.addKey("G", "K", KeyMode::Append);
    store.addKey("G", "K", KeyMode::Replace);
    EXPECT_TRUE(store.hasRegistry());
    EXPECT_EQ(store.keyMode("G", "K"), 1);
    EXPECT_EQ(store.keyMode("K", "G"), -1);
}

TEST(ConfigStore, WarnsOfAnUnregisteredKeyOnlyBesideARegisteredOne) {
    Testing::CapturedLog log;
    ConfigStore store;
    EXPECT_FALSE(store.hasKey("G", "K"));
    EXPECT_EQ(log.take(), "");
    store.addKey("G", "Other", KeyMode::Append);
    EXPECT_FALSE(store.hasKey("G", "K"));
    EXPECT_EQ(log.take(), "WARNING: G/K has not been added to the parser\n");
}

TEST(ConfigStore, FindsAListWithoutAddingOneOrSayingAnything) {
    Testing::CapturedLog log;
    ConfigStore store;
    store.addKey("G", "Other", KeyMode::Append);
    EXPECT_EQ(store.find("G", "K"), nullptr);
    (void)store.valueList("G", "Empty");
    EXPECT_EQ(store.find("G", "K"), nullptr);
    ASSERT_NE(store.find("G", "Empty"), nullptr);
    EXPECT_TRUE(store.find("G", "Empty")->empty());
    EXPECT_EQ(log.take(), "");
}

TEST(ConfigStore, ReturnsTheValueThatItAppended) {
    ConfigStore store;
    EXPECT_EQ(store.appendValue("G", "K", ConfigValue()), nullptr);
    EXPECT_FALSE(store.hasGroup("G"));
    store.appendValue("G", "K", plain("a"));
    const ConfigValue* stored = store.appendValue("G", "K", plain("b"));
    EXPECT_EQ(stored, &store.valueList("G", "K").back());
    EXPECT_EQ(stored->text, "b");
}

TEST(ConfigStore, ReturnsTheValueThatReplacesTheOthersAlsoAnEmptyOne) {
    ConfigStore store;
    store.appendValue("G", "K", plain("a"));
    store.appendValue("G", "K", plain("b"));
    const ConfigValue& stored = store.replaceValues("G", "K", ConfigValue());
    EXPECT_EQ(store.valueList("G", "K").size(), 1U);
    EXPECT_EQ(&stored, store.valueList("G", "K").data());
}

TEST(ConfigStore, KeepsACopyOfAnElementThatReplacesItsOwnList) {
    ConfigStore store;
    store.appendValue("G", "K", plain("a"));
    store.appendValue("G", "K", plain("b"));
    store.replaceValues("G", "K", store.valueList("G", "K").front());
    EXPECT_EQ(store.valueList("G", "K"), std::vector<ConfigValue>{plain("a")});
}

TEST(ConfigStore, TellsHowManyValuesWentWithAKey) {
    ConfigStore store;
    store.appendValue("G", "K", plain("a"));
    store.appendValue("G", "K", plain("b"));
    EXPECT_EQ(store.removeKey("G", "Other"), 0U);
    EXPECT_EQ(store.removeKey("H", "K"), 0U);
    EXPECT_EQ(store.removeKey("G", "K"), 2U);
    EXPECT_EQ(store.find("G", "K"), nullptr);
    EXPECT_TRUE(store.hasGroup("G"));
}

TEST(ConfigStore, ListsGroupsAndKeysInByteOrder) {
    ConfigStore store;
    for (const char* key : {"b", "a", "B", "a1", ""}) {
        (void)store.valueList("G", key);
    }
    (void)store.valueList("", "x");
    (void)store.valueList("F", "x");
    EXPECT_EQ(store.groups(), (Names{"", "F", "G"}));
    EXPECT_EQ(store.keys("G"), (Names{"", "B", "a", "a1", "b"}));
    EXPECT_EQ(store.keys("H"), Names{});
}

TEST(ConfigStore, KeepsAListInItsPlaceWhileOthersComeAndGo) {
    ConfigStore store;
    const std::vector<ConfigValue>* list = &store.valueList("G", "K");
    for (int number = 0; number < 1000; ++number) {
        (void)store.valueList("G", std::to_string(number));
    }
    store.removeKey("G", "7");
    EXPECT_EQ(store.find("G", "K"), list);
}

std::uint32_t hashOf(const std::string& text) {
    return static_cast<std::uint32_t>(std::hash<std::string>()(text));
}

TEST(KeyPairHash, MixesTheHashesOfBothNamesInThirtyTwoBits) {
    const std::uint32_t group = hashOf("Audio");
    const std::uint32_t key = hashOf("PerAppStreams");
    const std::uint32_t expected = group ^ (key + 0x9e3779b9 + (group << 6) + (group >> 2));
    EXPECT_EQ(KeyPairHash()({"Audio", "PerAppStreams"}), expected);
}

TEST(KeyPairHash, DependsOnTheOrderOfTheNames) {
    EXPECT_NE(KeyPairHash()({"a", "b"}), KeyPairHash()({"b", "a"}));
}

}  // namespace
}  // namespace Tarnwick::Parser
