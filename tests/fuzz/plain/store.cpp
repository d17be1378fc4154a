#include "store.h"

#include "config_file.h"
#include "split.h"

namespace Fuzz {
namespace {

void store(PlainStore& store, const PlainKey& key, int mode, const PlainValue& value) {
    std::vector<PlainValue>& values = store.values[key];
    if (mode == 0) {
        values = {value};
    } else if (mode == 1 && (!value.text.empty() || !value.targets.empty())) {
        values.push_back(value);
    }
    if (values.empty()) {
        store.values.erase(key);
    }
}

// Returns false when the text of a piece is refused.
bool storeEntry(PlainStore& target, const PlainKey& key, const std::string& text,
                std::string& log) {
    if (!target.registry.empty() && !target.registry.contains(key)) {
        return true;
    }
    const int mode = target.registry.empty() ? 1 : target.registry.at(key);
    if (text.empty()) {
        target.values.erase(key);
    }
    for (const std::string& piece : plainSplit(text, ';', -1, Tarnwick::Parser::SkipEmpty)) {
        const PlainExpansion expansion = expandPlainly(piece);
        log += expansion.log;
        if (expansion.outcome == PlainOutcome::Refused) {
            return false;
        }
        if (expansion.outcome == PlainOutcome::Expanded) {
            store(target, key, mode, expansion.value);
        }
    }
    return true;
}

void resolve(const PlainStore& store, const PlainValue& value, PlainResolution& resolution,
             std::string& text) {
    if (resolution.visits == 33) {
        resolution.end = PlainEnd::TooManyVisits;
        return;
    }
    resolution.visits += 1;
    std::vector<std::string> insertions;
    for (const PlainKey& target : value.targets) {
        resolution.log += complaintAboutKey(store, target);
        insertions.emplace_back();
        if (store.values.contains(target)) {
            resolve(store, store.values.at(target).back(), resolution, insertions.back());
        }
        if (resolution.end != PlainEnd::Resolved) {
            return;
        }
    }
    std::string result = value.text;
    std::size_t inserted = 0;
    for (std::size_t index = 0; index < insertions.size(); ++index) {
        if (value.positions[index] + inserted > result.size()) {
            resolution.end = PlainEnd::OutOfRange;
            return;
        }
        result.insert(value.positions[index] + inserted, insertions[index]);
        inserted += insertions[index].size();
    }
    text = result;
}

}  // namespace

std::string complaintAboutKey(const PlainStore& store, const PlainKey& key) {
    return store.registry.empty() || store.registry.contains(key)
               ? ""
               : "WARNING: " + key.first + "/" + key.second + " has not been added to the parser\n";
}

PlainLoading loadPlainly(PlainStore& store, const std::string& path, const std::string& content) {
    PlainLoading loading;
    for (const PlainEvent& event : readPlainly(path, content)) {
        loading.log += event.message;
        if (loading.failed && event.isEntry()) {
            break;  // Nothing is stored behind a bad line; the reader had looked as far as here.
        }
        loading.failed = loading.failed || !event.isEntry();
        if (event.isEntry() &&
            !storeEntry(store, {event.group, event.key}, event.value, loading.log)) {
            loading.refused = path + ":" + std::to_string(event.line) + ": key '" + event.key +
                              "' of group '" + event.group + "'";
            return loading;
        }
    }
    if (loading.failed) {
        loading.log += "ERROR: Failed to load config from '" + path + "'\n";
    }
    return loading;
}

PlainResolution resolvePlainly(const PlainStore& store, const PlainValue& value) {
    PlainResolution resolution;
    resolve(store, value, resolution, resolution.text);
    if (resolution.end == PlainEnd::TooManyVisits) {
        resolution.text.clear();
        resolution.log += "ERROR: Max depth reached, possibly circular reference.\n";
    }
    return resolution;
}

}  // namespace Fuzz
