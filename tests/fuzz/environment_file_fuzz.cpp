// Environment files. Input: the name of the variable, a line feed, the content of the file.

#include "environment_file.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "plain/environment_file.h"
#include "support/captured_streams.h"
#include "support/check.h"
#include "support/scratch_directory.h"

namespace {

using Fuzz::PlainVariable;
using Fuzz::shown;

std::string outcome(const PlainVariable& variable) {
    return variable.isRefused ? "refused" : variable.value ? shown(*variable.value) : "missing";
}

PlainVariable readVariable(const std::string& path, const std::string& name, bool report) {
    PlainVariable variable;
    try {
        variable.value = Tarnwick::Parser::readEnvFile(path, name, report);
    } catch (const std::length_error&) {
        variable.isRefused = true;
    }
    return variable;
}

void checkVariable(const std::string& content, const std::string& name) {
    const std::string path = Fuzz::writeScratchFile("variables.env", content);
    const PlainVariable expected = Fuzz::plainVariable(content, name);
    for (const bool report : {false, true}) {
        const Fuzz::CapturedLog log;
        Fuzz::checkEqual(outcome(expected), outcome(readVariable(path, name, report)),
                         "the variable " + shown(name) + " of " + shown(content));
        const bool isReported = report && !expected.isRefused && !expected.value;
        Fuzz::checkEqual(
            isReported
                ? "ERROR: No '" + name + "' variable specified in environment file '" + path + "'\n"
                : "",
            log.text(), "the log of reading " + shown(content));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = input.find('\n');
    if (end != input.npos) {
        checkVariable(input.substr(end + 1), input.substr(0, end));
    }
    return 0;
}
