#pragma once

#include <string>

namespace Tarnwick::Parser::Logging {

/// Sends one message with a syslog priority to the systemd journal (`sd_journal_print(3)`). The
/// message ends at its first NUL. Without libsystemd or a journal the message is lost.
void sendToJournal(int priority, const std::string& text);

}  // namespace Tarnwick::Parser::Logging
