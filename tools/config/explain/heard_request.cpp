#include "config/explain/heard_request.h"

#include <functional>

#include "config/command.h"
#include "config/loading.h"
#include "request.h"
#include "support/join_strings.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {

HeardRequest::HeardRequest(const Context& context, const KeyName& name)
    : directories_(directoriesOf(context)),
      story_{.user = {context.userId, "", "", context.instance}},
      generated_(name),
      history_(name) {}

bool HeardRequest::run() {
    const bool isSettled =
        Tool::settleUser(story_.user, directories_, &story_.origins, std::ref(generated_));
    story_.userIdLine = generatedLine(kKeyUserId);
    story_.instanceLine = generatedLine(kKeyInstance);
    if (!isSettled) {
        return false;
    }
    stage_ = Stage::Loading;
    parser_ = std::make_unique<ConfigParser>(story_.user.id);
    if (!Tool::loadForUser(*parser_, story_.user, directories_, std::ref(history_))) {
        return false;
    }
    stage_ = Stage::Loaded;
    return true;
}

LineOrigin HeardRequest::generatedLine(const std::string& key) const {
    const LastWord* word = generated_.words().find(kGroupGeneratedConfig, key);
    return word != nullptr && word->kind == LastWord::Kind::Stored ? word->origin : LineOrigin();
}

const std::vector<LoadFailure>& HeardRequest::failures() const {
    return stage_ == Stage::SettlingUser ? generated_.failures() : history_.failures();
}

std::string HeardRequest::problem() const {
    if (stage_ == Stage::Loading) {
        return "no directory holds a file named '*.conf': " + joinStrings(directories_, ',');
    }
    if (story_.user.id == -1) {
        return "no user is known: nobody is logged in on seat0, and neither --user-id nor the "
               "generated configuration names one";
    }
    return "user " + std::to_string(story_.user.id) + " (" + userIdText(story_) +
           ") has no entry in the password database";
}

}  // namespace Tarnwick::Parser::ConfigTool
