#include "value_sources.h"

#include <pwd.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "logging/log_record.h"
#include "support/dynamic_library.h"
#include "support/free.h"

namespace Tarnwick::Parser {
namespace {

using Logging::logError;
using Logging::logWarning;
using Logging::parserLogger;

// Waits for the command also when its output outgrows the memory.
struct CloseCommand {
    void operator()(FILE* pipe) const { (void)pclose(pipe); }
};

// --- Android properties ---

/// Fills `value`, which has room for kPropertySize bytes, and returns the length of the text.
using PropertyGet = int(const char* name, char* value, const char* defaultValue);
constexpr std::size_t kPropertySize = 92;  // with the terminating NUL

const DynamicLibrary& propertyLibrary() {
    static const DynamicLibrary library("libandroid-properties.so.1");
    return library;
}

// --- Commands ---

std::string commandLine(const std::string& command, const std::vector<std::string>& arguments) {
    std::string line = command;
    for (const std::string& argument : arguments) {
        line += " '" + argument + "'";
    }
    return line;
}

// A chunk counts up to its first NUL.
std::string readToEnd(FILE* pipe) {
    std::array<char, 1024> chunk{};
    std::string output;
    while (std::fgets(chunk.data(), static_cast<int>(chunk.size()), pipe) != nullptr) {
        output += chunk.data();
    }
    return output;
}

void reportEnd(const std::string& command, int status) {
    if (status < 0) {
        const char* reason = std::strerror(errno);
        logError(parserLogger) << command << " pclose() exited with failure: " << reason;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
        // The exit code is one raw character, see the header.
        logWarning(parserLogger) << command << " exited with non-zero status: "
                                 << static_cast<unsigned char>(WEXITSTATUS(status));
    }
}

std::string runLine(const std::string& command, const std::string& line, int& status) {
    FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr) {
        const char* reason = std::strerror(errno);
        logError(parserLogger) << "Failed to execute '" << command << "': " << reason;
        return {};
    }
    std::unique_ptr<FILE, CloseCommand> handle(pipe);
    std::string output = readToEnd(pipe);
    status = pclose(handle.release());
    reportEnd(command, status);
    return output;
}

}  // namespace

std::string readEnv(const char* name, const std::string& defaultText) {
    const char* text = std::getenv(name);
    return text != nullptr ? text : defaultText;
}

std::string resolvePath(const std::string& path) {
    const std::unique_ptr<char, Free> resolved(realpath(path.c_str(), nullptr));
    return resolved != nullptr ? resolved.get() : "";
}

int getUserInfoForUid(std::int32_t uid, std::string* userName, std::string* home, gid_t* groupId) {
    errno = 0;
    const passwd* entry = getpwuid(static_cast<uid_t>(uid));
    if (entry == nullptr) {
        return 0;
    }
    if (userName != nullptr) {
        *userName = entry->pw_name;
    }
    if (home != nullptr) {
        *home = entry->pw_dir;
    }
    if (groupId != nullptr) {
        *groupId = entry->pw_gid;
    }
    return 1;
}

std::string readProperty(const std::string& name) {
    PropertyGet* propertyGet = nullptr;
    std::array<char, kPropertySize> value{};
    if (propertyLibrary().find("property_get", propertyGet) &&
        propertyGet(name.c_str(), value.data(), "") > 0) {
        return value.data();
    }
    return {};
}

std::string runCommand(const std::string& command, const std::vector<std::string>& arguments,
                       int* status) {
    int waitStatus = -1;
    std::string output = runLine(command, commandLine(command, arguments), waitStatus);
    if (status != nullptr) {
        *status = waitStatus;
    }
    return output;
}

}  // namespace Tarnwick::Parser
