#include "config/output.h"

#include <cerrno>
#include <iostream>

namespace Tarnwick::Parser::ConfigTool {

void complainOfOutput() {
    if (errno != EPIPE) {
        std::cerr << "tarnwick-config: cannot write to the standard output\n";
    }
}

bool finishOutput() {
    if (std::cout.good()) {
        errno = 0;  // otherwise it is of the write that failed
        std::cout.flush();
    }
    if (!std::cout.good()) {
        complainOfOutput();
    }
    return std::cout.good();
}

}  // namespace Tarnwick::Parser::ConfigTool
