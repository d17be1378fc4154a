// tarnwick-config show: prints the effective configuration, with origins.

#include <iostream>
#include <memory>

#include "config/arguments.h"
#include "config/command.h"
#include "config/display.h"
#include "config/effective.h"
#include "config/loading.h"
#include "config/output.h"
#include "config/show_forms.h"
#include "config/stored_values.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> names;
    const ShowForm* form = &showForms().front();
    LineOptions lines;
    bool isRaw = false;
};

void checkOptions(const Options& options) {
    const bool hasLineOption = options.lines.hasOrigin || options.lines.endsInNul || options.isRaw;
    if (hasLineOption && options.form != &showForms().front()) {
        refuseArguments("--origin, --raw and -z go with --format=text alone");
    }
}

// Returns whether all names have selected nothing.
bool reportMissing(const Selection& selection, const Options& options) {
    const std::vector<std::string> missing = selection.missing();
    for (const std::string& name : missing) {
        std::cerr << "tarnwick-config: " << escaped(name) << ": it has no value\n";
    }
    return !missing.empty() && missing.size() == options.names.size();
}

ExitStatus show(const Options& options, const Context& context) {
    setUpLogging(context);
    StoredValues stored;
    const std::unique_ptr<ConfigParser> parser = load(context, stored.listener());
    if (!parser) {
        return ExitFailure;
    }
    Selection selection(options.names);
    const Texts texts = options.isRaw ? Texts::AsWritten : Texts::Expanded;
    const ExitStatus status =
        options.form->show(Effective(*parser, stored, selection, texts), options.lines);
    if (!finishOutput()) {
        return ExitUnavailable;
    }
    return reportMissing(selection, options) ? ExitUnavailable : status;
}

}  // namespace

Run addShow(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "GROUP[/KEY]", options->names, "A group, or a key (default: all)");
    addChoice<ShowForm>(app, "--format", "FORM", "text, ini or json", showForms(),
                        [options](const ShowForm& row) { options->form = &row; });
    addFlag(app, "--origin", options->lines.hasOrigin, "Put file and line in front of each value");
    addFlag(app, "--raw", options->isRaw, "Show values as they were written");
    addFlag(app, "-z", options->lines.endsInNul, "End each value with NUL and print raw bytes");
    checkArguments(app, [options] { checkOptions(*options); });
    return [options](const Context& context) { return show(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
