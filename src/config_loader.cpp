// The loading operations of ConfigParser.

#include <cstdint>
#include <stdexcept>

#include "config_file.h"
#include "config_parser.h"
#include "config_parser_data.h"
#include "logging/log_record.h"
#include "support/find_files.h"
#include "support/split_string.h"
#include "vocabulary.h"

namespace Tarnwick::Parser {
namespace {

using Logging::logError;
using Logging::parserLogger;

std::string withTrailingSlash(const std::string& dir) {
    return dir.ends_with('/') ? dir : dir + '/';
}

std::vector<std::string> findConfigFiles(const std::string& dir) {
    return findFiles(withTrailingSlash(dir) + kFilePattern);
}

// The mode that an entry is stored by, or -1 for a key that is not taken.
std::int32_t modeOf(const ConfigStore& store, const ConfigFileIterator& entry) {
    return store.hasRegistry() ? store.keyMode(entry.group(), std::string(entry.key()))
                               : static_cast<std::int32_t>(KeyMode::Append);
}

void storePiece(ConfigParser& parser, const std::string& group, const std::string& key,
                std::string_view piece, KeyMode mode) {
    // Templates are expanded whatever the mode, also when the text is then dropped.
    ConfigValue value;
    if (!parser.parseTemplates(piece, value)) {
        return;  // reported where it failed; the file still counts as loaded
    }
    if (mode == KeyMode::Replace) {
        parser.replaceValues(group, key, std::move(value));
    } else if (mode == KeyMode::Append) {
        parser.appendValue(group, key, std::move(value));
    }
}

void storeEntry(ConfigParser& parser, const ConfigFileIterator& entry, KeyMode mode) {
    const std::string key(entry.key());
    if (entry.value().empty()) {
        parser.removeKey(entry.group(), key);
        return;
    }
    std::string_view rest = entry.value();
    std::string_view piece;
    while (takePiece(rest, ';', piece)) {
        if (!piece.empty()) {
            storePiece(parser, entry.group(), key, piece, mode);
        }
    }
}

[[noreturn]] void rethrowWithPlace(const std::length_error& error, const std::string& path,
                                   const ConfigFileIterator& entry) {
    throw std::length_error(path + ": key '" + std::string(entry.key()) + "' of group '" +
                            entry.group() + "': " + error.what());
}

}  // namespace

LoadResult ConfigParser::loadConfigs(const std::vector<std::string>& dirs) {
    LoadResult result = LoadResult::NoConfiguration;
    for (const std::string& dir : dirs) {
        for (const std::string& path : findConfigFiles(dir)) {
            if (!loadFile(path)) {
                logError(parserLogger) << "Invalid configuration in " << path;
                return LoadResult::InvalidConfiguration;
            }
            result = LoadResult::Ok;
        }
    }
    return result;
}

bool ConfigParser::loadDirectory(const std::string& dir) {
    const std::vector<std::string> paths = findConfigFiles(dir);
    if (paths.empty()) {
        logError(parserLogger) << "No configuration to read in " << withTrailingSlash(dir);
        return false;
    }
    bool isLoaded = true;
    for (const std::string& path : paths) {
        isLoaded = loadFile(path) && isLoaded;
    }
    return isLoaded;
}

bool ConfigParser::loadFile(const std::string& path) {
    ConfigFile file(path);
    for (ConfigFileIterator entry(file); entry.hasEntry() && !file.failed; ++entry) {
        const std::int32_t mode = modeOf(data_->store, entry);
        if (mode == -1) {
            continue;
        }
        try {
            storeEntry(*this, entry, static_cast<KeyMode>(mode));
        } catch (const std::length_error& error) {
            rethrowWithPlace(error, path, entry);
        }
    }
    if (file.failed) {
        logError(parserLogger) << "Failed to load config from '" << path << "'";
    }
    return !file.failed;
}

}  // namespace Tarnwick::Parser
