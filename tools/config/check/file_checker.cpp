#include "config/check/file_checker.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "config/display.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Kind = ConfigLine::Kind;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// --- Lines that the reader rejects ---

struct ProblemRow {
    Problem problem;
    RuleId rule;
};
constexpr std::array kProblems{
    ProblemRow{Problem::UnexpectedLine, RuleId::UnexpectedLine},
    ProblemRow{Problem::GroupNotClosed, RuleId::GroupNotClosed},
    ProblemRow{Problem::GroupCharacters, RuleId::GroupCharacters},
    ProblemRow{Problem::KeyWithoutValue, RuleId::KeyWithoutValue},
    ProblemRow{Problem::KeyCharacters, RuleId::KeyCharacters},
};

RuleId ruleFor(Problem problem) {
    for (const ProblemRow& row : kProblems) {
        if (row.problem == problem) {
            return row.rule;
        }
    }
    return RuleId::UnexpectedLine;
}

// The bytes at fault, and all of the character that they begin.
Span wholeCharacter(std::string_view line, Span span) {
    if (span.end == span.first) {
        return span;
    }
    return {span.first,
            std::max(span.end, span.first + firstCharacter(line.substr(span.first)).length)};
}

/// A rejected line, as the causes look at it.
struct Rejected {
    std::string_view line;
    std::string_view fault;  // the bytes at fault
};

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

struct CauseRow {
    bool (*applies)(const Rejected& rejected);
    std::string_view hint;
};
constexpr std::array kCauses{
    CauseRow{[](const Rejected& rejected) { return rejected.line.starts_with(kByteOrderMark); },
             "the line begins with a byte-order mark: save the file without it"},
    CauseRow{[](const Rejected& rejected) {
                 return rejected.line.ends_with('\r') && rejected.fault == "\r";
             },
             "the line ends in a carriage return: save the file with line feeds alone"},
    CauseRow{[](const Rejected& rejected) {
                 return isOneOf(rejected.fault,
                                {"\u2010", "\u2011", "\u2012", "\u2013", "\u2014", "\u2212"});
             },
             "a dash pasted from a document: write '-'"},
    CauseRow{[](const Rejected& rejected) {
                 return isOneOf(rejected.fault, {"\u2018", "\u2019", "\u201C", "\u201D", "\u201E",
                                                 "\u00AB", "\u00BB"});
             },
             "a quote pasted from a document: nothing is quoted here"},
    CauseRow{[](const Rejected& rejected) {
                 return isOneOf(rejected.fault, {"\u00A0", "\u00AD", "\u2007", "\u2009", "\u200B",
                                                 "\u200C", "\u200D", "\u202F", "\u2060", "\u3000"});
             },
             "a blank pasted from a document, maybe one that nobody sees: remove it"},
    CauseRow{[](const Rejected& rejected) {
                 return isOneOf(rejected.line.substr(0, 1), {" ", "\t", "\v", "\f"});
             },
             "nothing is indented or continued: remove the white space"},
    CauseRow{[](const Rejected& rejected) {
                 return rejected.line.starts_with('[') && !rejected.fault.empty() &&
                        rejected.line.find(']') < rejected.line.size() - 1;
             },
             "nothing may stand behind the ']'"},
};

std::string_view causeOf(const Rejected& rejected) {
    for (const CauseRow& row : kCauses) {
        if (row.applies(rejected)) {
            return row.hint;
        }
    }
    return {};
}

// A rejected line that was to be a group header, so that nobody knows whose the next keys are.
bool isMeantAsGroup(std::string_view line) {
    if (line.starts_with(kByteOrderMark)) {
        line.remove_prefix(kByteOrderMark.size());
    }
    const std::size_t first = line.find_first_not_of(" \t");
    return first != line.npos && line[first] == '[';
}

std::string inLines(std::uint64_t count) {
    return count == 1 ? "in 1 line" : "in " + std::to_string(count) + " lines";
}

}  // namespace

FileChecker::FileChecker(const KnownNames& names, ReferenceGraph& graph, const FaultSink& sink)
    : names_(names), sink_(sink), values_(graph, sink) {}

bool FileChecker::check(std::string_view path, LineReader& reader,
                        const std::function<bool()>& pause) {
    beginFile(path);
    std::string_view line;
    LineReader::Outcome outcome = LineReader::Outcome::Line;
    while (outcome == LineReader::Outcome::Line) {
        if (!reader.takeBufferedLine(line)) {
            if (!pause()) {
                return true;
            }
            outcome = reader.readLine(line);
        }
        if (outcome == LineReader::Outcome::Line ||
            outcome == LineReader::Outcome::UnterminatedLine) {
            takeLine(line, outcome == LineReader::Outcome::Line);
        }
    }
    endFile();
    return outcome != LineReader::Outcome::Failure;
}

