#pragma once

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// Declares the options that every command has.
void addContextOptions(CLI::App& app, Context& context);

/// Declares an option with one value, which is applied where it stands.
void addOption(CLI::App& app, const std::string& name, const char* type, const char* help,
               const std::function<void(const std::string& text)>& apply);

/// Throws `CLI::ValidationError`: the value of the option `name` is none of `choices`.
[[noreturn]] void refuseChoice(const std::string& name, const std::string& text,
                               const std::string& choices);

/// Declares an option whose value is the name of a row of a table, which is applied where it
/// stands. `choices` tells people the names, as in "text or json".
template <typename Row>
void addChoice(CLI::App& app, const std::string& name, const char* type, const char* choices,
               std::span<const Row> table, const std::function<void(const Row& row)>& apply) {
    addOption(app, name, type, choices, [=](const std::string& text) {
        const auto row = std::find_if(table.begin(), table.end(),
                                      [&](const Row& each) { return each.name == text; });
        if (row == table.end()) {
            refuseChoice(name, text, choices);
        }
        apply(*row);
    });
}

/// Declares --format, with the forms that most commands have.
void addTextOrJson(CLI::App& app, bool& isJson);

/// Declares the operands of a command, such as PATH. Their texts come out as they were typed.
CLI::Option* addOperands(CLI::App& app, const char* name, std::vector<std::string>& operands,
                         const char* help);

/// Returns the first argument of `main` that is neither an option that the application has nor the
/// value of one: the command. Empty when there is none.
[[nodiscard]] std::string_view commandWord(const CLI::App& app, int count,
                                           const char* const* arguments);

/// Parses the arguments of `main`. Throws `CLI::ParseError`.
void parseArguments(CLI::App& app, int count, const char* const* arguments);

}  // namespace Tarnwick::Parser::ConfigTool
