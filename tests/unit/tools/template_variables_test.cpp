#include "template_variables.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace Tarnwick::Parser::Tool {
namespace {

std::string expanded(const ConfigParser& parser, const std::string& text) {
    ConfigValue value;
    EXPECT_TRUE(parser.parseTemplates(text, value));
    return value.text;
}

TEST(TemplateVariables, AreFiveWithTheirNamesInOrder) {
    std::vector<std::string_view> names;
    for (const TemplateVariable& variable : templateVariables()) {
        names.push_back(variable.name);
    }
    EXPECT_EQ(names,
              (std::vector<std::string_view>{"HOME", "USER", "USER_ID", "INSTANCE", "ODM_DIR"}));
}

TEST(TemplateVariables, TellWhoseConfigurationIsRead) {
    ConfigParser parser(1000);
    setVariables(parser, {1000, "ada", "/home/ada", "second"});
    EXPECT_EQ(expanded(parser, "${HOME} ${USER} ${USER_ID} ${INSTANCE}"),
              "/home/ada ada 1000 second");
}

TEST(TemplateVariables, NameTheVendorsDirectory) {
    ConfigParser parser(0);
    setVariables(parser, {});
    const bool hasOdm = std::filesystem::exists("/odm/lib");
    EXPECT_EQ(expanded(parser, "${ODM_DIR}"), hasOdm ? "/odm" : "/vendor");
}

TEST(TemplateVariables, KeepATextThatWasSetBefore) {
    ConfigParser parser(0);
    parser.setVariable("HOME", "/first");
    setVariables(parser, {0, "x", "/second", ""});
    EXPECT_EQ(expanded(parser, "${HOME}"), "/first");
}

}  // namespace
}  // namespace Tarnwick::Parser::Tool
