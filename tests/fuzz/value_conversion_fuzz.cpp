// Text to bool and numbers. Input: the text.

#include "support/value_conversion.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "plain/numbers.h"
#include "support/check.h"

using namespace Tarnwick::Parser;

namespace {

// Doubles are compared bit by bit: -0 is not 0.
template <typename Number>
long long bitsOf(Number value) {
    if constexpr (std::is_same_v<Number, double>) {
        return std::bit_cast<long long>(value);
    }
    return static_cast<long long>(value);
}

template <typename Number>
void checkNumber(const std::string& text, const Fuzz::PlainNumber<Number>& expected,
                 Number (*parse)(const std::string&, bool*), const std::string& type) {
    bool ok = !expected.ok;
    const Number seen = parse(text, &ok);
    const std::string what = Fuzz::shown(text) + " as " + type;
    Fuzz::checkEqual(bitsOf(expected.value), bitsOf(seen), what);
    Fuzz::checkEqual(expected.ok, ok, what + ", whether it is one");
    Fuzz::checkEqual(bitsOf(seen), bitsOf(parse(text, nullptr)), what + ", without the flag");
}

void checkBool(const std::string& text) {
    bool ok = false;
    Fuzz::checkEqual(text == "true", parseBool(text, &ok), Fuzz::shown(text) + " as bool");
    Fuzz::checkEqual(text == "true" || text == "false", ok,
                     Fuzz::shown(text) + " as bool, whether it is one");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkBool(text);
    checkNumber(text, Fuzz::plainInt(text), parseInt, "int");
    checkNumber(text, Fuzz::plainLongLong(text), parseLongLong, "long long");
    checkNumber(text, Fuzz::plainDouble(text), parseDouble, "double");
    return 0;
}
