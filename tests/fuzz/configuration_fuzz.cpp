// Whole configurations: two directories of files are loaded and every key is looked up.
//
// Input: parts that are separated by the byte 0x1e. The first part registers keys, one
// "MODE GROUP/KEY" a line, the mode being a digit. Each other part is a file: "1NAME" or "2NAME"
// for a name in the first or the second directory, a line feed, and the content.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <typeinfo>

#include "config_parser.h"
#include "plain/lines.h"
#include "plain/numbers.h"
#include "plain/split.h"
#include "plain/store.h"
#include "support/captured_streams.h"
#include "support/check.h"
#include "support/scratch_directory.h"

using namespace Tarnwick::Parser;
using Fuzz::PlainKey;
using Fuzz::PlainStore;
using Fuzz::shown;

namespace {

using Directory = std::map<std::string, std::string>;  // content by name

struct Input {
    std::map<PlainKey, int> registry;
    std::array<Directory, 2> directories;
};

const std::array<std::string, 2>& directoryPaths() {
    static const std::array<std::string, 2> paths{Fuzz::scratchDirectory() / "one/",
                                                  Fuzz::scratchDirectory() / "two/"};
    return paths;
}

// --- Input ---

void readRegistration(const std::string& line, Input& input) {
    const std::size_t slash = line.find('/');
    if (line.size() > 3 && line[0] >= '0' && line[0] <= '9' && slash != line.npos) {
        input.registry.try_emplace({line.substr(2, slash - 2), line.substr(slash + 1)},
                                   line[0] - '0');
    }
}

bool isFileName(const std::string& name) {
    return !name.empty() && name.size() <= 255 && name != "." && name != ".." &&
           name.find_first_of(std::string("/\0", 2)) == name.npos;
}

void readFile(const std::string& part, Input& input) {
    const std::size_t end = part.find('\n');
    if (end == part.npos || end < 2 || (part[0] != '1' && part[0] != '2')) {
        return;
    }
    const std::string name = part.substr(1, end - 1);
    if (isFileName(name)) {
        input.directories[part[0] == '1' ? 0 : 1][name] = part.substr(end + 1);
    }
}

Input readInput(const std::string& bytes) {
    Input input;
    const std::vector<std::string> parts = Fuzz::plainSplit(bytes, '\x1e', -1, KeepEmpty);
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (index > 0) {
            readFile(parts[index], input);
            continue;
        }
        for (const std::string& line : Fuzz::linesOf(parts[index])) {
            readRegistration(line, input);
        }
    }
    return input;
}

void writeDirectories(const Input& input) {
    for (const std::string& path : directoryPaths()) {
        std::filesystem::remove_all(path);
        std::filesystem::create_directory(path);
    }
    for (std::size_t index = 0; index < directoryPaths().size(); ++index) {
        for (const auto& [name, content] : input.directories[index]) {
            Fuzz::writeScratchFile(directoryPaths()[index] + name, content);
        }
    }
}

// --- Loading ---

/// How loading is expected to end.
struct Expectation {
    PlainStore store;
    LoadResult result = LoadResult::NoConfiguration;
    std::string refused;
    std::string log;
};

// Returns whether loading goes on after this file.
bool loadFile(Expectation& expected, const std::string& path, const std::string& content) {
    const Fuzz::PlainLoading loading = Fuzz::loadPlainly(expected.store, path, content);
    expected.log += loading.log;
    expected.refused = loading.refused;
    expected.result = loading.failed ? LoadResult::InvalidConfiguration : LoadResult::Ok;
    if (loading.refused.empty() && loading.failed) {
        expected.log += "ERROR: Invalid configuration in " + path + "\n";
    }
    return loading.refused.empty() && !loading.failed;
}

