#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "config/explain/assignments.h"
#include "config/explain/last_words.h"
#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

/// Why a load ended early.
struct LoadFailure {
    LineOrigin origin;  ///< line 0: the file as a whole
    std::uint32_t column = 0;
    std::string text;      ///< the line, or the piece of a value
    std::string reason;    ///< in words
    bool isOfText = true;  ///< anybody can see it in the file, whatever the sources answer
};

/// Returns "PATH:LINE:COLUMN", as far as the failure has a line.
[[nodiscard]] std::string placeText(const LoadFailure& failure);

/// Hears a load, and keeps what explaining one key takes.
class LoadHistory {
public:
    explicit LoadHistory(KeyName name) : collector_(std::move(name)) {}
    LoadHistory(const LoadHistory&) = delete;
    LoadHistory& operator=(const LoadHistory&) = delete;

    void operator()(const LoadEvent& event);

    [[nodiscard]] std::vector<Assignment>& assignments() { return collector_.assignments(); }
    [[nodiscard]] const LastWords& words() const { return words_; }
    [[nodiscard]] const std::vector<LoadFailure>& failures() const { return failures_; }
    /// The files that were read or tried, in order.
    [[nodiscard]] const std::deque<std::string>& files() const { return files_; }

private:
    std::deque<std::string> files_;  // lines point to them
    AssignmentCollector collector_;
    LastWords words_;
    std::vector<LoadFailure> failures_;
};

}  // namespace Tarnwick::Parser::ConfigTool
