#pragma once

#include <string>

#include "config_parser.h"

namespace Fuzz {

/// Sets variables for templates, among them awkward ones. The first call also puts in place what
/// other templates of the inputs draw on: it clears the environment of the process and fills it,
/// and writes environment files into the scratch directory.
void setVariables(Tarnwick::Parser::ConfigParser& parser);

/// Whether a text names files of which a reading could end late or never.
bool namesDevices(const std::string& text);

}  // namespace Fuzz