Expectation expectationOf(const Input& input) {
    Expectation expected;
    expected.store.registry = input.registry;
    for (std::size_t index = 0; index < directoryPaths().size(); ++index) {
        for (const auto& [name, content] : input.directories[index]) {  // in byte order
            if (name.ends_with(".conf") && name[0] != '.' &&
                !loadFile(expected, directoryPaths()[index] + name, content)) {
                return expected;
            }
        }
    }
    return expected;
}

void checkLoading(ConfigParser& parser, const Expectation& expected) {
    const Fuzz::CapturedLog log;
    try {
        const LoadResult result =
            parser.loadConfigs({directoryPaths().begin(), directoryPaths().end()});
        Fuzz::checkEqual("", expected.refused, "a value is refused");
        Fuzz::checkEqual(static_cast<int>(expected.result), static_cast<int>(result), "result");
    } catch (const std::length_error& error) {
        Fuzz::check(!expected.refused.empty(), std::string("loading ends in ") + error.what());
        Fuzz::checkEqual(expected.refused, std::string(error.what(), expected.refused.size()),
                         "the place of a value that is refused");
    }
    Fuzz::checkEqual(expected.log, log.text(), "the log of loading");
}

// --- Lookups ---

/// The texts that a key's values resolve to, and what else comes of it.
struct Texts {
    std::vector<std::string> all;
    bool isOutOfRange = false;
    std::string log;
};

Texts resolveAll(const PlainStore& store, const std::vector<Fuzz::PlainValue>& values) {
    Texts texts;
    for (const Fuzz::PlainValue& value : values) {
        const Fuzz::PlainResolution resolution = Fuzz::resolvePlainly(store, value);
        texts.log += resolution.log;
        if (resolution.end == Fuzz::PlainEnd::OutOfRange) {
            texts.isOutOfRange = true;
            return texts;
        }
        if (value.targets.empty() || !resolution.text.empty()) {
            texts.all.push_back(resolution.text);
        }
    }
    return texts;
}

std::string lastText(const PlainStore& store, const Fuzz::PlainValue& value) {
    return Fuzz::resolvePlainly(store, value).text;
}

/// One lookup by its result in words.
template <typename Lookup>
void checkLookup(const Texts& texts, const std::string& expected, const Lookup& lookup,
                 const std::string& what) {
    const Fuzz::CapturedLog log;
    try {
        Fuzz::checkEqual(expected, lookup(), what);
        Fuzz::check(!texts.isOutOfRange, what + " is out of range");
    } catch (const std::out_of_range&) {
        Fuzz::check(texts.isOutOfRange, what + " is not out of range");
    }
    Fuzz::checkEqual(texts.log, log.text(), "the log of looking up " + what);
}

std::string inWords(const std::string& text) {
    return shown(text);
}

template <typename Number>
std::string inWords(Number number) {
    return std::to_string(number);
}

template <typename T>
Fuzz::PlainNumber<T> plainValue(const std::string& text) {
    if constexpr (std::is_same_v<T, bool>) {
        return {text == "true", text == "true" || text == "false"};
    } else if constexpr (std::is_same_v<T, int>) {
        return Fuzz::plainInt(text);
    } else if constexpr (std::is_same_v<T, long long>) {
        return Fuzz::plainLongLong(text);
    } else {
        return Fuzz::plainDouble(text);
    }
}

template <typename T>
std::string listInWords(const std::vector<T>& values) {
    std::string words;
    for (const T& value : values) {
        words += inWords(value) + ' ';
    }
    return words;
}

