#include "config/show_forms.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <unordered_map>

#include "active_user.h"
#include "config/display.h"
#include "config/ini_text.h"
#include "config/json.h"
#include "template_text.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

void report(const std::string& text) {
    std::cout.flush();  // so that both streams stay in order on a terminal
    std::cerr << "tarnwick-config: " << text << '\n';
}

std::string nameOf(const StoredKey& key) {
    return escaped(key.group) + '/' + escaped(key.key);
}

void reportFailed(const StoredKey& key, const ShownValue& value) {
    report(escaped(value.origin->file) + ':' + std::to_string(value.origin->line) + ": " +
           nameOf(key) + ": " + std::string(value.problem));
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

void printLine(const StoredKey& key, const ShownValue& value, const LineOptions& options) {
    const auto append = options.endsInNul ? appendBytes : appendEscaped;
    std::string line;
    if (options.hasOrigin) {
        append(line, value.origin->file);
        line += ':' + std::to_string(value.origin->line) + '\t';
    }
    append(line, key.group);
    line += '/';
    append(line, key.key);
    line += '=';
    append(line, value.text);
    line += options.endsInNul ? '\0' : '\n';
    std::cout << line;
}

ExitStatus showLines(const Effective& effective, const LineOptions& options) {
    ExitStatus status = ExitSuccess;
    effective.visit([&](const ShownKey& key) {
        for (const ShownValue& value : key.values) {
            if (value.hasFailed()) {
                reportFailed(key.stored, value);
                status = ExitFailure;
            } else {
                printLine(key.stored, value, options);
            }
        }
        return std::cout.good();
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
        for (const ShownValue& value : key.values) {
            text += key.stored.key + '=' + iniText(value.text) + '\n';
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

// The keys that tell whose configuration it is.
bool isReadFirst(const StoredKey& key) {
    const auto keys = Tool::generatedUserKeys();
    return key.group == kGroupGeneratedConfig &&
           std::any_of(keys.begin(), keys.end(),
                       [&](const std::string* each) { return *each == key.key; });
}

bool holdsTemplate(const ShownValue& value) {
    TemplateCursor cursor(value.origin->raw);
    TemplateToken token;
    while (cursor.next(token)) {
        if (token.kind != TemplateToken::Kind::Literal) {
            return true;
        }
    }
    return false;
}

// Returns why no lines load as these values, or an empty text.
std::string_view problemOf(const ShownKey& key) {
    if (isReadFirst(key.stored) &&
        std::any_of(key.values.begin(), key.values.end(), holdsTemplate)) {
        // A text in its place would count there where the template did not.
        return "it is read before variables and references are known";
    }
    for (const ShownValue& value : key.values) {
        const std::string_view problem = value.hasFailed() ? value.problem : iniProblem(value.text);
        if (!problem.empty()) {
            return problem;
        }
    }
    return {};
}

// Nothing is printed of what would not load back whole.
ExitStatus showIni(const Effective& effective, const LineOptions&) {
    IniFile file;
    ExitStatus status = ExitSuccess;
    effective.visit([&](const ShownKey& key) {
        const std::string_view problem = problemOf(key);
        if (problem.empty()) {
            file.add(key);
        } else {
            report(nameOf(key.stored) + " cannot be written: " + std::string(problem));
            status = ExitFailure;
        }
        return true;
    });
    if (status == ExitSuccess) {
        file.print();
    }
    return status;
}

// --- JSON ---

/// Prints keys as rows of a list. Members go straight to the stream: a key can have as many values
/// as memory holds.
class JsonRows {
public:
    // A key of which no value is left has no row.
    void print(const ShownKey& key) {
        const auto isGood = [](const ShownValue& value) { return !value.hasFailed(); };
        if (std::none_of(key.values.begin(), key.values.end(), isGood)) {
            return;
        }
        line_ = hasRow_ ? ",\n{" : "\n{";
        hasRow_ = true;
        appendText(line_, "group", key.stored.group);
        line_ += ',';
        appendText(line_, "key", key.stored.key);
        line_ += ',';
        appendCurrent(key.values.back());
        line_ += ",\"values\":[";
        const char* between = "{";
        for (const ShownValue& value : key.values) {
            if (isGood(value)) {
                line_ += between;
                printValue(value);
                between = ",{";
            }
        }
        std::cout << "]}";
    }

private:
    void appendCurrent(const ShownValue& value) {
        if (value.hasFailed()) {
            line_ += "\"value\":null";
        } else {
            appendText(line_, "value", value.text);
        }
    }

    void printValue(const ShownValue& value) {
        appendText(line_, "value", value.text);
        line_ += ',';
        appendText(line_, "raw", value.origin->raw);
        line_ += ',';
        appendText(line_, "file", value.origin->file);
        line_ += ",\"line\":";
        line_ += std::to_string(value.origin->line);
        line_ += '}';
        std::cout << line_;
        line_.clear();
    }

    std::string line_;  // what has not been printed yet
    bool hasRow_ = false;
};

ExitStatus showJson(const Effective& effective, const LineOptions&) {
    ExitStatus status = ExitSuccess;
    JsonRows rows;
    std::cout << "{\"keys\":[";
    effective.visit([&](const ShownKey& key) {
        for (const ShownValue& value : key.values) {
            if (value.hasFailed()) {
                reportFailed(key.stored, value);
                status = ExitFailure;
            }
        }
        rows.print(key);
        return std::cout.good();
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
