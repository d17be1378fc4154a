#include "config/check/report.h"

#include <array>

namespace Tarnwick::Parser::ConfigTool {

std::span<const ReportFormat> reportFormats() {
    static constexpr std::array kFormats{
        ReportFormat{"text", makeTextReport},
        ReportFormat{"json", makeJsonReport},
        ReportFormat{"gcc", makeCompilerReport},
    };
    return kFormats;
}

}  // namespace Tarnwick::Parser::ConfigTool
