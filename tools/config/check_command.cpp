// tarnwick-config check: finds every fault in files, running and reading nothing else.

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <deque>
#include <iostream>
#include <memory>
#include <unordered_set>

#include "config/arguments.h"
#include "config/check/file_checker.h"
#include "config/check/report.h"
#include "config/command.h"
#include "config/configuration_paths.h"
#include "config/display.h"
#include "config/output.h"
#include "config_loader.h"
#include "support/split_string.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

struct Options {
    std::vector<std::string> paths;
    const ReportFormat* format = &reportFormats().front();
    std::unordered_set<RuleId> ignored;
    std::vector<std::string> known;
    bool isStrict = false;
    bool listsIds = false;
};

/// One run: reads all paths as one configuration.
class Check {
public:
    Check(const Options& options, const Context& context)
        : options_(options),
          report_(options.format->make(context.hasColor())),
          paths_(configurationPaths(context, options.paths)) {
        for (const std::string& name : options.known) {
            names_.add(name);
        }
    }

    [[nodiscard]] ExitStatus run() {
        for (const ConfigurationPath& path : paths_) {
            checkPath(path);
        }
        if (firstDirectory_ != nullptr && !hasFile_) {
            sink_(makeFault(RuleId::NoConfiguration, {*firstDirectory_}));
        }
        graph_.judge(hasAllFiles(), names_, sink_);
        report_->finish(summary_);
        (void)flush();
        return status();
    }

private:
    void checkPath(const ConfigurationPath& path) {
        switch (path.kind) {
            case PathKind::Directory:
                checkDirectory(path.path);
                break;
            case PathKind::File:
                hasOnlyDirectories_ = false;
                checkFileByName(path.path);
                break;
            case PathKind::StandardInput:
                hasOnlyDirectories_ = false;
                hasFile_ = true;
                if (!read(path.path, dup(STDIN_FILENO))) {
                    complain(path.path, "cannot be read");
                }
                break;
            case PathKind::Unavailable:
                complain(path.path, path.problem);
                break;
        }
    }

    void checkFileByName(const std::string& path) {
        const OpenedFile file = openRegularFile(path);
        if (file.descriptor < 0) {
            complain(path, file.problem);
            return;
        }
        hasFile_ = true;
        checkMode(path, file.mode);
        if (!read(path, file.descriptor)) {
            complain(path, "cannot be read");
        }
    }

    // --- Directories ---

    void checkDirectory(const std::string& path) {
        if (firstDirectory_ == nullptr) {
            firstDirectory_ = &path;
        }
        const std::vector<std::string>& files = lists_.emplace_back(listConfigFiles(path));
        const bool isPattern = checkPattern(path) && !files.empty();
        if (!isPattern) {
            checkDirectoryItself(path);
        }
        const std::string* before = nullptr;
        for (const std::string& file : files) {
            if (isStopped_) {
                return;
            }
            if (before != nullptr && directoryOf(*before) == directoryOf(file)) {
                checkOrder(*before, file);
            } else if (isPattern) {
                checkDirectoryItself(std::string(directoryOf(file)));
            }
            checkFileOfDirectory(file);
            before = &file;
        }
    }

    // Returns whether the path is taken for a pattern, which any number of directories may fit.
    bool checkPattern(const std::string& path) {
        const std::size_t mark = path.find_first_of("*?[\\");
        if (mark == path.npos) {
            return false;
        }
        sink_(makeFault(RuleId::PathPattern, {path}, {}, path.substr(mark, 1)));
        return true;
    }

    void checkDirectoryItself(const std::string& path) {
        struct stat status = {};
        if (stat(path.c_str(), &status) == 0) {
            checkMode(path, status.st_mode);
        }
        std::string problem;
        for (const IgnoredFile& file : findIgnoredFiles(path, problem)) {
            sink_(makeFault(RuleId::FileNotRead, {file.path}, {}, file.reason));
        }
        if (!problem.empty()) {
            complain(path, problem);
        }
    }

    void checkFileOfDirectory(const std::string& path) {
        hasFile_ = true;
        const OpenedFile file = openRegularFile(path);
        if (file.descriptor < 0) {
            ++summary_.files;
            reportUnreadable(path, file.problem);
            return;
        }
        checkMode(path, file.mode);
        if (!read(path, file.descriptor)) {
            reportUnreadable(path, "reading failed");
        }
    }

    void reportUnreadable(const std::string& path, const std::string& problem) {
        isIncomplete_ = true;
        sink_(makeFault(RuleId::Unreadable, {path}, {}, problem));
    }

    void checkMode(const std::string& path, mode_t mode) {
        if ((mode & S_IWOTH) != 0) {
            sink_(makeFault(RuleId::WritableByOthers, {path}));
        }
    }

    void checkOrder(const std::string& before, const std::string& path) {
        const std::string_view earlier = numberOf(before);
        const std::string_view later = numberOf(path);
        const bool isLess =
            later.size() != earlier.size() ? later.size() < earlier.size() : later < earlier;
        if (hasNumber(before) && hasNumber(path) && isLess) {
            sink_(makeFault(RuleId::FileOrder, {path}, {}, shortened(nameIn(before))));
        }
    }

