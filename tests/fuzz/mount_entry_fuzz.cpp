// Mount entries. Input: the entry.

#include "mount_entry.h"

#include <cstddef>
#include <cstdint>
#include <sstream>

#include "plain/split.h"
#include "support/captured_streams.h"
#include "support/check.h"

namespace {

// The message about the first rule that the entry breaks, or nothing.
std::string complaintAbout(const std::string& entry) {
    const std::vector<std::string> fields =
        Fuzz::plainSplit(entry, ' ', -1, Tarnwick::Parser::KeepEmpty);
    if (fields.size() != 6) {
        return "Not enough parts in mount entry: " + entry;
    }
    const std::string& source = fields[0];
    const std::string& type = fields[2];
    if (source.substr(0, 1) != "/" && source != "tmpfs" && source != "none") {
        return "Mount entry must begin with '/' or be 'tmpfs' or 'none': " + entry;
    }
    if (type != "none" && type != "tmpfs" && type != "devpts") {
        return "File system type must be 'none' or 'tmpfs' instead of '" + type +
               "' in mount entry: " + entry;
    }
    if (fields[4] != "0") {
        return "Dump value must be '0' instead of '" + fields[4] + "' in mount entry: " + entry;
    }
    if (fields[5] != "0") {
        return "Backup value must be '0' instead of '" + fields[5] + "' in mount entry: " + entry;
    }
    return "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string entry(reinterpret_cast<const char*>(data), size);
    const std::string complaint = complaintAbout(entry);
    const Fuzz::CapturedLog log;
    const bool isValid = Tarnwick::Parser::isValidMountEntry(entry);
    Fuzz::checkEqual(complaint.empty(), isValid, Fuzz::shown(entry) + " is valid");
    Fuzz::checkEqual(complaint.empty() ? "" : "ERROR: " + complaint + "\n", log.text(),
                     "the log of " + Fuzz::shown(entry));
    return 0;
}
