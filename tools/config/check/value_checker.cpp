#include "config/check/value_checker.h"

#include <algorithm>
#include <array>

#include "active_user.h"
#include "config/display.h"
#include "logging/logger_config.h"
#include "logging/logger_state.h"
#include "mount_entry.h"
#include "support/split_string.h"
#include "support/trim.h"
#include "support/value_conversion.h"
#include "template_expander.h"
#include "template_variables.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Kind = TemplateToken::Kind;

// --- A word in place of every source and variable ---

constexpr const char* kWord = "x";

std::optional<std::string> readWord(const TemplateToken&, std::int32_t) {
    return kWord;
}

constexpr SourceReaders kWords{readWord, readWord, readWord, readWord, readWord, readWord};

std::map<std::string, std::string> wordsOfVariables() {
    std::map<std::string, std::string> words;
    for (const Tool::TemplateVariable& variable : Tool::templateVariables()) {
        words.emplace(variable.name, kWord);
    }
    return words;
}

// As in a shell. Empty: what the rule says will do.
std::string_view hintForDollar(std::string_view behind) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";
    if (behind.starts_with('(')) {
        return "write '$$' for a '$', '${system:COMMAND}' for a command";
    }
    const bool isName = !behind.empty() && kLetters.find(behind.front()) != kLetters.npos;
    return isName ? "write '$$' for a '$', '${NAME}' for a variable" : "";
}

bool isSource(std::string_view name) {
    const auto names = templateSourceNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isGeneratedUserKey(const Entry& entry) {
    const auto keys = Tool::generatedUserKeys();
    return entry.group == kGroupGeneratedConfig &&
           std::any_of(keys.begin(), keys.end(),
                       [&](const std::string* key) { return *key == entry.key; });
}

// --- Texts without templates that somebody reads ---

using Complaint = std::optional<std::string>;

Complaint complainOfNumber(const std::string& text) {
    bool isNumber = false;
    (void)parseInt(text, &isNumber);
    return isNumber ? Complaint() : shortened(text);
}

Complaint complainOfMount(const std::string& text) {
    const std::string fault = findMountFault(text);
    return fault.empty() ? Complaint() : shortened(fault);
}

Complaint complainOfLevel(const std::string& text) {
    return Logging::LoggerConfig::isLevel(text) ? Complaint() : shortened(text);
}

Complaint complainOfTarget(const std::string& text) {
    return Logging::LoggerConfig::isTarget(text) ? Complaint() : shortened(text);
}

struct TypeRow {
    RuleId rule;
    bool (*isOf)(const Entry& entry);
    Complaint (*complain)(const std::string& text);
};
constexpr std::array kTypes{
    TypeRow{RuleId::BadNumber,
            [](const Entry& entry) {
                return entry.group == kGroupGeneratedConfig &&
                       (entry.key == kKeyBaseUid || entry.key == kKeyUserId);
            },
            complainOfNumber},
    TypeRow{
        RuleId::MountEntry,
        [](const Entry& entry) { return entry.group == kGroupConfig && entry.key == kKeyMounts; },
        complainOfMount},
    TypeRow{RuleId::LoggingTarget,
            [](const Entry& entry) {
                return entry.group == Logging::kLoggingGroup && entry.key == Logging::kTargetKey;
            },
            complainOfTarget},
    TypeRow{RuleId::LoggingLevel,
            [](const Entry& entry) {
                // A key that ends in a blank is told as such: nobody knows what was meant.
                return entry.group == Logging::kLoggingGroup && entry.key != Logging::kTargetKey &&
                       !entry.key.ends_with(' ');
            },
            complainOfLevel},
};

// --- White space ---

std::string_view withoutSpace(std::string_view text) {
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isSpace);
    return {first, last.base()};
}

}  // namespace

ValueChecker::ValueChecker(ReferenceGraph& graph, const FaultSink& sink)
    : graph_(graph), sink_(sink), variables_(wordsOfVariables()) {}

void ValueChecker::check(const Entry& entry) {
    line_.reset();
    braceEnd_.reset();
    hasComment_ = false;
    if (entry.value.empty()) {
        if (entry.isOfKnownGroup) {
            graph_.unset(entry.group, entry.key);
        }
        return;
    }
    checkQuotes(entry);
    std::string_view rest = entry.value;
    for (std::string_view piece; takePiece(rest, ';', piece);) {
        if (!piece.empty()) {
            checkPiece(entry, piece);
        }
    }
}

