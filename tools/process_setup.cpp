#include "process_setup.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace Tarnwick::Parser::Tool {
namespace {

bool isInputMissing = false;

// Opened for reading alone, so that a value or record written there is known to be lost.
void fillClosedDescriptors() {
    isInputMissing = fcntl(STDIN_FILENO, F_GETFD) < 0;
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            (void)open("/dev/null", O_RDONLY);  // takes the lowest free number, this one
        }
    }
}

void ignoreSignal(int) {}

// A handler, not SIG_IGN: handlers go back to the default action in the commands that are run.
void survive(int signal) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_DFL) {
        action.sa_handler = ignoreSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

void prepareProcess() {
    fillClosedDescriptors();
    survive(SIGPIPE);
    survive(SIGXFSZ);
}

bool wasInputClosed() {
    return isInputMissing;
}

}  // namespace Tarnwick::Parser::Tool
