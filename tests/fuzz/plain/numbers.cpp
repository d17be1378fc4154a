#include "numbers.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace Fuzz {
namespace {

/// Takes a text apart from the front.
class Walk {
public:
    explicit Walk(const std::string& text) : text_(text) {}

    [[nodiscard]] bool isAtEnd() const { return place_ >= text_.size(); }
    [[nodiscard]] bool isAt(std::string_view oneOf) const {
        return !isAtEnd() && oneOf.find(text_[place_]) != oneOf.npos;
    }
    char take() { return text_[place_++]; }
    std::string takeWhile(std::string_view oneOf) {
        std::string taken;
        while (isAt(oneOf)) {
            taken += take();
        }
        return taken;
    }
    void skip(std::size_t count) { place_ += count; }
    std::string takeOne(std::string_view oneOf) {
        return isAt(oneOf) ? std::string(1, take()) : "";
    }

private:
    const std::string& text_;
    std::size_t place_ = 0;
};

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

template <typename Number>
PlainNumber<Number> plainInteger(const std::string& text) {
    using Limits = std::numeric_limits<Number>;
    const bool isHex = text.starts_with("0x");
    Walk walk(text);
    walk.takeWhile(kWhiteSpace);
    const std::string sign = walk.takeOne("+-");
    if (isHex) {
        walk.skip(2);
    }
    const std::string digits = walk.takeWhile(isHex ? kHexDigits : kDigits);

    errno = 0;
    const long long value = std::strtoll((sign + digits).c_str(), nullptr, isHex ? 16 : 10);
    const long long inRange = std::clamp<long long>(value, Limits::min(), Limits::max());
    const bool ok = !digits.empty() && errno == 0 && inRange == value && walk.isAtEnd();
    return {static_cast<Number>(inRange), ok};
}

}  // namespace

PlainNumber<int> plainInt(const std::string& text) {
    return plainInteger<int>(text);
}

PlainNumber<long long> plainLongLong(const std::string& text) {
    return plainInteger<long long>(text);
}

PlainNumber<double> plainDouble(const std::string& text) {
    Walk walk(text);
    walk.takeWhile(kWhiteSpace);
    std::string number = walk.takeOne("+-");
    const std::string whole = walk.takeWhile(kDigits);
    const std::string point = walk.takeOne(".");
    const std::string fraction = point.empty() ? "" : walk.takeWhile(kDigits);
    number += whole + point + fraction;
    if (!(whole + fraction).empty() && walk.isAt("eE")) {
        number += walk.take();
        number += walk.takeOne("+-");
        number += walk.takeWhile(kDigits);
    }

    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0') {
        return {};
    }
    if (std::isinf(value)) {
        return {std::copysign(std::numeric_limits<double>::max(), value), false};
    }
    return {value, walk.isAtEnd()};
}

}  // namespace Fuzz
