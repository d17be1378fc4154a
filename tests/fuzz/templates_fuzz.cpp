// The template language: tokens, expansion, expansion of the result, resolution of references.
// Input: the text of a value. The differential tests compare what comes out with a second
// implementation; here it is what must hold of any text.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "config_parser.h"
#include "support/captured_streams.h"
#include "support/check.h"
#include "support/surroundings.h"
#include "template_text.h"

using namespace Tarnwick::Parser;
using Fuzz::shown;

namespace {

constexpr const char* kTextBefore = "text before";

std::string described(const ConfigValue& value) {
    std::string text = shown(value.text) + ' ' + std::to_string(value.hasReferences);
    if (value.references) {
        Fuzz::check(value.references->targets.size() == value.references->positions.size(),
                    "there is a position per target");
        for (std::size_t index = 0; index < value.references->targets.size(); ++index) {
            const auto& [group, key] = value.references->targets[index];
            text += ' ' + std::to_string(value.references->positions[index]) + ':' + shown(group) +
                    '/' + shown(key);
        }
    }
    return text;
}

// Returns whether the text has a fault of form.
bool checkTokens(const std::string& text) {
    TemplateCursor cursor(text);
    TemplateToken token;
    std::size_t end = 0;
    bool isFaulty = false;
    while (cursor.next(token)) {
        Fuzz::check(token.first == end && token.end > token.first && token.end <= text.size(),
                    "tokens follow each other without a gap");
        end = token.end;
        isFaulty = isFaulty || token.kind == TemplateToken::Kind::Fault;
    }
    Fuzz::check(end == text.size(), "tokens make up the text");
    return isFaulty;
}

void addOtherKeys(ConfigParser& parser) {
    const std::pair<const char*, const char*> keys[] = {
        {"B", "plain"},
        {"Self", "x${config:A/Self}"},
        {"Two", "<${config:A/B}|${config:A/B}>"},
        {"Fan", "${config:A/Two}${config:A/Two}${config:A/Two}${config:A/Two}"},
        {"Odd", " \t x${config:A/B}"},
        {"Text", "${config:Text/Text}"},
    };
    for (const auto& [key, text] : keys) {
        ConfigValue value;
        Fuzz::check(parser.parseTemplates(text, value), "the other keys are good");
        parser.appendValue("A", key, value);
    }
}

// Returns nothing when the text fails or is refused.
std::optional<ConfigValue> expanded(const ConfigParser& parser, const std::string& text) {
    ConfigValue value;
    value.text = kTextBefore;
    const Fuzz::CapturedLog log;
    try {
        if (parser.parseTemplates(text, value)) {
            Fuzz::checkEqual("", log.text(), "a text that expands is not complained about");
            return value;
        }
        Fuzz::check(!log.text().empty(), "a text that fails is complained about");
    } catch (const std::length_error&) {
        Fuzz::checkEqual("", log.text(), "a refused text is told by the exception alone");
    }
    Fuzz::checkEqual(kTextBefore, value.text, "a text that fails changes nothing");
    return std::nullopt;
}

void checkAnotherExpansion(const ConfigParser& parser, ConfigValue value) {
    const Fuzz::CapturedLog log;
    try {
        if (!parser.reparseValue(value)) {
            Fuzz::checkEqual(described(ConfigValue()), described(value), "a failure clears");
        }
    } catch (const std::length_error&) {
        Fuzz::checkEqual("", log.text(), "a refused text is told by the exception alone");
    }
}

// How resolving ends, in words.
std::string resolved(const ConfigParser& parser, const ConfigValue& value) {
    const Fuzz::CapturedLog log;
    std::string text = "anything";
    try {
        parser.resolveValue(value, text);
    } catch (const std::out_of_range&) {
        return "out of range";
    }
    Fuzz::check(log.text().empty() || text.empty(), "too many references leave no text");
    return shown(text) + log.text();
}

void checkText(const std::string& text) {
    ConfigParser parser(-1);
    Fuzz::setVariables(parser);
    addOtherKeys(parser);

    const bool isFaulty = checkTokens(text);
    const std::optional<ConfigValue> value = expanded(parser, text);
    if (!value) {
        return;
    }
    Fuzz::check(!isFaulty, "a text with a fault of form does not expand");
    Fuzz::checkEqual(described(*value), described(expanded(parser, text).value()),
                     "expanding twice gives the same");
    checkAnotherExpansion(parser, *value);
    parser.replaceValues("Text", "Text", *value);
    Fuzz::checkEqual(resolved(parser, *value), resolved(parser, *value),
                     "resolving changes nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!Fuzz::namesDevices(text)) {
        checkText(text);
    }
    return 0;
}
