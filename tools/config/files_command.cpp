// tarnwick-config files: lists the files that are read, in order, and marks those that look meant.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "config/arguments.h"
#include "config/command.h"
#include "config/configuration_paths.h"
#include "config/display.h"
#include "config/json.h"
#include "config_loader.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> paths;
    bool endsInNul = false;
    bool isJson = false;
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

    void finish() {
        if (options_.isJson) {
            std::cout << (hasAny_ ? "\n]}\n" : "{\"files\":[]}\n");
        }
        std::cout.flush();
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

ExitStatus list(const Options& options, const Context& context) {
    ExitStatus status = ExitSuccess;
    FileList files(options);
    for (const ConfigurationPath& path : configurationPaths(context, options.paths)) {
        std::string problem = path.problem;
        if (path.kind == PathKind::Directory) {
            for (const Listed& file : filesOf(path.path, problem)) {
                files.add(file);
            }
        } else if (path.kind != PathKind::Unavailable) {
            files.add({path.path, {}});
        }
        if (!problem.empty()) {
            std::cerr << "tarnwick-config: " << escaped(path.path) << ": " << problem << '\n';
            status = ExitUnavailable;
        }
    }
    files.finish();
    return std::cout.good() ? status : ExitUnavailable;
}

void setFormat(Options& options, const std::string& name) {
    if (name != "text" && name != "json") {
        throw CLI::ValidationError("--format: '" + name + "' is not text or json");
    }
    options.isJson = name == "json";
}

}  // namespace

Run addFiles(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "PATH", options->paths, "A directory or a file");
    addOption(app, "--format", "FORM", "text or json",
              [options](const std::string& text) { setFormat(*options, text); });
    app.add_flag("-z", options->endsInNul, "Only files that are read, each ended by NUL");
    return [options](const Context& context) { return list(*options, context); };
}

}  // namespace Tarnwick::Parser::ConfigTool
