#include "generator_helpers.h"

#include <fstream>
#include <optional>
#include <sstream>

#include "config_writer.h"
#include "logging/log_record.h"
#include "mount_entry.h"
#include "support/find_files.h"
#include "support/split_string.h"
#include "value_sources.h"

namespace Tarnwick::Parser::GeneratorHelpers {
namespace {

// The file's content, or nothing when it cannot be opened or read, as a directory cannot.
std::optional<std::string> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    file.peek();  // sets the error flags of a file that cannot be read
    if (!file.is_open() || file.bad()) {
        return std::nullopt;
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeSection(ConfigWriter& writer, const std::string& path, const std::string& content) {
    writer.writeEmptyLine();
    writer.writeComment(path + " content");
    writer.writeRaw(content);
    writer.writeComment("end of " + path + " content");
}

void acceptMountEntry(ConfigWriter& writer, const std::string& key, const std::string& source,
                      const std::string& line) {
    if (isValidMountEntry(line)) {
        writer.writeKeyValue(key, line);
    } else {
        Logging::logWarning(Logging::parserLogger)
            << "Invalid mount entry from " << source << ": " << line;
    }
}

}  // namespace

void parseDefaults(ConfigWriter& writer, const std::string& pattern) {
    for (const std::string& path : findFiles(pattern)) {
        if (const auto content = readFile(path)) {
            writeSection(writer, path, *content);
        }
    }
}

void runMountHooks(ConfigWriter& writer, const std::string& pattern, const std::string& key,
                   const std::vector<std::string>& arguments) {
    for (const std::string& path : findFiles(pattern)) {
        const std::string output = runCommand(path, arguments, nullptr);
        for (const std::string& line : splitString(output, '\n', kNoSplitLimit, KeepEmpty)) {
            acceptMountEntry(writer, key, path, line);
        }
    }
}

}  // namespace Tarnwick::Parser::GeneratorHelpers
