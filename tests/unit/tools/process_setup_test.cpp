#include "process_setup.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "helpers/child_process.h"

namespace Tarnwick::Parser::Tool {
namespace {

// What is changed here is the process's own, so every test takes a child process.

std::string errorOf(ssize_t result) {
    return result < 0 ? std::strerror(errno) : "none";
}

TEST(ProcessSetup, FillsClosedStandardDescriptors) {
    const std::string text = Testing::textFromChild([] {
        for (const int descriptor : {0, 1, 2}) {
            close(descriptor);
        }
        prepareProcess();
        const int next = open("/dev/null", O_RDONLY);
        const bool isFilled =
            fcntl(0, F_GETFD) == 0 && fcntl(1, F_GETFD) == 0 && fcntl(2, F_GETFD) == 0;
        return std::string(isFilled && next > 2 ? "filled" : "open");
    });
    EXPECT_EQ(text, "filled");
}

TEST(ProcessSetup, LetsWritingToAClosedStreamFailAllTheSame) {
    const std::string text = Testing::textFromChild([] {
        close(1);
        prepareProcess();
        return errorOf(write(1, "x", 1));
    });
    EXPECT_EQ(text, std::strerror(EBADF));
}

TEST(ProcessSetup, RemembersThatTheStandardInputWasClosed) {
    const auto said = [](int closed) {
        return Testing::textFromChild([closed] {
            (void)dup2(1, 0);  // whatever the caller of the tests left
            close(closed);
            prepareProcess();
            return std::string(wasInputClosed() ? "closed" : "open");
        });
    };
    EXPECT_EQ(said(0), "closed");
    EXPECT_EQ(said(2), "open");
}

TEST(ProcessSetup, LeavesOpenDescriptorsAsTheyAre) {
    const std::string text = Testing::textFromChild([] {
        int ends[2];
        if (pipe(ends) != 0 || dup2(ends[1], 1) != 1) {
            return std::string("no pipe");
        }
        prepareProcess();
        char byte = 0;
        const bool isSame = write(1, "x", 1) == 1 && read(ends[0], &byte, 1) == 1;
        return std::string(isSame && byte == 'x' ? "as it was" : "replaced");
    });
    EXPECT_EQ(text, "as it was");
}

std::string writeToPipeWithoutReader() {
    int ends[2];
    if (pipe(ends) != 0) {
        return "no pipe";
    }
    close(ends[0]);
    return errorOf(write(ends[1], "x", 1));
}

TEST(ProcessSetup, SurvivesAPipeWithoutAReader) {
    const std::string text = Testing::textFromChild([] {
        std::signal(SIGPIPE, SIG_DFL);
        prepareProcess();
        return writeToPipeWithoutReader();
    });
    EXPECT_EQ(text, std::strerror(EPIPE));
}

std::string writeToFileThatMayNotGrow() {
    const rlimit nothing = {0, 0};
    std::FILE* const file = std::tmpfile();
    if (file == nullptr || setrlimit(RLIMIT_FSIZE, &nothing) != 0) {
        return "no limited file";
    }
    return errorOf(write(fileno(file), "x", 1));
}

TEST(ProcessSetup, SurvivesAFileThatMayNotGrow) {
    const std::string text = Testing::textFromChild([] {
        std::signal(SIGXFSZ, SIG_DFL);
        prepareProcess();
        return writeToFileThatMayNotGrow();
    });
    EXPECT_EQ(text, std::strerror(EFBIG));
}

class SurvivedSignal : public testing::TestWithParam<int> {};

TEST_P(SurvivedSignal, StillEndsTheCommandsThatAreRun) {
    const std::string text = Testing::textFromChild([] {
        std::signal(GetParam(), SIG_DFL);
        prepareProcess();
        const std::string command = "kill -" + std::to_string(GetParam()) + " $$";
        const int status = std::system(command.c_str());
        const bool isEnded = WIFSIGNALED(status) && WTERMSIG(status) == GetParam();
        return std::string(isEnded ? "ended by the signal" : "went on");
    });
    EXPECT_EQ(text, "ended by the signal");
}

TEST_P(SurvivedSignal, StaysIgnoredWhenItWas) {
    const std::string text = Testing::textFromChild([] {
        std::signal(GetParam(), SIG_IGN);
        prepareProcess();
        return std::string(std::signal(GetParam(), SIG_DFL) == SIG_IGN ? "ignored" : "handled");
    });
    EXPECT_EQ(text, "ignored");
}

std::string signalName(const testing::TestParamInfo<int>& info) {
    return sigabbrev_np(info.param);
}

INSTANTIATE_TEST_SUITE_P(ProcessSetup, SurvivedSignal, testing::Values(SIGPIPE, SIGXFSZ),
                         signalName);

}  // namespace
}  // namespace Tarnwick::Parser::Tool
