#include "config_file.h"

#include <algorithm>

#include "name_characters.h"
#include "support/character_set.h"

namespace Tarnwick::Parser {
namespace {

using Kind = ConfigLine::Kind;

constexpr CharacterSet kNames(kNameCharacters);

bool isNameCharacter(char character) {
    return kNames.has(character);
}

bool isMark(char character) {
    return isNameCharacter(character) && character != ' ';
}

// The number of leading characters of `text` for which `belongs` is true.
template <typename Predicate>
std::size_t lengthOf(std::string_view text, Predicate belongs) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), belongs) -
                                    text.begin());
}

ConfigLine fault(Problem problem, std::string_view bytes) {
    return {.kind = Kind::Fault, .problem = problem, .name = bytes};
}

ConfigLine parseGroup(std::string_view line) {
    if (line.back() != ']') {
        // What stands behind the last ']' is too much; without one, the end of the line lacks it.
        const std::size_t bracket = std::min(line.rfind(']'), line.size() - 1);
        return fault(Problem::GroupNotClosed, line.substr(bracket + 1));
    }
    const std::string_view name = line.substr(1, line.size() - 2);
    const std::size_t length = lengthOf(name, isNameCharacter);
    if (length < name.size()) {
        return fault(Problem::GroupCharacters, name.substr(length, 1));
    }
    return {.kind = Kind::Group, .name = name};
}

ConfigLine parseKey(std::string_view line) {
    const std::size_t length = lengthOf(line, isNameCharacter);
    if (length < line.size() && line[length] == '=') {
        return {
            .kind = Kind::Entry, .name = line.substr(0, length), .value = line.substr(length + 1)};
    }
    if (line.find('=') != line.npos) {
        return fault(Problem::KeyCharacters, line.substr(length, 1));
    }
    return fault(Problem::KeyWithoutValue, line.substr(lengthOf(line, isMark), 0));
}

}  // namespace

ConfigLine parseConfigLine(std::string_view line) {
    if (line.empty()) {
        return {};
    }
    const char first = line.front();
    if (first == '#' || first == ';') {
        return {.kind = Kind::Comment};
    }
    if (first == '[') {
        return parseGroup(line);
    }
    if (isMark(first)) {
        return parseKey(line);
    }
    return fault(Problem::UnexpectedLine, line.substr(0, 1));
}

ConfigFileIterator::ConfigFileIterator(ConfigFile& file, DiagnosticSink sink)
    : reader_(file.path), file_(&file), sink_(std::move(sink)) {
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
        if (!nextLine(line)) {
            return;
        }
        position_ = lineStart;
        ++lineNumber_;
        takeLine(line);
    }
}

// Returns whether there was a line.
bool ConfigFileIterator::nextLine(std::string_view& line) {
    return reader_.takeBufferedLine(line) || (state_ != State::Unterminated && readLine(line));
}

// Reads a line that the buffer does not hold whole. Returns whether there was one.
bool ConfigFileIterator::readLine(std::string_view& line) {
    saveEntry();
    switch (state_ == State::Failed ? LineReader::Outcome::Failure : reader_.readLine(line)) {
        case LineReader::Outcome::Line:
            return true;
        case LineReader::Outcome::UnterminatedLine:
            state_ = State::Unterminated;
            return true;
        case LineReader::Outcome::EndOfFile:
            position_ = reader_.offset();
            return false;
        case LineReader::Outcome::Failure:
            fail();
            return false;
    }
    return false;
}

// The accessors go on showing the last entry when no other follows.
void ConfigFileIterator::saveEntry() {
    if (!isSaved_) {
        saved_.assign(key_).append(value_);
        key_ = std::string_view(saved_).substr(0, key_.size());
        value_ = std::string_view(saved_).substr(key_.size());
        isSaved_ = true;
    }
}

void ConfigFileIterator::fail() {
    if (state_ != State::Failed) {
        state_ = State::Failed;
        sink_({.problem = Problem::FileUnreadable, .place = {.file = file_->path}});
    }
    file_->failed = true;
}

void ConfigFileIterator::takeLine(std::string_view line) {
    const ConfigLine parsed = parseConfigLine(line);
    if (parsed.kind == Kind::Entry) {
        key_ = parsed.name;
        value_ = parsed.value;
        isSaved_ = false;
        hasEntry_ = true;
    } else if (parsed.kind == Kind::Group) {
        group_ = parsed.name;
    } else if (parsed.kind == Kind::Fault) {
        reject(parsed, line);
    }
}

void ConfigFileIterator::reject(const ConfigLine& fault, std::string_view line) {
    file_->failed = true;
    const auto first = static_cast<std::uint32_t>(fault.name.data() - line.data() + 1);
    const auto length = static_cast<std::uint32_t>(fault.name.size());
    sink_({.problem = fault.problem,
           .place = {.file = file_->path,
                     .line = lineNumber_,
                     .firstColumn = first,
                     .lastColumn = first + std::max(length, 1U) - 1},
           .text = line});
}

}  // namespace Tarnwick::Parser
