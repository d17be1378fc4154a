// tarnwick-config get: prints values, many keys from one load.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "config/arguments.h"
#include "config/command.h"
#include "config/loading.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "request.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Logging::logCritical;
using Logging::parserLogger;

struct Options {
    std::vector<std::string> keys;
    bool isList = false;
    bool endsInNul = false;
};

ExitStatus worse(ExitStatus left, ExitStatus right) {
    constexpr std::array kFromBest{ExitSuccess, ExitUnavailable, ExitFailure};
    const auto rank = [&](ExitStatus each) {
        return std::find(kFromBest.begin(), kFromBest.end(), each);
    };
    return rank(left) < rank(right) ? right : left;
}

ExitStatus printAnswer(const ConfigParser& parser, const KeyName& name, const Options& options) {
    try {
        const std::optional<std::string> text =
            Tool::findAnswer(parser, name.group, name.key,
                             options.isList ? Tool::Wanted::AllValues : Tool::Wanted::CurrentValue);
        if (!text) {
            return ExitUnavailable;
        }
        std::cout << *text << (options.endsInNul ? '\0' : '\n');
        return ExitSuccess;
    } catch (const std::exception& error) {
        logCritical(parserLogger) << "Cannot get '" << name.group << "/" << name.key
                                  << "': " << error.what();
        return ExitFailure;
    }
}

ExitStatus get(const Options& options, const Context& context) {
    setUpLogging(context);
    const std::vector<std::string> directories = directoriesOf(context);
    Tool::User user{context.userId, "", "", context.instance};
    if (!Tool::settleUser(user, directories)) {
        return ExitFailure;
    }
    ConfigParser parser(user.id);
    if (!Tool::loadForUser(parser, user, directories)) {
        return ExitFailure;
    }
    ExitStatus status = ExitSuccess;
    for (const std::string& key : options.keys) {
        status = worse(status, printAnswer(parser, parseKeyName(key), options));
    }
    std::cout.flush();
    return std::cout.good() ? status : ExitFailure;
}

}  // namespace

Run addGet(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "KEY", options->keys, "GROUP/KEY, or KEY of the group Config")->required();
    app.add_flag("--list", options->isList, "Print all values of a key, joined by ';'");
    app.add_flag("-z", options->endsInNul, "End each answer with NUL instead of a line feed");
    return [options](const Context& context) { return get(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
