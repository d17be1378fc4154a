#include "command_line.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string_view>

#include "support/split_string.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::Tool {
namespace {

enum class Fault {
    None,
    WithUsage,  // the message is followed by the usage text
    WithoutUsage,
};

Fault report(const std::string& message, Fault fault = Fault::WithUsage) {
    std::cerr << message << '\n';
    return fault;
}

// --- What each option does with its value ---

Fault addDirectory(Options& options, const std::string& value) {
    options.directories.push_back(value);
    return Fault::None;
}

Fault addDirectories(Options& options, const std::string& value) {
    for (std::string& directory : splitString(value, ':', kNoSplitLimit, KeepEmpty)) {
        options.directories.push_back(std::move(directory));
    }
    return Fault::None;
}

template <std::string Options::*field>
Fault setText(Options& options, const std::string& value) {
    options.*field = value;
    return Fault::None;
}

Fault setUserId(Options& options, const std::string& value) {
    std::string problem;
    const std::optional<std::int32_t> userId = parseUserId(value, problem);
    if (!userId) {
        return report(problem);
    }
    options.userId = *userId;
    return Fault::None;
}

Fault setList(Options& options, const std::string&) {
    options.list = true;
    return Fault::None;
}

enum class Need { Optional, Required };

/// One option: how it is read, and how the usage text shows it, in the order of that text.
struct OptionRow {
    std::string_view name;
    std::string_view valueName;  // empty: the option takes no value
    Fault (*apply)(Options& options, const std::string& value);
    std::string_view missingValueHint;
    Need need;
    std::string_view description;
    const std::string* defaultValue = nullptr;  // when set, it ends the description
};
constexpr std::array kOptions{
    OptionRow{"--config", "<input_directory>", addDirectory,
              " Specify alternative config directory to read.", Need::Optional,
              "Directory to read. Defaults to ", &kDefaultConfigDirectory},
    OptionRow{"--configs", "<directories>", addDirectories, "", Need::Optional,
              "Directories to read, separated by ':'."},
    OptionRow{"--user-id", "<UID>", setUserId, " Specify an UID value.", Need::Optional,
              "UID for user. Defaults to seat0 active user."},
    OptionRow{"--instance", "<name>", setText<&Options::instance>, " Specify a name.",
              Need::Optional, "Instance name for the container."},
    OptionRow{"--log-level", "<level>", setText<&Options::logLevel>, "", Need::Optional,
              "Log level. Defaults to warning."},
    OptionRow{"--list", "", setList, "", Need::Optional,
              "Instead of printing the final value of the key, list all\n"
              "values defined for the key in a list. Value separator is ';'."},
    OptionRow{"--group", "<group>", setText<&Options::group>, " Specify an config group name.",
              Need::Optional, "Config group for the key. Defaults to ", &kGroupConfig},
    OptionRow{"--key", "<name>", setText<&Options::key>, " Specify an config key name.",
              Need::Required, "Config key name. Required."},
};

const OptionRow* findOption(std::string_view name) {
    for (const OptionRow& row : kOptions) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

bool isOption(std::string_view argument) {
    return argument.starts_with("--") && argument.size() > 2;
}

/// Walks the arguments after the program's name.
class ArgumentReader {
public:
    ArgumentReader(int count, const char* const* arguments)
        : next_(arguments + 1), end_(arguments + count) {}

    [[nodiscard]] bool hasOption() const { return next_ != end_ && isOption(*next_); }

    [[nodiscard]] Fault readOption(Options& options) {
        const std::string name = *next_++;
        const OptionRow* row = findOption(name);
        if (row == nullptr) {
            return report(name + ": unknown argument", Fault::WithoutUsage);
        }
        if (row->valueName.empty()) {
            return row->apply(options, "");
        }
        if (next_ == end_) {
            return report(name + " needs value." + std::string(row->missingValueHint));
        }
        return row->apply(options, *next_++);  // whatever it looks like
    }

private:
    const char* const* next_;
    const char* const* end_;
};

Fault readArguments(int count, const char* const* arguments, Options& options) {
    if (count < 2) {
        return report("Needs at least one argument!");
    }
    ArgumentReader reader(count, arguments);
    while (reader.hasOption()) {
        const Fault fault = reader.readOption(options);
        if (fault != Fault::None) {
            return fault;
        }
    }
    if (options.key.empty()) {
        return report("Config key is required! Please specify a config key to parse.");
    }
    return Fault::None;
}

// --- The usage text ---

constexpr std::size_t kDescriptionColumn = 31;

// "    --option <value>", filled up with blanks as far as the description.
std::string usageHead(const OptionRow& row) {
    std::string head = "    " + std::string(row.name) + ' ' + std::string(row.valueName);
    head.resize(kDescriptionColumn, ' ');
    return head;
}

std::string usageLines(const OptionRow& row) {
    std::string lines = usageHead(row);
    for (const char character : row.description) {
        lines += character;
        if (character == '\n') {
            lines.append(kDescriptionColumn, ' ');
        }
    }
    return lines + (row.defaultValue != nullptr ? *row.defaultValue : "") + '\n';
}

std::string usageOf(Need need) {
    std::string text;
    for (const OptionRow& row : kOptions) {
        if (row.need == need) {
            text += usageLines(row);
        }
    }
    return text;
}

Options defaultOptions() {
    Options options;
    options.group = kGroupConfig;
    options.instance = kDefaultInstance;
    return options;
}

}  // namespace

std::optional<Options> parseCommandLine(int count, const char* const* arguments) {
    Options options = defaultOptions();
    const Fault fault = readArguments(count, arguments, options);
    if (fault == Fault::WithUsage) {
        printUsage(programName(count, arguments));
    }
    if (fault != Fault::None) {
        return std::nullopt;
    }
    if (options.directories.empty()) {
        options.directories.push_back(kDefaultConfigDirectory);
    }
    return options;
}

std::optional<std::int32_t> parseUserId(const std::string& text, std::string& problem) {
    using Limits = std::numeric_limits<std::int32_t>;
    char* end = nullptr;
    const long long number = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        problem = "--user-id: " + text + " does not look like an integer.";
        return std::nullopt;
    }
    // A number beyond long long comes out as the limit of long long.
    if (number < Limits::min() || number > Limits::max()) {
        problem = "--user-id: " + text + " is too big/small.";
        return std::nullopt;
    }
    return static_cast<std::int32_t>(number);
}

void printUsage(const std::string& programName) {
    std::cout << "Parse single key value from Tarnwick config.\n"
                 "\n"
                 "USAGE:\n"
                 "    "
              << programName
              << " [OPTIONS] --key <config-key>\n"
                 "\n"
                 "OPTIONS:\n"
              << usageOf(Need::Optional)
              << "\n"
                 "REQUIRED OPTIONS:\n"
              << usageOf(Need::Required) << std::flush;
}

std::string programName(int count, const char* const* arguments) {
    return count > 0 ? arguments[0] : "";
}

}  // namespace Tarnwick::Parser::Tool
