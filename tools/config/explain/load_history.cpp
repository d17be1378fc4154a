#include "config/explain/load_history.h"

#include <algorithm>
#include <array>

#include "config/explain/reasons.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// What ends a load. FileFailed and ConfigurationInvalid follow and say less.
constexpr std::array kFatal{
    Problem::UnexpectedLine,  Problem::GroupNotClosed, Problem::GroupCharacters,
    Problem::KeyWithoutValue, Problem::KeyCharacters,  Problem::FileUnreadable,
    Problem::ValueBlank,
};

bool isFatal(Problem problem) {
    return std::find(kFatal.begin(), kFatal.end(), problem) != kFatal.end();
}

std::string lineOf(const LoadEvent& event) {
    if (event.fault->problem == Problem::ValueBlank) {
        return std::string(event.key) + '=' + std::string(event.entry);
    }
    return std::string(event.fault->text);
}

bool dependsOnSources(const LoadEvent& event) {
    return !event.fault->path.empty() ||
           std::any_of(event.templates.begin(), event.templates.end(),
                       [](const TemplateOutcome& outcome) {
                           return outcome.result == TemplateResult::Resolved;
                       });
}

}  // namespace

std::string placeText(const LoadFailure& failure) {
    if (failure.origin.line == 0) {
        return *failure.origin.path;
    }
    return placeText(failure.origin) + ':' + std::to_string(failure.column);
}

void LoadHistory::operator()(const LoadEvent& event) {
    if (event.kind == LoadEvent::Kind::File) {
        files_.emplace_back(event.place.file);
        return;
    }
    const LineOrigin origin{files_.empty() ? nullptr : &files_.back(), event.place.line};
    collector_.note(event, origin, files_.size());
    words_.note(event, origin);
    if (event.kind == LoadEvent::Kind::Fault && isFatal(event.fault->problem)) {
        failures_.push_back({origin, event.place.firstColumn, lineOf(event), reasonOf(event),
                             !dependsOnSources(event)});
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