    // Without the slash behind what is a directory by the name of a file.
    static std::string_view directoryOf(std::string_view path) {
        return path.substr(0, path.rfind('/', path.size() - 2));
    }

    static std::string_view nameIn(std::string_view path) {
        return path.substr(path.rfind('/') + 1);
    }

    static bool isDigit(char character) { return character >= '0' && character <= '9'; }

    static bool hasNumber(std::string_view path) {
        const std::string_view name = nameIn(path);
        return !name.empty() && isDigit(name.front());
    }

    // The digits at the start of the name, without zeros in front.
    static std::string_view numberOf(std::string_view path) {
        const std::string_view name = nameIn(path);
        const auto first = std::find_if(name.begin(), name.end(), [](char c) { return c != '0'; });
        return {first, std::find_if_not(first, name.end(), isDigit)};
    }

    // --- Files ---

    // Takes the descriptor. Returns whether the file could be read to its end.
    [[nodiscard]] bool read(const std::string& path, int descriptor) {
        ++summary_.files;
        LineReader reader(descriptor);
        return checker_.check(path, reader, [this] { return flush(); });
    }

    // --- Outcome ---

    void add(const Fault& fault) {
        if (options_.ignored.contains(fault.rule) || isStopped_) {
            return;
        }
        ++(fault.severity == Severity::Error ? summary_.errors : summary_.warnings);
        errno = 0;
        report_->add(fault);
        watchOutput();
    }

    // Shows what was found so far. Returns whether anybody can still see it.
    [[nodiscard]] bool flush() {
        errno = 0;
        std::cout.flush();
        watchOutput();
        return !isStopped_;
    }

    void watchOutput() {
        if (std::cout.good() || isStopped_) {
            return;
        }
        isStopped_ = true;
        isUnavailable_ = true;
        complainOfOutput();
    }

    void complain(const std::string& path, const std::string& problem) {
        isUnavailable_ = true;
        isIncomplete_ = true;
        (void)flush();  // so that both streams stay in order on a terminal
        std::cerr << "tarnwick-config: " << escaped(path) << ": " << problem << '\n';
    }

    // Whether a key that no file sets is set nowhere.
    [[nodiscard]] bool hasAllFiles() const {
        return hasOnlyDirectories_ && !isIncomplete_ && !checker_.hasRejectedGroup();
    }

    [[nodiscard]] ExitStatus status() const {
        if (isUnavailable_) {
            return ExitUnavailable;
        }
        const bool fails = summary_.errors > 0 || (options_.isStrict && summary_.warnings > 0);
        return fails ? ExitFailure : ExitSuccess;
    }

    const Options& options_;
    const std::unique_ptr<Report> report_;
    const std::vector<ConfigurationPath> paths_;
    std::deque<std::vector<std::string>> lists_;  // the files of directories: lines point to them
    Summary summary_;
    const FaultSink sink_ = [this](const Fault& fault) { add(fault); };
    KnownNames names_;
    ReferenceGraph graph_;
    FileChecker checker_{names_, graph_, sink_};
    const std::string* firstDirectory_ = nullptr;
    bool hasFile_ = false;
    bool hasOnlyDirectories_ = true;
    bool isIncomplete_ = false;   // something that may set keys was not read
    bool isUnavailable_ = false;  // a path, or the output
    bool isStopped_ = false;      // the output takes nothing more
};

ExitStatus listIds() {
    for (const Rule& rule : rules()) {
        std::cout << rule.name << '\t' << severitiesOf(rule) << '\t' << rule.manual << '\n';
    }
    return finishOutput() ? ExitSuccess : ExitUnavailable;
}

// --- Options ---

void ignore(Options& options, const std::string& list) {
    for (const std::string& name : splitString(list, ',', kNoSplitLimit, SkipEmpty)) {
        const Rule* rule = findRule(name);
        if (rule == nullptr) {
            std::vector<std::string_view> names;
            for (const Rule& row : rules()) {
                names.push_back(row.name);
            }
            refuseArguments("--ignore: there is no id '" + name + "'" + suggestion(name, names));
        }
        options.ignored.insert(rule->id);
    }
}

// The group may be empty before a slash: keys above any header have no group.
void know(Options& options, const std::string& name) {
    if (name.empty() || name.ends_with('/')) {
        refuseArguments("--known: '" + name + "' is not GROUP or GROUP/KEY");
    }
    options.known.push_back(name);
}

}  // namespace

Run addCheck(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOperands(app, "PATH", options->paths, "A directory, a file, or - for the standard input");
    addChoice<ReportFormat>(app, "--format", "FORM", "text, json or gcc", reportFormats(),
                            [options](const ReportFormat& row) { options->format = &row; });
    addOption(app, "--ignore", "ID[,ID]", "Leave these kinds of fault out",
              [options](const std::string& text) { ignore(*options, text); });
    addOption(app, "--known", "GROUP[/KEY]", "A name that a reader of your own knows",
              [options](const std::string& text) { know(*options, text); });
    addFlag(app, "--strict", options->isStrict, "Exit with status 1 for warnings too");
    addFlag(app, "--list-ids", options->listsIds, "List the kinds of fault and exit");
    return [options](const Context& context) {
        return options->listsIds ? listIds() : Check(*options, context).run();
    };
}

}  // namespace Tarnwick::Parser::ConfigTool
