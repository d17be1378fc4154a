#include "config_value.h"

#include <stdexcept>

#include "logging/log_record.h"

namespace Tarnwick::Parser {
namespace {

const ReferenceBlock& blockOf(const ConfigValue& value) {
    static const ReferenceBlock kNone;
    return value.references ? *value.references : kNone;
}

std::unique_ptr<ReferenceBlock> copyOf(const std::unique_ptr<ReferenceBlock>& block) {
    return block ? std::make_unique<ReferenceBlock>(*block) : nullptr;
}

std::size_t totalSize(const std::vector<std::string>& texts) {
    std::size_t size = 0;
    for (const std::string& text : texts) {
        size += text.size();
    }
    return size;
}

}  // namespace

ConfigValue::ConfigValue(const ConfigValue& other)
    : references(copyOf(other.references)), text(other.text), hasReferences(other.hasReferences) {}

ConfigValue& ConfigValue::operator=(const ConfigValue& other) {
    return *this = ConfigValue(other);
}

bool ConfigValue::operator==(const ConfigValue& other) const {
    const ReferenceBlock& left = blockOf(*this);
    const ReferenceBlock& right = blockOf(other);
    return left.targets == right.targets && left.positions == right.positions && text == other.text;
}

void ConfigValue::clear() {
    *this = ConfigValue();
}

void ConfigValue::addReference(const std::string& group, const std::string& key,
                               const std::uint32_t& position) {
    if (!references) {
        references = std::make_unique<ReferenceBlock>();
    }
    hasReferences = 1;
    references->positions.push_back(position);
    references->targets.emplace_back(group, key);
}

std::string ConfigValue::applyReferences(const std::vector<std::string>& resolved) const {
    if (!references) {
        return text;
    }
    const std::vector<std::uint32_t>& positions = references->positions;
    if (positions.size() != resolved.size()) {
        // The sizes appear as characters, not as digits; readers of the log depend on it.
        Logging::logWarning(Logging::parserLogger)
            << "ConfigValue references size " << static_cast<unsigned char>(positions.size())
            << " mismatch with resolve list size " << static_cast<unsigned char>(resolved.size());
        return text;
    }
    std::string result;
    result.reserve(text.size() + totalSize(resolved));
    result = text;
    std::size_t shift = 0;
    for (std::size_t index = 0; index < resolved.size(); ++index) {
        if (positions[index] + shift > result.size()) {
            throw std::out_of_range("a reference stands past the end of its trimmed value");
        }
        result.insert(positions[index] + shift, resolved[index]);
        shift += resolved[index].size();
    }
    return result;
}

}  // namespace Tarnwick::Parser
