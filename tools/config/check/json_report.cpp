// The report for programs: one object, its faults one a line.

#include <iostream>

#include "config/check/report.h"
#include "config/json.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

Json numberOrNull(std::size_t number) {
    return number > 0 ? Json(number) : Json();
}

Json asJson(const Fault& fault) {
    Json object;
    setText(object, "path", fault.path);
    object["line"] = numberOrNull(fault.line);
    object["column"] = numberOrNull(fault.firstColumn);
    object["lastColumn"] = numberOrNull(fault.lastColumn);
    object["severity"] = nameOf(fault.severity);
    object["id"] = ruleOf(fault.rule).name;
    setText(object, "message", fault.message);
    object["hint"] = fault.hint.empty() ? Json() : Json(fault.hint);
    if (fault.line == 0) {
        object["source"] = nullptr;
        object["sourceColumn"] = nullptr;
    } else {
        setText(object, "source", fault.excerpt.text);
        object["sourceColumn"] = fault.excerpt.first + 1;
    }
    return object;
}

class JsonReport : public Report {
public:
    void add(const Fault& fault) override {
        begin();
        std::cout << (isFirst_ ? "\n" : ",\n") << printed(asJson(fault));
        isFirst_ = false;
    }

    void finish(const Summary& summary) override {
        begin();
        std::cout << (isFirst_ ? "" : "\n") << "],\"errors\":" << summary.errors
                  << ",\"warnings\":" << summary.warnings << ",\"files\":" << summary.files
                  << "}\n";
    }

private:
    void begin() {
        if (!hasBegun_) {
            std::cout << "{\"faults\":[";
            hasBegun_ = true;
        }
    }

    bool hasBegun_ = false;
    bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<Report> makeJsonReport(bool) {
    return std::make_unique<JsonReport>();
}

}  // namespace Tarnwick::Parser::ConfigTool
