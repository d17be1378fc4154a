#include "reference_resolver.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tarnwick::Parser {
namespace {

ConfigValue plain(const std::string& text) {
    ConfigValue value;
    value.text = text;
    return value;
}

class References : public testing::Test {
protected:
    /// A value of this text with a reference to each key of group "G" at `position`.
    static ConfigValue drawing(const std::string& text, const std::vector<std::string>& keys,
                               std::uint32_t position = 0) {
        ConfigValue value = plain(text);
        for (const std::string& key : keys) {
            value.addReference("G", key, position);
        }
        return value;
    }

    bool resolve(const ConfigValue& value, const ReferenceResolver::KeyName* owner = nullptr) {
        const ReferenceResolver resolver(
            store_, [this](const Diagnostic& found) { problems_.push_back(found.problem); });
        return resolver.resolve(value, out_, owner);
    }

    ConfigStore store_;
    std::string out_ = "as it was";
    std::vector<Problem> problems_;
};

TEST_F(References, DrawOnTheLastValueOfAKey) {
    store_.appendValue("G", "K", plain("first"));
    store_.appendValue("G", "K", plain("last"));
    EXPECT_TRUE(resolve(drawing("xy", {"K"}, 1)));
    EXPECT_EQ(out_, "xlasty");
}

TEST_F(References, LeaveAnEmptyHoleForAKeyWithoutValue) {
    (void)store_.valueList("G", "Empty");
    EXPECT_TRUE(resolve(drawing("xy", {"Empty", "Missing"}, 1)));
    EXPECT_EQ(out_, "xy");
    EXPECT_EQ(store_.find("G", "Missing"), nullptr);
}

TEST_F(References, OfAnUnknownStateLeaveTheOutputAlone) {
    ConfigValue value = plain("text");
    value.hasReferences = 2;
    EXPECT_TRUE(resolve(value));
    EXPECT_EQ(out_, "as it was");
}

TEST_F(References, ThatLeadInACircleAreToldOnceAndEmptyTheOutput) {
    store_.appendValue("G", "A", drawing("", {"B"}));
    store_.appendValue("G", "B", drawing("", {"A"}));
    EXPECT_FALSE(resolve(drawing("x", {"A"})));
    EXPECT_EQ(out_, "");
    EXPECT_EQ(problems_, std::vector<Problem>{Problem::TooManyReferences});
}

TEST_F(References, MayLeadToThirtyTwoValuesAndNoMore) {
    store_.appendValue("G", "K", plain("k"));
    EXPECT_TRUE(resolve(drawing("", std::vector<std::string>(32, "K"))));
    EXPECT_EQ(out_, std::string(32, 'k'));
    EXPECT_FALSE(resolve(drawing("", std::vector<std::string>(33, "K"))));
}

TEST_F(References, ToMissingKeysAreNoVisits) {
    EXPECT_TRUE(resolve(drawing("x", std::vector<std::string>(100, "Missing"))));
    EXPECT_EQ(out_, "x");
}

TEST_F(References, PastTheEndNameTheValueAtFaultAndNotTheOneAskedFor) {
    store_.appendValue("G", "Inner", drawing("x", {"K"}, 5));
    const ReferenceResolver::KeyName owner("G", "Outer");
    try {
        resolve(drawing("", {"Inner"}), &owner);
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "G/Inner: a reference stands past the end of its trimmed value");
    }
}

TEST_F(References, PastTheEndOfTheValueItselfNameItsOwnerWhereItIsKnown) {
    const ReferenceResolver::KeyName owner("G", "Outer");
    const auto thrownFor = [&](const ReferenceResolver::KeyName* name) -> std::string {
        try {
            resolve(drawing("x", {"K"}, 5), name);
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(thrownFor(&owner), "G/Outer: a reference stands past the end of its trimmed value");
    EXPECT_EQ(thrownFor(nullptr), "a reference stands past the end of its trimmed value");
}

}  // namespace
}  // namespace Tarnwick::Parser
