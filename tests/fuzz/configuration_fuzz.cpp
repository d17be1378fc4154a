// Whole configurations: two directories of files are loaded and every key is looked up by every
// type. The differential tests compare what comes out with a second implementation; here it is what
// must hold of any configuration.
//
// Input: parts that are separated by the byte 0x1e. The first part registers keys, one
// "MODE GROUP/KEY" a line, the mode being a digit. Each other part is a file: "1NAME" or "2NAME"
// for a name in the first or the second directory, a line feed, and the content.

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "config_parser.h"
#include "plain/lines.h"
#include "plain/split.h"
#include "support/captured_streams.h"
#include "support/check.h"
#include "support/scratch_directory.h"
#include "support/surroundings.h"

using namespace Tarnwick::Parser;
using Fuzz::shown;

namespace {

using Key = std::pair<std::string, std::string>;       // group, key
using Directory = std::map<std::string, std::string>;  // content by name

struct Input {
    std::map<Key, int> registry;
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

// How loading ends, in words, and all that it logs.
std::string loaded(ConfigParser& parser, const Input& input) {
    for (const auto& [key, mode] : input.registry) {
        parser.addKey(key.first, key.second, static_cast<KeyMode>(mode));
    }
    Fuzz::setVariables(parser);
    const Fuzz::CapturedLog log;
    try {
        const LoadResult result =
            parser.loadConfigs({directoryPaths().begin(), directoryPaths().end()});
        Fuzz::check(result != LoadResult::InvalidConfiguration || !log.text().empty(),
                    "a failure is told");
        return std::to_string(static_cast<int>(result)) + log.text();
    } catch (const std::length_error& error) {
        Fuzz::check(std::string_view(error.what()).starts_with(Fuzz::scratchDirectory().native()),
                    "a value that is refused has a place");
        return error.what() + log.text();
    }
}

// --- Lookups ---

std::string inWords(const std::string& text) {
    return shown(text);
}

template <typename Number>
std::string inWords(Number number) {
    return std::to_string(number);
}

// What a lookup of one value and of all values comes to, in words, and all that it logs.
template <typename T>
std::string lookedUp(const ConfigParser& parser, const Key& key) {
    const Fuzz::CapturedLog log;
    std::string words;
    try {
        T value{};
        parser.getValue(key.first, key.second, value);
        words = inWords(value) + " of";
        std::vector<T> values(1);
        parser.getValue(key.first, key.second, values);
        Fuzz::check(values.front() == T{}, "a list is added to");
        for (const auto& each : values) {
            words += ' ' + inWords(T(each));
        }
    } catch (const std::out_of_range& error) {
        words += std::string(" out of range: ") + error.what();
    }
    return words + log.text() + '\n';
}

std::string allLookups(ConfigParser& parser, const Key& key) {
    return lookedUp<std::string>(parser, key) + lookedUp<bool>(parser, key) +
           lookedUp<int>(parser, key) + lookedUp<long long>(parser, key) +
           lookedUp<double>(parser, key);
}

// Returns the lookups of all keys that are there, in words.
std::string checkStore(ConfigParser& parser, const Input& input) {
    std::string words;
    for (const std::string& group : parser.groups()) {
        Fuzz::check(parser.hasGroup(group), "a group that is listed is there");
        for (const std::string& name : parser.keys(group)) {
            const Key key{group, name};
            Fuzz::check(input.registry.empty() || input.registry.contains(key),
                        "keys that are not registered are not taken");
            Fuzz::check(parser.hasKey(group, name), "a key that is listed is there");
            Fuzz::check(!parser.valueList(group, name).empty(), "a key has values");
            const std::string once = allLookups(parser, key);
            Fuzz::checkEqual(once, allLookups(parser, key), "looking up changes nothing");
            words += once;
        }
    }
    return words;
}

void checkConfiguration(const Input& input) {
    writeDirectories(input);
    ConfigParser parser(-1);
    const std::string ending = loaded(parser, input);
    ConfigParser again(-1);
    Fuzz::checkEqual(ending, loaded(again, input), "loading twice gives the same");
    Fuzz::checkEqual(checkStore(parser, input), checkStore(again, input),
                     "two parsers hold the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (!Fuzz::namesDevices(bytes)) {
        checkConfiguration(readInput(bytes));
    }
    return 0;
}
