#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "templates.h"

namespace Fuzz {

using PlainKey = std::pair<std::string, std::string>;  // group, key

/// A parser's store and its registry; modes are 0 for replacing, 1 for appending, others for
/// neither.
struct PlainStore {
    std::map<PlainKey, std::vector<PlainValue>> values;
    std::map<PlainKey, int> registry;
};

/// The warning about a key that is not registered, when there is a registry.
std::string complaintAboutKey(const PlainStore& store, const PlainKey& key);

/// How loading files ended.
struct PlainLoading {
    bool failed = false;
    std::string refused;  // not empty: where a refused value stands
    std::string log;
};

/// Loads one file into the store.
PlainLoading loadPlainly(PlainStore& store, const std::string& path, const std::string& content);

enum class PlainEnd { Resolved, TooManyVisits, OutOfRange };

/// What resolving a value gives.
struct PlainResolution {
    PlainEnd end = PlainEnd::Resolved;
    std::string text;
    int visits = 0;
    std::string log;
};

PlainResolution resolvePlainly(const PlainStore& store, const PlainValue& value);

}  // namespace Fuzz
