// What a careful programmer writes to answer the request by hand, with the standard library alone.
// Every file is read once, line by line, and every value is kept. Of the templates it knows the
// variables and ${env:}; the others stay in the text as they are written.
// Usage: careful DIRECTORY GROUP KEY
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using Keys = std::unordered_map<std::string, std::vector<std::string>>;
using Texts = std::unordered_map<std::string, std::string>;

struct Configuration {
    Texts variables;
    std::unordered_map<std::string, Keys> groups;
};

Texts templateVariables(uid_t uid) {
    const passwd* user = getpwuid(uid);
    if (user == nullptr) {
        throw std::runtime_error("no user " + std::to_string(uid));
    }
    return {{"HOME", user->pw_dir},
            {"USER", user->pw_name},
            {"USER_ID", std::to_string(uid)},
            {"INSTANCE", "default"},
            {"ODM_DIR", std::filesystem::exists("/odm/lib") ? "/odm" : "/vendor"}};
}

std::vector<std::string> configFiles(const std::string& directory) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".conf") && !name.starts_with('.')) {
            paths.push_back(entry.path().string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r\v\f";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::string> templateText(const std::string& name, const Texts& variables) {
    if (name.starts_with("env:")) {
        const char* text = std::getenv(name.c_str() + 4);
        return text == nullptr ? std::nullopt : std::optional<std::string>(text);
    }
    if (name.find(':') != std::string::npos) {
        return "${" + name + "}";
    }
    const auto found = variables.find(name);
    return found == variables.end() ? std::nullopt : std::optional(found->second);
}

// Nothing when a template has no text, or a '$' begins none.
std::optional<std::string> expanded(std::string_view text, const Texts& variables) {
    std::string out;
    for (;;) {
        const std::size_t dollar = text.find('$');
        out += text.substr(0, dollar);
        if (dollar == std::string_view::npos) {
            return trimmed(out);
        }
        text.remove_prefix(dollar + 1);
        if (text.starts_with('$')) {
            out += '$';
            text.remove_prefix(1);
            continue;
        }
        const std::size_t end = text.find('}');
        if (!text.starts_with('{') || end == std::string_view::npos) {
            return std::nullopt;
        }
        const auto inserted = templateText(std::string(text.substr(1, end - 1)), variables);
        if (!inserted) {
            return std::nullopt;
        }
        out += *inserted;
        text.remove_prefix(end + 1);
    }
}

// An empty value removes the key; any other has one piece or several, with ';' between them.
void storeEntry(Configuration& configuration, const std::string& group, const std::string& key,
                std::string_view value) {
    if (value.empty()) {
        configuration.groups[group].erase(key);
    }
    while (!value.empty()) {
        const std::size_t length = std::min(value.find(';'), value.size());
        auto text = expanded(value.substr(0, length), configuration.variables);
        if (text && !text->empty()) {
            configuration.groups[group][key].push_back(std::move(*text));
        }
        value.remove_prefix(std::min(length + 1, value.size()));
    }
}

void readFile(Configuration& configuration, const std::string& path) {
    std::ifstream file(path);
    std::string group;
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t equals = line.find('=');
        if (line.empty() || line.front() == '#' || line.front() == ';') {
            continue;
        }
        if (line.front() == '[' && line.back() == ']') {
            group = line.substr(1, line.size() - 2);
        } else if (equals != 0 && equals != std::string::npos) {
            storeEntry(configuration, group, line.substr(0, equals),
                       std::string_view(line).substr(equals + 1));
        } else {
            throw std::runtime_error(path + ": unexpected line: " + line);
        }
    }
    if (!file.eof()) {
        throw std::runtime_error("cannot read " + path);
    }
}

bool printLastValue(const Configuration& configuration, const std::string& group,
                    const std::string& key) {
    const auto keys = configuration.groups.find(group);
    if (keys == configuration.groups.end()) {
        return false;
    }
    const auto values = keys->second.find(key);
    if (values == keys->second.end()) {
        return false;
    }
    std::cout << values->second.back() << '\n';
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        if (count != 4) {
            throw std::runtime_error("usage: careful DIRECTORY GROUP KEY");
        }
        Configuration configuration{templateVariables(getuid()), {}};
        for (const std::string& path : configFiles(arguments[1])) {
            readFile(configuration, path);
        }
        return printLastValue(configuration, arguments[2], arguments[3]) ? 0 : 2;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
