// Stands in for libsystemd: keeps what is sent to the journal.

#include "logging/journal_stand_in.h"

#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <cstdarg>
#include <cstdio>

std::vector<std::pair<int, std::string>> Tarnwick::Parser::Testing::journal;

extern "C" int sd_journal_print(int priority, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    Tarnwick::Parser::Testing::journal.emplace_back(priority, text);
    return 0;
}
