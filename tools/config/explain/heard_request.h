#pragma once

#include <memory>
#include <string>
#include <vector>

#include "config/explain/load_history.h"
#include "config/explain/user_story.h"
#include "config_parser.h"

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// A request up to the point where a key is asked for, step by step as the boot tool makes it, with
/// all that is heard on the way.
class HeardRequest {
public:
    /// What a request does, in this order.
    enum class Stage : std::uint8_t { SettlingUser, Loading, Loaded };

    /// `name` is the key whose assignments are wanted.
    HeardRequest(const Context& context, const KeyName& name);

    /// Settles the user and loads. Returns whether a key can be asked for now. Throws as the
    /// library does; what was heard before can be looked at all the same.
    [[nodiscard]] bool run();

    /// Where the request stands, or where it ended.
    [[nodiscard]] Stage stage() const { return stage_; }
    [[nodiscard]] const std::vector<std::string>& directories() const { return directories_; }
    [[nodiscard]] const UserStory& story() const { return story_; }

    /// What the load of the generated keys told, and that of all keys.
    [[nodiscard]] LoadHistory& generated() { return generated_; }
    [[nodiscard]] LoadHistory& history() { return history_; }

    /// The line that sets a generated key for the user; without a path when none does.
    [[nodiscard]] LineOrigin generatedLine(const std::string& key) const;

    /// Why the load failed; empty when it was not a file's fault.
    [[nodiscard]] const std::vector<LoadFailure>& failures() const;
    /// Why a request that ended early without any failure of a file did so.
    [[nodiscard]] std::string problem() const;

    /// Only after Loading was reached.
    [[nodiscard]] ConfigParser& parser() { return *parser_; }

private:
    std::vector<std::string> directories_;
    UserStory story_;
    LoadHistory generated_;
    LoadHistory history_;
    std::unique_ptr<ConfigParser> parser_;
    Stage stage_ = Stage::SettlingUser;
};

}  // namespace Tarnwick::Parser::ConfigTool
