#include "logging/journal.h"

#define SD_JOURNAL_SUPPRESS_LOCATION  // The plain function: no source paths in the journal.
#include <systemd/sd-journal.h>

#include "support/dynamic_library.h"

namespace Tarnwick::Parser::Logging {
namespace {

struct JournalApi {
    decltype(&::sd_journal_print) print = nullptr;
};

const JournalApi& journalApi() {
    static const JournalApi api = [] {
        JournalApi table;
        (void)DynamicLibrary("libsystemd.so.0").find("sd_journal_print", table.print);
        return table;
    }();
    return api;
}

}  // namespace

void sendToJournal(int priority, const std::string& text) {
    if (const auto print = journalApi().print) {
        (void)print(priority, "%s", text.c_str());  // A lost record is not worth a second one.
    }
}

}  // namespace Tarnwick::Parser::Logging
