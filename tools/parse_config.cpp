// tarnwick-parse-config: prints the value of one configuration key.

#include <exception>
#include <iostream>
#include <optional>
#include <string>

#include "command_line.h"
#include "config_parser.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "process_setup.h"
#include "request.h"

namespace {

using namespace Tarnwick::Parser;
using namespace Tarnwick::Parser::Logging;
using namespace Tarnwick::Parser::Tool;

enum ExitStatus : int { ExitSuccess = 0, ExitFailure = 1, ExitNoValue = 2 };

// A value that could not be written is never reported as success.
ExitStatus print(const std::string& text) {
    std::cout << text << '\n' << std::flush;
    if (!std::cout.good()) {
        logCritical(parserLogger) << "Cannot write the value to the standard output";
        return ExitFailure;
    }
    return ExitSuccess;
}

ExitStatus answer(const Options& options) {
    User user{options.userId, "", "", options.instance};
    if (!settleUser(user, options.directories)) {
        return ExitFailure;
    }
    ConfigParser parser(user.id);
    if (!loadForUser(parser, user, options.directories)) {
        return ExitFailure;
    }
    const std::optional<std::string> text =
        findAnswer(parser, options.group, options.key,
                   options.list ? Wanted::AllValues : Wanted::CurrentValue);
    return text ? print(*text) : ExitNoValue;
}

// What an exception says names the place: file, line, group and key when it left a load, group and
// key of the value at fault when it left a lookup.
ExitStatus answerOrReport(const Options& options) {
    try {
        return answer(options);
    } catch (const std::exception& error) {
        logCritical(parserLogger) << "Cannot get '" << options.group << "/" << options.key
                                  << "': " << error.what();
        return ExitFailure;
    }
}

bool setLogLevel(const Options& options, const std::string& program) {
    if (options.logLevel.empty() || parserLogger->setLevel(options.logLevel)) {
        return true;
    }
    printUsage(program);
    return false;
}

ExitStatus run(int count, const char* const* arguments) {
    parserLogger->setTarget(LoggerConfig::TargetStderr);
    LoggerConfig::configureAll(nullptr);

    const std::optional<Options> options = parseCommandLine(count, arguments);
    if (!options || !setLogLevel(*options, programName(count, arguments))) {
        return ExitFailure;
    }
    return answerOrReport(*options);
}

}  // namespace

int main(int count, char** arguments) {
    prepareProcess();
    try {
        return run(count, arguments);
    } catch (...) {  // Nothing aborts: not even for want of memory to say so.
        return ExitFailure;
    }
}
