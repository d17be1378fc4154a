#pragma once

#include <string_view>

namespace Tarnwick::Parser {

/// The characters of group and key names, in ascending character-code order.
inline constexpr std::string_view kNameCharacters =
    " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";

}  // namespace Tarnwick::Parser
