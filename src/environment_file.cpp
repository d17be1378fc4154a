#include "environment_file.h"

#include "logging/log_record.h"
#include "support/line_reader.h"
#include "support/split_string.h"

namespace Tarnwick::Parser {
namespace {

using Logging::logError;
using Logging::parserLogger;

std::string withoutQuotes(std::string value) {
    if (value.size() > 1 && value.starts_with('"') && value.ends_with('"')) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

// The value that the line assigns to `name`, if it does.
std::optional<std::string> assignedValue(std::string_view line, const std::string& name) {
    const std::vector<std::string> parts = splitString(line, '=', 1, KeepEmptyAtEnd);
    if (parts.size() != 2 || trim(parts[0]) != name) {
        return std::nullopt;
    }
    return withoutQuotes(trim(parts[1]));
}

bool isLine(LineReader::Outcome outcome) {
    return outcome == LineReader::Outcome::Line || outcome == LineReader::Outcome::UnterminatedLine;
}

}  // namespace

std::optional<std::string> readEnvFile(const std::string& path, const std::string& name,
                                       bool report) {
    LineReader reader(path);
    std::optional<std::string> value;
    std::string_view line;
    LineReader::Outcome outcome = reader.next(line);
    for (; isLine(outcome); outcome = reader.next(line)) {
        try {
            if (auto assigned = assignedValue(line, name)) {
                value = std::move(assigned);
            }
        } catch (const BlankText& error) {
            throw BlankAssignment(path, error.what());
        }
    }
    if (report && outcome == LineReader::Outcome::Failure) {
        logError(parserLogger) << "Reading environment file '" << path << "' failed";
    } else if (report && !value) {
        logError(parserLogger) << "No '" << name << "' variable specified in environment file '"
                               << path << "'";
    }
    return value;
}

}  // namespace Tarnwick::Parser
