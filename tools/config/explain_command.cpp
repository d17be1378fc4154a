// tarnwick-config explain: tells the life of one key, assignment by assignment.

#include <memory>

#include "config/arguments.h"
#include "config/command.h"
#include "config/explain/explainer.h"
#include "config/explain/explanation.h"
#include "config/loading.h"
#include "config/output.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> keys;
    bool isJson = false;
};

ExitStatus explain(const Options& options, const Context& context) {
    setUpLogging(context);
    Explainer explainer(context, parseKeyName(options.keys.front()));
    const Explanation& explanation = explainer.explain();
    if (options.isJson) {
        printJson(explanation);
    } else {
        printText(explanation, context.hasColor());
    }
    return finishOutput() ? explanation.status : ExitFailure;
}

}  // namespace

Run addExplain(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "KEY", options->keys, "GROUP/KEY, or KEY of the group Config", Count::One);
    addTextOrJson(app, options->isJson);
    return [options](const Context& context) { return explain(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
