// tarnwick-config: answers what people ask who write, ship and debug configuration.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string_view>
#include <utility>
#include <vector>

#include "config/arguments.h"
#include "config/command.h"
#include "config/display.h"
#include "config/output.h"
#include "process_setup.h"

namespace Tarnwick::Parser::ConfigTool {

bool Context::hasColor() const {
    if (color != Color::Auto) {
        return color == Color::Always;
    }
    return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

namespace {

constexpr const char* kName = "tarnwick-config";

int printText(const std::string& text) {
    std::cout << text;
    return finishOutput() ? ExitSuccess : ExitUnavailable;
}

// A word that nothing takes explains more than what is missing, such as an operand.
std::string problemOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> words = app.remaining(true);
    const auto option = std::find_if(words.begin(), words.end(),
                                     [](const auto& word) { return word.starts_with('-'); });
    if (option != words.end()) {
        return "there is no option '" + *option + "'";
    }
    const bool hasCommand = !app.get_subcommands().empty();
    return hasCommand || words.empty() ? error.what()
                                       : "there is no command '" + words.front() + "'";
}

int refuse(const CLI::App& app, const CLI::ParseError& error) {
    const auto declared = app.get_subcommands([](const CLI::App*) { return true; });
    std::cerr << kName << ": " << escaped(problemOf(app, error)) << "\nTry '" << kName
              << (declared.size() == 1 ? ' ' + declared.front()->get_name() : "") << " --help'.\n";
    return ExitUsage;
}

/// The command line: what every command has, and the commands.
class CommandLine {
public:
    CommandLine(int count, const char* const* arguments) {
        app_.set_help_flag("--help", "Print this help and exit");
        app_.set_version_flag("--version", std::string(kName) + " " TARNWICK_VERSION,
                              "Print the version and exit");
        addContextOptions(app_, context_);
        app_.require_subcommand(1);
        addCommands(commandWord(app_, count, arguments));
    }

    [[nodiscard]] int run(int count, const char* const* arguments) {
        try {
            parseArguments(app_, count, arguments);
        } catch (const CLI::CallForHelp&) {
            return printText(app_.help());
        } catch (const CLI::CallForVersion& version) {
            return printText(std::string(version.what()) + '\n');
        } catch (const CLI::ParseError& error) {
            return refuse(app_, error);
        }
        return runChosen();
    }

private:
    // To declare the options of every command would cost more than to answer a key: the others are
    // there for the help text and the messages of a command line that chooses none.
    void addCommands(std::string_view chosen) {
        const auto isChosen = [&](const Command& command) { return command.name == chosen; };
        const bool hasChosen = std::any_of(commands().begin(), commands().end(), isChosen);
        for (const Command& command : commands()) {
            if (!hasChosen || isChosen(command)) {
                CLI::App* added = app_.add_subcommand(command.name, command.summary)->fallthrough();
                runs_.emplace_back(added, command.add(*added));
            }
        }
    }

    [[nodiscard]] int runChosen() const {
        for (const auto& [command, run] : runs_) {
            if (command->parsed()) {
                return run(context_);
            }
        }
        return ExitUsage;
    }

    CLI::App app_{"Checks and explains Tarnwick configuration.", kName};
    Context context_;
    std::vector<std::pair<CLI::App*, Run>> runs_;
};

int runOrReport(int count, const char* const* arguments) {
    try {
        return CommandLine(count, arguments).run(count, arguments);
    } catch (const std::exception& error) {
        std::cerr << kName << ": " << escaped(error.what()) << '\n';
        return ExitUnavailable;
    }
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool

int main(int count, char** arguments) {
    Tarnwick::Parser::Tool::prepareProcess();
    std::ios::sync_with_stdio(false);
    try {
        return Tarnwick::Parser::ConfigTool::runOrReport(count, arguments);
    } catch (...) {  // Nothing aborts: not even for want of memory to say so.
        return Tarnwick::Parser::ConfigTool::ExitUnavailable;
    }
}