void FileChecker::beginFile(std::string_view path) {
    path_ = path;
    number_ = 0;
    group_.clear();
    hasGroup_ = false;
    isGroupRejected_ = false;
    isGroupKnown_ = names_.hasGroup(group_);
    hasKeyWithoutGroup_ = false;
}

void FileChecker::endFile() {
    tellRepeated(returns_);
    tellRepeated(invalid_);
}

void FileChecker::takeLine(std::string_view text, bool isTerminated) {
    const SourceLine line{path_, ++number_, text};
    const ConfigLine parsed = parseConfigLine(text);
    noteBytes(line);
    switch (parsed.kind) {
        case Kind::Fault:
            reject(line, parsed);
            return;
        case Kind::Group:
            takeGroup(line, parsed);
            break;
        case Kind::Entry:
            takeEntry(line, parsed);
            break;
        case Kind::Blank:
        case Kind::Comment:
            break;
    }
    checkAccepted(line, isTerminated);
}

void FileChecker::noteBytes(const SourceLine& line) {
    note(returns_, line, line.text.find('\r'));
    note(invalid_, line, findInvalidUtf8(line.text));
}

void FileChecker::note(Repeated& repeated, const SourceLine& line, std::size_t offset) {
    if (offset == std::string_view::npos) {
        return;
    }
    if (++repeated.count == 1) {
        repeated.first = makeFault(repeated.rule, line, {offset, offset + 1});
    }
}

void FileChecker::tellRepeated(Repeated& repeated) {
    if (repeated.first) {
        repeated.first->message = wordsOf(repeated.rule, inLines(repeated.count));
        sink_(*repeated.first);
    }
    repeated = {repeated.rule};
}

void FileChecker::reject(const SourceLine& line, const ConfigLine& parsed) {
    const Span span = wholeCharacter(line.text, spanOf(parsed.name, line.text));
    const std::string_view bytes = line.text.substr(span.first, span.end - span.first);
    Fault fault = makeFault(ruleFor(parsed.problem), line, span, shortened(bytes));
    fault.hint = causeOf({line.text, bytes});
    sink_(fault);
    if (isMeantAsGroup(line.text)) {
        isGroupRejected_ = true;
        hasRejectedGroup_ = true;
    }
}

void FileChecker::takeGroup(const SourceLine& line, const ConfigLine& parsed) {
    group_ = parsed.name;
    hasGroup_ = true;
    isGroupRejected_ = false;
    isGroupKnown_ = names_.hasGroup(group_);
    if (!isGroupKnown_) {
        Fault fault = makeFault(RuleId::UnknownGroup, line, spanOf(parsed.name, line.text),
                                shortened(group_));
        fault.message += suggestion(group_, names_.groups());
        sink_(fault);
    }
}

void FileChecker::takeEntry(const SourceLine& line, const ConfigLine& parsed) {
    checkKey(line, parsed.name);
    values_.check({line, group_, std::string(parsed.name), parsed.value, !isGroupRejected_});
}

void FileChecker::checkKey(const SourceLine& line, std::string_view key) {
    const std::string name(key);
    const Span span = spanOf(key, line.text);
    if (!hasGroup_ && !isGroupRejected_ && !isGroupKnown_ && !hasKeyWithoutGroup_) {
        hasKeyWithoutGroup_ = true;
        Fault fault = makeFault(RuleId::UnknownGroup, line, span);
        fault.message = "no group stands above the key '" + shortened(key) + "'";
        fault.hint = "write a group such as '[Config]' above it";
        sink_(fault);
    }
    if (isGroupRejected_ || !isGroupKnown_) {
        return;
    }
    if (key.ends_with(' ') && !names_.lists(group_, name)) {
        sink_(makeFault(RuleId::KeyBlank, line, span, shortened(key)));
        return;
    }
    if (names_.hasKey(group_, name)) {
        return;
    }
    Fault fault = makeFault(RuleId::UnknownKey, line, span, shortened(key));
    fault.message += suggestion(key, names_.keys(group_));
    sink_(fault);
}

void FileChecker::checkAccepted(const SourceLine& line, bool isTerminated) {
    const std::size_t zero = line.text.find('\0');
    if (zero != line.text.npos) {
        sink_(makeFault(RuleId::NulByte, line, {zero, zero + 1}));
    }
    if (!isTerminated) {
        sink_(makeFault(RuleId::NoFinalNewline, line, {line.text.size(), line.text.size()}));
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
