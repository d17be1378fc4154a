#include "surroundings.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "scratch_directory.h"

namespace Fuzz {
namespace {

using Pair = std::pair<const char*, const char*>;

constexpr std::array kVariables{
    Pair{"HOME", "/home/user"}, Pair{"USER_ID", "1000"}, Pair{"EMPTY", ""},
    Pair{"SPACE", " \t"},       Pair{"", "nameless"},    Pair{"DOLLAR", "a ${HOME} $"},
};
constexpr std::array kEnvironment{
    Pair{"HOME", "/nowhere"},  Pair{"X", "ab"},       Pair{"BLANK", "  "},
    Pair{"NONE", ""},          Pair{"PADDED", " p "}, Pair{"XDG_RUNTIME_DIR", "/nowhere"},
    Pair{"DOLLAR", "${X} $$"},
};
constexpr std::array kEnvironmentFiles{
    Pair{"x.env", "A=1\nB = \" two \"\nE=\nA=3\n\"Q\"=x\nC:D=4"},
    Pair{"odd.env", "S=  \n=nameless\nT=\t\"\"\n"},
    Pair{"refused.env", "A=1\n  =2\n"},
};

bool putInPlace() {
    const char* found = std::getenv("PATH");  // by which the sanitizers find their symbolizer
    const std::string path = found != nullptr ? found : "";
    clearenv();
    setenv("PATH", path.c_str(), 1);
    for (const auto& [name, text] : kEnvironment) {
        setenv(name, text, 1);
    }
    for (const auto& [name, content] : kEnvironmentFiles) {
        writeScratchFile(name, content);
    }
    return true;
}

}  // namespace

void setVariables(Tarnwick::Parser::ConfigParser& parser) {
    [[maybe_unused]] static const bool isInPlace = putInPlace();
    for (const auto& [name, text] : kVariables) {
        parser.setVariable(name, text);
    }
}

bool namesDevices(const std::string& text) {
    return text.find("/dev") != text.npos || text.find("/proc") != text.npos ||
           text.find("/sys") != text.npos;
}

}  // namespace Fuzz
