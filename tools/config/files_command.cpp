// tarnwick-config files: lists the files that are read, in order, and marks those that look meant.

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>

#include "config/arguments.h"
#include "config/command.h"
#include "config/configuration_paths.h"
#include "config/display.h"
#include "config/json.h"
#include "config/output.h"
#include "config_file.h"
#include "config_loader.h"
#include "support/line_reader.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> paths;
    bool endsInNul = false;
    bool isJson = false;
    bool listsNames = false;
};

/// A file of the list.
struct Listed {
    std::string path;
    std::string_view reason;  // why it is not read; empty for one that is
};

/// Prints the list, one file after the other.
class FileList {
public:
    explicit FileList(const Options& options) : options_(options) {}

    void add(const Listed& file) {
        if (options_.isJson) {
            addJson(file);
        } else if (options_.endsInNul) {
            if (file.reason.empty()) {
                std::cout << file.path << '\0';
            }
        } else {
            std::cout << escaped(file.path);
            if (!file.reason.empty()) {
                std::cout << "\tnot read: " << file.reason;
            }
            std::cout << '\n';
        }
    }

    void finish() const {
        if (options_.isJson) {
            std::cout << (hasAny_ ? "\n]}\n" : "{\"files\":[]}\n");
        }
    }

private:
    void addJson(const Listed& file) {
        Json object;
        setText(object, "path", file.path);
        object["isRead"] = file.reason.empty();
        object["reason"] = file.reason.empty() ? Json() : Json(file.reason);
        std::cout << (hasAny_ ? ",\n" : "{\"files\":[\n") << printed(object);
        hasAny_ = true;
    }

    const Options& options_;
    bool hasAny_ = false;
};

/// Prints the keys that files set, each once, whatever they are set to.
class NameList {
public:
    explicit NameList(char end) : end_(end) {}

    // Nobody knows whose the keys are below a header that is rejected. Returns why the file could
    // not be read, or nothing.
    [[nodiscard]] std::string add(const std::string& path) {
        const OpenedFile file =
            path == "-" ? OpenedFile{.descriptor = dup(STDIN_FILENO)} : openRegularFile(path);
        if (file.descriptor < 0) {
            return file.problem;
        }
        LineReader reader(file.descriptor);
        std::optional<std::string> group = "";
        std::string_view text;
        LineReader::Outcome outcome = reader.next(text);
        for (; std::cout.good() && hasLine(outcome); outcome = reader.next(text)) {
            const ConfigLine line = parseConfigLine(text);
            if (line.kind == ConfigLine::Kind::Group) {
                group = line.name;
            } else if (text.starts_with('[')) {
                group.reset();
            } else if (line.kind == ConfigLine::Kind::Entry && group) {
                print(*group + '/' + std::string(line.name));
            }
        }
        return outcome == LineReader::Outcome::Failure ? "cannot be read" : "";
    }

private:
    static bool hasLine(LineReader::Outcome outcome) {
        return outcome == LineReader::Outcome::Line ||
               outcome == LineReader::Outcome::UnterminatedLine;
    }

    void print(const std::string& name) {
        if (printed_.insert(name).second) {
            std::cout << name << end_;
        }
    }

    const char end_;
    std::unordered_set<std::string> printed_;
};

// Files that are read and files that are not, in byte order of their paths.
std::vector<Listed> filesOf(const std::string& directory, std::string& problem) {
    std::vector<Listed> files;
    for (const std::string& path : listConfigFiles(directory)) {
        files.push_back({path, {}});
    }
    std::string unread;
    for (const IgnoredFile& file : findIgnoredFiles(directory, unread)) {
        files.push_back({file.path, file.reason});
    }
    problem = files.empty() ? unread : "";  // a pattern is no directory, and has files
    std::sort(files.begin(), files.end(),
              [](const Listed& left, const Listed& right) { return left.path < right.path; });
    return files;
}

// Shows every file of the paths to `take`, which returns why it could not be read, or nothing, as
// long as the output takes more.
ExitStatus visit(const std::vector<ConfigurationPath>& paths,
                 const std::function<std::string(const Listed& file)>& take) {
    ExitStatus status = ExitSuccess;
    const auto complain = [&status](const std::string& path, const std::string& problem) {
        if (!problem.empty()) {
            std::cerr << "tarnwick-config: " << escaped(path) << ": " << problem << '\n';
            status = ExitUnavailable;
        }
    };
    for (const ConfigurationPath& path : paths) {
        if (!std::cout.good()) {
            break;
        }
        std::string problem = path.problem;
        if (path.kind == PathKind::Directory) {
            for (const Listed& file : filesOf(path.path, problem)) {
                if (std::cout.good()) {
                    complain(file.path, take(file));
                }
            }
        } else if (path.kind != PathKind::Unavailable) {
            problem = take({path.path, {}});
        }
        complain(path.path, problem);
    }
    return status;
}

ExitStatus list(const Options& options, const Context& context) {
    FileList files(options);
    NameList names(options.endsInNul ? '\0' : '\n');
    const auto take = [&](const Listed& file) -> std::string {
        if (options.listsNames) {
            return file.reason.empty() ? names.add(file.path) : "";
        }
        files.add(file);
        return {};
    };
    const ExitStatus status = visit(configurationPaths(context, options.paths), take);
    if (!options.listsNames) {
        files.finish();
    }
    return finishOutput() ? status : ExitUnavailable;
}

}  // namespace

Run addFiles(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "PATH", options->paths, "A directory or a file");
    addTextOrJson(app, options->isJson);
    addFlag(app, "-z", options->endsInNul, "Only files that are read, each ended by NUL");
    addFlag(app, "--names", options->listsNames, "The keys that they set instead, as GROUP/KEY");
    return [options](const Context& context) { return list(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
