#include "mount_entry.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "logging/log_record.h"
#include "support/split_string.h"

namespace Tarnwick::Parser {
namespace {

using Logging::logError;
using Logging::parserLogger;

enum Field { Source, MountPoint, FileSystemType, Options, Dump, Pass, FieldCount };

constexpr std::array<std::string_view, 2> kPseudoSources{"tmpfs", "none"};
constexpr std::array<std::string_view, 3> kFileSystemTypes{"none", "tmpfs", "devpts"};

template <std::size_t N>
bool isOneOf(std::string_view text, const std::array<std::string_view, N>& texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool reject(const char* problem, const std::string& entry) {
    logError(parserLogger) << problem << entry;
    return false;
}

bool rejectField(const char* rule, const std::string& value, const std::string& entry) {
    logError(parserLogger) << rule << " instead of '" << value << "' in mount entry: " << entry;
    return false;
}

}  // namespace

bool isValidMountEntry(const std::string& entry) {
    const std::vector<std::string> fields = splitString(entry, ' ', kNoSplitLimit, KeepEmpty);
    if (fields.size() != FieldCount) {
        return reject("Not enough parts in mount entry: ", entry);  // also for too many
    }
    if (!fields[Source].starts_with('/') && !isOneOf(fields[Source], kPseudoSources)) {
        return reject("Mount entry must begin with '/' or be 'tmpfs' or 'none': ", entry);
    }
    if (!isOneOf(fields[FileSystemType], kFileSystemTypes)) {
        // "devpts" is accepted but not offered; readers of the log depend on the text.
        return rejectField("File system type must be 'none' or 'tmpfs'", fields[FileSystemType],
                           entry);
    }
    if (fields[Dump] != "0") {
        return rejectField("Dump value must be '0'", fields[Dump], entry);
    }
    if (fields[Pass] != "0") {
        return rejectField("Backup value must be '0'", fields[Pass], entry);
    }
    return true;
}

}  // namespace Tarnwick::Parser
