#pragma once

#include <string>

namespace Fuzz {

/// A number as it is to be read, and whether the whole text was one.
template <typename Number>
struct PlainNumber {
    Number value = 0;
    bool ok = false;
};

PlainNumber<int> plainInt(const std::string& text);
PlainNumber<long long> plainLongLong(const std::string& text);
PlainNumber<double> plainDouble(const std::string& text);

}  // namespace Fuzz
