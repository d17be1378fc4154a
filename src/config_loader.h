#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config_file.h"
#include "config_store.h"
#include "diagnostic.h"
#include "load_event.h"
#include "load_teller.h"
#include "parser_types.h"
#include "template_expander.h"

namespace Tarnwick::Parser {

/// Returns the "*.conf" files of a directory in ascending byte order of their paths. The
/// directory's path becomes part of a glob(7) pattern as it stands; an empty one is "/". Empty for
/// a directory that is missing or cannot be read.
[[nodiscard]] std::vector<std::string> listConfigFiles(const std::string& directory);

/// Expands a text that stands in no file, as `ConfigParser::parseTemplates` says.
[[nodiscard]] bool expandText(std::string_view text, const TemplateContext& context,
                              const LoadListener& listener, ConfigValue& out);

/// Resolves one template, a token of `whole`, as `ConfigParser::resolveTemplate` says.
[[nodiscard]] TemplateResult resolveToken(const TemplateToken& token, std::string_view whole,
                                          const TemplateContext& context, std::string& text);

/// Reads directories and files into a store, each piece of a value through the expander. What is
/// found is logged as soon as it is found, and then told to the listener, which may be empty.
class ConfigLoader {
public:
    /// Store, listener and the context's variables have to outlive the loader.
    ConfigLoader(ConfigStore& store, const TemplateContext& context, const LoadListener& listener);
    ConfigLoader(const ConfigLoader&) = delete;
    ConfigLoader& operator=(const ConfigLoader&) = delete;

    /// @{
    /// See the operations of the same names in config_parser.h.
    [[nodiscard]] LoadResult loadConfigs(const std::vector<std::string>& directories);
    [[nodiscard]] bool loadDirectory(const std::string& directory);
    [[nodiscard]] bool loadFile(const std::string& path);
    /// @}

private:
    void storeEntry(const ConfigFileIterator& entry, KeyMode mode);
    void storePiece(const std::string& group, const std::string& key, std::string_view piece,
                    KeyMode mode);

    ConfigStore& store_;
    LoadTeller teller_;
    DiagnosticSink sink_;
    TemplateExpander expander_;
};

}  // namespace Tarnwick::Parser
