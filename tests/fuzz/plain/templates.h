#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Fuzz {

/// What the templates of the inputs can draw on. Everything else they name is missing.
struct PlainSurroundings {
    std::map<std::string, std::string> variables;
    std::map<std::string, std::string> environment;
    std::map<std::string, std::string> environmentFiles;  // content by path
};

/// The surroundings of all targets. The first call puts them in place for the process: clears the
/// environment and fills it, and writes the files into the scratch directory.
const PlainSurroundings& surroundings();

/// A stored value, as config_value.h has it.
struct PlainValue {
    std::string text;
    std::vector<std::pair<std::string, std::string>> targets;
    std::vector<std::size_t> positions;
};

enum class PlainOutcome { Expanded, Failed, Refused };

/// What `parseTemplates` makes of a text.
struct PlainExpansion {
    PlainOutcome outcome = PlainOutcome::Expanded;
    PlainValue value;
    std::string log;
};

/// `value` is what the text's references are added to.
PlainExpansion expandPlainly(const std::string& text, const PlainValue& value = {});

/// Whether a text names files of which a reading could end late or never.
bool namesDevices(const std::string& text);

}  // namespace Fuzz
