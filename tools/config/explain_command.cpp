// tarnwick-config explain: tells the life of one key, assignment by assignment.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <iostream>
#include <memory>

#include "config/arguments.h"
#include "config/command.h"
#include "config/explain/explainer.h"
#include "config/explain/explanation.h"
#include "config/loading.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> keys;
    bool isJson = false;
};

void setFormat(Options& options, const std::string& name) {
    if (name != "text" && name != "json") {
        throw CLI::ValidationError("--format: '" + name + "' is not text or json");
    }
    options.isJson = name == "json";
}

// A reader that has seen enough is no news.
ExitStatus statusOf(const Explanation& explanation) {
    if (std::cout.good()) {
        return explanation.status;
    }
    if (errno != EPIPE) {
        std::cerr << "tarnwick-config: cannot write to the standard output\n";
    }
    return ExitFailure;
}

ExitStatus explain(const Options& options, const Context& context) {
    setUpLogging(context);
    Explainer explainer(context, parseKeyName(options.keys.front()));
    const Explanation& explanation = explainer.explain();
    errno = 0;
    if (options.isJson) {
        printJson(explanation);
    } else {
        printText(explanation, context.hasColor());
    }
    return statusOf(explanation);
}

}  // namespace

Run addExplain(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "KEY", options->keys, "GROUP/KEY, or KEY of the group Config")
        ->required()
        ->expected(1);
    addOption(app, "--format", "FORM", "text or json",
              [options](const std::string& text) { setFormat(*options, text); });
    return [options](const Context& context) { return explain(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
