// The command line. Input: the arguments, the program's name first, separated by line feeds.

#include "command_line.h"

#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>

#include "plain/lines.h"
#include "plain/split.h"
#include "support/captured_streams.h"
#include "support/check.h"

using namespace Tarnwick::Parser;
using Fuzz::shown;

namespace {

/// What a command line amounts to: a request, or a message and perhaps the usage text.
struct PlainRequest {
    std::map<std::string, std::string> settings{{"--group", "Config"}, {"--instance", "default"},
                                                {"--key", ""},         {"--log-level", ""},
                                                {"--user-id", "-1"},   {"--list", "no"}};
    std::vector<std::string> directories;
    std::string message;
    bool showsUsage = false;
};

std::string described(const PlainRequest& request) {
    std::string text;
    for (const auto& [option, value] : request.settings) {
        text += option + ' ' + shown(value) + '\n';
    }
    for (const std::string& directory : request.directories) {
        text += "directory " + shown(directory) + '\n';
    }
    return text;
}

std::string described(const Tool::Options& options) {
    PlainRequest request;
    request.settings = {{"--group", options.group},
                        {"--instance", options.instance},
                        {"--key", options.key},
                        {"--log-level", options.logLevel},
                        {"--user-id", std::to_string(options.userId)},
                        {"--list", options.list ? "yes" : "no"}};
    request.directories = options.directories;
    return described(request);
}

const std::map<std::string, std::string> kMissingValue{
    {"--config", "--config needs value. Specify alternative config directory to read."},
    {"--configs", "--configs needs value."},
    {"--instance", "--instance needs value. Specify a name."},
    {"--user-id", "--user-id needs value. Specify an UID value."},
    {"--group", "--group needs value. Specify an config group name."},
    {"--key", "--key needs value. Specify an config key name."},
    {"--log-level", "--log-level needs value."},
};

PlainRequest rejected(const std::string& message, bool showsUsage) {
    PlainRequest request;
    request.message = message;
    request.showsUsage = showsUsage;
    return request;
}

// The message about a text that is no user id, or nothing and the id in its plain form.
std::string complaintAboutId(const std::string& text, std::string& id) {
    std::size_t place = 0;
    while (place < text.size() && std::isspace(static_cast<unsigned char>(text[place])) != 0) {
        ++place;
    }
    const std::size_t start = place;
    place += place < text.size() && (text[place] == '-' || text[place] == '+') ? 1 : 0;
    const std::size_t digits = place;
    while (place < text.size() && std::isdigit(static_cast<unsigned char>(text[place])) != 0) {
        ++place;
    }
    if (place == digits) {
        return "--user-id: " + text + " does not look like an integer.";
    }
    errno = 0;
    const long long number = std::strtoll(text.substr(start, place - start).c_str(), nullptr, 10);
    if (errno != 0 || number != static_cast<std::int32_t>(number)) {
        return "--user-id: " + text + " is too big/small.";
    }
    id = std::to_string(number);
    return "";
}

PlainRequest readPlainly(const std::vector<std::string>& arguments) {
    if (arguments.size() < 2) {
        return rejected("Needs at least one argument!", true);
    }
    PlainRequest request;
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        const std::string& option = arguments[index];
        if (option.substr(0, 2) != "--" || option == "--") {
            break;
        }
        if (option == "--list") {
            request.settings["--list"] = "yes";
            continue;
        }
        if (!kMissingValue.contains(option)) {
            return rejected(option + ": unknown argument", false);
        }
        ++index;
        if (index == arguments.size()) {
            return rejected(kMissingValue.at(option), true);
        }
        const std::string& value = arguments[index];
        if (option == "--config") {
            request.directories.push_back(value);
        } else if (option == "--configs") {
            for (const std::string& piece : Fuzz::plainSplit(value, ':', -1, KeepEmpty)) {
                request.directories.push_back(piece);
            }
        } else if (option == "--user-id") {
            const std::string complaint = complaintAboutId(value, request.settings[option]);
            if (!complaint.empty()) {
                return rejected(complaint, true);
            }
        } else {
            request.settings[option] = value;
        }
    }
    if (request.settings["--key"].empty()) {
        return rejected("Config key is required! Please specify a config key to parse.", true);
    }
    if (request.directories.empty()) {
        request.directories.push_back("/etc/tarnwick.conf.d");
    }
    return request;
}

std::string usageText(const std::string& programName) {
    const Fuzz::CapturedStream output(std::cout);
    Tool::printUsage(programName);
    return output.text();
}

void checkCommandLine(const std::vector<std::string>& arguments) {
    const PlainRequest expected = readPlainly(arguments);
    const std::string usage = usageText(arguments.empty() ? "" : arguments[0]);
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    pointers.push_back(nullptr);

    std::optional<Tool::Options> options;
    std::string output;
    std::string errors;
    {
        const Fuzz::CapturedStream outputStream(std::cout);
        const Fuzz::CapturedStream errorStream(std::cerr);
        options = Tool::parseCommandLine(static_cast<int>(arguments.size()), pointers.data());
        output = outputStream.text();
        errors = errorStream.text();
    }
    Fuzz::checkEqual(expected.message.empty(), options.has_value(), "accepted");
    Fuzz::checkEqual(expected.message.empty() ? "" : expected.message + '\n', errors, "message");
    Fuzz::checkEqual(expected.showsUsage ? usage : "", output, "usage text");
    if (options) {
        Fuzz::checkEqual(described(expected), described(*options), "options");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments;
    for (const std::string& line : Fuzz::linesOf({reinterpret_cast<const char*>(data), size})) {
        arguments.emplace_back(line.c_str());  // An argument ends at its first NUL.
    }
    checkCommandLine(arguments);
    return 0;
}