void ValueChecker::checkQuotes(const Entry& entry) {
    bool hasQuotedPiece = false;
    std::string_view rest = entry.value;
    for (std::string_view piece; takePiece(rest, ';', piece);) {
        hasQuotedPiece = reportQuoted(entry, piece) || hasQuotedPiece;
    }
    if (!hasQuotedPiece) {
        (void)reportQuoted(entry, entry.value);  // a ';' between quotes ends a value all the same
    }
}

bool ValueChecker::reportQuoted(const Entry& entry, std::string_view text) {
    const std::string_view inner = withoutSpace(text);
    const bool isQuoted = inner.size() > 1 && inner.front() == inner.back() &&
                          (inner.front() == '"' || inner.front() == '\'');
    if (isQuoted) {
        report(RuleId::QuotedValue, entry, spanOf(inner, entry.line.text));
    }
    return isQuoted;
}

void ValueChecker::checkPiece(const Entry& entry, std::string_view text) {
    Piece piece{.text = text, .first = spanOf(text, entry.line.text).first, .references = {}};
    readTemplates(entry, piece);
    if (piece.isFaulty) {
        keepFaulty(entry);
    } else {
        store(entry, piece);
    }
}

void ValueChecker::readTemplates(const Entry& entry, Piece& piece) {
    TemplateCursor cursor(piece.text);
    for (TemplateToken token; cursor.next(token);) {
        takeToken(entry, piece, token);
    }
}

void ValueChecker::takeToken(const Entry& entry, Piece& piece, const TemplateToken& token) {
    piece.hasTemplates = piece.hasTemplates || token.kind != Kind::Literal;
    if (token.kind != Kind::Reference && !piece.hasText) {
        piece.hasText = true;
        piece.beginsWithSpace = token.kind == Kind::Literal && isSpace(token.text.front());
    }
    switch (token.kind) {
        case Kind::Literal:
            checkComment(entry, piece, token);
            break;
        case Kind::Variable:
            takeVariable(entry, piece, token);
            break;
        case Kind::Source:
            piece.lastWord = token.end;
            break;
        case Kind::Reference:
            piece.references.push_back(
                {token.group, token.key, {piece.first + token.first, piece.first + token.end}});
            break;
        case Kind::Fault:
            takeFault(entry, piece, token);
            break;
    }
}

void ValueChecker::takeVariable(const Entry& entry, Piece& piece, const TemplateToken& token) {
    const Span span{piece.first + token.first, piece.first + token.end};
    if (!variables_.contains(std::string(token.name))) {
        piece.isFaulty = true;
        Fault fault = makeFault(RuleId::UnknownVariable, entry.line, span, shortened(token.name));
        fault.message += suggestedVariable(token.name);
        if (isSource(token.name)) {
            fault.hint = "a source has to know what to read: write '${SOURCE:NAME}'";
        }
        sink_(fault);
        return;
    }
    piece.lastWord = token.end;
    if (entry.isOfKnownGroup && isGeneratedUserKey(entry)) {
        report(RuleId::GeneratedTemplate, entry, span, entry.key);
    }
}

void ValueChecker::takeFault(const Entry& entry, Piece& piece, const TemplateToken& token) {
    piece.isFaulty = true;
    const Span span{piece.first + token.first, piece.first + token.end};
    switch (token.problem) {
        case Problem::TemplateDollar:
            reportWithHint(RuleId::TemplateDollar, entry, span, {},
                           hintForDollar(entry.line.text.substr(span.end)));
            break;
        case Problem::TemplateNotClosed: {
            reportWithHint(
                RuleId::TemplateNotClosed, entry, {span.end, span.end}, {},
                hasBraceBehind(entry, span.end) ? "a ';' ends the value, inside braces too" : "");
            break;
        }
        case Problem::UnknownSource: {
            const std::string_view source = token.name.substr(0, token.name.find(':'));
            Fault fault = makeFault(RuleId::UnknownSource, entry.line, span, shortened(source));
            fault.message += suggestedSource(source);
            sink_(fault);
            break;
        }
        case Problem::ReferenceForm:
            report(RuleId::ReferenceForm, entry, span, shortened(token.argument));
            break;
        default:
            report(RuleId::EnvironmentFileForm, entry, span, shortened(token.argument));
            break;
    }
}

