#pragma once

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// Declares the options that every command has.
void addContextOptions(CLI::App& app, Context& context);

/// Refuses the command line for the reason `problem`. Throws; may be called by whatever is called
/// while arguments are read.
[[noreturn]] void refuseArguments(const std::string& problem);

/// Declares an option with one value, which is applied where it stands.
void addOption(CLI::App& app, const std::string& name, const char* type, const char* help,
               const std::function<void(const std::string& text)>& apply);

/// Declares an option whose value is the name of a row of a table, which is applied where it
/// stands. `choices` tells people the names, as in "text or json".
template <typename Row>
void addChoice(CLI::App& app, const std::string& name, const char* type, const char* choices,
               std::span<const Row> table, const std::function<void(const Row& row)>& apply) {
    addOption(app, name, type, choices, [=](const std::string& text) {
        const auto row = std::find_if(table.begin(), table.end(),
                                      [&](const Row& each) { return each.name == text; });
        if (row == table.end()) {
            refuseArguments(name + ": '" + text + "' is not " + choices);
        }
        apply(*row);
    });
}

/// Declares --format, with the forms that most commands have.
void addTextOrJson(CLI::App& app, bool& isJson);

/// Declares an option without a value.
void addFlag(CLI::App& app, const char* name, bool& isSet, const char* help);

/// How many operands a command takes.
enum class Count { Any, One, OneOrMore };

/// Declares the operands of a command, such as PATH. Their texts come out as they were typed.
void addOperands(CLI::App& app, const char* name, std::vector<std::string>& operands,
                 const char* help, Count count = Count::Any);

/// Has `check` called when all arguments have been read. It may call `refuseArguments`.
void checkArguments(CLI::App& app, const std::function<void()>& check);

/// Returns the first argument of `main` that is neither an option that the application has nor the
/// value of one: the command. Empty when there is none.
[[nodiscard]] std::string_view commandWord(const CLI::App& app, int count,
                                           const char* const* arguments);

/// Parses the arguments of `main`. Throws `CLI::ParseError`.
void parseArguments(CLI::App& app, int count, const char* const* arguments);

}  // namespace Tarnwick::Parser::ConfigTool
