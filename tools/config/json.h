#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace Tarnwick::Parser::ConfigTool {

/// An object whose members stay in their order.
using Json = nlohmann::ordered_json;

/// What the name of a member with the bytes of a text ends in.
constexpr const char* kBytesSuffix = "Base64";

/// Sets `object[name]` to the text. When the text is no UTF-8, what is none becomes U+FFFD, and
/// `object[name + kBytesSuffix]` has its bytes.
void setText(Json& object, const std::string& name, std::string_view text);

/// Appends the members that `setText` sets as `printed` prints them, without an object around: for
/// rows of which there are too many to build each as an object.
void appendText(std::string& line, std::string_view name, std::string_view text);

/// Returns the value on one line, in ASCII.
[[nodiscard]] std::string printed(const Json& value);

}  // namespace Tarnwick::Parser::ConfigTool
