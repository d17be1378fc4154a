#include "template_expander.h"

#include <gtest/gtest.h>

#include "support/trim.h"

namespace Tarnwick::Parser {
namespace {

// Sources whose text is their argument; the argument "none" has no text.
std::optional<std::string> echo(const TemplateToken& from, std::int32_t userId) {
    if (from.argument == "none") {
        return std::nullopt;
    }
    return from.argument == "user" ? std::to_string(userId) : std::string(from.argument);
}
constexpr SourceReaders kEchoes{echo, echo, echo, echo, echo, echo};

// Each source tells its own name.
template <char letter>
std::optional<std::string> named(const TemplateToken&, std::int32_t) {
    return std::string(1, letter);
}
constexpr SourceReaders kNames{named<'e'>, named<'f'>, named<'r'>,
                               named<'d'>, named<'p'>, named<'s'>};
std::optional<std::string> nothing(const TemplateToken&, std::int32_t) {
    return std::nullopt;
}

class TemplateExpansion : public testing::Test {
protected:
    [[nodiscard]] bool expand(std::string_view text) {
        const TemplateExpander expander({variables_, 7, kEchoes}, [this](const Diagnostic& found) {
            problems_.push_back(found.problem);
            place_ = found.place;
            name_ = found.name;
            argument_ = found.argument;
        });
        return expander.expand(text, value_, &outcomes_);
    }

    std::map<std::string, std::string> variables_{{"HOME", "/home/x"}, {"EMPTY", ""}};
    ConfigValue value_;
    std::vector<TemplateOutcome> outcomes_;
    std::vector<Problem> problems_;
    Place place_;
    std::string name_;
    std::string argument_;
};

TEST_F(TemplateExpansion, ReplacesEveryTemplateByItsText) {
    EXPECT_TRUE(expand(" a$$ ${HOME}:${env:b c}:${prop:user} "));
    EXPECT_EQ(value_.text, "a$ /home/x:b c:7");
    EXPECT_TRUE(problems_.empty());
}

TEST_F(TemplateExpansion, NotesReferencesAndLeavesTheirHoles) {
    EXPECT_TRUE(expand("x${config:A/B}y${config:C/D}"));
    EXPECT_EQ(value_.text, "xy");
    ASSERT_NE(value_.references, nullptr);
    EXPECT_EQ(value_.references->positions, (std::vector<std::uint32_t>{1, 2}));
    EXPECT_EQ(value_.references->targets[1], std::make_pair(std::string("C"), std::string("D")));
}

TEST_F(TemplateExpansion, EndsAtTheFirstFaultAndLeavesTheText) {
    value_.text = "as it was";
    EXPECT_FALSE(expand("${config:A/B}${env:x}${NOPE}$"));
    EXPECT_EQ(problems_, std::vector<Problem>{Problem::UnknownVariable});
    EXPECT_EQ(value_.text, "as it was");
    EXPECT_EQ(value_.references->targets.size(), 1U);
}

TEST_F(TemplateExpansion, TellsWhichSourceHadNoText) {
    const std::vector<std::pair<std::string, Problem>> rows{
        {"${env:none}", Problem::EnvironmentMissing}, {"${realpath:none}", Problem::PathMissing},
        {"${dconf:none}", Problem::DconfMissing},     {"${prop:none}", Problem::PropertyMissing},
        {"${system:none}", Problem::CommandFailed},
    };
    for (const auto& [text, problem] : rows) {
        problems_.clear();
        EXPECT_FALSE(expand(text)) << text;
        EXPECT_EQ(problems_, std::vector<Problem>{problem}) << text;
        EXPECT_EQ(argument_, "none");
    }
}

TEST_F(TemplateExpansion, TellsFileAndVariableOfAnEnvironmentFileWithoutText) {
    std::string path;
    std::string argument;
    const TemplateExpander expander(
        {variables_, 7, {nothing, nothing, nothing, nothing, nothing, nothing}},
        [&](const Diagnostic& found) {
            EXPECT_EQ(found.problem, Problem::EnvironmentFileMissing);
            path = found.path;
            argument = found.argument;
        });
    EXPECT_FALSE(expander.expand("${envfile:/p:V}", value_));
    EXPECT_EQ(path + " " + argument, "/p V");
    EXPECT_FALSE(expander.expand("${envfile::V}", value_));
    EXPECT_EQ(path + " " + argument, " V");
}

TEST_F(TemplateExpansion, AsksTheReaderOfEachSource) {
    const TemplateExpander expander({variables_, 7, kNames}, [](const Diagnostic&) {});
    EXPECT_TRUE(
        expander.expand("${env:}${envfile::}${realpath:}${dconf:}${prop:}${system:}", value_));
    EXPECT_EQ(value_.text, "efrdps");
}

TEST_F(TemplateExpansion, TellsWhereAFaultStandsInTheText) {
    EXPECT_FALSE(expand("ab ${NOPE}"));
    EXPECT_EQ(place_.firstColumn, 4U);
    EXPECT_EQ(place_.lastColumn, 10U);
    EXPECT_EQ(place_.file, "");
    EXPECT_EQ(name_, "NOPE");
}

TEST_F(TemplateExpansion, TellsWhatEachTemplateCameTo) {
    EXPECT_FALSE(expand("a${HOME}${config:A/B}${env:none}${EMPTY}"));
    ASSERT_EQ(outcomes_.size(), 3U);
    EXPECT_EQ(outcomes_[0].name, "HOME");
    EXPECT_EQ(outcomes_[0].text, "/home/x");
    EXPECT_EQ(outcomes_[0].firstColumn, 2U);
    EXPECT_EQ(outcomes_[0].lastColumn, 8U);
    EXPECT_EQ(outcomes_[1].result, TemplateResult::Reference);
    EXPECT_EQ(outcomes_[1].group, "A");
    EXPECT_EQ(outcomes_[1].key, "B");
    EXPECT_EQ(outcomes_[2].result, TemplateResult::Failed);
}

TEST_F(TemplateExpansion, ThrowsForATextThatComesToWhiteSpaceAlone) {
    EXPECT_THROW((void)expand("  "), BlankText);
    EXPECT_THROW((void)expand("${env: }"), BlankText);
    EXPECT_TRUE(expand("${EMPTY}"));
    EXPECT_EQ(value_.text, "");
}

}  // namespace
}  // namespace Tarnwick::Parser
