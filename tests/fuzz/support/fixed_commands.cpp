// The commands that `popen` knows in the fuzz targets, which run no other.

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>

#include "check.h"

using namespace std::literals;

namespace Fuzz {
namespace {

/// How a command comes to its end.
enum class CommandEnd {
    Exit,        ///< with the code of the row
    Signal,      ///< of the number in the row
    CannotOpen,  ///< `popen` fails
    CannotWait,  ///< `pclose` fails
};

struct FixedCommand {
    std::string_view line;
    std::string_view output;
    CommandEnd end;
    int code;
};

// Longer than one read of the output.
constexpr auto kLong = [] {
    std::array<char, 2500> text{};
    text.fill('x');
    return text;
}();
constexpr std::string_view kLongText(kLong.data(), kLong.size());

constexpr std::array kCommands{
    FixedCommand{"hello", "hello\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"lines", " a\nb = c;d \n\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"long", kLongText, CommandEnd::Exit, 0},
    FixedCommand{"template", "${HOME} $$ $\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"nul", "ab\0cd\nef\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"silent", ""sv, CommandEnd::Exit, 0},
    FixedCommand{"blank", " \n"sv, CommandEnd::Exit, 0},
    FixedCommand{"fails", "out\n"sv, CommandEnd::Exit, 1},
    FixedCommand{"dies", "out\n"sv, CommandEnd::Signal, 9},
    FixedCommand{"unopened", ""sv, CommandEnd::CannotOpen, EMFILE},
    FixedCommand{"unwaited", "out\n"sv, CommandEnd::CannotWait, ECHILD},
    FixedCommand{"", ""sv, CommandEnd::Exit, 127},
};

/// The row of a command line, or the last one, for a command that is not found.
const FixedCommand& fixedCommand(std::string_view line) {
    for (const FixedCommand& command : kCommands) {
        if (command.line == line) {
            return command;
        }
    }
    return kCommands.back();
}

/// The pipes that are open, so that every one is seen to be closed, once.
std::map<FILE*, const FixedCommand*>& openPipes() {
    static std::map<FILE*, const FixedCommand*> pipes;
    return pipes;
}

FILE* openCommand(const char* line, const char* mode) {
    check(mode == "r"sv || mode == "re"sv, "commands are opened for reading");
    check(openPipes().empty(), "one command runs at a time");
    const FixedCommand& command = fixedCommand(line);
    if (command.end == CommandEnd::CannotOpen) {
        errno = command.code;
        return nullptr;
    }
    // Opened for reading alone, whatever the type of the pointer says.
    FILE* pipe = fmemopen(const_cast<char*>(command.output.data()), command.output.size(), "r");
    check(pipe != nullptr, "a text can be opened as a file");
    openPipes()[pipe] = &command;
    return pipe;
}

int closeCommand(FILE* pipe) {
    const auto entry = openPipes().find(pipe);
    check(entry != openPipes().end(), "a pipe that is closed was open");
    const FixedCommand& command = *entry->second;
    openPipes().erase(entry);
    (void)std::fclose(pipe);
    if (command.end == CommandEnd::CannotWait) {
        errno = command.code;
        return -1;
    }
    return command.end == CommandEnd::Signal ? W_EXITCODE(0, command.code)
                                             : W_EXITCODE(command.code, 0);
}

}  // namespace
}  // namespace Fuzz

// In place of the C library's own.
extern "C" FILE* popen(const char* line, const char* mode) {
    return Fuzz::openCommand(line, mode);
}

extern "C" int pclose(FILE* pipe) {
    return Fuzz::closeCommand(pipe);
}
