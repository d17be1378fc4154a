#include "template_variables.h"

#include <sys/stat.h>

#include <array>

namespace Tarnwick::Parser::Tool {
namespace {

std::string vendorDirectory(const User&) {
    struct stat status = {};
    return stat("/odm/lib", &status) == 0 ? "/odm" : "/vendor";
}

constexpr std::array kVariables{
    TemplateVariable{"HOME", [](const User& user) { return user.home; }},
    TemplateVariable{"USER", [](const User& user) { return user.name; }},
    TemplateVariable{"USER_ID", [](const User& user) { return std::to_string(user.id); }},
    TemplateVariable{"INSTANCE", [](const User& user) { return user.instance; }},
    TemplateVariable{"ODM_DIR", vendorDirectory},
};

}  // namespace

std::span<const TemplateVariable> templateVariables() {
    return kVariables;
}

void setVariables(ConfigParser& parser, const User& user) {
    for (const TemplateVariable& variable : kVariables) {
        parser.setVariable(std::string(variable.name), variable.text(user));
    }
}

}  // namespace Tarnwick::Parser::Tool
