// example-origins: prints where each value of a configuration directory comes from.
//
//     example-origins DIRECTORY
//
// A listener hears what the load does, in the order of reading.

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include <tarnwick/config_parser.h>
#include <tarnwick/logging/logger_config.h>

namespace {

using namespace Tarnwick::Parser;

// "FILE:LINE: GROUP/KEY = ", the text as it is written.
void printPiece(const LoadEvent& event) {
    std::cout << event.place.file << ':' << event.place.line << ": " << event.group << '/'
              << event.key << " = " << event.piece;
}

void printTemplates(const LoadEvent& event) {
    for (const TemplateOutcome& outcome : event.templates) {
        std::cout << "    ${" << outcome.name << "}";
        if (outcome.result == TemplateResult::Resolved) {
            std::cout << " is '" << outcome.text << "'\n";
        } else if (outcome.result == TemplateResult::Reference) {
            std::cout << " is looked up later\n";
        } else {
            std::cout << " has no text\n";
        }
    }
}

void printEvent(const LoadEvent& event) {
    switch (event.kind) {
        case LoadEvent::Kind::Stored:
            printPiece(event);
            std::cout << '\n';
            printTemplates(event);
            break;
        case LoadEvent::Kind::Dropped:
            printPiece(event);
            std::cout << " (dropped)\n";
            printTemplates(event);
            break;
        case LoadEvent::Kind::Removed:
            printPiece(event);
            std::cout << "(" << event.count << " removed)\n";
            break;
        case LoadEvent::Kind::Fault:  // has been logged, if it is worth a record
        case LoadEvent::Kind::File:
            break;
    }
}

int printOrigins(const std::string& directory) {
    ConfigParser parser(-1);
    const char* home = std::getenv("HOME");
    parser.setVariable("HOME", home != nullptr ? home : "");
    if (parser.loadConfigs({directory}, printEvent) != LoadResult::Ok) {
        std::cerr << "No configuration could be loaded from " << directory << '\n';
        return EXIT_FAILURE;
    }
    return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: example-origins DIRECTORY\n";
        return EXIT_FAILURE;
    }
    Logging::parserLogger->setTarget(Logging::LoggerConfig::TargetStderr);
    try {
        return printOrigins(arguments[1]);
    } catch (const std::exception& error) {
        std::cerr << "Loading failed: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
