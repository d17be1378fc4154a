#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "config/check/fault.h"

namespace Tarnwick::Parser::ConfigTool {

/// What a report ends with.
struct Summary {
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t files = 0;
};

/// Prints faults on the standard output, one after the other.
class Report {
public:
    Report() = default;
    virtual ~Report() = default;
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    virtual void add(const Fault& fault) = 0;
    virtual void finish(const Summary& summary) = 0;
};

/// A form of the report, as `--format` names it.
struct ReportFormat {
    std::string_view name;
    std::unique_ptr<Report> (*make)(bool hasColor);
};

/// Returns the forms; the first is the usual one.
[[nodiscard]] std::span<const ReportFormat> reportFormats();

/// @{
/// One function for each form; see the table.
[[nodiscard]] std::unique_ptr<Report> makeTextReport(bool hasColor);
[[nodiscard]] std::unique_ptr<Report> makeCompilerReport(bool hasColor);
[[nodiscard]] std::unique_ptr<Report> makeJsonReport(bool hasColor);
/// @}

}  // namespace Tarnwick::Parser::ConfigTool
