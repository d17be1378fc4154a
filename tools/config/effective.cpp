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
        const bool isGroup = slash == name.npos;
        items_.push_back(
            {name, name.substr(0, slash), isGroup ? "" : name.substr(slash + 1), isGroup});
    }
}

bool Selection::takes(const std::string& group, const std::string& key) {
    bool isTaken = items_.empty();
    for (Item& item : items_) {
        if (item.group == group && (item.isGroup || item.key == key)) {
            item.isFound = true;
            isTaken = true;
        }
    }
    return isTaken;
}

std::vector<std::string> Selection::missing() const {
    std::vector<std::string> names;
    for (const Item& item : items_) {
        if (!item.isFound) {
            names.push_back(item.name);
        }
    }
    return names;
}

void Effective::visit(const Show& show, const Fail& fail) const {
    std::vector<std::string> texts;
    stored_.forEachKey([&](const StoredKey& key) {
        if (!selection_.takes(key.group, key.key)) {
            return true;
        }
        const std::string_view problem = findTexts(key, texts);
        if (problem.empty()) {
            return show({key, texts});
        }
        fail(key, problem);
        return true;
    });
}

// Sets the texts of all values. Returns why one has none, or nothing. Only values with references
// are looked up: in a large configuration a lookup costs as much as to store the value.
std::string_view Effective::findTexts(const StoredKey& key, std::vector<std::string>& texts) const {
    texts.resize(key.origins.size());
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const ValueOrigin& origin = key.origins[index];
        if (kind_ == Texts::AsWritten) {
            texts[index] = origin.raw;
        } else if (!origin.hasReferences) {
            texts[index] = origin.text;
        } else {
            const ConfigValue& value = parser_.valueList(key.group, key.key)[index];
            const std::string_view problem = resolve(parser_, value, texts[index]);
            if (!problem.empty()) {
                return problem;
            }
        }
    }
    return {};
}

}  // namespace Tarnwick::Parser::ConfigTool
