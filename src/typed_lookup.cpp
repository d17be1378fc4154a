// The getValue family of ConfigParser: one road for single values, one for lists.

#include "config_parser.h"
#include "config_parser_data.h"
#include "reference_resolver.h"
#include "support/assertion.h"
#include "support/value_conversion.h"

namespace Tarnwick::Parser {
namespace {

/// The values of one key, as they are read.
struct KeyValues {
    const ConfigStore& store;
    const std::string& group;
    const std::string& key;
    const std::vector<ConfigValue>& values;

    [[nodiscard]] std::string textOf(const ConfigValue& value) const {
        if (value.hasReferences == 0) {
            return value.text;
        }
        std::string text;
        const ReferenceResolver::KeyName owner(group, key);
        ReferenceResolver(store, logDiagnostic).resolve(value, text, &owner);
        return text;
    }

    [[nodiscard]] std::string currentText() const {
        TARNWICK_ASSERT(!values.empty());
        return textOf(values.back());
    }
};

// Adds the entry when the key has none.
KeyValues valuesOf(ConfigStore& store, const std::string& group, const std::string& key) {
    return {store, group, key, store.valueList(group, key)};
}

// A value whose references resolve to nothing does not appear in lists; a plain one always does.
bool isListed(const ConfigValue& value, const std::string& text) {
    return value.hasReferences == 0 || !text.empty();
}

void setFlag(bool* ok, bool isValid) {
    if (ok != nullptr) {
        *ok = isValid;
    }
}

template <typename T>
T convertedValue(const KeyValues& values, const ValueConverter<T>& convert, bool* ok) {
    setFlag(ok, true);
    return convert(values.currentText(), ok);
}

template <typename T>
void appendConverted(const KeyValues& from, const ValueConverter<T>& convert,
                     std::vector<T>& values, bool* ok) {
    values.reserve(values.size() + from.values.size());
    setFlag(ok, true);
    for (const ConfigValue& value : from.values) {
        const std::string text = from.textOf(value);
        if (isListed(value, text)) {
            bool isValid = true;
            values.push_back(convert(text, &isValid));
            if (!isValid) {
                setFlag(ok, false);
            }
        }
    }
}

// Without a flag a text is either "true" or not.
bool isTrue(const std::string& text, bool*) {
    return text == "true";
}

}  // namespace

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::string& value) const {
    value = valuesOf(data_->store, group, key).currentText();
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<std::string>& values) const {
    const KeyValues from = valuesOf(data_->store, group, key);
    values.reserve(values.size() + from.values.size());
    for (const ConfigValue& value : from.values) {
        std::string text = from.textOf(value);
        if (isListed(value, text)) {
            values.push_back(std::move(text));
        }
    }
}

void ConfigParser::getValue(const std::string& group, const std::string& key, bool& value) const {
    value = convertedValue<bool>(valuesOf(data_->store, group, key), isTrue, nullptr);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, bool& value,
                            bool* ok) const {
    value = convertedValue<bool>(valuesOf(data_->store, group, key), parseBool, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<bool>& values) const {
    appendConverted<bool>(valuesOf(data_->store, group, key), isTrue, values, nullptr);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<bool>& values, bool* ok) const {
    appendConverted<bool>(valuesOf(data_->store, group, key), parseBool, values, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, int& value,
                            bool* ok) const {
    value = convertedValue<int>(valuesOf(data_->store, group, key), parseInt, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<int>& values, bool* ok) const {
    appendConverted<int>(valuesOf(data_->store, group, key), parseInt, values, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, long long& value,
                            bool* ok) const {
    value = convertedValue<long long>(valuesOf(data_->store, group, key), parseLongLong, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<long long>& values, bool* ok) const {
    appendConverted<long long>(valuesOf(data_->store, group, key), parseLongLong, values, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, double& value,
                            bool* ok) const {
    value = convertedValue<double>(valuesOf(data_->store, group, key), parseDouble, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<double>& values, bool* ok) const {
    appendConverted<double>(valuesOf(data_->store, group, key), parseDouble, values, ok);
}

}  // namespace Tarnwick::Parser
