#include "request.h"

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser::Tool {
namespace {

class Answer : public testing::Test {
protected:
    void load(std::string_view content) {
        ASSERT_TRUE(parser_.loadFile(directory_.write("a.conf", content)));
    }

    std::optional<std::string> find(Wanted wanted = Wanted::CurrentValue) {
        return findAnswer(parser_, "G", "K", wanted);
    }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_{Logging::LoggerConfig::LogDebug};
    ConfigParser parser_{0};
};

TEST_F(Answer, IsTheLastValueOrAllOfThem) {
    load("[G]\nK=a;b\nK=c\n");
    EXPECT_EQ(find(), "c");
    EXPECT_EQ(find(Wanted::AllValues), "a;b;c");
}

TEST_F(Answer, IsNothingForAKeyWithoutAValue) {
    load("[G]\nK=a\nK=\n");
    EXPECT_EQ(find(), std::nullopt);
    EXPECT_EQ(find(Wanted::AllValues), std::nullopt);
}

TEST_F(Answer, CostsAWarningForEachTestOfAKeyThatIsNotRegistered) {
    const std::string warning = "WARNING: G/K has not been added to the parser\n";
    parser_.addKey("G", "Other", KeyMode::Append);
    EXPECT_EQ(find(), std::nullopt);
    EXPECT_EQ(log_.take(), warning);
    ConfigValue value;
    value.text = "a";
    parser_.appendValue("G", "K", value);
    EXPECT_EQ(find(), "a");
    EXPECT_EQ(log_.take(), warning + warning + warning);
}

TEST_F(Answer, ThrowsForAReferenceBehindATextThatGotShorter) {
    load("[G]\nK=    a${config:A/B}\n[A]\nB=x\n");
    EXPECT_THROW((void)find(), std::out_of_range);
}

}  // namespace
}  // namespace Tarnwick::Parser::Tool
