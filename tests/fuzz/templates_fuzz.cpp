// The template language: expansion, expansion of the result, resolution of references.
// Input: the text of a value.

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "config_parser.h"
#include "plain/store.h"
#include "plain/templates.h"
#include "support/captured_streams.h"
#include "support/check.h"

using namespace Tarnwick::Parser;
using Fuzz::PlainOutcome;
using Fuzz::PlainValue;
using Fuzz::shown;

namespace {

constexpr const char* kTextBefore = "text before";

std::string described(const PlainValue& value) {
    std::string text = shown(value.text);
    for (std::size_t index = 0; index < value.targets.size(); ++index) {
        text += ' ' + std::to_string(value.positions[index]) + ':' +
                shown(value.targets[index].first) + '/' + shown(value.targets[index].second);
    }
    return text;
}

PlainValue plain(const ConfigValue& value) {
    PlainValue made{value.text, {}, {}};
    if (value.references) {
        made.targets = value.references->targets;
        made.positions.assign(value.references->positions.begin(),
                              value.references->positions.end());
    }
    Fuzz::check(made.targets.size() == made.positions.size(), "there is a position per target");
    Fuzz::checkEqual(made.targets.empty() ? 0 : 1, value.hasReferences, "marked by references");
    return made;
}

/// The other keys that references can lead to.
void addOtherKeys(ConfigParser& parser, Fuzz::PlainStore& store) {
    const std::pair<Fuzz::PlainKey, std::string> keys[] = {
        {{"A", "B"}, "plain"},
        {{"A", "Self"}, "x${config:A/Self}"},
        {{"A", "Two"}, "<${config:A/B}|${config:A/B}>"},
        {{"A", "Fan"}, "${config:A/Two}${config:A/Two}${config:A/Two}${config:A/Two}"},
        {{"A", "Odd"}, " \t x${config:A/B}"},
        {{"A", "Text"}, "${config:Text/Text}"},
    };
    for (const auto& [key, text] : keys) {
        ConfigValue value;
        Fuzz::check(parser.parseTemplates(text, value), "the other keys are good");
        parser.appendValue(key.first, key.second, value);
        store.values[key] = {Fuzz::expandPlainly(text).value};
    }
}

template <typename Action>
PlainOutcome outcomeOf(const Action& action) {
    try {
        return action() ? PlainOutcome::Expanded : PlainOutcome::Failed;
    } catch (const std::length_error&) {
        return PlainOutcome::Refused;
    }
}

void checkOutcome(PlainOutcome expected, PlainOutcome seen, const std::string& what) {
    Fuzz::checkEqual(static_cast<int>(expected), static_cast<int>(seen),
                     what + " is expanded (0), fails (1) or is refused (2)");
}

// Returns the value when the text can be expanded.
bool checkExpansion(const ConfigParser& parser, const std::string& text, ConfigValue& value,
                    PlainValue& expectedValue) {
    const Fuzz::PlainExpansion expected = Fuzz::expandPlainly(text);
    const Fuzz::CapturedLog log;
    value.text = kTextBefore;
    checkOutcome(expected.outcome, outcomeOf([&] { return parser.parseTemplates(text, value); }),
                 shown(text));
    Fuzz::checkEqual(expected.log, log.text(), "the log of expanding " + shown(text));
    if (expected.outcome != PlainOutcome::Expanded) {
        Fuzz::checkEqual(kTextBefore, value.text, "a text that fails changes nothing");
        return false;
    }
    expectedValue = expected.value;
    Fuzz::checkEqual(described(expectedValue), described(plain(value)), "expanding " + shown(text));
    return true;
}

void checkAnotherExpansion(const ConfigParser& parser, ConfigValue value,
                           const PlainValue& before) {
    const Fuzz::PlainExpansion expected = Fuzz::expandPlainly(value.text, before);
    const Fuzz::CapturedLog log;
    const std::string what = "expanding " + shown(value.text) + " again";
    const PlainOutcome outcome = outcomeOf([&] { return parser.reparseValue(value); });
    checkOutcome(expected.outcome, outcome, what);
    Fuzz::checkEqual(expected.log, log.text(), "the log of " + what);
    if (outcome == PlainOutcome::Expanded) {
        Fuzz::checkEqual(described(expected.value), described(plain(value)), what);
    } else if (outcome == PlainOutcome::Failed) {
        Fuzz::checkEqual(described(PlainValue()), described(plain(value)), what);
    }
}

void checkResolution(const ConfigParser& parser, const ConfigValue& value,
                     const Fuzz::PlainResolution& expected) {
    const Fuzz::CapturedLog log;
    std::string text = "anything";
    bool isOutOfRange = false;
    try {
        parser.resolveValue(value, text);
    } catch (const std::out_of_range&) {
        isOutOfRange = true;
    }
    Fuzz::checkEqual(expected.end == Fuzz::PlainEnd::OutOfRange, isOutOfRange, "out of range");
    Fuzz::checkEqual(expected.log, log.text(), "the log of resolving");
    if (!isOutOfRange) {
        Fuzz::checkEqual(expected.text, text, "the resolved text");
    }
}

void checkText(const std::string& text) {
    ConfigParser parser(-1);
    for (const auto& [name, variable] : Fuzz::surroundings().variables) {
        parser.setVariable(name, variable);
    }
    Fuzz::PlainStore store;
    addOtherKeys(parser, store);

    ConfigValue value;
    PlainValue expected;
    if (!checkExpansion(parser, text, value, expected)) {
        return;
    }
    checkAnotherExpansion(parser, value, expected);

    parser.replaceValues("Text", "Text", value);
    store.values[{"Text", "Text"}] = {expected};
    const Fuzz::PlainResolution resolution = Fuzz::resolvePlainly(store, expected);
    checkResolution(parser, value, resolution);
    checkResolution(parser, value, resolution);  // Resolving changes nothing.
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!Fuzz::namesDevices(text)) {
        (void)Fuzz::surroundings();
        checkText(text);
    }
    return 0;
}
