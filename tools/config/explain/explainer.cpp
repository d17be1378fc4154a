#include "config/explain/explainer.h"

#include <algorithm>
#include <exception>

#include "active_user.h"
#include "config/explain/near_names.h"
#include "config/explain/reference_trace.h"
#include "config/explain/unexpanded.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "request.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Logging::logCritical;
using Logging::parserLogger;

bool isGeneratedUserKey(const KeyName& name) {
    const auto keys = Tool::generatedUserKeys();
    return name.group == kGroupGeneratedConfig &&
           std::any_of(keys.begin(), keys.end(),
                       [&](const std::string* key) { return *key == name.key; });
}

}  // namespace

Explainer::Explainer(const Context& context, const KeyName& name)
    : request_(context, name), explanation_{.name = name} {}

const Explanation& Explainer::explain() {
    try {
        if (request_.run()) {
            judge();
            ask();
        } else if (request_.failures().empty()) {
            explanation_.problem = request_.problem();
        }
    } catch (const std::exception& error) {
        logCritical(parserLogger) << "Cannot get '" << explanation_.name.group << "/"
                                  << explanation_.name.key << "': " << error.what();
        if (explanation_.problem.empty() && request_.failures().empty()) {
            explanation_.problem = placeOfGenerated(error.what()) + error.what();
        }
    }
    if (request_.stage() != HeardRequest::Stage::Loaded) {
        endEarly();
    }
    tellUser();
    return explanation_;
}

void Explainer::ask() {
    const auto& [group, key] = explanation_.name;
    explanation_.value =
        Tool::findAnswer(request_.parser(), group, key, Tool::Wanted::CurrentValue);
    explanation_.status = explanation_.value ? ExitSuccess : ExitUnavailable;
    if (explanation_.value) {
        explanation_.problem.clear();
    } else {
        explanation_.near = nearKeys(request_.parser(), explanation_.name);
    }
}

// Of a text that begins with the name of a generated key: the line that sets it.
std::string Explainer::placeOfGenerated(std::string_view text) const {
    for (const std::string* key : Tool::generatedUserKeys()) {
        const LineOrigin origin = request_.generatedLine(*key);
        if (origin.path != nullptr && text.starts_with(kGroupGeneratedConfig + '/' + *key + ':')) {
            return placeText(origin) + ": ";
        }
    }
    return {};
}

// What is left of the key is known now, and what its references come to.
void Explainer::judge() {
    const auto& [group, key] = explanation_.name;
    explanation_.assignments = std::move(request_.history().assignments());
    explanation_.fileCount = request_.history().files().size();
    std::vector<ConfigValue> none;
    judgePieces(request_.parser().hasKey(group, key) ? request_.parser().valueList(group, key)
                                                     : none);
}

void Explainer::judgePieces(std::vector<ConfigValue>& values) {
    ReferenceTracer tracer(request_.parser(), request_.history().words(), request_.story());
    for (Assignment& assignment : explanation_.assignments) {
        for (Piece& piece : assignment.pieces) {
            if (piece.outcome != Outcome::Stored || explanation_.valueCount == values.size()) {
                piece.traces = unaskedTraces(piece.templates, request_.story());
                continue;
            }
            TracedValue traced = tracer.trace(values[explanation_.valueCount++], piece.templates,
                                              assignment.textOf(piece));
            piece.isFilled = traced.text.has_value();
            piece.reason = piece.isFilled ? traced.shift : failureOf(traced);
            piece.traces = std::move(traced.parts);
            if (explanation_.valueCount == values.size()) {
                piece.outcome = Outcome::Current;
                explanation_.problem = piece.isFilled ? "" : piece.reason;
            }
        }
    }
}

void Explainer::endEarly() {
    explanation_.failures = request_.failures();
    if (request_.stage() == HeardRequest::Stage::Loading) {
        takeHeard(request_.history());
        return;
    }
    if (isGeneratedUserKey(explanation_.name)) {
        takeHeard(request_.generated());
        return;
    }
    const LoadFailure* failure =
        explanation_.failures.empty() ? nullptr : &explanation_.failures.back();
    explanation_.assignments =
        readUnexpanded(request_.directories(), explanation_.name, failure, paths_);
    explanation_.fileCount = request_.generated().files().size();
}

// What was heard of the key before the request ended.
void Explainer::takeHeard(LoadHistory& history) {
    explanation_.assignments = std::move(history.assignments());
    explanation_.fileCount = history.files().size();
    for (Assignment& assignment : explanation_.assignments) {
        for (Piece& piece : assignment.pieces) {
            piece.traces = unaskedTraces(piece.templates, request_.story());
        }
    }
}

void Explainer::tellUser() {
    const UserStory& story = request_.story();
    if (request_.stage() != HeardRequest::Stage::SettlingUser) {
        explanation_.userId = story.user.id;
        explanation_.userOrigin = userIdText(story);
    }
    if (story.origins.userId != Tool::UserOrigin::GeneratedConfig) {
        tellIncompleteUser();
        return;
    }
    const std::string prefix = kGroupGeneratedConfig + '/';
    explanation_.userKeys = {
        {prefix + kKeyUserId, std::to_string(story.user.id), request_.generatedLine(kKeyUserId)},
        {prefix + kKeyInstance, story.user.instance, request_.generatedLine(kKeyInstance)},
    };
}

// Who asks for a generated key wants to know whether it counts.
void Explainer::tellIncompleteUser() {
    if (!isGeneratedUserKey(explanation_.name) || !explanation_.failures.empty()) {
        return;
    }
    for (const std::string* key : {&kKeyUserId, &kKeyUser, &kKeyHome, &kKeyBaseUid}) {
        if (request_.generatedLine(*key).path == nullptr) {
            explanation_.userRemark = kGroupGeneratedConfig + '/' + *key +
                                      " has no value before variables are known, so the generated "
                                      "configuration names no user";
            return;
        }
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
