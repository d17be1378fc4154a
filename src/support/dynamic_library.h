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
