#pragma once

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <locale>
#include <optional>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>

namespace Tarnwick::Parser::Testing {

// State of the process that a test changes and a scope puts back.

/// Sets an environment variable, or removes it when `value` is empty-handed.
class EnvironmentScope {
public:
    EnvironmentScope(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* text = std::getenv(name)) {
            saved_ = text;
        }
        set(value);
    }
    ~EnvironmentScope() { set(saved_); }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            setenv(name_, value->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }

    const char* name_;
    std::optional<std::string> saved_;
};

/// Makes the global locale one that groups digits, swaps point and comma, has its own words for
/// true and false, and writes the letter k to files as c.
class ForeignLocaleScope {
public:
    ForeignLocaleScope()
        : saved_(std::locale::global(
              std::locale(std::locale(std::locale::classic(), new Numbers), new Letters))) {}
    ~ForeignLocaleScope() { std::locale::global(saved_); }
    ForeignLocaleScope(const ForeignLocaleScope&) = delete;
    ForeignLocaleScope& operator=(const ForeignLocaleScope&) = delete;

private:
    struct Numbers : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
        std::string do_falsename() const override { return "falsch"; }
    };

    struct Letters : std::codecvt<char, char, std::mbstate_t> {
        bool do_always_noconv() const noexcept override { return false; }
        result do_out(std::mbstate_t&, const char* from, const char* fromEnd, const char*& fromNext,
                      char* to, char* toEnd, char*& toNext) const override {
            const auto size = std::min(fromEnd - from, toEnd - to);
            fromNext = from + size;
            toNext = std::replace_copy(from, fromNext, to, 'k', 'c');
            return fromNext == fromEnd ? ok : partial;
        }
    };

    std::locale saved_;
};

/// To look at an object's virtual table gcc's undefined-behaviour sanitizer opens a pipe, and takes
/// it for a fault when it gets none. What runs without descriptors cannot be tested with it.
#if defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
inline constexpr bool kSanitizerNeedsDescriptors = true;
#else
inline constexpr bool kSanitizerNeedsDescriptors = false;
#endif

/// Lets no further descriptor be opened.
class NoDescriptorsScope {
public:
    NoDescriptorsScope() {
        getrlimit(RLIMIT_NOFILE, &saved_);
        rlimit none = saved_;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptorsScope() { setrlimit(RLIMIT_NOFILE, &saved_); }
    NoDescriptorsScope(const NoDescriptorsScope&) = delete;
    NoDescriptorsScope& operator=(const NoDescriptorsScope&) = delete;

private:
    rlimit saved_ = {};
};

/// Sets what a signal does.
class SignalScope {
public:
    SignalScope(int signal, void (*action)(int))
        : signal_(signal), saved_(std::signal(signal, action)) {}
    ~SignalScope() { std::signal(signal_, saved_); }
    SignalScope(const SignalScope&) = delete;
    SignalScope& operator=(const SignalScope&) = delete;

private:
    int signal_;
    void (*saved_)(int);
};

/// Sets the umask.
class UmaskScope {
public:
    explicit UmaskScope(mode_t mask) : saved_(umask(mask)) {}
    ~UmaskScope() { umask(saved_); }
    UmaskScope(const UmaskScope&) = delete;
    UmaskScope& operator=(const UmaskScope&) = delete;

private:
    mode_t saved_;
};

}  // namespace Tarnwick::Parser::Testing
