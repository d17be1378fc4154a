#include "config/explain/reference_trace.h"

#include <algorithm>
#include <stdexcept>

#include "config/check/fault.h"
#include "reference_resolver.h"
#include "support/trim.h"
#include "template_text.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Kind = Trace::Kind;

std::string shiftText(const ConfigValue& value, std::size_t index, const char* words) {
    const auto& [group, key] = value.references->targets.at(index);
    return wordsOf(RuleId::ReferenceShift, "'${config:" + group + '/' + key + "}' " + words) +
           "; " + std::string(ruleOf(RuleId::ReferenceShift).hint);
}

// Which reference of the value stands past its end.
std::string lostReference(const ConfigValue& value) {
    const auto& positions = value.references->positions;
    const auto first =
        std::find_if(positions.begin(), positions.end(),
                     [&](std::uint32_t position) { return position > value.text.size(); });
    return shiftText(value, static_cast<std::size_t>(first - positions.begin()),
                     "then stands past its end");
}

// Whether the text without its references begins with white space, which trimming takes away.
bool beginsWithSpace(std::string_view written, std::span<const TemplateRecord> templates) {
    TemplateCursor cursor(written);
    for (TemplateToken token; cursor.next(token);) {
        std::string_view text = token.text;
        if (token.kind != TemplateToken::Kind::Literal) {
            text = templates.empty() ? std::string_view() : templates.front().text;
            templates = templates.subspan(templates.empty() ? 0 : 1);
        }
        if (!text.empty()) {
            return isSpace(text.front());
        }
    }
    return false;
}

// What trimming does to references of a value that can be filled all the same.
std::string movedReference(const ConfigValue& value, std::string_view written,
                           std::span<const TemplateRecord> templates) {
    const bool isMoved = value.references && beginsWithSpace(written, templates);
    return isMoved ? shiftText(value, 0, "no longer stands where it was written") : "";
}

std::string missingText(const LastWord* word) {
    if (word == nullptr) {
        return "empty: no file sets it";
    }
    const std::string place = placeText(word->origin);
    if (word->kind == LastWord::Kind::Dropped) {
        return "empty: " + place + " was dropped: " + word->details->reason;
    }
    return "empty: " + place + " unsets it";
}

std::span<const TemplateRecord> templatesOf(const LastWord* word) {
    if (word == nullptr || !word->details) {
        return {};
    }
    return word->details->templates;
}

Trace sourceTrace(const TemplateRecord& record, const UserStory& story) {
    return {.kind = Kind::Source,
            .name = record.name,
            .text = record.text,
            .words = sourceText(record.name, story)};
}

std::string_view writtenOf(const LastWord* word) {
    return word != nullptr && word->details ? std::string_view(word->details->piece)
                                            : std::string_view();
}

// The texts of the references, or nothing when one cannot be filled.
std::optional<std::vector<std::string>> textsOf(const std::vector<Trace>& parts) {
    std::vector<std::string> texts;
    for (const Trace& part : parts) {
        if (!part.text) {
            return std::nullopt;
        }
        if (part.kind != Kind::Source) {
            texts.push_back(*part.text);
        }
    }
    return texts;
}

// The first of the parts, or of their parts, that cannot be filled for a reason of its own.
const Trace* findFault(const std::vector<Trace>& parts) {
    for (const Trace& part : parts) {
        if (part.kind == Kind::Circle || part.kind == Kind::TooMany ||
            (!part.shift.empty() && !part.text)) {
            return &part;
        }
        if (const Trace* fault = findFault(part.parts)) {
            return fault;
        }
    }
    return nullptr;
}

}  // namespace

std::string failureOf(const TracedValue& value) {
    if (!value.shift.empty()) {
        return value.shift;
    }
    const Trace* fault = findFault(value.parts);
    if (fault == nullptr) {
        return {};
    }
    return fault->shift.empty() ? fault->words : fault->name + ": " + fault->shift;
}

std::vector<Trace> unaskedTraces(std::span<const TemplateRecord> templates,
                                 const UserStory& story) {
    std::vector<Trace> traces;
    for (const TemplateRecord& record : templates) {
        if (record.result == TemplateResult::Resolved) {
            traces.push_back(sourceTrace(record, story));
        } else if (record.result == TemplateResult::Reference) {
            const TemplateToken token = classifyTemplate(record.name);
            traces.push_back({.kind = Kind::NotFilled,
                              .name = std::string(token.group) + '/' + std::string(token.key),
                              .words = "not filled: the value is not asked for"});
        }
    }
    return traces;
}

TracedValue ReferenceTracer::trace(const ConfigValue& value,
                                   std::span<const TemplateRecord> templates,
                                   std::string_view written) {
    visits_ = 0;
    return visit(value, templates, written);
}

// Recursion ends after the visits that one request may make.
TracedValue ReferenceTracer::visit(const ConfigValue& value,
                                   std::span<const TemplateRecord> templates,
                                   std::string_view written) {
    ++visits_;
    path_.push_back(&value);
    TracedValue traced;
    for (const TemplateRecord& record : templates) {
        const TemplateToken token = classifyTemplate(record.name);
        traced.parts.push_back(
            record.result == TemplateResult::Reference
                ? visitReference(std::string(token.group), std::string(token.key))
                : sourceTrace(record, story_));
    }
    path_.pop_back();
    if (const auto texts = textsOf(traced.parts)) {
        try {
            traced.text = value.applyReferences(*texts);
            traced.shift = movedReference(value, written, templates);
        } catch (const std::out_of_range&) {
            traced.shift = lostReference(value);
        }
    }
    return traced;
}

Trace ReferenceTracer::visitReference(const std::string& group, const std::string& key) {
    Trace trace{.kind = Kind::Filled, .name = group + '/' + key};
    const ConfigValue* value = currentValue(group, key);
    const LastWord* word = words_.find(group, key);
    if (value == nullptr) {
        trace.kind = Kind::Missing;
        trace.text = "";
        trace.words = missingText(word);
        return trace;
    }
    trace.word = word;
    if (std::find(path_.begin(), path_.end(), value) != path_.end()) {
        trace.kind = Kind::Circle;
        trace.words = "a circle: leads back to " + trace.name;
    } else if (visits_ == kMostVisits) {
        trace.kind = Kind::TooMany;
        trace.words =
            "more than " + std::to_string(kMostVisits - 1) + " other values: a request stops here";
    } else {
        visitTarget(*value, trace);
    }
    return trace;
}

void ReferenceTracer::visitTarget(const ConfigValue& value, Trace& trace) {
    TracedValue traced = visit(value, templatesOf(trace.word), writtenOf(trace.word));
    trace.text = std::move(traced.text);
    trace.parts = std::move(traced.parts);
    trace.shift = std::move(traced.shift);
}

const ConfigValue* ReferenceTracer::currentValue(const std::string& group, const std::string& key) {
    if (!parser_.hasKey(group, key)) {
        return nullptr;
    }
    const std::vector<ConfigValue>& values = parser_.valueList(group, key);
    return values.empty() ? nullptr : &values.back();
}

}  // namespace Tarnwick::Parser::ConfigTool
