// tarnwick-config expand: shows what a text with templates comes to.

#include <iostream>
#include <memory>
#include <stdexcept>

#include "config/arguments.h"
#include "config/command.h"
#include "config/display.h"
#include "config/explain/heard_request.h"
#include "config/explain/last_words.h"
#include "config/explain/reasons.h"
#include "config/explain/reference_trace.h"
#include "config/loading.h"
#include "config/output.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

/// What expanding the text told.
struct Outcome {
    ConfigValue value;
    std::vector<TemplateRecord> templates;
    std::string problem;  // which template failed, and why
};

std::string problemOf(const LoadEvent& event) {
    const Place& place = event.fault->place;
    const bool hasColumns = place.firstColumn > 0 && place.lastColumn <= event.piece.size();
    const std::string_view at =
        hasColumns
            ? event.piece.substr(place.firstColumn - 1, place.lastColumn - place.firstColumn + 1)
            : event.piece;
    return '\'' + shortened(at) + "': " + reasonOf(event);
}

Outcome expandTemplates(const ConfigParser& parser, const std::string& text) {
    Outcome outcome;
    const auto listener = [&](const LoadEvent& event) {
        if (event.kind == LoadEvent::Kind::Stored) {
            outcome.templates = recordsOf(event.templates);
        } else if (event.kind == LoadEvent::Kind::Fault) {
            outcome.problem = problemOf(event);
        }
    };
    try {
        (void)parser.parseTemplates(text, outcome.value, listener);
    } catch (const std::length_error&) {
        // The listener was told.
    }
    return outcome;
}

ExitStatus fail(const std::string& problem) {
    std::cerr << "tarnwick-config: " << escaped(problem) << '\n';
    return ExitFailure;
}

ExitStatus print(const std::string& text) {
    std::cout << escaped(text) << '\n';
    return finishOutput() ? ExitSuccess : ExitFailure;
}

// The reference of the text itself whose chain fails, if there is one.
std::string failingReference(const TracedValue& traced) {
    for (const Trace& part : traced.parts) {
        if (!part.text) {
            return "'${config:" + part.name + "}': ";
        }
    }
    return {};
}

ExitStatus expandIn(HeardRequest& request, const std::string& text) {
    const Outcome outcome = expandTemplates(request.parser(), text);
    if (!outcome.problem.empty()) {
        return fail(outcome.problem);
    }
    const TracedValue traced =
        ReferenceTracer(request.parser(), request.history().words(), request.story())
            .trace(outcome.value, outcome.templates, text);
    return traced.text ? print(*traced.text) : fail(failingReference(traced) + failureOf(traced));
}

ExitStatus failToLoad(const HeardRequest& request) {
    for (const LoadFailure& failure : request.failures()) {
        (void)fail(placeText(failure) + ": " + failure.reason);
    }
    return request.failures().empty() ? fail(request.problem()) : ExitFailure;
}

ExitStatus expand(const std::string& text, const Context& context) {
    setUpLogging(context);
    HeardRequest request(context, {});
    try {
        return request.run() ? expandIn(request, text) : failToLoad(request);
    } catch (const std::exception& error) {
        return request.failures().empty() ? fail(error.what()) : failToLoad(request);
    }
}

}  // namespace

Run addExpand(CLI::App& app) {
    const auto texts = std::make_shared<std::vector<std::string>>();
    addOperands(app, "TEXT", *texts, "A text with templates; a ';' does not end it", Count::One);
    return [texts](const Context& context) { return expand(texts->front(), context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
