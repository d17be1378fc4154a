// tarnwick-config get: prints values, many keys from one load.

#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>

#include "config/arguments.h"
#include "config/command.h"
#include "config/display.h"
#include "config/json.h"
#include "config/loading.h"
#include "config/output.h"
#include "config/shell_text.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "request.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Logging::logCritical;
using Logging::parserLogger;

struct Options;

/// What became of one key. `status` is that of a request for this key.
struct Answer {
    std::string_view name;  // as it was typed
    ExitStatus status = ExitFailure;
    std::string text = {};  // ExitSuccess
};
using Answers = std::vector<Answer>;

/// A form of the output.
struct Format {
    std::string_view name;
    void (*check)(const Options& options);  // throws for keys that the form cannot name
    /// Prints the answers, the worst of whose states is `status`; returns the exit status.
    ExitStatus (*print)(const Answers& answers, const Options& options, ExitStatus status);
};
std::span<const Format> formats();

struct Options {
    std::vector<std::string> keys;
    const Format* format = &formats().front();
    std::string prefix;                      // of names of variables
    std::optional<std::string> replacement;  // of a key without a value
    bool isList = false;
    bool endsInNul = false;
};

// --- Answers ---

ExitStatus worse(ExitStatus left, ExitStatus right) {
    constexpr std::array kFromBest{ExitSuccess, ExitUnavailable, ExitFailure};
    const auto rank = [&](ExitStatus each) {
        return std::find(kFromBest.begin(), kFromBest.end(), each);
    };
    return rank(left) < rank(right) ? right : left;
}

Answer findAnswer(const ConfigParser& parser, const std::string& typed, const Options& options) {
    const auto [group, key] = parseKeyName(typed);
    try {
        const auto wanted = options.isList ? Tool::Wanted::AllValues : Tool::Wanted::CurrentValue;
        std::optional<std::string> text = Tool::findAnswer(parser, group, key, wanted);
        if (!text) {
            text = options.replacement;
        }
        return text ? Answer{typed, ExitSuccess, *std::move(text)} : Answer{typed, ExitUnavailable};
    } catch (const std::exception& error) {
        logCritical(parserLogger) << "Cannot get '" << group << "/" << key << "': " << error.what();
        return {typed, ExitFailure};
    }
}

Answers findAnswers(const Options& options, const Context& context) {
    const std::unique_ptr<ConfigParser> parser = load(context);
    Answers answers;
    for (const std::string& key : options.keys) {
        answers.push_back(parser ? findAnswer(*parser, key, options) : Answer{key, ExitFailure});
    }
    return answers;
}

// --- Text ---

void checkNothing(const Options&) {}

ExitStatus printText(const Answers& answers, const Options& options, ExitStatus status) {
    for (const Answer& answer : answers) {
        if (answer.status == ExitSuccess) {
            std::cout << answer.text << (options.endsInNul ? '\0' : '\n');
        }
    }
    return status;
}

// --- Shell ---

std::string variableOf(std::string_view typed, const Options& options) {
    return shellName(options.prefix + parseKeyName(typed).key);
}

[[noreturn]] void refuseVariable(const std::string& typed, const std::string& variable) {
    refuseArguments("'" + typed + "': no variable can be named '" + variable +
                    "'; --prefix puts something in front");
}

[[noreturn]] void refuseSharedVariable(const std::string& first, const std::string& second,
                                       const std::string& variable) {
    refuseArguments("'" + first + "' and '" + second + "' would both be the variable '" + variable +
                    "'");
}

// A second key of the same name would overwrite the value of the first.
void checkVariables(const Options& options) {
    std::map<std::string, const std::string*> owners;
    for (const std::string& typed : options.keys) {
        const std::string variable = variableOf(typed, options);
        if (!isShellName(variable)) {
            refuseVariable(typed, variable);
        }
        const std::string& owner = *owners.try_emplace(variable, &typed).first->second;
        if (parseKeyName(owner) != parseKeyName(typed)) {
            refuseSharedVariable(owner, typed, variable);
        }
    }
}

bool holdsNul(const Answer& answer) {
    if (answer.text.find('\0') == answer.text.npos) {
        return false;
    }
    std::cerr << "tarnwick-config: " << escaped(answer.name)
              << ": the value holds a NUL byte, which no shell takes\n";
    return true;
}