// Looks through the line once, however many templates are not closed in it.
bool ValueChecker::hasBraceBehind(const Entry& entry, std::size_t offset) {
    if (!braceEnd_) {
        braceEnd_ = entry.line.text.rfind('}') + 1;  // 0: there is none
    }
    return *braceEnd_ > offset;
}

void ValueChecker::checkComment(const Entry& entry, const Piece& piece,
                                const TemplateToken& literal) {
    for (std::size_t from = 1; !hasComment_;) {
        const std::size_t mark = literal.text.find('#', from);
        if (mark == literal.text.npos) {
            return;
        }
        const char before = literal.text[mark - 1];
        if (before == ' ' || before == '\t') {
            hasComment_ = true;
            const std::size_t first = piece.first + literal.first + mark;
            report(RuleId::CommentInValue, entry, {first, first + 1});
        }
        from = mark + 1;
    }
}

void ValueChecker::store(const Entry& entry, const Piece& piece) {
    ConfigValue value;
    try {
        const DiagnosticSink nobody = [](const Diagnostic&) {};
        if (!TemplateExpander({variables_, -1, kWords}, nobody).expand(piece.text, value)) {
            return;
        }
    } catch (const BlankText&) {
        const bool hasReturn = piece.text.find('\r') != piece.text.npos;
        reportWithHint(RuleId::BlankValue, entry, {piece.first, piece.first + piece.text.size()},
                       piece.references.empty() ? "white space" : "white space and references",
                       hasReturn ? ruleOf(RuleId::CarriageReturn).hint : "");
        keepFaulty(entry);
        return;
    }
    keep(entry, piece, value);
    if (piece.hasTemplates || !entry.isOfKnownGroup) {
        return;
    }
    for (const TypeRow& row : kTypes) {
        const Complaint complaint = row.isOf(entry) ? row.complain(value.text) : std::nullopt;
        if (complaint) {
            report(row.rule, entry, spanOf(withoutSpace(piece.text), entry.line.text), *complaint);
        }
    }
}

void ValueChecker::keep(const Entry& entry, const Piece& piece, const ConfigValue& value) {
    if (!entry.isOfKnownGroup) {
        return;
    }
    if (piece.references.empty()) {
        graph_.addPlain(entry.group, entry.key);
        return;
    }
    if (!line_) {
        line_ = graph_.keepLine(entry.line);
    }
    graph_.add(entry.group, entry.key, *line_, piece.references, shiftOf(piece, value));
}

// A key at fault is set, and nothing else is known of it: who refers to it has no fault of its own.
void ValueChecker::keepFaulty(const Entry& entry) {
    if (entry.isOfKnownGroup) {
        graph_.addPlain(entry.group, entry.key);
    }
}

// White space trimmed in front is not subtracted from the positions of references. A position past
// the end makes the resolution fail; a word of unknown length behind it may still prevent that.
std::optional<Shift> ValueChecker::shiftOf(const Piece& piece, const ConfigValue& value) {
    const std::vector<std::uint32_t>& positions = value.references->positions;
    for (std::uint32_t index = 0; index < positions.size(); ++index) {
        const bool hasWordBehind = piece.first + piece.lastWord > piece.references[index].span.end;
        if (positions[index] > value.text.size() && !hasWordBehind) {
            return Shift{Severity::Error, index};
        }
    }
    return piece.beginsWithSpace ? std::optional(Shift{Severity::Warning, 0}) : std::nullopt;
}

void ValueChecker::report(RuleId rule, const Entry& entry, Span span, std::string_view name) {
    sink_(makeFault(rule, entry.line, span, name));
}

void ValueChecker::reportWithHint(RuleId rule, const Entry& entry, Span span, std::string_view name,
                                  std::string_view hint) {
    Fault fault = makeFault(rule, entry.line, span, name);
    if (!hint.empty()) {
        fault.hint = hint;
    }
    sink_(fault);
}

}  // namespace Tarnwick::Parser::ConfigTool
