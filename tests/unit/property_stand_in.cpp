// Stands in for the Android property library, which only devices have.

#include <algorithm>
#include <cstring>
#include <string>

namespace {

constexpr int kPropertySize = 92;

int zerosAt(const char* bytes) {
    const auto* end =
        std::find_if(bytes, bytes + kPropertySize, [](char byte) { return byte != 0; });
    return static_cast<int>(end - bytes);
}

int answer(char* value, const std::string& text) {
    std::strcpy(value, text.c_str());
    return static_cast<int>(text.size());
}

}  // namespace

extern "C" int property_get(const char* name, char* value, const char* defaultValue) {
    const std::string property = name;
    if (property == "model") {
        return answer(value, "Model X");
    }
    if (property == "longest") {
        return answer(value, std::string(kPropertySize - 1, 'x'));
    }
    if (property == "room") {
        return answer(value, std::to_string(zerosAt(value)));
    }
    if (property == "zero") {
        answer(value, "text");
        return 0;
    }
    if (property == "negative") {
        answer(value, "text");
        return -1;
    }
    return answer(value, defaultValue);
}
