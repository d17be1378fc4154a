#pragma once

#include <string>
#include <vector>

#include "lines.h"

namespace Fuzz {

/// What one line of a configuration file amounts to: an entry, or a message.
struct PlainEvent {
    std::string group;
    std::string key;
    std::string value;
    std::string message;  // not empty: the line is bad
    unsigned line = 0;

    [[nodiscard]] bool isEntry() const { return message.empty(); }
};

/// The entries and the faults of a configuration file, in the order of its lines.
inline std::vector<PlainEvent> readPlainly(const std::string& path, const std::string& content) {
    const char* names = " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";
    const auto isName = [&](const std::string& text) {
        return text.find_first_not_of(names) == text.npos;
    };
    std::vector<PlainEvent> events;
    std::string group;
    unsigned number = 0;
    for (const std::string& line : linesOf(content)) {
        ++number;
        const auto complain = [&](const std::string& problem) {
            events.push_back({"", "", "",
                              "ERROR: " + problem + path + " (" + static_cast<char>(number) +
                                  "): '" + line + "'\n",
                              number});
        };
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == '#' || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            const std::string name = line.substr(1, line.size() - 2);
            if (line.back() != ']') {
                complain("Could not parse line as group in ");
            } else if (!isName(name)) {
                complain("Group name contains invalid characters in ");
            } else {
                group = name;
            }
        } else if (line[0] == ' ' || !isName(line.substr(0, 1))) {
            complain("Unexpected line in ");
        } else if (equals == line.npos) {
            complain("Could not parse line as key in ");
        } else if (!isName(line.substr(0, equals))) {
            complain("Key contains invalid characters in ");
        } else {
            events.push_back({group, line.substr(0, equals), line.substr(equals + 1), "", number});
        }
    }
    return events;
}

}  // namespace Fuzz
