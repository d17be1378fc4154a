#pragma once

#include <dlfcn.h>

namespace Tarnwick::Parser {

/// A shared library that is opened when it is first needed, so that a request that does not need
/// it pays nothing for it. The library stays in the process until exit: GLib cannot be unloaded,
/// and the tables filled from it are kept for the life of the process.
class DynamicLibrary {
public:
    /// Opens the library by its run-time name; on failure every `find` fails.
    explicit DynamicLibrary(const char* soname) noexcept : handle_(dlopen(soname, RTLD_LAZY)) {}

    /// Looks `name` up in the library and in what it depends on. On success stores the function
    /// and returns true; otherwise returns false and leaves `function` as it was.
    template <typename Function>
    bool find(const char* name, Function*& function) const noexcept {
        void* symbol = handle_ != nullptr ? dlsym(handle_, name) : nullptr;
        if (symbol == nullptr) {
            return false;
        }
        function = reinterpret_cast<Function*>(symbol);
        return true;
    }

private:
    void* handle_;  // Not closed, see above.
};

}  // namespace Tarnwick::Parser

/// Declares in the program's ELF notes that it opens `soname` at run time, so that package tools
/// see a dependency that no NEEDED entry shows. `priority` is "required", "recommended" or
/// "suggested". Format: the UAPI group's "dlopen metadata for ELF files" (owner FDO, note type
/// 0x407c0c0a, a JSON array).
#define TARNWICK_DLOPEN_NOTE(feature, description, priority, soname)                             \
    __asm__(                                                                                     \
        ".pushsection .note.dlopen, \"a\", %note\n"                                              \
        ".balign 4\n"                                                                            \
        ".long 2f - 1f\n"                                                                        \
        ".long 4f - 3f\n"                                                                        \
        ".long 0x407c0c0a\n"                                                                     \
        "1: .asciz \"FDO\"\n"                                                                    \
        "2: .balign 4\n"                                                                         \
        "3: .asciz \"[{\\\"feature\\\":\\\"" feature "\\\",\\\"description\\\":\\\"" description \
        "\\\",\\\"priority\\\":\\\"" priority "\\\",\\\"soname\\\":[\\\"" soname                 \
        "\\\"]}]\"\n"                                                                            \
        "4: .balign 4\n"                                                                         \
        ".popsection\n")
