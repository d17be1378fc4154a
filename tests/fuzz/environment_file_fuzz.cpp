// Environment files. Input: the name of the variable, a line feed, the content of the file.

#include "environment_file.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "support/captured_streams.h"
#include "support/check.h"
#include "support/scratch_directory.h"

namespace {

// What reading the variable comes to, in words.
std::string outcome(const std::string& path, const std::string& name, bool isReported) {
    const Fuzz::CapturedLog log;
    std::string words;
    try {
        const std::optional<std::string> value =
            Tarnwick::Parser::readEnvFile(path, name, isReported);
        words = value ? Fuzz::shown(*value) : "missing";
    } catch (const std::length_error&) {
        words = "refused";
    }
    Fuzz::checkEqual(
        isReported && words == "missing"
            ? "ERROR: No '" + name + "' variable specified in environment file '" + path + "'\n"
            : "",
        log.text(), "the log of reading " + Fuzz::shown(name));
    return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = input.find('\n');
    if (end != input.npos) {
        const std::string path = Fuzz::writeScratchFile("variables.env", input.substr(end + 1));
        const std::string name = input.substr(0, end);
        Fuzz::checkEqual(outcome(path, name, false), outcome(path, name, true),
                         "the outcome does not depend on the report");
    }
    return 0;
}
