#include "config/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <utility>

#include "command_line.h"
#include "config/command.h"
#include "logging/logger_config.h"
#include "support/split_string.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// Stands in front of every value and operand, so that the library takes none of them for an option,
// a command or a list such as "[a,b]", and misses none that is empty.
constexpr char kGuard = '\1';

std::string guarded(std::string_view text) {
    return kGuard + std::string(text);
}

std::string asTyped(const std::string& word) {
    return word.starts_with(kGuard) ? word.substr(1) : word;
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

/// What a name on the command line stands for.
template <typename Meaning>
struct Choice {
    std::string_view name;
    Meaning meaning;
};

constexpr std::array<Choice<Color>, 3> kColors{{
    {"auto", Color::Auto},
    {"always", Color::Always},
    {"never", Color::Never},
}};

constexpr std::array<Choice<bool>, 2> kTextOrJson{{
    {"text", false},
    {"json", true},
}};

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

bool takesValue(const CLI::Option* option) {
    return option != nullptr && option->get_items_expected_min() > 0;
}

/// Makes words for the library of the arguments: options as they are, and guarded texts.
class Words {
public:
    explicit Words(const CLI::App& app) : app_(app) {}

    void add(const std::string& text) {
        if (isValue_) {
            isValue_ = false;
            words_.push_back(guarded(text));
        } else if (hasOptions_ && text == "--") {
            hasOptions_ = false;
        } else if (hasOptions_ && text.size() > 1 && text.starts_with('-')) {
            addOption(text);
        } else {
            addOperand(text);
        }
    }

    [[nodiscard]] std::vector<std::string> take() && { return std::move(words_); }

private:
    void addOption(const std::string& text) {
        const std::size_t end = text.find('=');
        const std::string name = text.substr(0, end);
        const CLI::Option* option = findOption(app_, name);
        if (option == nullptr || end == text.npos) {
            words_.push_back(text);
            isValue_ = takesValue(option);
        } else if (takesValue(option)) {
            words_.push_back(name);
            words_.push_back(guarded(text.substr(end + 1)));
        } else {
            throw CLI::ValidationError(name + " takes no value");
        }
    }

    // The first one is the command.
    void addOperand(const std::string& text) {
        words_.push_back(hasCommand_ ? guarded(text) : text);
        hasCommand_ = true;
    }

    const CLI::App& app_;
    std::vector<std::string> words_;
    bool isValue_ = false;  // of the option before it, whatever it looks like
    bool hasOptions_ = true;
    bool hasCommand_ = false;
};

}  // namespace

void refuseArguments(const std::string& problem) {
    throw CLI::ValidationError(problem);
}

void addOption(CLI::App& app, const std::string& name, const char* type, const char* help,
               const std::function<void(const std::string& text)>& apply) {
    app.add_option_function<std::string>(
           name, [apply](const std::string& text) { apply(asTyped(text)); }, help)
        ->type_name(type)
        ->trigger_on_parse()
        ->allow_extra_args(false);
}

void addTextOrJson(CLI::App& app, bool& isJson) {
    addChoice<Choice<bool>>(app, "--format", "FORM", "text or json", kTextOrJson,
                            [&](const Choice<bool>& row) { isJson = row.meaning; });
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
    addChoice<Choice<Color>>(app, "--color", "WHEN", "auto, always or never", kColors,
                             [&](const Choice<Color>& row) { context.color = row.meaning; });
}

void addFlag(CLI::App& app, const char* name, bool& isSet, const char* help) {
    app.add_flag(name, isSet, help);
}

void addOperands(CLI::App& app, const char* name, std::vector<std::string>& operands,
                 const char* help, Count count) {
    CLI::Option* option = app.add_option_function<std::vector<std::string>>(
        name,
        [&operands](const std::vector<std::string>& texts) {
            std::transform(texts.begin(), texts.end(), std::back_inserter(operands), asTyped);
        },
        help);
    option->required(count != Count::Any);
    if (count == Count::One) {
        option->expected(1);
    }
}

void checkArguments(CLI::App& app, const std::function<void()>& check) {
    app.final_callback(check);
}

std::string_view commandWord(const CLI::App& app, int count, const char* const* arguments) {
    for (int index = 1; index < count; ++index) {
        const std::string_view text = arguments[index];
        if (!text.starts_with('-')) {
            return text;
        }
        if (takesValue(findOption(app, std::string(text)))) {
            ++index;
        }
    }
    return {};
}

void parseArguments(CLI::App& app, int count, const char* const* arguments) {
    Words words(app);
    for (int index = 1; index < count; ++index) {
        words.add(arguments[index]);
    }
    std::vector<std::string> texts = std::move(words).take();
    std::reverse(texts.begin(), texts.end());  // the library takes them from the back
    app.parse(std::move(texts));
}

}  // namespace Tarnwick::Parser::ConfigTool
