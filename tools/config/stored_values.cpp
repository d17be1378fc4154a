#include "config/stored_values.h"

#include <stdexcept>

namespace Tarnwick::Parser::ConfigTool {

LoadListener StoredValues::listener() {
    return [this](const LoadEvent& event) { hear(event); };
}

void StoredValues::hear(const LoadEvent& event) {
    if (event.kind == LoadEvent::Kind::File) {
        files_.emplace_back(event.place.file);
    } else if (event.kind == LoadEvent::Kind::Stored) {
        add(event);
    } else if (event.kind == LoadEvent::Kind::Removed && event.count > 0) {
        find(event).second.first = kNone;
    }
}

void StoredValues::add(const LoadEvent& event) {
    if (values_.size() == kNone) {
        throw std::length_error("there are more values than can be shown");
    }
    const auto index = static_cast<std::uint32_t>(values_.size());
    auto& owner = find(event);
    Key& key = owner.second;
    if (key.first == kNone) {
        key.first = index;
    } else {
        values_[key.last].next = index;
    }
    key.last = index;
    const Text raw = keep(event.piece);
    values_.push_back({.owner = &owner,
                       .raw = raw,
                       .text = event.value->text == event.piece ? raw : keep(event.value->text),
                       .file = static_cast<std::uint32_t>(files_.size() - 1),
                       .line = event.place.line,
                       .hasReferences = event.value->hasReferences != 0});
}

StoredValues::Text StoredValues::keep(std::string_view text) {
    const std::size_t start = texts_.size();
    texts_ += text;
    return {start, text.size()};
}

std::string_view StoredValues::textOf(const Text& text) const {
    return std::string_view(texts_).substr(text.start, text.length);
}

// Most keys follow one of the same group.
StoredValues::Keys::value_type& StoredValues::find(const LoadEvent& event) {
    if (group_ == nullptr || group_->first != event.group) {
        group_ = &*groups_.try_emplace(std::string(event.group)).first;
    }
    auto& owner = *group_->second.try_emplace(std::string(event.key)).first;
    owner.second.group = &group_->first;
    return owner;
}

void StoredValues::forEachKey(const std::function<bool(const StoredKey& key)>& visit) const {
    std::vector<ValueOrigin> origins;
    for (std::uint32_t index = 0; index < values_.size(); ++index) {
        const auto& [name, key] = *values_[index].owner;
        if (key.first != index) {
            continue;
        }
        origins.clear();
        for (std::uint32_t each = index; each != kNone; each = values_[each].next) {
            origins.push_back(originOf(values_[each]));
        }
        if (!visit({*key.group, name, origins})) {
            return;
        }
    }
}

ValueOrigin StoredValues::originOf(const Value& value) const {
    return {files_[value.file], value.line, textOf(value.raw), textOf(value.text),
            value.hasReferences};
}

}  // namespace Tarnwick::Parser::ConfigTool
