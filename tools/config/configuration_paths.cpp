#include "config/configuration_paths.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>

#include "config/command.h"
#include "config_loader.h"
#include "process_setup.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// --- Names that are not read ---

struct NameRow {
    const char* pattern;  // letter case does not count
    const char* reason;   // null: nobody means it
};
// The first row that fits decides.
constexpr std::array kNames{
    NameRow{"*.dpkg-*", nullptr},  // what package managers and editors leave for a while
    NameRow{"*.ucf-*", nullptr},
    NameRow{".*.sw?", nullptr},
    NameRow{".#*", nullptr},
    NameRow{"#*#", nullptr},
    NameRow{"*~", nullptr},
    NameRow{".*.conf", "its name begins with a dot"},
    NameRow{"*.conf", "its name does not end in '.conf', in lower case"},
    NameRow{"*.conf.*", "its name does not end in '.conf'"},
    NameRow{"*.ini", "its name does not end in '.conf'"},
};

// The tool reads these.
bool isRead(const char* name) {
    return fnmatch(kFilePattern.c_str(), name, FNM_PERIOD) == 0;
}

const char* reasonFor(const char* name) {
    if (isRead(name)) {
        return nullptr;
    }
    for (const NameRow& row : kNames) {
        if (fnmatch(row.pattern, name, FNM_CASEFOLD) == 0) {
            return row.reason;
        }
    }
    return nullptr;
}

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using DirectoryHandle = std::unique_ptr<DIR, CloseDirectory>;

bool isDirectory(int directory, const char* name) {
    struct stat status = {};
    return fstatat(directory, name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

// --- Paths ---

ConfigurationPath classify(const std::string& path) {
    if (path.empty()) {
        return classify("/");  // as it is for the tool
    }
    if (path == "-") {
        return Tool::wasInputClosed()
                   ? ConfigurationPath{path, PathKind::Unavailable, "the standard input is closed"}
                   : ConfigurationPath{path, PathKind::StandardInput};
    }
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0) {
        return {path, S_ISDIR(status.st_mode) ? PathKind::Directory : PathKind::File};
    }
    const int cause = errno;
    if (!listConfigFiles(path).empty()) {
        return {path, PathKind::Directory};  // a pattern
    }
    return {path, PathKind::Unavailable, std::strerror(cause)};
}

}  // namespace

std::vector<ConfigurationPath> configurationPaths(const Context& context,
                                                  const std::vector<std::string>& operands) {
    std::vector<ConfigurationPath> paths;
    for (const std::vector<std::string>* texts : {&context.directories, &operands}) {
        std::transform(texts->begin(), texts->end(), std::back_inserter(paths), classify);
    }
    if (paths.empty()) {
        paths.push_back(classify(kDefaultConfigDirectory));
    }
    return paths;
}

std::vector<IgnoredFile> findIgnoredFiles(const std::string& path, std::string& problem) {
    const DirectoryHandle handle(opendir(path.c_str()));
    if (!handle) {
        problem = std::strerror(errno);
        return {};
    }
    const std::string prefix = path.ends_with('/') ? path : path + '/';
    std::vector<IgnoredFile> files;
    while (const dirent* entry = readdir(handle.get())) {
        const char* reason = reasonFor(entry->d_name);
        if (reason != nullptr && !isDirectory(dirfd(handle.get()), entry->d_name)) {
            files.push_back({prefix + entry->d_name, reason});
        }
    }
    std::sort(files.begin(), files.end(), [](const IgnoredFile& left, const IgnoredFile& right) {
        return left.path < right.path;
    });
    return files;
}

OpenedFile openRegularFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return {.problem = std::strerror(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        return {.problem = S_ISDIR(status.st_mode) ? "it is a directory" : "it is no regular file"};
    }
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return {.problem = std::strerror(errno)};
    }
    // What stands there may have changed in between.
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return {.problem = "it is no regular file"};
    }
    return {.descriptor = descriptor, .mode = status.st_mode};
}

}  // namespace Tarnwick::Parser::ConfigTool
