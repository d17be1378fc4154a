#include "fixed_commands.h"

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <string>

#include "check.h"

using namespace std::literals;

namespace Fuzz {
namespace {

// Longer than one read of the output.
constexpr auto kLong = [] {
    std::array<char, 2500> text{};
    text.fill('x');
    return text;
}();
constexpr std::string_view kLongText(kLong.data(), kLong.size());

constexpr std::array kCommands{
    FixedCommand{"hello", "hello\n"sv, "hello\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"lines", " a\nb = c;d \n\n"sv, " a\nb = c;d \n\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"long", kLongText, kLongText, CommandEnd::Exit, 0},
    FixedCommand{"template", "${HOME} $$ $\n"sv, "${HOME} $$ $\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"nul", "ab\0cd\nef\n"sv, "abef\n"sv, CommandEnd::Exit, 0},
    FixedCommand{"silent", ""sv, ""sv, CommandEnd::Exit, 0},
    FixedCommand{"blank", " \n"sv, " \n"sv, CommandEnd::Exit, 0},
    FixedCommand{"fails", "out\n"sv, "out\n"sv, CommandEnd::Exit, 1},
    FixedCommand{"dies", "out\n"sv, "out\n"sv, CommandEnd::Signal, 9},
    FixedCommand{"unopened", ""sv, ""sv, CommandEnd::CannotOpen, EMFILE},
    FixedCommand{"unwaited", "out\n"sv, "out\n"sv, CommandEnd::CannotWait, ECHILD},
    FixedCommand{"", ""sv, ""sv, CommandEnd::Exit, 127},
};

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

std::span<const FixedCommand> fixedCommands() {
    return kCommands;
}

const FixedCommand& fixedCommand(std::string_view line) {
    for (const FixedCommand& command : kCommands) {
        if (command.line == line) {
            return command;
        }
    }
    return kCommands.back();
}

}  // namespace Fuzz

// In place of the C library's own.
extern "C" FILE* popen(const char* line, const char* mode) {
    return Fuzz::openCommand(line, mode);
}

extern "C" int pclose(FILE* pipe) {
    return Fuzz::closeCommand(pipe);
}
