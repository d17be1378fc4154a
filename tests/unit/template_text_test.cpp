#include "template_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Tarnwick::Parser {
namespace {

using Kind = TemplateToken::Kind;

std::string shown(const TemplateToken& token) {
    switch (token.kind) {
        case Kind::Literal:
            return "<" + std::string(token.text) + ">";
        case Kind::Variable:
            return "variable " + std::string(token.name);
        case Kind::Source:
            return "source " + std::to_string(static_cast<int>(token.source)) + " " +
                   std::string(token.argument);
        case Kind::Reference:
            return "reference " + std::string(token.group) + " " + std::string(token.key);
        case Kind::Fault:
            return "fault " + std::to_string(static_cast<int>(token.problem));
    }
    return "";
}

std::string fault(Problem problem) {
    return "fault " + std::to_string(static_cast<int>(problem));
}

using Shown = std::vector<std::string>;

Shown tokensOf(std::string_view text) {
    Shown tokens;
    TemplateCursor cursor(text);
    for (TemplateToken token; cursor.next(token);) {
        tokens.push_back(shown(token));
    }
    return tokens;
}

TEST(TemplateText, NamesEverySourceThatItKnows) {
    for (const std::string_view name : templateSourceNames()) {
        const TemplateToken token = classifyTemplate(std::string(name) + ":a");
        EXPECT_NE(token.problem, Problem::UnknownSource) << name;
    }
    EXPECT_EQ(templateSourceNames().size(), 7U);
}

TEST(TemplateText, OfNothingHasNoToken) {
    EXPECT_EQ(tokensOf(""), Shown{});
}

TEST(TemplateText, WithoutADollarSignIsOneLiteral) {
    EXPECT_EQ(tokensOf("a {b} c"), Shown{"<a {b} c>"});
}

TEST(TemplateText, TakesTwoDollarSignsForOne) {
    EXPECT_EQ(tokensOf("a$$b"), (Shown{"<a>", "<$>", "<b>"}));
    EXPECT_EQ(tokensOf("$${HOME}"), (Shown{"<$>", "<{HOME}>"}));
    EXPECT_EQ(tokensOf("$$$$"), (Shown{"<$>", "<$>"}));
}

TEST(TemplateText, TellsVariablesSourcesAndReferencesApart) {
    EXPECT_EQ(tokensOf("a${HOME}${env:X}b${config:G/K}"),
              (Shown{"<a>", "variable HOME", "source 0 X", "<b>", "reference G K"}));
}

TEST(TemplateText, KnowsEachSourceByItsName) {
    const Shown expected{"source 0 x", "source 1 x:y", "source 2 x",
                         "source 3 x", "source 4 x",   "source 5 x"};
    EXPECT_EQ(tokensOf("${env:x}${envfile:x:y}${realpath:x}${dconf:x}${prop:x}${system:x}"),
              expected);
}

TEST(TemplateText, TakesAVariableForWhatHasNoColon) {
    EXPECT_EQ(tokensOf("${}"), Shown{"variable "});
    EXPECT_EQ(tokensOf("${a$b{}"), Shown{"variable a$b{"});
}

TEST(TemplateText, LeavesColonsInAnArgumentAlone) {
    EXPECT_EQ(tokensOf("${system:a:b}"), Shown{"source 5 a:b"});
}

TEST(TemplateText, SplitsTheArgumentOfAnEnvironmentFileAtItsFirstColon) {
    const TemplateToken token = classifyTemplate("envfile:/etc/x:A:B");
    EXPECT_EQ(token.path, "/etc/x");
    EXPECT_EQ(token.variable, "A:B");
    EXPECT_EQ(classifyTemplate("envfile::V").path, "");
    EXPECT_EQ(classifyTemplate("envfile::V").variable, "V");
}

TEST(TemplateText, RefusesAnEnvironmentFileWithoutAVariable) {
    EXPECT_EQ(tokensOf("${envfile:/etc/x}"), Shown{fault(Problem::EnvironmentFileForm)});
}

TEST(TemplateText, AcceptsOneSlashBehindAReference) {
    EXPECT_EQ(tokensOf("${config:A/B/}"), Shown{"reference A B"});
}

TEST(TemplateText, RefusesReferencesThatAreNotAGroupAndAKey) {
    for (const char* name : {"config:", "config:A", "config:/B", "config:A/", "config:A//B",
                             "config:A/B/C", "config:A/B//", "config:/"}) {
        EXPECT_EQ(shown(classifyTemplate(name)), fault(Problem::ReferenceForm)) << name;
    }
}

TEST(TemplateText, RefusesASourceThatThereIsNot) {
    for (const char* name : {"Env:x", "file:x", ":x", ":", " env:x"}) {
        EXPECT_EQ(shown(classifyTemplate(name)), fault(Problem::UnknownSource)) << name;
    }
}

TEST(TemplateText, RefusesADollarSignThatStandsAloneAndReadsOnBehindIt) {
    EXPECT_EQ(tokensOf("a$b"), (Shown{"<a>", fault(Problem::TemplateDollar), "<b>"}));
    EXPECT_EQ(tokensOf("a$"), (Shown{"<a>", fault(Problem::TemplateDollar)}));
}

TEST(TemplateText, RefusesATemplateThatIsNotClosedAndEndsThere) {
    EXPECT_EQ(tokensOf("a${HOME $$"), (Shown{"<a>", fault(Problem::TemplateNotClosed)}));
}

TEST(TemplateText, TellsWhereEachTokenStands) {
    TemplateCursor cursor("ab${HOME}$$");
    TemplateToken token;
    std::vector<std::pair<std::size_t, std::size_t>> places;
    while (cursor.next(token)) {
        places.emplace_back(token.first, token.end);
    }
    const std::vector<std::pair<std::size_t, std::size_t>> expected{{0, 2}, {2, 9}, {9, 11}};
    EXPECT_EQ(places, expected);
}

TEST(TemplateText, KeepsBytesOfEveryKind) {
    const std::string text("a\0\n\xff", 4);
    EXPECT_EQ(tokensOf(text), Shown{"<" + text + ">"});
}

}  // namespace
}  // namespace Tarnwick::Parser
