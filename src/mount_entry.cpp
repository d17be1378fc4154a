#include "mount_entry.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "logging/log_record.h"
#include "support/split_string.h"

namespace Tarnwick::Parser {
namespace {

enum Field { Source, MountPoint, FileSystemType, Options, Dump, Pass, FieldCount };

constexpr std::array<std::string_view, 2> kPseudoSources{"tmpfs", "none"};
constexpr std::array<std::string_view, 3> kFileSystemTypes{"none", "tmpfs", "devpts"};

template <std::size_t N>
bool isOneOf(std::string_view text, const std::array<std::string_view, N>& texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::string broken(const char* rule, const std::string& value) {
    return std::string(rule) + " instead of '" + value + "'";
}

}  // namespace

std::string findMountFault(const std::string& entry) {
    const std::vector<std::string> fields = splitString(entry, ' ', kNoSplitLimit, KeepEmpty);
    if (fields.size() != FieldCount) {
        return "Not enough parts";  // also for too many; readers of the log depend on it
    }
    if (!fields[Source].starts_with('/') && !isOneOf(fields[Source], kPseudoSources)) {
        return "Mount entry must begin with '/' or be 'tmpfs' or 'none'";
    }
    if (!isOneOf(fields[FileSystemType], kFileSystemTypes)) {
        // "devpts" is accepted but not offered; readers of the log depend on the text.
        return broken("File system type must be 'none' or 'tmpfs'", fields[FileSystemType]);
    }
    if (fields[Dump] != "0") {
        return broken("Dump value must be '0'", fields[Dump]);
    }
    if (fields[Pass] != "0") {
        return broken("Backup value must be '0'", fields[Pass]);
    }
    return {};
}

bool isValidMountEntry(const std::string& entry) {
    const std::string fault = findMountFault(entry);
    if (fault.empty()) {
        return true;
    }
    const bool namesEntry = fault.starts_with("Mount entry");
    Logging::logError(Logging::parserLogger)
        << fault << (namesEntry ? ": " : " in mount entry: ") << entry;
    return false;
}

}  // namespace Tarnwick::Parser
