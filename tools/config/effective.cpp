#include "config/effective.h"

#include <stdexcept>

namespace Tarnwick::Parser::ConfigTool {
namespace {

// Sets `text` to the value with its references filled. Returns why there is none, or nothing.
std::string_view resolve(const ConfigParser& parser, const ConfigValue& value, std::string& text) {
    // What leads nowhere resolves to the empty text: a mark tells it from a value that is empty.
    // In a text without literals every reference stands at the start, so the mark moves none.
    ConfigValue marked(value);
    const bool isMarked = value.text.empty();
    if (isMarked) {
        marked.text.push_back('x');
    }
    try {
        parser.resolveValue(marked, text);
    } catch (const std::out_of_range&) {
        return "a reference stands past the end of a text from which white space was trimmed";
    }
    if (text.empty()) {
        return "its references lead in a circle, or to more than 32 other values";
    }
    if (isMarked) {
        text.pop_back();
    }
    return {};
}

}  // namespace

Selection::Selection(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const std::size_t slash = name.find('/');
        Group& group = groups_[name.substr(0, slash)];
        if (slash == name.npos) {
            group.isWhole = true;
            items_.push_back({name, &group.isFound});
        } else {
            items_.push_back({name, &group.keys[name.substr(slash + 1)]});
        }
    }
}

bool Selection::takes(const std::string& group, const std::string& key) {
    if (items_.empty()) {
        return true;
    }
    const auto entry = groups_.find(group);
    if (entry == groups_.end()) {
        return false;
    }
    entry->second.isFound = true;
    const auto selected = entry->second.keys.find(key);
    const bool isSelected = selected != entry->second.keys.end();
    if (isSelected) {
        selected->second = true;
    }
    return isSelected || entry->second.isWhole;
}

std::vector<std::string> Selection::missing() const {
    std::vector<std::string> names;
    for (const Item& item : items_) {
        if (!*item.isFound) {
            names.push_back(item.name);
        }
    }
    return names;
}

void Effective::visit(const Show& show) const {
    std::vector<ShownValue> values;
    Filled filled;
    stored_.forEachKey([&](const StoredKey& key) {
        if (!selection_.takes(key.group, key.key)) {
            return true;
        }
        values.clear();
        filled.clear();
        for (std::size_t index = 0; index < key.origins.size(); ++index) {
            values.push_back(valueAt(key, index, filled));
        }
        return show({key, values});
    });
}

// Only a value with references is looked up, and its text kept in `filled`: in a large
// configuration a lookup costs as much as to store the value.
ShownValue Effective::valueAt(const StoredKey& key, std::size_t index, Filled& filled) const {
    const ValueOrigin& origin = key.origins[index];
    if (kind_ == Texts::AsWritten) {
        return {&origin, origin.raw};
    }
    if (!origin.hasReferences) {
        return {&origin, origin.text};
    }
    const ConfigValue& value = parser_.valueList(key.group, key.key)[index];
    std::string& text = filled.emplace_back();
    const std::string_view problem = resolve(parser_, value, text);
    return {&origin, text, problem};
}

}  // namespace Tarnwick::Parser::ConfigTool
