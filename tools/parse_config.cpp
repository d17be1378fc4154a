// tarnwick-parse-config: prints the value of one configuration key.

#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "active_user.h"
#include "command_line.h"
#include "config_parser.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "process_setup.h"
#include "support/join_strings.h"
#include "template_variables.h"

namespace {

using namespace Tarnwick::Parser;
using namespace Tarnwick::Parser::Logging;
using namespace Tarnwick::Parser::Tool;

enum ExitStatus : int { ExitSuccess = 0, ExitFailure = 1, ExitNoValue = 2 };

bool load(ConfigParser& parser, const std::vector<std::string>& directories) {
    const LoadResult result = parser.loadConfigs(directories);
    if (result == LoadResult::NoConfiguration) {
        std::cerr << "No configuration to read in " << joinStrings(directories, ',') << '\n';
    }
    return result == LoadResult::Ok;
}

// A value that could not be written is never reported as success.
ExitStatus print(const std::string& text) {
    std::cout << text << '\n' << std::flush;
    if (!std::cout.good()) {
        logCritical(parserLogger) << "Cannot write the value to the standard output";
        return ExitFailure;
    }
    return ExitSuccess;
}

// The library's calling order: the test, then the check and the test that go with the lookup.
// Each may log its warning.
bool hasValue(const ConfigParser& parser, const std::string& group, const std::string& key) {
    if (!parser.hasKey(group, key)) {
        return false;
    }
    parser.checkKeyAdded(group, key);
    return parser.hasKey(group, key);
}

ExitStatus printValue(const ConfigParser& parser, const Options& options) {
    if (!hasValue(parser, options.group, options.key)) {
        return ExitNoValue;
    }
    if (options.list) {
        std::vector<std::string> values;
        parser.getValue(options.group, options.key, values);
        return print(joinStrings(values, ';'));
    }
    std::string value;
    parser.getValue(options.group, options.key, value);
    return print(value);
}

ExitStatus answer(const Options& options) {
    User user{options.userId, "", "", options.instance};
    if (resolveUser(options.directories, &user.id, &user.name, &user.instance, &user.home,
                    nullptr) < 0) {
        return ExitFailure;
    }
    ConfigParser parser(user.id);
    setVariables(parser, user);
    if (!load(parser, options.directories)) {
        return ExitFailure;
    }
    return printValue(parser, options);
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
