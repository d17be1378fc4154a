// The reader of configuration files. Input: two bytes that give the length of a comment in front
// of all else, so that lines cross the borders of the reader's buffer, and the rest of the file.

#include <cstddef>
#include <cstdint>

#include "config_file.h"
#include "plain/lines.h"
#include "support/captured_streams.h"
#include "support/check.h"
#include "support/scratch_directory.h"

using namespace Tarnwick::Parser;

namespace {

std::string described(std::string_view group, std::string_view key, std::string_view value) {
    return Fuzz::shown(group) + Fuzz::shown(key) + Fuzz::shown(value) + '\n';
}

/// What a file holds, its lines cut apart before any of them is looked at.
struct Reading {
    std::string entries;
    bool isFaulty = false;

    explicit Reading(const std::string& content) {
        std::string group;
        for (const std::string& line : Fuzz::linesOf(content)) {
            const ConfigLine parsed = parseConfigLine(line);
            if (parsed.kind == ConfigLine::Kind::Group) {
                group = parsed.name;
            } else if (parsed.kind == ConfigLine::Kind::Entry) {
                entries += described(group, parsed.name, parsed.value);
            }
            isFaulty = isFaulty || parsed.kind == ConfigLine::Kind::Fault;
        }
    }
};

// At its end an iterator equals the end iterator, unless the last line has no line feed.
void checkEnd(const ConfigFileIterator& atEnd, ConfigFile& file, const std::string& content) {
    const bool isTerminated = content.empty() || content.back() == '\n';
    Fuzz::checkEqual(isTerminated, atEnd == ConfigFileIterator::end(file),
                     "equal to the end iterator at the end");
}

void checkFile(const std::string& content) {
    ConfigFile file(Fuzz::writeScratchFile("line-reader.conf", content));
    const Reading expected(content);

    const Fuzz::CapturedLog log;
    std::string entries;
    std::string last = described("", "", "");
    ConfigFileIterator entry(file);
    for (; entry.hasEntry(); ++entry) {
        Fuzz::check(entry != ConfigFileIterator::end(file), "an entry is not the end");
        entries += described(entry.group(), entry.key(), entry.value());
        last = described("", entry.key(), entry.value());
    }
    Fuzz::checkEqual(expected.entries, entries, "every entry once and in order");
    Fuzz::checkEqual(expected.isFaulty, file.failed, "failed exactly when a line is bad");
    Fuzz::checkEqual(!log.text().empty(), file.failed, "failed exactly when a message was logged");
    checkEnd(entry, file, content);
    Fuzz::check(!(++entry).hasEntry(), "nothing follows the end");
    Fuzz::checkEqual(last, described("", entry.key(), entry.value()), "the last entry stays");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::size_t padding = data[0] * 256U + data[1];
    std::string content = padding > 0 ? std::string(padding, '#') + '\n' : "";
    content.append(reinterpret_cast<const char*>(data) + 2, size - 2);
    checkFile(content);
    return 0;
}
