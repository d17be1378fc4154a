// The template language of values: expansion while loading, references at lookup.
//
//     text     = { character | "$$" | "${" name "}" }
//     name     = variable | source ":" argument        no nesting, no escapes, nothing trimmed
//     source   = "config" | "env" | "envfile" | "realpath" | "dconf" | "prop" | "system"
//
// "$$" is one "$". Any other character after a "$" is an error, and so is the end of the text.

#include <array>
#include <optional>

#include "config_parser.h"
#include "config_parser_data.h"
#include "environment_file.h"
#include "logging/log_record.h"
#include "support/split_string.h"
#include "support/trim.h"
#include "value_sources.h"

namespace Tarnwick::Parser {
namespace {

using Logging::logDebug;
using Logging::logError;
using Logging::parserLogger;

using Target = std::pair<std::string, std::string>;

/// One template of the form "${SOURCE:ARGUMENT}".
struct Template {
    const std::string& name;  // all between the braces, for messages
    std::string argument;
    std::int32_t userId;
};

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

// --- Sources: the text, or nothing after the failure has been logged ---

std::optional<std::string> fromEnvironment(const Template& from) {
    return unlessEmpty(readEnv(from.argument.c_str(), ""));
}

std::optional<std::string> fromEnvironmentFile(const Template& from) {
    const std::size_t colon = from.argument.find(':');
    if (colon == std::string::npos) {
        logError(parserLogger) << "Invalid envfile definition '" << from.name << "'";
        return std::nullopt;
    }
    const std::string path = from.argument.substr(0, colon);
    const std::string variable = from.argument.substr(colon + 1);
    std::optional<std::string> text = readEnvFile(path, variable, false);
    if (!text) {
        logDebug(parserLogger) << "Failed to read '" << variable << "' from environment file '"
                               << path << "' for template '" << from.name << "'";
    }
    return text;
}

std::optional<std::string> fromRealPath(const Template& from) {
    return unlessEmpty(resolvePath(from.argument));
}

std::optional<std::string> fromDconf(const Template& from) {
    return unlessEmpty(readDconf(from.argument, from.userId));
}

std::optional<std::string> fromProperties(const Template& from) {
    return unlessEmpty(readProperty(from.argument));
}

std::optional<std::string> fromCommand(const Template& from) {
    int status = -1;
    const std::string output = runCommand(from.argument, {}, &status);
    return status == 0 ? std::optional(trim(output)) : std::nullopt;
}

/// A source, and what stands around its argument in the record of its failure. Missing values are
/// common and harmless: the record is of the debug level.
struct SourceRow {
    std::string_view name;
    std::optional<std::string> (*read)(const Template& from);
    const char* before;  // null: the source tells its failures itself
    const char* behind;
};
// clang-format off
constexpr std::array kSources{
    SourceRow{"env",      fromEnvironment,     "Failed to read '",    "' from environment variables for template '"},
    SourceRow{"envfile",  fromEnvironmentFile, nullptr,               nullptr},
    SourceRow{"realpath", fromRealPath,        "Failed to resolve '", "' path for template '"},
    SourceRow{"dconf",    fromDconf,           "Failed to read '",    "' from dconf for template '"},
    SourceRow{"prop",     fromProperties,      "Failed to read '",    "' from properties for template '"},
    SourceRow{"system",   fromCommand,         "Failed to resolve '", "' from system for template '"},
};
// clang-format on

// --- Templates ---

TemplateResult resolveReference(const Template& from, std::string& text, Target& target) {
    std::vector<std::string> names = splitString(from.argument, '/', kNoSplitLimit, KeepEmpty);
    if (names.size() != 2 || names[0].empty() || names[1].empty()) {
        logError(parserLogger) << "Invalid format '" << from.argument << "' for conf template '"
                               << from.name << "'";
        return TemplateResult::Failed;
    }
    target = {std::move(names[0]), std::move(names[1])};
    text.clear();
    return TemplateResult::Reference;
}

TemplateResult readSource(const SourceRow& source, const Template& from, std::string& text) {
    std::optional<std::string> read = source.read(from);
    if (read) {
        text = std::move(*read);
        return TemplateResult::Resolved;
    }
    if (source.before != nullptr) {
        logDebug(parserLogger) << source.before << from.argument << source.behind << from.name
                               << "'";
    }
    return TemplateResult::Failed;
}

TemplateResult resolveSource(std::string_view source, const Template& from, std::string& text,
                             Target& target) {
    if (source == "config") {
        return resolveReference(from, text, target);
    }
    for (const SourceRow& row : kSources) {
        if (row.name == source) {
            return readSource(row, from, text);
        }
    }
    logError(parserLogger) << "Invalid template '" << from.name << "'";
    return TemplateResult::Failed;
}

// --- Texts ---

// Moves literal text, "$$" as "$", from `rest` to `expanded`. Returns whether a template follows;
// its '$' has been taken then.
bool takeLiteral(std::string_view& rest, std::string& expanded) {
    for (;;) {
        const std::size_t dollar = rest.find('$');
        expanded.append(rest.substr(0, dollar));
        if (dollar == rest.npos) {
            return false;
        }
        rest.remove_prefix(dollar + 1);
        if (!rest.starts_with('$')) {
            return true;
        }
        expanded += '$';
        rest.remove_prefix(1);
    }
}

// Appends what the template stands for, or notes a reference at the end of `expanded`.
bool expandTemplate(const ConfigParser& parser, const std::string& name, std::string& expanded,
                    ConfigValue& out) {
    std::string text;
    Target target;
    const TemplateResult result = parser.resolveTemplate(name, text, target);
    if (result == TemplateResult::Reference) {
        out.addReference(target.first, target.second, static_cast<std::uint32_t>(expanded.size()));
    }
    expanded += text;
    return result != TemplateResult::Failed;
}

bool rejectText(const char* problem, std::string_view valueText) {
    logError(parserLogger) << problem << std::string(valueText);
    return false;
}

// --- References ---

/// More visits than this in one resolution mean a circle, or too many values to draw on. Visits
/// are counted, not the depth of a chain: at most 33 values take part, however they are arranged.
constexpr std::int32_t kLastVisit = 32;

class Resolver {
public:
    explicit Resolver(const ConfigStore& store) : store_(store) {}

