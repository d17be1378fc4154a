#include "reference_resolver.h"

#include <stdexcept>
#include <vector>

namespace Tarnwick::Parser {
namespace {

using KeyName = ReferenceResolver::KeyName;

/// One resolution, with its visits.
class Resolution {
public:
    explicit Resolution(const ConfigStore& store) : store_(store) {}

    /// Returns false, and leaves `out` alone, after too many visits.
    [[nodiscard]] bool visit(const ConfigValue& value, std::string& out, const KeyName* owner) {
        if (visits_ == kMostVisits) {
            return false;
        }
        ++visits_;
        if (value.hasReferences == 0) {
            out = value.text;
        }
        return value.hasReferences != 1 || fill(value, out, owner);
    }

private:
    // All texts are found before any is inserted.
    [[nodiscard]] bool fill(const ConfigValue& value, std::string& out, const KeyName* owner) {
        std::vector<std::string> texts;
        if (value.references) {
            for (const KeyName& target : value.references->targets) {
                if (!visitCurrent(target, texts.emplace_back())) {
                    return false;
                }
            }
        }
        out = applied(value, texts, owner);
        return true;
    }

    // A key that does not exist or holds no value leaves its hole empty.
    [[nodiscard]] bool visitCurrent(const KeyName& target, std::string& text) {
        const auto& [group, key] = target;
        store_.checkKeyAdded(group, key);
        const std::vector<ConfigValue>* values = store_.find(group, key);
        return values == nullptr || values->empty() || visit(values->back(), text, &target);
    }

    [[nodiscard]] static std::string applied(const ConfigValue& value,
                                             const std::vector<std::string>& texts,
                                             const KeyName* owner) {
        try {
            return value.applyReferences(texts);
        } catch (const std::out_of_range& error) {
            if (owner == nullptr) {
                throw;
            }
            throw std::out_of_range(owner->first + '/' + owner->second + ": " + error.what());
        }
    }

    const ConfigStore& store_;
    int visits_ = 0;
};

}  // namespace

bool ReferenceResolver::resolve(const ConfigValue& value, std::string& out,
                                const KeyName* owner) const {
    if (Resolution(store_).visit(value, out, owner)) {
        return true;
    }
    out.clear();
    sink_({.problem = Problem::TooManyReferences});
    return false;
}

}  // namespace Tarnwick::Parser
