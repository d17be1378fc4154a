// The explanation for people: a head, then a row for each assignment, and below it what its
// templates came to.

#include <algorithm>
#include <iostream>

#include "config/display.h"
#include "config/explain/explanation.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// Colours by what they are for; empty without colour.
struct Palette {
    std::string_view value;
    std::string_view good;
    std::string_view lost;
    std::string_view bad;
    std::string_view end;
};
constexpr Palette kPlain{};
constexpr Palette kColored{"\x1b[1m", "\x1b[1;32m", "\x1b[33m", "\x1b[1;31m", "\x1b[0m"};

// Columns are as wide as their widest text, but no wider than this: longer ones stand out.
constexpr std::size_t kWidestPlace = 60;
constexpr std::size_t kWidestText = 40;
constexpr std::size_t kWidestName = 48;
// Columns of templates are never narrower than this.
constexpr std::size_t kNarrowestName = 25;
constexpr std::size_t kNarrowestText = 18;

constexpr std::size_t kIndent = 4;
constexpr std::string_view kGap = "   ";
constexpr const char* kHeadGap = "          ";

std::string counted(std::size_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

std::string padding(std::size_t width, std::size_t wanted) {
    std::string blanks;
    blanks.resize(wanted > width ? wanted - width : 0, ' ');
    return blanks;
}

std::string padded(std::string_view text, std::size_t wanted) {
    const Shown visible = shown(text);
    return visible.text + padding(visible.width, wanted);
}

void widen(std::size_t& column, std::string_view text, std::size_t widest) {
    const std::size_t width = shown(text).width;
    if (width <= widest) {
        column = std::max(column, width);
    }
}

/// Something that became of an assignment, and whether that is good.
struct Verdict {
    std::string words;
    std::string_view color;
};

class TextExplanation {
public:
    TextExplanation(const Explanation& explanation, const Palette& palette)
        : explanation_(explanation), palette_(palette) {
        for (const Assignment& assignment : explanation_.assignments) {
            measure(assignment);
        }
    }

    void print() {
        printHead();
        printProblem();
        printFailures();
        printAssignments();
        printUser();
        printNear();
    }

private:
    // --- Widths ---

    void measure(const Assignment& assignment) {
        widen(placeWidth_, placeText(assignment.origin), kWidestPlace);
        widen(textWidth_, assignment.text, kWidestText);
        for (const Piece& piece : assignment.pieces) {
            widen(textWidth_, assignment.textOf(piece), kWidestText);
            measure(piece.traces, kIndent);
        }
    }

    void measure(const std::vector<Trace>& traces, std::size_t indent) {
        for (const Trace& trace : traces) {
            widen(nameEnd_, std::string(indent, ' ') + trace.name, kWidestName);
            widen(replacementWidth_, trace.text.value_or(""), kWidestText);
            measure(trace.parts, indent + kIndent);
        }
    }

    // --- Head ---

    void printHead() const {
        std::cout << escaped(explanation_.name.group) << '/' << escaped(explanation_.name.key);
        if (explanation_.value) {
            std::cout << " = " << palette_.value << '\'' << escaped(*explanation_.value) << '\''
                      << palette_.end;
        } else if (explanation_.status == ExitUnavailable) {
            std::cout << " has " << palette_.bad << "no value" << palette_.end;
        } else {
            std::cout << " has " << palette_.bad << "no answer" << palette_.end;
        }
        std::cout << kHeadGap << "(exit " << explanation_.status;
        if (explanation_.value && explanation_.valueCount > 1) {
            std::cout << ", the last of " << explanation_.valueCount << " values";
        }
        std::cout << ")\n";
    }

    // What is wrong with the value itself stands beside it.
    void printProblem() const {
        if (!isJudged() && !explanation_.problem.empty()) {
            std::cout << '\n' << escaped(explanation_.problem) << '\n';
        }
    }

    [[nodiscard]] bool isJudged() const {
        const auto& rows = explanation_.assignments;
        return std::any_of(rows.begin(), rows.end(), [](const Assignment& row) {
            return std::any_of(row.pieces.begin(), row.pieces.end(), [](const Piece& piece) {
                return piece.outcome == Outcome::Current;
            });
        });
    }

    void printFailures() const {
        if (explanation_.failures.empty()) {
            return;
        }
        std::cout << '\n';
        for (const LoadFailure& failure : explanation_.failures) {
            std::cout << escaped(placeText(failure)) << ": " << palette_.bad
                      << escaped(failure.reason) << palette_.end << '\n';
            if (failure.origin.line > 0) {
                std::cout << "    " << failure.origin.line << " | "
                          << escaped(shortened(failure.text)) << '\n';
            }
        }
        if (explanation_.failures.back().isOfText) {
            std::cout << "'tarnwick-config check' finds all faults, also those behind this one.\n";
        }
    }

    // --- Assignments ---

    void printAssignments() const {
        std::cout << '\n';
        if (explanation_.assignments.empty()) {
            std::cout << "No line in " << counted(explanation_.fileCount, "file")
                      << " assigns it.\n";
        }
        for (const Assignment& assignment : explanation_.assignments) {
            if (!std::cout.good()) {
                return;  // nobody reads on
            }
            printAssignment(assignment);
        }
    }

    void printAssignment(const Assignment& assignment) const {
        const std::string place = padded(placeText(assignment.origin), placeWidth_);
        printRow(place, "=", assignment.text, verdictOf(assignment));
        if (assignment.pieces.size() == 1) {
            printTraces(assignment.pieces.front().traces, kIndent);
            return;
        }
        const std::string noPlace(placeWidth_, ' ');
        for (const Piece& piece : assignment.pieces) {
            printRow(noPlace, ";", assignment.textOf(piece), verdictOf(piece));
            printTraces(piece.traces, kIndent);
        }
    }

    void printRow(const std::string& place, std::string_view mark, std::string_view text,
                  const Verdict& verdict) const {
        std::cout << place << kGap << mark << ' ' << padded(text, textWidth_) << ' '
                  << verdict.color << escaped(verdict.words)
                  << (verdict.color.empty() ? "" : palette_.end) << '\n';
    }

    [[nodiscard]] Verdict verdictOf(const Assignment& assignment) const {
        if (assignment.removed) {
            return {*assignment.removed > 0
                        ? "unset: " + counted(*assignment.removed, "value") + " gone"
                        : "unset: there was no value",
                    palette_.lost};
        }
        if (assignment.pieces.size() == 1) {
            return verdictOf(assignment.pieces.front());
        }
        return {std::to_string(assignment.pieces.size()) + " pieces", {}};
    }

    [[nodiscard]] Verdict verdictOf(const Piece& piece) const {
        const std::string but = piece.reason.empty() ? ""
                                : piece.isFilled     ? ", but " + piece.reason
                                                     : ", but cannot be filled: " + piece.reason;
        switch (piece.outcome) {
            case Outcome::Read:
                return {"read, not expanded", {}};
            case Outcome::Stored:
                return {"stored" + but, {}};
            case Outcome::Current:
                return {"current" + but, but.empty() ? palette_.good : palette_.bad};
            case Outcome::Unset:
                return {"stored, then unset", palette_.lost};
            case Outcome::Dropped:
                return {"dropped: " + piece.reason, palette_.bad};
            case Outcome::Fatal:
                return {"ends the request: " + piece.reason, palette_.bad};
        }
        return {};
    }

    // --- Templates ---

    // Recursion is as deep as references were followed.
    void printTraces(const std::vector<Trace>& traces, std::size_t indent) const {
        for (const Trace& trace : traces) {
            std::cout << std::string(indent, ' ')
                      << padded(trace.name, nameEnd_ > indent ? nameEnd_ - indent : 0)
                      << (trace.text ? " = " : "   ")
                      << padded(trace.text.value_or(""), replacementWidth_) << ' '
                      << escaped(wordsOf(trace)) << '\n';
            printTraces(trace.parts, indent + kIndent);
        }
    }

    static std::string wordsOf(const Trace& trace) {
        std::string words = trace.words;
        if (trace.word != nullptr) {
            words += (words.empty() ? "" : ", ") + placeText(trace.word->origin);
            if (trace.kind == Trace::Kind::Filled && trace.word->details) {
                words += " = " + trace.word->details->piece;
            }
        }
        return trace.shift.empty() ? words : words + ": " + trace.shift;
    }

    // --- What stands below ---

    void printUser() const {
        if (!explanation_.userRemark.empty()) {
            std::cout << '\n' << escaped(explanation_.userRemark) << ".\n";
        }
        if (explanation_.userKeys.empty()) {
            return;
        }
        std::cout << "\nThe generated configuration names the user, and the command line does not "
                     "count:\n";
        for (const UserKey& key : explanation_.userKeys) {
            std::cout << std::string(kIndent, ' ') << padded(key.name, nameEnd_ - kIndent) << " = "
                      << padded(key.text, replacementWidth_) << ' '
                      << (key.origin.path != nullptr ? escaped(placeText(key.origin))
                                                     : "no file sets it")
                      << '\n';
        }
    }

    void printNear() const {
        if (explanation_.near.empty()) {
            return;
        }
        std::cout << "\nNear names that have a value:";
        for (const std::string& name : explanation_.near) {
            std::cout << " '" << escaped(name) << '\'';  // a name can end in a blank
        }
        std::cout << '\n';
    }

    const Explanation& explanation_;
    const Palette& palette_;
    std::size_t placeWidth_ = 0;
    std::size_t textWidth_ = 0;
    std::size_t nameEnd_ = kIndent + kNarrowestName;
    std::size_t replacementWidth_ = kNarrowestText;
};

}  // namespace

void printText(const Explanation& explanation, bool hasColor) {
    TextExplanation(explanation, hasColor ? kColored : kPlain).print();
}

}  // namespace Tarnwick::Parser::ConfigTool
