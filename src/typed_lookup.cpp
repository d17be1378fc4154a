// The getValue family of ConfigParser: one road for single values, one for lists.

#include "config_parser.h"
#include "config_parser_data.h"
#include "support/assertion.h"
#include "support/value_conversion.h"

namespace Tarnwick::Parser {
namespace {

std::string textOf(const ConfigParser& parser, const ConfigValue& value) {
    if (value.hasReferences == 0) {
        return value.text;
    }
    std::string text;
    parser.resolveValue(value, text);
    return text;
}

// A value whose references resolve to nothing does not appear in lists; a plain one always does.
bool isListed(const ConfigValue& value, const std::string& text) {
    return value.hasReferences == 0 || !text.empty();
}

const ConfigValue& currentValue(const std::vector<ConfigValue>& values) {
    TARNWICK_ASSERT(!values.empty());
    return values.back();
}

void setFlag(bool* ok, bool isValid) {
    if (ok != nullptr) {
        *ok = isValid;
    }
}

template <typename T>
T convertedValue(const ConfigParser& parser, const std::vector<ConfigValue>& values,
                 const ValueConverter<T>& convert, bool* ok) {
    setFlag(ok, true);
    return convert(textOf(parser, currentValue(values)), ok);
}

template <typename T>
void appendConverted(const ConfigParser& parser, const std::vector<ConfigValue>& list,
                     const ValueConverter<T>& convert, std::vector<T>& values, bool* ok) {
    values.reserve(values.size() + list.size());
    setFlag(ok, true);
    for (const ConfigValue& value : list) {
        const std::string text = textOf(parser, value);
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
    value = textOf(*this, currentValue(data_->store.valueList(group, key)));
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<std::string>& values) const {
    const std::vector<ConfigValue>& list = data_->store.valueList(group, key);
    values.reserve(values.size() + list.size());
    for (const ConfigValue& value : list) {
        std::string text = textOf(*this, value);
        if (isListed(value, text)) {
            values.push_back(std::move(text));
        }
    }
}

void ConfigParser::getValue(const std::string& group, const std::string& key, bool& value) const {
    value = convertedValue<bool>(*this, data_->store.valueList(group, key), isTrue, nullptr);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, bool& value,
                            bool* ok) const {
    value = convertedValue<bool>(*this, data_->store.valueList(group, key), parseBool, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<bool>& values) const {
    appendConverted<bool>(*this, data_->store.valueList(group, key), isTrue, values, nullptr);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<bool>& values, bool* ok) const {
    appendConverted<bool>(*this, data_->store.valueList(group, key), parseBool, values, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, int& value,
                            bool* ok) const {
    value = convertedValue<int>(*this, data_->store.valueList(group, key), parseInt, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<int>& values, bool* ok) const {
    appendConverted<int>(*this, data_->store.valueList(group, key), parseInt, values, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, long long& value,
                            bool* ok) const {
    value = convertedValue<long long>(*this, data_->store.valueList(group, key), parseLongLong, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<long long>& values, bool* ok) const {
    appendConverted<long long>(*this, data_->store.valueList(group, key), parseLongLong, values,
                               ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key, double& value,
                            bool* ok) const {
    value = convertedValue<double>(*this, data_->store.valueList(group, key), parseDouble, ok);
}

void ConfigParser::getValue(const std::string& group, const std::string& key,
                            std::vector<double>& values, bool* ok) const {
    appendConverted<double>(*this, data_->store.valueList(group, key), parseDouble, values, ok);
}

}  // namespace Tarnwick::Parser
