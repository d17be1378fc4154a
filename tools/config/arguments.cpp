#include "config/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>

#include "command_line.h"
#include "config/command.h"
#include "logging/logger_config.h"
#include "support/split_string.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// The library takes "[a,b]" for a list wherever it stands. A byte behind such a text keeps it
// whole, and goes again when the text is read.
constexpr char kGuard = '\1';

std::string guarded(std::string text) {
    if (text.starts_with('[')) {
        text += kGuard;
    }
    return text;
}

std::string asTyped(const std::string& text) {
    return text.starts_with('[') ? text.substr(0, text.size() - 1) : text;
}

void setUserId(Context& context, const std::string& text) {
    std::string problem;
    const std::optional<std::int32_t> userId = Tool::parseUserId(text, problem);
    if (!userId) {
        throw CLI::ValidationError(problem);
    }
    context.userId = *userId;
}

void setLogLevel(Context& context, const std::string& text) {
    if (!text.empty() && !Logging::LoggerConfig::isLevel(text)) {
        throw CLI::ValidationError("--log-level: '" + text + "' is no level");
    }
    context.logLevel = text;
}

struct ColorRow {
    const char* name;
    Color color;
};
constexpr std::array kColors{
    ColorRow{"auto", Color::Auto},
    ColorRow{"always", Color::Always},
    ColorRow{"never", Color::Never},
};

void setColor(Context& context, const std::string& text) {
    const auto row = std::find_if(kColors.begin(), kColors.end(),
                                  [&](const ColorRow& each) { return text == each.name; });
    if (row == kColors.end()) {
        throw CLI::ValidationError("--color: '" + text + "' is not auto, always or never");
    }
    context.color = row->color;
}

const CLI::Option* findOption(const CLI::App& app, const std::string& name) {
    if (const CLI::Option* option = app.get_option_no_throw(name)) {
        return option;
    }
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (const CLI::Option* option = command->get_option_no_throw(name)) {
            return option;
        }
    }
    return nullptr;
}

bool takesValue(const CLI::App& app, const std::string& name) {
    const CLI::Option* option = name.starts_with("--") ? findOption(app, name) : nullptr;
    return option != nullptr && option->get_items_expected_min() > 0;
}

// The library takes the argument behind "--name=" for its value: an empty one is made of it.
std::vector<std::string> prepared(const CLI::App& app, int count, const char* const* arguments) {
    std::vector<std::string> texts;
    bool isValue = false;  // of the option before it, whatever it looks like
    bool hasOptions = true;
    for (int index = 1; index < count; ++index) {
        const std::string text = arguments[index];
        const bool isEmptyValue = hasOptions && !isValue && text.ends_with('=') &&
                                  takesValue(app, text.substr(0, text.size() - 1));
        hasOptions = hasOptions && (isValue || text != "--");
        isValue = hasOptions && !isValue && takesValue(app, text);
        if (isEmptyValue) {
            texts.push_back(text.substr(0, text.size() - 1));
            texts.emplace_back();
        } else {
            texts.push_back(guarded(text));
        }
    }
    return texts;
}

}  // namespace

void addOption(CLI::App& app, const std::string& name, const char* type, const char* help,
               const std::function<void(const std::string& text)>& apply) {
    app.add_option_function<std::string>(
           name, [apply](const std::string& text) { apply(asTyped(text)); }, help)
        ->type_name(type)
        ->trigger_on_parse()
        ->allow_extra_args(false);
}

void addContextOptions(CLI::App& app, Context& context) {
    context.instance = kDefaultInstance;
    addOption(app, "--config", "DIR", "Read this directory (default: /etc/tarnwick.conf.d)",
              [&](const std::string& text) { context.directories.push_back(text); });
    addOption(app, "--configs", "A:B", "Read these directories, in order",
              [&](const std::string& text) {
                  for (std::string& directory : splitString(text, ':', kNoSplitLimit, KeepEmpty)) {
                      context.directories.push_back(std::move(directory));
                  }
              });
    addOption(app, "--user-id", "N", "Whose configuration (default: the user of seat0)",
              [&](const std::string& text) { setUserId(context, text); });
    addOption(app, "--instance", "NAME", "The container's instance (default: default)",
              [&](const std::string& text) { context.instance = text; });
    addOption(app, "--log-level", "LEVEL", "The level of log records (default: warning)",
              [&](const std::string& text) { setLogLevel(context, text); });
    addOption(app, "--color", "WHEN", "auto, always or never",
              [&](const std::string& text) { setColor(context, text); });
}

CLI::Option* addOperands(CLI::App& app, const char* name, std::vector<std::string>& operands,
                         const char* help) {
    return app.add_option_function<std::vector<std::string>>(
        name,
        [&operands](const std::vector<std::string>& texts) {
            std::transform(texts.begin(), texts.end(), std::back_inserter(operands), asTyped);
        },
        help);
}

std::string_view commandWord(const CLI::App& app, int count, const char* const* arguments) {
    for (int index = 1; index < count; ++index) {
        const std::string_view text = arguments[index];
        if (!text.starts_with('-')) {
            return text;
        }
        if (takesValue(app, std::string(text))) {
            ++index;
        }
    }
    return {};
}

void parseArguments(CLI::App& app, int count, const char* const* arguments) {
    std::vector<std::string> texts = prepared(app, count, arguments);
    std::reverse(texts.begin(), texts.end());  // the library takes them from the back
    app.parse(std::move(texts));
}

}  // namespace Tarnwick::Parser::ConfigTool
