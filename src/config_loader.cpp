#include "config_loader.h"

#include <stdexcept>

#include "environment_file.h"
#include "support/find_files.h"
#include "support/split_string.h"
#include "support/trim.h"
#include "vocabulary.h"

namespace Tarnwick::Parser {
namespace {

std::string withTrailingSlash(const std::string& directory) {
    return directory.ends_with('/') ? directory : directory + '/';
}

/// Tells which keys are taken, and how. A pass for a few registered keys reads files full of
/// others: whether their group holds a registered one is found once for a run of them.
class KeyFilter {
public:
    explicit KeyFilter(const ConfigStore& store)
        : store_(store), takesGroup_(store.registersGroup(group_)) {}

    /// Returns the key's mode as a number, or -1 for a key that is not taken.
    [[nodiscard]] std::int32_t modeOf(const ConfigFileIterator& entry) {
        if (!store_.hasRegistry()) {
            return static_cast<std::int32_t>(KeyMode::Append);
        }
        if (entry.group() != group_) {
            group_ = entry.group();
            takesGroup_ = store_.registersGroup(group_);
        }
        return takesGroup_ ? store_.keyMode(group_, std::string(entry.key())) : -1;
    }

private:
    const ConfigStore& store_;
    std::string group_;  // of the last key
    bool takesGroup_;
};

// Expands a piece, and tells a blank one before its exception. Those two are thrown by the library
// alone, and never leave it: what a listener throws is not taken for them.
bool expandPiece(std::string_view piece, const TemplateExpander& expander, LoadTeller& teller,
                 ConfigValue& value) {
    try {
        return expander.expand(piece, value, teller.outcomes());
    } catch (const BlankAssignment& error) {
        teller.fault({.problem = Problem::ValueBlank, .text = piece, .path = error.path()});
        throw;
    } catch (const BlankText&) {
        teller.fault({.problem = Problem::ValueBlank, .text = piece});
        throw;
    }
}

[[noreturn]] void throwWithPlace(const BlankText& error, const std::string& path,
                                 const ConfigFileIterator& entry) {
    throw std::length_error(path + ':' + std::to_string(entry.lineNumber()) + ": key '" +
                            std::string(entry.key()) + "' of group '" + entry.group() +
                            "': " + error.what());
}

}  // namespace

std::vector<std::string> listConfigFiles(const std::string& directory) {
    return findFiles(withTrailingSlash(directory) + kFilePattern);
}

bool expandText(std::string_view text, const TemplateContext& context, const LoadListener& listener,
                ConfigValue& out) {
    const std::string own(text);  // It may be a view of `out.text`.
    LoadTeller teller(listener);
    teller.beginText(own);
    try {
        if (!expandPiece(own, TemplateExpander(context, teller.sink()), teller, out)) {
            teller.dropped();
            return false;
        }
    } catch (const BlankText& error) {
        throw std::length_error(error.what());
    }
    teller.stored(&out, Problem::ValueEmpty);
    return true;
}

TemplateResult resolveToken(const TemplateToken& token, std::string_view whole,
                            const TemplateContext& context, std::string& text) {
    try {
        return TemplateExpander(context, logDiagnostic).resolve(token, whole, text);
    } catch (const BlankText& error) {
        throw std::length_error(error.what());
    }
}

ConfigLoader::ConfigLoader(ConfigStore& store, const TemplateContext& context,
                           const LoadListener& listener)
    : store_(store), teller_(listener), sink_(teller_.sink()), expander_(context, sink_) {}

LoadResult ConfigLoader::loadConfigs(const std::vector<std::string>& directories) {
    LoadResult result = LoadResult::NoConfiguration;
    for (const std::string& directory : directories) {
        for (const std::string& path : listConfigFiles(directory)) {
            if (!loadFile(path)) {
                sink_({.problem = Problem::ConfigurationInvalid, .place = {.file = path}});
                return LoadResult::InvalidConfiguration;
            }
            result = LoadResult::Ok;
        }
    }
    return result;
}

bool ConfigLoader::loadDirectory(const std::string& directory) {
    const std::vector<std::string> paths = listConfigFiles(directory);
    if (paths.empty()) {
        const std::string searched = withTrailingSlash(directory);
        sink_({.problem = Problem::DirectoryEmpty, .place = {.file = searched}});
        return false;
    }
    bool isLoaded = true;
    for (const std::string& path : paths) {
        isLoaded = loadFile(path) && isLoaded;
    }
    return isLoaded;
}

bool ConfigLoader::loadFile(const std::string& path) {
    teller_.file(path);
    ConfigFile file(path);
    KeyFilter filter(store_);
    for (ConfigFileIterator entry(file, sink_); entry.hasEntry() && !file.failed; ++entry) {
        const std::int32_t mode = filter.modeOf(entry);
        if (mode == -1) {
            continue;
        }
        try {
            storeEntry(entry, static_cast<KeyMode>(mode));
        } catch (const BlankText& error) {
            throwWithPlace(error, path, entry);
        }
    }
    if (file.failed) {
        sink_({.problem = Problem::FileFailed, .place = {.file = path}});
    }
    return !file.failed;
}

void ConfigLoader::storePiece(const std::string& group, const std::string& key,
                              std::string_view piece, KeyMode mode) {
    // Templates are expanded whatever the mode, also when the text is then dropped.
    ConfigValue value;
    if (!expandPiece(piece, expander_, teller_, value)) {
        teller_.dropped();  // the file still counts as loaded
        return;
    }
    const ConfigValue* stored = nullptr;
    if (mode == KeyMode::Append) {
        stored = store_.appendValue(group, key, std::move(value));
    } else if (mode == KeyMode::Replace) {
        stored = &store_.replaceValues(group, key, std::move(value));
    }
    teller_.stored(stored,
                   mode == KeyMode::Append ? Problem::ValueEmpty : Problem::ModeWithoutName);
}

void ConfigLoader::storeEntry(const ConfigFileIterator& entry, KeyMode mode) {
    const std::string key(entry.key());
    if (entry.value().empty()) {
        teller_.removed(entry, store_.removeKey(entry.group(), key));
        return;
    }
    std::string_view rest = entry.value();
    for (std::string_view piece; takePiece(rest, ';', piece);) {
        teller_.beginPiece(entry, piece);
        if (piece.empty()) {
            teller_.dropped(Problem::PieceEmpty);
        } else {
            storePiece(entry.group(), key, piece, mode);
        }
    }
}

}  // namespace Tarnwick::Parser