template <typename T>
void checkTyped(const ConfigParser& parser, const PlainKey& key, const Texts& last,
                const std::string& text, const Texts& all) {
    const std::string& group = key.first;
    const std::string& name = key.second;
    const std::string what = shown(group) + '/' + shown(name) + " as " + typeid(T).name();
    const auto inFull = [](const auto& value, bool ok) {
        return value + (ok ? " and valid" : " and not valid");
    };
    checkLookup(
        last, inFull(inWords(plainValue<T>(text).value), plainValue<T>(text).ok),
        [&] {
            T value{};
            bool ok = false;
            parser.getValue(group, name, value, &ok);
            return inFull(inWords(value), ok);
        },
        what);

    std::vector<T> expected{T(1)};
    bool isEachValid = true;
    for (const std::string& each : all.all) {
        expected.push_back(plainValue<T>(each).value);
        isEachValid = isEachValid && plainValue<T>(each).ok;
    }
    checkLookup(
        all, inFull(listInWords(expected), isEachValid),
        [&] {
            std::vector<T> values{T(1)};
            bool ok = false;
            parser.getValue(group, name, values, &ok);
            return inFull(listInWords(values), ok);
        },
        what + " list");
}

void checkKey(const ConfigParser& parser, const PlainStore& store, const PlainKey& key) {
    const std::string& group = key.first;
    const std::string& name = key.second;
    const std::vector<Fuzz::PlainValue>& values = store.values.at(key);
    const Texts all = resolveAll(store, values);
    const Texts last = resolveAll(store, {values.back()});
    const std::string text = lastText(store, values.back());

    for (int time = 0; time < 2; ++time) {  // Resolving twice gives the same.
        checkLookup(
            last, inWords(text),
            [&] {
                std::string value;
                parser.getValue(group, name, value);
                return inWords(value);
            },
            shown(group) + '/' + shown(name));
        checkLookup(
            all, listInWords(all.all),
            [&] {
                std::vector<std::string> texts;
                parser.getValue(group, name, texts);
                return listInWords(texts);
            },
            shown(group) + '/' + shown(name) + " list");
    }
    checkTyped<bool>(parser, key, last, text, all);
    checkTyped<int>(parser, key, last, text, all);
    checkTyped<long long>(parser, key, last, text, all);
    checkTyped<double>(parser, key, last, text, all);
}

// Keys of the input and a few others, whether they have values or not.
std::vector<PlainKey> keysOf(const PlainStore& store) {
    std::vector<PlainKey> keys{{"", ""}, {"A", ""}, {"", "A"}, {"not", "there"}};
    for (const auto& [key, mode] : store.registry) {
        keys.push_back(key);
    }
    for (const auto& [key, values] : store.values) {
        keys.push_back(key);
        keys.emplace_back(key.second, key.first);
        for (const auto& value : values) {
            keys.insert(keys.end(), value.targets.begin(), value.targets.end());
        }
    }
    return keys;
}

void checkLookups(const ConfigParser& parser, const PlainStore& store) {
    for (const PlainKey& key : keysOf(store)) {
        const Fuzz::CapturedLog log;
        Fuzz::checkEqual(store.values.contains(key), parser.hasKey(key.first, key.second),
                         shown(key.first) + '/' + shown(key.second) + " has a value");
        Fuzz::checkEqual(Fuzz::complaintAboutKey(store, key), log.text(), "the log of looking");
    }
    for (const auto& [key, values] : store.values) {
        Fuzz::check(parser.hasGroup(key.first), "a group with a value is there");
        checkKey(parser, store, key);
    }
}

void checkConfiguration(const Input& input) {
    writeDirectories(input);
    ConfigParser parser(-1);
    for (const auto& [key, mode] : input.registry) {
        parser.addKey(key.first, key.second, static_cast<KeyMode>(mode));
    }
    for (const auto& [name, text] : Fuzz::surroundings().variables) {
        parser.setVariable(name, text);
    }
    Expectation expected = expectationOf(input);
    checkLoading(parser, expected);

    // With a key registered, each look at another one is logged, so that the log tells them all.
    parser.addKey("not", "there", KeyMode::Replace);
    expected.store.registry.try_emplace({"not", "there"}, 0);
    checkLookups(parser, expected.store);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (!Fuzz::namesDevices(bytes)) {
        (void)Fuzz::surroundings();
        checkConfiguration(readInput(bytes));
    }
    return 0;
}
