#include "key_table.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

class KeyTableTest : public testing::Test {
protected:
    void add(const std::string& key, const std::string& text) {
        table_.obtain(key).emplace_back().text = text;
    }

    /// The current text of a key; "-" for a key without values, nothing for no key.
    std::string textOf(const std::string& key) const {
        const ValueList* values = table_.find(key);
        return values == nullptr ? "" : values->empty() ? "-" : values->back().text;
    }

private:
    std::pmr::monotonic_buffer_resource arena_;

protected:
    KeyTable table_{&arena_};
};

TEST_F(KeyTableTest, FindsNothingWhenEmpty) {
    EXPECT_EQ(table_.find("a"), nullptr);
    EXPECT_EQ(table_.find(""), nullptr);
}

TEST_F(KeyTableTest, AddsAKeyWithAnEmptyList) {
    EXPECT_TRUE(table_.obtain("a").empty());
    EXPECT_EQ(textOf("a"), "-");
    EXPECT_EQ(table_.find("b"), nullptr);
}

TEST_F(KeyTableTest, ReturnsTheSameListEveryTime) {
    add("a", "1");
    add("a", "2");
    EXPECT_EQ(table_.obtain("a").size(), 2U);
    EXPECT_EQ(&table_.obtain("a"), table_.find("a"));
}

TEST_F(KeyTableTest, ErasesAKeyWithItsValues) {
    add("a", "1");
    add("b", "2");
    table_.erase("a");
    EXPECT_EQ(table_.find("a"), nullptr);
    EXPECT_EQ(textOf("b"), "2");
    table_.erase("a");
    table_.erase("missing");
    EXPECT_EQ(textOf("b"), "2");
}

TEST_F(KeyTableTest, TakesAnErasedKeyBackWithoutItsOldValues) {
    add("a", "1");
    table_.erase("a");
    EXPECT_TRUE(table_.obtain("a").empty());
    add("a", "2");
    EXPECT_EQ(table_.obtain("a").size(), 1U);
}

TEST_F(KeyTableTest, KeepsManyKeysApartAsItGrows) {
    constexpr int kCount = 10000;
    for (int number = 0; number < kCount; ++number) {
        add(std::to_string(number), "value " + std::to_string(number));
    }
    for (int number = 0; number < kCount; ++number) {
        EXPECT_EQ(textOf(std::to_string(number)), "value " + std::to_string(number));
    }
    EXPECT_EQ(table_.find("10000"), nullptr);
}

TEST_F(KeyTableTest, KeepsErasedKeysErasedAsItGrows) {
    for (int number = 0; number < 1000; ++number) {
        add(std::to_string(number), "x");
        if (number % 3 == 0) {
            table_.erase(std::to_string(number));
        }
    }
    for (int number = 0; number < 1000; ++number) {
        EXPECT_EQ(textOf(std::to_string(number)), number % 3 == 0 ? "" : "x") << number;
    }
}

TEST_F(KeyTableTest, LeavesAListWhereItIsAsItGrows) {
    const ValueList* list = &table_.obtain("a");
    for (int number = 0; number < 1000; ++number) {
        add(std::to_string(number), "x");
    }
    EXPECT_EQ(table_.find("a"), list);
}

}  // namespace
}  // namespace Tarnwick::Parser
