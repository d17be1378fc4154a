// What a program that links the installed library does: reads a key, and logs a list.

#include <tarnwick/config_parser.h>
#include <tarnwick/config_writer.h>
#include <tarnwick/generator_helpers.h>
#include <tarnwick/logging/log_record.h>
#include <tarnwick/vocabulary.h>

#include <iostream>
#include <string>
#include <vector>

using namespace Tarnwick::Parser;

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    Logging::parserLogger->setTarget(Logging::LoggerConfig::TargetStderr);
    ConfigParser parser(-1);
    if (parser.loadConfigs({arguments[1]}) != LoadResult::Ok ||
        !parser.hasKey(kGroupDevices, kKeyDevNodes)) {
        return 1;
    }
    std::vector<std::string> nodes;
    parser.getValue(kGroupDevices, kKeyDevNodes, nodes);
    Logging::logWarning(Logging::parserLogger) << nodes;
    std::cout << nodes.size() << '\n';
    return 0;
}