// A variable without an answer is unset, so that an inherited one does not pass for it, also when
// nothing could be loaded. The status comes last, because `eval` loses that of the program. Nothing
// is printed before the text is whole: half a line would be evaluated too.
ExitStatus printShell(const Answers& answers, const Options& options, ExitStatus status) {
    if (std::count_if(answers.begin(), answers.end(), holdsNul) > 0) {
        return ExitFailure;
    }
    std::string text;
    for (const Answer& answer : answers) {
        const std::string variable = variableOf(answer.name, options);
        text += answer.status == ExitSuccess ? variable + '=' + shellQuoted(answer.text)
                                             : "unset -v " + variable;
        text += '\n';
    }
    if (status != ExitSuccess) {
        text += "(exit " + std::to_string(status) + ")\n";
    }
    std::cout << text;
    return status;
}

// --- JSON ---

// Two keys that are no UTF-8 could become one name. The bytes of a value that is none stand beside
// it by a name of their own.
void checkMembers(const Options& options) {
    for (const std::string& typed : options.keys) {
        if (findInvalidUtf8(typed) != typed.npos) {
            refuseArguments("'" + typed + "' is no UTF-8 and can name no member");
        }
    }
    const std::set<std::string_view> names(options.keys.begin(), options.keys.end());
    const auto clashes = [&](const std::string& name) {
        return names.contains(name + kBytesSuffix);
    };
    const auto name = std::find_if(options.keys.begin(), options.keys.end(), clashes);
    if (name != options.keys.end()) {
        refuseArguments("'" + *name + kBytesSuffix + "' stands for the bytes of '" + *name +
                        "' in this form");
    }
}

Json memberOf(const Answer& answer) {
    const std::string name(answer.name);
    Json object;
    if (answer.status == ExitSuccess) {
        setText(object, name, answer.text);
    } else {
        object[name] = nullptr;
    }
    return object;
}

// An object, member by member. A key that failed has none.
ExitStatus printJson(const Answers& answers, const Options&, ExitStatus status) {
    std::set<std::string_view> names;
    std::cout << '{';
    for (const Answer& answer : answers) {
        if (answer.status != ExitFailure && names.insert(answer.name).second) {
            const std::string object = printed(memberOf(answer));
            std::cout << (names.size() > 1 ? ",\n" : "\n")
                      << std::string_view(object).substr(1, object.size() - 2);
        }
    }
    std::cout << "\n}\n";
    return status;
}

// --- The command ---

std::span<const Format> formats() {
    static constexpr std::array kFormats{
        Format{"text", checkNothing, printText},
        Format{"shell", checkVariables, printShell},
        Format{"json", checkMembers, printJson},
    };
    return kFormats;
}

void checkOptions(const Options& options) {
    if (options.endsInNul && options.format->print != printText) {
        refuseArguments("-z goes with --format=text alone");
    }
    if (!options.prefix.empty() && options.format->print != printShell) {
        refuseArguments("--prefix goes with --format=shell alone");
    }
    for (const std::string& typed : options.keys) {
        if (parseKeyName(typed).key.empty()) {
            refuseArguments("'" + typed + "' names no key");
        }
    }
    options.format->check(options);
}

ExitStatus answer(const Options& options, const Context& context) {
    const Answers answers = findAnswers(options, context);
    ExitStatus status = ExitSuccess;
    for (const Answer& answer : answers) {
        status = worse(status, answer.status);
    }
    status = options.format->print(answers, options, status);
    return finishOutput() ? status : ExitFailure;
}

// Whatever goes wrong, it is no key without a value.
ExitStatus get(const Options& options, const Context& context) {
    try {
        setUpLogging(context);
        return answer(options, context);
    } catch (const std::exception& error) {
        std::cerr << "tarnwick-config: " << escaped(error.what()) << '\n';
        return ExitFailure;
    }
}

}  // namespace

Run addGet(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "KEY", options->keys, "GROUP/KEY, or KEY of the group Config",
                Count::OneOrMore);
    addChoice<Format>(app, "--format", "FORM", "text, shell or json", formats(),
                      [options](const Format& row) { options->format = &row; });
    addOption(app, "--prefix", "TEXT", "What the names of shell variables begin with",
              [options](const std::string& text) { options->prefix = text; });
    addOption(app, "--default", "TEXT", "The answer for a key without a value",
              [options](const std::string& text) { options->replacement = text; });
    addFlag(app, "--list", options->isList, "Print all values of a key, joined by ';'");
    addFlag(app, "-z", options->endsInNul, "End each answer with NUL instead of a line feed");
    checkArguments(app, [options] { checkOptions(*options); });
    return [options](const Context& context) { return get(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
