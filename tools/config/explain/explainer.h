#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "config/explain/explanation.h"
#include "config/explain/heard_request.h"

namespace Tarnwick::Parser::ConfigTool {

/// Makes a request for a key, and finds out all that became of it.
class Explainer {
public:
    Explainer(const Context& context, const KeyName& name);

    /// Once. The explanation is valid as long as the explainer.
    [[nodiscard]] const Explanation& explain();

private:
    void ask();
    void judge();
    void judgePieces(std::vector<ConfigValue>& values);
    void endEarly();
    void takeHeard(LoadHistory& history);
    [[nodiscard]] std::string placeOfGenerated(std::string_view text) const;
    void tellUser();
    void tellIncompleteUser();

    HeardRequest request_;
    Explanation explanation_;
    std::deque<std::string> paths_;  // of lines that were read once more
};

}  // namespace Tarnwick::Parser::ConfigTool
