#include "config_file.h"

#include <algorithm>

#include "logging/log_record.h"
#include "name_characters.h"
#include "support/character_set.h"

namespace Tarnwick::Parser {
namespace {

constexpr CharacterSet kNames(kNameCharacters);

bool isNameCharacter(char character) {
    return kNames.has(character);
}

bool isKeyLine(std::string_view line) {
    return isNameCharacter(line.front()) && line.front() != ' ';
}

}  // namespace

ConfigFileIterator::ConfigFileIterator(ConfigFile& file) : reader_(file.path), file_(&file) {
    readToNextEntry();
}

ConfigFileIterator::ConfigFileIterator(ConfigFile& file, AtEnd)
    : reader_(file.path), file_(&file), position_(reader_.skipToEnd()) {}

ConfigFileIterator ConfigFileIterator::end(ConfigFile& file) {
    return {file, AtEnd{}};
}

ConfigFileIterator& ConfigFileIterator::operator++() {
    readToNextEntry();
    return *this;
}

void ConfigFileIterator::readToNextEntry() {
    hasEntry_ = false;
    while (!hasEntry_) {
        const std::int64_t lineStart = reader_.offset();
        std::string_view line;
        if (!reader_.takeHeld(line) && !readOn(line)) {
            return;
        }
        position_ = lineStart;
        ++lineNumber_;
        readLine(line);
    }
}

// Reads a line that the buffer does not hold whole. Returns whether there was one.
bool ConfigFileIterator::readOn(std::string_view& line) {
    if (isExhausted_) {
        return false;
    }
    keepEntry();
    const LineReader::Outcome outcome =
        isUnreadable_ ? LineReader::Outcome::Failure : reader_.readOn(line);
    switch (outcome) {
        case LineReader::Outcome::Line:
            return true;
        case LineReader::Outcome::UnterminatedLine:
            isExhausted_ = true;
            return true;
        case LineReader::Outcome::EndOfFile:
            position_ = reader_.offset();
            return false;
        case LineReader::Outcome::Failure:
            isUnreadable_ = true;
            file_->failed = true;
            return false;
    }
    return false;
}

// The accessors go on showing the last entry when no other follows.
void ConfigFileIterator::keepEntry() {
    if (isKept_) {
        return;
    }
    kept_.assign(key_).append(value_);
    key_ = std::string_view(kept_).substr(0, key_.size());
    value_ = std::string_view(kept_).substr(key_.size());
    isKept_ = true;
}

void ConfigFileIterator::readLine(std::string_view line) {
    if (line.empty() || line.front() == '#' || line.front() == ';') {
        return;
    }
    if (line.front() == '[') {
        readGroup(line);
    } else if (isKeyLine(line)) {
        readKey(line);
    } else {
        reject("Unexpected line in ", line);
    }
}

void ConfigFileIterator::readGroup(std::string_view line) {
    if (line.back() != ']') {
        reject("Could not parse line as group in ", line);
        return;
    }
    const std::string_view name = line.substr(1, line.size() - 2);
    if (!consistsOf(name, kNames)) {
        reject("Group name contains invalid characters in ", line);
        return;
    }
    group_ = name;
    groupLine_ = lineNumber_;
}

void ConfigFileIterator::readKey(std::string_view line) {
    const auto nameEnd = std::find_if_not(line.begin(), line.end(), isNameCharacter);
    if (nameEnd == line.end() || *nameEnd != '=') {
        const bool hasName = line.find('=') != line.npos;
        reject(hasName ? "Key contains invalid characters in " : "Could not parse line as key in ",
               line);
        return;
    }
    const auto length = static_cast<std::size_t>(nameEnd - line.begin());
    key_ = line.substr(0, length);
    value_ = line.substr(length + 1);
    isKept_ = false;
    hasEntry_ = true;
}

void ConfigFileIterator::reject(const char* problem, std::string_view line) {
    // The line number is one raw character, see the header.
    Logging::logError(Logging::parserLogger)
        << problem << file_->path << " (" << static_cast<unsigned char>(lineNumber_) << "): '"
        << std::string(line) << "'";
    file_->failed = true;
}

}  // namespace Tarnwick::Parser
