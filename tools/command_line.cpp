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
    using Limits = std::numeric_limits<std::int32_t>;
    char* end = nullptr;
    const long long number = std::strtoll(value.c_str(), &end, 10);
    if (end == value.c_str()) {
        return report("--user-id: " + value + " does not look like an integer.");
    }
    // A number beyond long long comes out as the limit of long long.
    if (number < Limits::min() || number > Limits::max()) {
        return report("--user-id: " + value + " is too big/small.");
    }
    options.userId = static_cast<std::int32_t>(number);
    return Fault::None;
}

Fault setList(Options& options, const std::string&) {
    options.list = true;
    return Fault::None;
}

struct OptionRow {
    std::string_view name;
    Fault (*apply)(Options& options, const std::string& value);
    const char* missingValue;  // null: the option takes no value
};
constexpr std::array kOptions{
    OptionRow{"--config", addDirectory,
              "--config needs value. Specify alternative config directory to read."},
    OptionRow{"--configs", addDirectories, "--configs needs value."},
    OptionRow{"--instance", setText<&Options::instance>, "--instance needs value. Specify a name."},
    OptionRow{"--user-id", setUserId, "--user-id needs value. Specify an UID value."},
    OptionRow{"--group", setText<&Options::group>,
              "--group needs value. Specify an config group name."},
    OptionRow{"--key", setText<&Options::key>, "--key needs value. Specify an config key name."},
    OptionRow{"--list", setList, nullptr},
    OptionRow{"--log-level", setText<&Options::logLevel>, "--log-level needs value."},
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
        if (row->missingValue == nullptr) {
            return row->apply(options, "");
        }
        if (next_ == end_) {
            return report(row->missingValue);
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

void printUsage(const std::string& programName) {
    std::cout << "Parse single key value from Tarnwick config.\n"
                 "\n"
                 "USAGE:\n"
                 "    "
              << programName
              << " [OPTIONS] --key <config-key>\n"
                 "\n"
                 "OPTIONS:\n"
                 "    --config <input_directory> Directory to read. Defaults to "
              << kDefaultConfigDirectory
              << "\n"
                 "    --configs <directories>    Directories to read, separated by ':'.\n"
                 "    --user-id <UID>            UID for user. Defaults to seat0 active user.\n"
                 "    --instance <name>          Instance name for the container.\n"
                 "    --log-level <level>        Log level. Defaults to warning.\n"
                 "    --list                     Instead of printing the final value of the key, "
                 "list all\n"
                 "                               values defined for the key in a list. Value "
                 "separator is ';'.\n"
                 "    --group <group>            Config group for the key. Defaults to "
              << kGroupConfig
              << "\n"
                 "\n"
                 "REQUIRED OPTIONS:\n"
                 "    --key <name>               Config key name. Required.\n"
              << std::flush;
}

std::string programName(int count, const char* const* arguments) {
    return count > 0 ? arguments[0] : "";
}

}  // namespace Tarnwick::Parser::Tool
