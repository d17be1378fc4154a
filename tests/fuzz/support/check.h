#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace Fuzz {

/// Shows bytes in a way that a terminal survives and that tells two texts apart.
inline std::string shown(std::string_view bytes) {
    std::string text = "\"";
    for (const char byte : bytes) {
        if (byte == '"' || byte == '\\') {
            text += '\\';
        }
        if (byte >= ' ' && byte <= '~') {
            text += byte;
        } else {
            char hex[8];
            (void)std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(byte));
            text += hex;
        }
    }
    return text + '"';
}

[[noreturn]] inline void fail(const std::string& what) {
    (void)std::fprintf(stdout, "PROPERTY BROKEN: %s\n", what.c_str());
    (void)std::fflush(stdout);
    std::abort();
}

inline void check(bool holds, const std::string& property) {
    if (!holds) {
        fail(property);
    }
}

inline void checkEqual(std::string_view expected, std::string_view seen, const std::string& what) {
    if (expected != seen) {
        fail(what + "\n  expected " + shown(expected) + "\n  seen     " + shown(seen));
    }
}

inline void checkEqual(long long expected, long long seen, const std::string& what) {
    checkEqual(std::to_string(expected), std::to_string(seen), what);
}

}  // namespace Fuzz
