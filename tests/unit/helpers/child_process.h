#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

namespace Tarnwick::Parser::Testing {

/// Runs `work` in a child process and returns its text, for what can be done only once in a
/// process. A child that ends in any other way than by returning gives a text that says so.
inline std::string textFromChild(const std::function<std::string()>& work) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe to a child process");
    }
    std::fflush(nullptr);  // What is buffered now would be written twice.
    const pid_t child = fork();
    if (child == 0) {
        const std::string text = work();
        const bool isWritten =
            write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        std::exit(isWritten ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(ends[1]);
    std::string text;
    char chunk[512];
    for (ssize_t count = 0; (count = read(ends[0], chunk, sizeof chunk)) > 0;) {
        text.append(chunk, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = -1;
    if (waitpid(child, &status, 0) != child || status != 0) {
        text += " (the child process ended with wait status " + std::to_string(status) + ')';
    }
    return text;
}

}  // namespace Tarnwick::Parser::Testing
