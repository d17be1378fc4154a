#pragma once

#include <cstdint>

namespace Tarnwick::Parser {

/// How the values of a registered key accumulate.
enum class KeyMode : std::int32_t {
    Replace = 0,  ///< a new value replaces all earlier ones
    Append = 1,   ///< a new value joins the earlier ones; an empty plain value does not
};

/// How loading a list of directories ended.
enum class LoadResult : std::int32_t {
    Ok = 0,                    ///< at least one directory held a file, and every file loaded
    NoConfiguration = 1,       ///< no directory held a file
    InvalidConfiguration = 2,  ///< a file failed to load, and loading stopped there
};

/// What became of one template.
enum class TemplateResult : std::int32_t {
    Resolved = 0,   ///< replaced by a text
    Failed = 1,     ///< no text; the cause has been logged
    Reference = 2,  ///< names another key, whose value is inserted at lookup
};

}  // namespace Tarnwick::Parser
