#include "templates.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "environment_file.h"
#include "lines.h"
#include "split.h"
#include "support/fixed_commands.h"
#include "support/scratch_directory.h"

namespace Fuzz {
namespace {

PlainSurroundings makeSurroundings() {
    PlainSurroundings made;
    made.variables = {{"HOME", "/home/user"}, {"USER_ID", "1000"}, {"EMPTY", ""},
                      {"SPACE", " \t"},       {"", "nameless"},    {"DOLLAR", "a ${HOME} $"}};
    made.environment = {{"HOME", "/nowhere"}, {"X", "ab"},       {"BLANK", "  "},
                        {"NONE", ""},         {"PADDED", " p "}, {"XDG_RUNTIME_DIR", "/nowhere"},
                        {"DOLLAR", "${X} $$"}};
    made.environmentFiles = {{"x.env", "A=1\nB = \" two \"\nE=\nA=3\n\"Q\"=x\nC:D=4"},
                             {"odd.env", "S=  \n=nameless\nT=\t\"\"\n"},
                             {"refused.env", "A=1\n  =2\n"}};
    if (const char* path = std::getenv("PATH")) {
        made.environment["PATH"] = path;  // by which the sanitizers find their symbolizer
    }
    clearenv();
    for (const auto& [name, text] : made.environment) {
        setenv(name.c_str(), text.c_str(), 1);
    }
    for (const auto& [path, content] : made.environmentFiles) {
        writeScratchFile(path, content);
    }
    return made;
}

template <typename Map>
std::optional<std::string> find(const Map& map, const std::string& name) {
    const auto entry = map.find(name);
    return entry == map.end() ? std::nullopt : std::optional(entry->second);
}

/// The work on one text; stops at the first template that fails.
class Expansion {
public:
    explicit Expansion(const PlainValue& value) { result_.value = value; }

    PlainExpansion run(const std::string& text) {
        expand(text);
        if (result_.outcome == PlainOutcome::Expanded && isWhiteSpaceAlone(output_)) {
            result_.outcome = PlainOutcome::Refused;
        }
        if (result_.outcome == PlainOutcome::Expanded) {
            result_.value.text = plainTrim(output_);
        }
        return result_;
    }

private:
    void expand(const std::string& text) {
        std::size_t place = 0;
        while (place < text.size() && result_.outcome == PlainOutcome::Expanded) {
            const char next = place + 1 < text.size() ? text[place + 1] : '\0';
            const std::size_t brace = text.find('}', place);
            if (text[place] != '$') {
                output_ += text[place];
                place += 1;
            } else if (next == '$') {
                output_ += '$';
                place += 2;
            } else if (next != '{') {
                fail("ERROR: '$' must be followed by '{' or '$': " + text);
            } else if (brace == text.npos) {
                fail("ERROR: Invalid template substitution, missing '}': " + text);
            } else {
                expandTemplate(text.substr(place + 2, brace - place - 2));
                place = brace + 1;
            }
        }
    }

    void expandTemplate(const std::string& name) {
        const std::size_t colon = name.find(':');
        if (colon == name.npos) {
            take(find(surroundings().variables, name), "ERROR: No such template '" + name + "'");
            return;
        }
        const std::string source = name.substr(0, colon);
        const std::string argument = name.substr(colon + 1);
        const std::string failed = "DEBUG: Failed to ";
        const std::string place = " for template '" + name + "'";
        if (source == "config") {
            addReference(name, argument);
        } else if (source == "env") {
            take(unlessEmpty(find(surroundings().environment, argument.c_str())),
                 failed + "read '" + argument + "' from environment variables" + place);
        } else if (source == "envfile") {
            takeFromFile(name, argument);
        } else if (source == "realpath") {
            std::error_code error;
            const std::string path = std::filesystem::canonical(argument.c_str(), error);
            take(unlessEmpty(error ? "" : path),
                 failed + "resolve '" + argument + "' path" + place);
        } else if (source == "dconf") {
            take(std::nullopt, failed + "read '" + argument + "' from dconf" + place);
        } else if (source == "prop") {
            take(std::nullopt, failed + "read '" + argument + "' from properties" + place);
        } else if (source == "system") {
            takeFromCommand(name, argument);
        } else {
            fail("ERROR: Invalid template '" + name + "'");
        }
    }

    void addReference(const std::string& name, const std::string& argument) {
        const std::size_t slash = argument.find('/');
        const std::string group = argument.substr(0, slash);
        std::string key = slash == argument.npos ? "" : argument.substr(slash + 1);
        if (key.ends_with('/')) {
            key.pop_back();
        }
        if (group.empty() || key.empty() || key.find('/') != key.npos) {
            fail("ERROR: Invalid format '" + argument + "' for conf template '" + name + "'");
            return;
        }
        result_.value.targets.emplace_back(group, key);
        result_.value.positions.push_back(output_.size());
    }

    void takeFromFile(const std::string& name, const std::string& argument) {
        const std::size_t colon = argument.find(':');
        if (colon == argument.npos) {
            fail("ERROR: Invalid envfile definition '" + name + "'");
            return;
        }
        const std::string path = argument.substr(0, colon);
        const std::string variable = argument.substr(colon + 1);
        const PlainVariable found = plainVariable(contentOf(path), variable);
        if (found.isRefused) {
            result_.outcome = PlainOutcome::Refused;
            return;
        }
        take(found.value, "DEBUG: Failed to read '" + variable + "' from environment file '" +
                              path + "' for template '" + name + "'");
    }

    // Inputs also name files that are not ours, by other spellings of a path or by chance.
    static std::string contentOf(const std::string& path) {
        std::ifstream file(path.c_str(), std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

    void takeFromCommand(const std::string& name, const std::string& argument) {
        const FixedCommand& command = fixedCommand(argument.c_str());
        const std::string text(command.read);
        const std::string reason = std::strerror(command.code);
        if (command.end == CommandEnd::CannotOpen) {
            log("ERROR: Failed to execute '" + argument + "': " + reason);
        } else if (command.end == CommandEnd::CannotWait) {
            log("ERROR: " + argument + " pclose() exited with failure: " + reason);
        } else if (command.end == CommandEnd::Exit && command.code != 0) {
            log("WARNING: " + argument +
                " exited with non-zero status: " + static_cast<char>(command.code));
        }
        if (command.end != CommandEnd::Exit || command.code != 0) {
            fail("DEBUG: Failed to resolve '" + argument + "' from system for template '" + name +
                 "'");
        } else if (isWhiteSpaceAlone(text)) {
            result_.outcome = PlainOutcome::Refused;
        } else {
            output_ += plainTrim(text);
        }
    }

    static std::optional<std::string> unlessEmpty(std::optional<std::string> text) {
        return text && text->empty() ? std::nullopt : text;
    }

    void take(const std::optional<std::string>& text, const std::string& message) {
        if (text) {
            output_ += *text;
        } else {
            fail(message);
        }
    }

    void log(const std::string& message) { result_.log += message + '\n'; }

    void fail(const std::string& message) {
        log(message);
        result_.outcome = PlainOutcome::Failed;
    }

    PlainExpansion result_;
    std::string output_;
};

}  // namespace

const PlainSurroundings& surroundings() {
    static const PlainSurroundings made = makeSurroundings();
    return made;
}

PlainExpansion expandPlainly(const std::string& text, const PlainValue& value) {
    return Expansion(value).run(text);
}

bool namesDevices(const std::string& text) {
    return text.find("/dev") != text.npos || text.find("/proc") != text.npos ||
           text.find("/sys") != text.npos;
}

}  // namespace Fuzz
