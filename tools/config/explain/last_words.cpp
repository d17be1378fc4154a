#include "config/explain/last_words.h"

#include "config/explain/reasons.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Kind = LoadEvent::Kind;

std::unique_ptr<LastWord::Details> detailsOf(const LoadEvent& event) {
    if (event.kind == Kind::Removed || (event.kind == Kind::Stored && event.templates.empty())) {
        return nullptr;
    }
    return std::make_unique<LastWord::Details>(
        LastWord::Details{std::string(event.piece), recordsOf(event.templates),
                          event.kind == Kind::Dropped ? reasonOf(event) : ""});
}

}  // namespace

std::string placeText(const LineOrigin& origin) {
    return *origin.path + ':' + std::to_string(origin.line);
}

std::vector<TemplateRecord> recordsOf(std::span<const TemplateOutcome> outcomes) {
    std::vector<TemplateRecord> records;
    records.reserve(outcomes.size());
    for (const TemplateOutcome& outcome : outcomes) {
        records.push_back({std::string(outcome.name), outcome.result, outcome.text});
    }
    return records;
}

void LastWords::note(const LoadEvent& event, const LineOrigin& origin) {
    if (event.kind == Kind::File || event.kind == Kind::Fault) {
        return;
    }
    std::string name(event.group);
    name.append(1, '/').append(event.key);
    const auto [row, isNew] = words_.try_emplace(std::move(name));
    LastWord& word = row->second;
    if (event.kind == Kind::Dropped && !isNew && word.kind == LastWord::Kind::Stored) {
        return;  // the value before it stays
    }
    word.kind = event.kind == Kind::Stored    ? LastWord::Kind::Stored
                : event.kind == Kind::Removed ? LastWord::Kind::Removed
                                              : LastWord::Kind::Dropped;
    word.origin = origin;
    word.details = detailsOf(event);
}

const LastWord* LastWords::find(const std::string& group, const std::string& key) const {
    const auto word = words_.find(group + '/' + key);
    return word == words_.end() ? nullptr : &word->second;
}

}  // namespace Tarnwick::Parser::ConfigTool
