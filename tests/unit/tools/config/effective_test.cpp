#include "config/effective.h"

#include <gtest/gtest.h>

#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Names = std::vector<std::string>;

class EffectiveValues : public testing::Test {
protected:
    void load(std::string_view content) {
        ASSERT_TRUE(parser_.loadFile(directory_.write("a.conf", content), stored_.listener()));
    }

    // "GROUP/KEY=VALUE:LINE", or "GROUP/KEY fails", for each value.
    Names seen(const Names& names = {}, Texts kind = Texts::Expanded) {
        Selection selection(names);
        Names seen;
        const auto name = [](const StoredKey& key) { return key.group + '/' + key.key; };
        Effective(parser_, stored_, selection, kind).visit([&](const ShownKey& key) {
            for (const ShownValue& value : key.values) {
                seen.push_back(value.hasFailed()
                                   ? name(key.stored) + " fails"
                                   : name(key.stored) + '=' + std::string(value.text) + ':' +
                                         std::to_string(value.origin->line));
            }
            return true;
        });
        missing_ = selection.missing();
        return seen;
    }

    Testing::TemporaryDirectory directory_;
    ConfigParser parser_{0};
    StoredValues stored_;
    Names missing_;
};

TEST_F(EffectiveValues, StandInTheOrderOfTheFirstValueLeft) {
    load("[B]\nK=1\nL=2;3\n[A]\nK=4\n[B]\nK=5\nL=\nL=6\n");
    EXPECT_EQ(seen(), (Names{"B/K=1:2", "B/K=5:7", "A/K=4:5", "B/L=6:9"}));
}

TEST_F(EffectiveValues, HaveNoneOfAKeyThatIsUnset) {
    load("K=1\nK=2\nK=\nL=\n");
    EXPECT_EQ(seen(), Names{});
}

TEST_F(EffectiveValues, HaveNoPieceThatWasDropped) {
    load("K=a;;${nope:};b$$\n");
    EXPECT_EQ(seen(), (Names{"/K=a:1", "/K=b$:1"}));
    EXPECT_EQ(seen({}, Texts::AsWritten), (Names{"/K=a:1", "/K=b$$:1"}));
}

TEST_F(EffectiveValues, HaveTheirReferencesFilled) {
    load("[A]\nK=x${config:A/L}\nL=1\nL=2\nM=${config:A/N}${config:A/N}\n");
    EXPECT_EQ(seen(), (Names{"A/K=x2:2", "A/L=1:3", "A/L=2:4", "A/M=:5"}));
    EXPECT_EQ(seen({"A/K"}, Texts::AsWritten), (Names{"A/K=x${config:A/L}:2"}));
}

TEST_F(EffectiveValues, FailForACircleWithOrWithoutAnotherText) {
    load("[A]\nK=${config:A/L}\nL=${config:A/K}\nM=x${config:A/M}\nN=n\n");
    EXPECT_EQ(seen(), (Names{"A/K fails", "A/L fails", "A/M fails", "A/N=n:5"}));
}

TEST_F(EffectiveValues, FailOneByOne) {
    load("[A]\nK=${config:A/L};cur\nL=${config:A/L}\nM=1;${config:A/L};x${config:A/K}\n");
    EXPECT_EQ(seen(),
              (Names{"A/K fails", "A/K=cur:2", "A/L fails", "A/M=1:4", "A/M fails", "A/M=xcur:4"}));
}

TEST_F(EffectiveValues, FailForAReferencePastTheEndOfItsText) {
    load("[A]\nK=x ${config:A/L}\nL=1\nM=${config:A/K}\n");
    EXPECT_EQ(seen(), (Names{"A/K fails", "A/L=1:3", "A/M fails"}));
    EXPECT_EQ(seen({}, Texts::AsWritten).size(), 3U);
}

TEST_F(EffectiveValues, AreSelectedByGroupAndByKey) {
    load("K=0\n[A]\nK=1\nL=2\n[B]\nK=3\nL=4\n");
    EXPECT_EQ(seen({"B", "A/L"}), (Names{"A/L=2:4", "B/K=3:6", "B/L=4:7"}));
    EXPECT_EQ(seen({"/K"}), (Names{"/K=0:1"}));
    EXPECT_EQ(seen({""}), (Names{"/K=0:1"}));
    EXPECT_EQ(missing_, Names{});
    EXPECT_EQ(seen({"C", "A/K", "A/M", "A/"}), (Names{"A/K=1:3"}));
    EXPECT_EQ(missing_, (Names{"C", "A/M", "A/"}));
    EXPECT_EQ(seen({"A/N", "A/K", "A", "D", "A/K", "A/N"}), (Names{"A/K=1:3", "A/L=2:4"}));
    EXPECT_EQ(missing_, (Names{"A/N", "D", "A/N"}));
}

TEST_F(EffectiveValues, NameTheFileOfEachValue) {
    load("K=1\n");
    const std::string second = directory_.write("b.conf", "K=2\n");
    ASSERT_TRUE(parser_.loadFile(second, stored_.listener()));
    std::vector<std::string> files;
    stored_.forEachKey([&](const StoredKey& key) {
        for (const ValueOrigin& origin : key.origins) {
            files.emplace_back(origin.file);
        }
        return true;
    });
    EXPECT_EQ(files, (Names{directory_.path("a.conf"), second}));
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