    /// Sets `out` to the value's text. Returns false after too many visits. A value of an unknown
    /// state leaves `out` as it was.
    [[nodiscard]] bool resolve(const ConfigValue& value, std::string& out) {
        if (visits_ > kLastVisit) {
            return false;
        }
        ++visits_;
        if (value.hasReferences == 0) {
            out = value.text;
        }
        return value.hasReferences != 1 || insertReferences(value, out);
    }

private:
    [[nodiscard]] bool insertReferences(const ConfigValue& value, std::string& out) {
        std::vector<std::string> texts;
        if (value.references) {
            for (const auto& [group, key] : value.references->targets) {
                const ConfigValue* target = currentValue(group, key);
                std::string& text = texts.emplace_back();
                if (target != nullptr && !resolve(*target, text)) {
                    return false;
                }
            }
        }
        out = value.applyReferences(texts);
        return true;
    }

    // Null for a key that does not exist or holds no value: its hole stays empty.
    [[nodiscard]] const ConfigValue* currentValue(const std::string& group,
                                                  const std::string& key) const {
        store_.checkKeyAdded(group, key);
        const std::vector<ConfigValue>* values = store_.find(group, key);
        return values == nullptr || values->empty() ? nullptr : &values->back();
    }

    const ConfigStore& store_;
    std::int32_t visits_ = 0;
};

}  // namespace

bool ConfigParser::parseTemplates(std::string_view valueText, ConfigValue& out) const {
    if (valueText.find('$') == valueText.npos) {
        out.text = trimmed(valueText);  // what most values are
        return true;
    }
    std::string expanded;
    std::string_view rest = valueText;
    while (takeLiteral(rest, expanded)) {
        if (!rest.starts_with('{')) {
            return rejectText("'$' must be followed by '{' or '$': ", valueText);
        }
        const std::size_t brace = rest.find('}');
        if (brace == rest.npos) {
            return rejectText("Invalid template substitution, missing '}': ", valueText);
        }
        const std::string name(rest.substr(1, brace - 1));
        rest.remove_prefix(brace + 1);
        if (!expandTemplate(*this, name, expanded, out)) {
            return false;
        }
    }
    // Trimmed after the positions were noted: white space removed in front is not subtracted
    // from them, so later insertions move right by as much. Callers depend on it.
    out.text = trim(expanded);
    return true;
}

TemplateResult ConfigParser::resolveTemplate(const std::string& name, std::string& text,
                                             Target& target) const {
    const std::size_t colon = name.find(':');
    if (colon != std::string::npos) {
        const std::string_view source = std::string_view(name).substr(0, colon);
        return resolveSource(source, {name, name.substr(colon + 1), data_->userId}, text, target);
    }
    const auto variable = data_->variables.find(name);
    if (variable == data_->variables.end()) {
        logError(parserLogger) << "No such template '" << name << "'";
        return TemplateResult::Failed;
    }
    text = variable->second;
    return TemplateResult::Resolved;
}

bool ConfigParser::reparseValue(ConfigValue& value) const {
    const std::string text = value.text;
    if (!parseTemplates(text, value)) {
        value.clear();
        return false;
    }
    return true;
}

void ConfigParser::resolveValue(const ConfigValue& value, std::string& out) const {
    if (!Resolver(data_->store).resolve(value, out)) {
        logError(parserLogger) << "Max depth reached, possibly circular reference.";
        out.clear();
    }
}

}  // namespace Tarnwick::Parser
