// The report for people, and the lines of it that editors read.

#include <algorithm>
#include <iomanip>
#include <iostream>

#include "config/check/report.h"
#include "config/display.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::string_view kCut = "...";
constexpr int kNumberWidth = 5;

// Colours by what they are for; empty without colour.
struct Palette {
    std::string_view place;
    std::string_view error;
    std::string_view warning;
    std::string_view mark;
    std::string_view end;
};
constexpr Palette kPlain{};
constexpr Palette kColored{"\x1b[1m", "\x1b[1;31m", "\x1b[1;35m", "\x1b[1;32m", "\x1b[0m"};

// The part of the excerpt that lies between two columns of the line.
std::string_view part(const Excerpt& excerpt, std::size_t firstColumn, std::size_t endColumn) {
    const std::string_view text = excerpt.text;
    const auto offset = [&](std::size_t column) {
        return std::clamp(column - 1, excerpt.first, excerpt.first + text.size()) - excerpt.first;
    };
    return text.substr(offset(firstColumn), offset(endColumn) - offset(firstColumn));
}

void printHead(const Fault& fault, const Palette& palette) {
    const bool isError = fault.severity == Severity::Error;
    std::cout << palette.place << escaped(fault.path) << ':' << std::max(fault.line, 1U) << ':'
              << std::max<std::size_t>(fault.firstColumn, 1) << ':' << palette.end << ' '
              << (isError ? palette.error : palette.warning) << nameOf(fault.severity) << ':'
              << palette.end << ' ' << escaped(fault.message) << " [" << ruleOf(fault.rule).name
              << "]\n";
}

void printLine(const Fault& fault, const Palette& palette) {
    const Excerpt& excerpt = fault.excerpt;
    const std::string_view cutBefore = excerpt.isCutBefore ? kCut : "";
    const std::size_t before = cutBefore.size() + shown(part(excerpt, 1, fault.firstColumn)).width;
    const std::size_t width = shown(part(excerpt, fault.firstColumn, fault.lastColumn + 1)).width;
    std::cout << std::setw(kNumberWidth) << fault.line << " | " << cutBefore
              << escaped(excerpt.text) << (excerpt.isCutBehind ? kCut : "") << '\n'
              << std::string(kNumberWidth, ' ') << " | " << std::string(before, ' ') << palette.mark
              << '^' << std::string(std::max<std::size_t>(width, 1) - 1, '~') << palette.end
              << '\n';
}

std::string counted(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

class TextReport : public Report {
public:
    explicit TextReport(bool hasColor) : palette_(hasColor ? kColored : kPlain) {}

    void add(const Fault& fault) override {
        printHead(fault, palette_);
        if (fault.line > 0) {
            printLine(fault, palette_);
        }
        if (!fault.hint.empty()) {
            std::cout << std::string(kNumberWidth, ' ') << " = hint: " << fault.hint << '\n';
        }
    }

    void finish(const Summary& summary) override {
        if (summary.errors == 0 && summary.warnings == 0) {
            return;
        }
        std::string text = summary.errors > 0 ? counted(summary.errors, "error") : "";
        if (summary.warnings > 0) {
            text += (text.empty() ? "" : ", ") + counted(summary.warnings, "warning");
        }
        std::cout << text << " in " << counted(summary.files, "file") << '\n';
    }

private:
    const Palette& palette_;
};

class CompilerReport : public Report {
public:
    explicit CompilerReport(bool hasColor) : palette_(hasColor ? kColored : kPlain) {}
    void add(const Fault& fault) override { printHead(fault, palette_); }
    void finish(const Summary&) override {}

private:
    const Palette& palette_;
};

}  // namespace

std::unique_ptr<Report> makeTextReport(bool hasColor) {
    return std::make_unique<TextReport>(hasColor);
}

std::unique_ptr<Report> makeCompilerReport(bool hasColor) {
    return std::make_unique<CompilerReport>(hasColor);
}

}  // namespace Tarnwick::Parser::ConfigTool
