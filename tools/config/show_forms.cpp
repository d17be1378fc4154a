#include "config/show_forms.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <unordered_map>

#include "config/display.h"
#include "config/ini_text.h"
#include "config/json.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

void report(const StoredKey& key, const char* between, std::string_view problem) {
    std::cout.flush();  // so that both streams stay in order on a terminal
    std::cerr << "tarnwick-config: " << escaped(key.group) << '/' << escaped(key.key) << between
              << problem << '\n';
}

// --- One value a line ---

// Most texts need no escapes.
void appendEscaped(std::string& line, std::string_view text) {
    const auto isPlain = [](char each) { return each >= ' ' && each < '\x7f'; };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        line += text;
    } else {
        line += escaped(text);
    }
}

void appendBytes(std::string& line, std::string_view text) {
    line += text;
}

void printLines(const ShownKey& key, const LineOptions& options) {
    const auto append = options.endsInNul ? appendBytes : appendEscaped;
    std::string lines;
    for (std::size_t index = 0; index < key.texts.size(); ++index) {
        if (options.hasOrigin) {
            const ValueOrigin& origin = key.stored.origins[index];
            append(lines, origin.file);
            lines += ':' + std::to_string(origin.line) + '\t';
        }
        append(lines, key.stored.group);
        lines += '/';
        append(lines, key.stored.key);
        lines += '=';
        append(lines, key.texts[index]);
        lines += options.endsInNul ? '\0' : '\n';
    }
    std::cout << lines;
}

ExitStatus showLines(const Effective& effective, const LineOptions& options) {
    ExitStatus status = ExitSuccess;
    effective.visit(
        [&](const ShownKey& key) {
            printLines(key, options);
            return std::cout.good();
        },
        [&](const StoredKey& key, std::string_view problem) {
            report(key, ": ", problem);
            status = ExitFailure;
        });
    return status;
}

// --- One file ---

/// The lines of a file, by groups.
class IniFile {
public:
    void add(const ShownKey& key) {
        const auto [entry, isNew] = indexes_.try_emplace(key.stored.group, texts_.size());
        if (isNew) {
            texts_.push_back(key.stored.group.empty() ? "" : '[' + key.stored.group + "]\n");
        }
        std::string& text = texts_[entry->second];
        for (const std::string& value : key.texts) {
            text += key.stored.key + '=' + iniText(value) + '\n';
        }
    }

    // Keys of the empty group stand before any header.
    void print() const {
        const auto unnamed = indexes_.find("");
        if (unnamed != indexes_.end()) {
            std::cout << texts_[unnamed->second];
        }
        for (std::size_t index = 0; index < texts_.size(); ++index) {
            if (unnamed == indexes_.end() || index != unnamed->second) {
                std::cout << texts_[index];
            }
        }
    }

private:
    std::unordered_map<std::string, std::size_t> indexes_;
    std::vector<std::string> texts_;  // in the order of the groups
};

// Nothing is printed of what would not load back whole.
ExitStatus showIni(const Effective& effective, const LineOptions&) {
    IniFile file;
    ExitStatus status = ExitSuccess;
    const auto refuse = [&](const StoredKey& key, std::string_view problem) {
        report(key, " cannot be written: ", problem);
        status = ExitFailure;
    };
    effective.visit(
        [&](const ShownKey& key) {
            for (const std::string& text : key.texts) {
                const std::string_view problem = iniProblem(text);
                if (!problem.empty()) {
                    refuse(key.stored, problem);
                    return true;
                }
            }
            file.add(key);
            return true;
        },
        refuse);
    if (status == ExitSuccess) {
        file.print();
    }
    return status;
}

// --- JSON ---

Json jsonOf(const ShownKey& key) {
    Json object;
    setText(object, "group", key.stored.group);
    setText(object, "key", key.stored.key);
    setText(object, "value", key.texts.back());
    Json& values = object["values"] = Json::array();
    for (std::size_t index = 0; index < key.texts.size(); ++index) {
        Json& value = values.emplace_back();
        setText(value, "value", key.texts[index]);
        setText(value, "raw", key.stored.origins[index].raw);
        setText(value, "file", key.stored.origins[index].file);
        value["line"] = key.stored.origins[index].line;
    }
    return object;
}

ExitStatus showJson(const Effective& effective, const LineOptions&) {
    ExitStatus status = ExitSuccess;
    bool isFirst = true;
    std::cout << "{\"keys\":[";
    effective.visit(
        [&](const ShownKey& key) {
            std::cout << (isFirst ? "\n" : ",\n") << printed(jsonOf(key));
            isFirst = false;
            return std::cout.good();
        },
        [&](const StoredKey& key, std::string_view problem) {
            report(key, ": ", problem);
            status = ExitFailure;
        });
    std::cout << "\n]}\n";
    return status;
}

}  // namespace

std::span<const ShowForm> showForms() {
    static constexpr std::array kForms{
        ShowForm{"text", showLines},
        ShowForm{"ini", showIni},
        ShowForm{"json", showJson},
    };
    return kForms;
}

}  // namespace Tarnwick::Parser::ConfigTool
