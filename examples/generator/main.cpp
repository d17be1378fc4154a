// Generates a configuration file of the kind that a device's boot writes: the vendor's defaults,
// and the mounts that a set of hook programs ask for.
//
//     example-generator CONFIGURATION_DIRECTORY DATA_DIRECTORY OUTPUT_DIRECTORY

#include <tarnwick/config_parser.h>
#include <tarnwick/config_writer.h>
#include <tarnwick/generator_helpers.h>
#include <tarnwick/logging/log_record.h>
#include <tarnwick/vocabulary.h>

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace Tarnwick::Parser;
using namespace Tarnwick::Parser::Logging;

/// What the generator wants to know of the configuration.
struct Settings {
    std::string storagePath = "/data";
    std::vector<std::string> requiredNodes;
};

bool read(const std::string& directory, Settings& settings) {
    ConfigParser parser(-1);
    parser.addKey(kGroupConfig, kKeyStoragePath, KeyMode::Replace);
    parser.addKey(kGroupDevices, kKeyRequiredDevNodes, KeyMode::Append);
    if (!parser.loadDirectory(directory)) {
        return false;
    }
    if (parser.hasKey(kGroupConfig, kKeyStoragePath)) {
        parser.getValue(kGroupConfig, kKeyStoragePath, settings.storagePath);
    }
    if (parser.hasKey(kGroupDevices, kKeyRequiredDevNodes)) {
        parser.getValue(kGroupDevices, kKeyRequiredDevNodes, settings.requiredNodes);
    }
    return true;
}

void generate(const std::string& output, const std::string& data, const Settings& settings) {
    ConfigWriter writer(output, false);
    writer.writeComment("Generated, do not edit.");
    GeneratorHelpers::parseDefaults(writer, data + "/defaults/*.conf");
    writer.writeEmptyLine();
    writer.writeRaw("[" + kGroupConfig + "]");
    writer.writeKeyValue(kKeyMountHome, true);
    GeneratorHelpers::runMountHooks(writer, data + "/hooks/*.sh", kKeyMounts,
                                    {settings.storagePath});
}

// The writer does not tell whether it could write: who has to know reads the file back.
bool isWritten(const std::string& output) {
    return ConfigParser(-1).loadFile(output);
}

void showWhere(const std::string& directory) {
    std::cout << "tarnwick-parse-config --config " << directory << " --list --key " << kKeyMounts
              << '\n';
}

bool run(const std::string& configuration, const std::string& data, const std::string& directory) {
    Settings settings;
    if (!read(configuration, settings)) {
        return false;
    }
    logInfo(parserLogger) << "Required device nodes: " << settings.requiredNodes;
    const std::string output = directory + "/50-generated.conf";
    generate(output, data, settings);
    if (!isWritten(output)) {
        return false;
    }
    showWhere(directory);
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::cerr << "usage: example-generator CONFIGURATION_DIRECTORY DATA_DIRECTORY "
                     "OUTPUT_DIRECTORY\n";
        return 1;
    }
    parserLogger->setTarget(LoggerConfig::TargetStderr);
    LoggerConfig::configureAll(nullptr);  // TARNWICK_LOGGING and TARNWICK_LOGGING_TARGET
    try {
        return run(arguments[1], arguments[2], arguments[3]) ? 0 : 1;
    } catch (const std::exception& error) {  // for instance a value of white space alone
        std::cerr << "example-generator: " << error.what() << '\n';
        return 1;
    }
}
