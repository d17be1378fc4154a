#include "config_writer.h"

#include <sys/stat.h>

#include <locale>

namespace Tarnwick::Parser {
namespace {

/// Sets the process's umask for the time of a scope.
class UmaskScope {
public:
    explicit UmaskScope(mode_t mask) : saved_(umask(mask)) {}
    ~UmaskScope() { umask(saved_); }
    UmaskScope(const UmaskScope&) = delete;
    UmaskScope& operator=(const UmaskScope&) = delete;

private:
    mode_t saved_;
};

constexpr mode_t kOwnerOnly = 077;

std::ofstream openForOwner(const std::string& path) {
    const UmaskScope scope(kOwnerOnly);
    return std::ofstream(path, std::ios::out | std::ios::trunc);
}

}  // namespace

ConfigWriter::ConfigWriter(const std::string& path, bool spaced)
    : stream_(openForOwner(path)), spaced_(spaced) {
    stream_.imbue(std::locale::classic());
}

void ConfigWriter::writeComment(const std::string& text) {
    stream_ << "# " << text << std::endl;
}

void ConfigWriter::writeKeyValue(const std::string& key, const std::string& value) {
    stream_ << key << (spaced_ ? " = " : "=") << value << std::endl;
}

void ConfigWriter::writeKeyValue(const std::string& key, const char* value) {
    writeKeyValue(key, std::string(value));
}

void ConfigWriter::writeKeyValue(const std::string& key, bool value) {
    writeKeyValue(key, std::string(value ? "true" : "false"));
}

void ConfigWriter::writeEmptyLine() {
    stream_ << std::endl;
}

void ConfigWriter::writeRaw(const std::string& text) {
    stream_ << text;
    if (!text.ends_with('\n')) {
        stream_ << std::endl;
    }
}

}  // namespace Tarnwick::Parser
