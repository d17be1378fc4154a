#include "support/value_conversion.h"

#include <locale>
#include <sstream>

namespace Tarnwick::Parser {
namespace {

void report(bool* ok, bool valid) {
    if (ok != nullptr) {
        *ok = valid;
    }
}

template <typename Number>
Number parseNumber(const std::string& text, bool* ok) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    if (text.starts_with("0x")) {
        // Also for doubles, which stop at the x all the same: "0x1" stays unreadable for them.
        stream >> std::hex;
    }
    Number number = 0;
    stream >> number;
    report(ok, !stream.fail() && stream.eof());
    return number;
}

}  // namespace

bool parseBool(const std::string& text, bool* ok) {
    const bool value = text == "true";
    report(ok, value || text == "false");
    return value;
}

int parseInt(const std::string& text, bool* ok) {
    return parseNumber<int>(text, ok);
}

long long parseLongLong(const std::string& text, bool* ok) {
    return parseNumber<long long>(text, ok);
}

double parseDouble(const std::string& text, bool* ok) {
    return parseNumber<double>(text, ok);
}

}  // namespace Tarnwick::Parser
