#include "config/check/reference_graph.h"

#include <algorithm>
#include <deque>
#include <unordered_set>

#include "config/display.h"
#include "reference_resolver.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::size_t kMostSteps = 33;  // of a circle that a message shows

}  // namespace

/// The faults of the values that are left.
class Judgement {
public:
    using Value = ReferenceGraph::Value;
    using Target = ReferenceGraph::Target;
    using KeyState = ReferenceGraph::KeyState;

    Judgement(const ReferenceGraph& graph, bool hasAllFiles, const KnownNames& names,
              const FaultSink& sink)
        : graph_(graph),
          hasAllFiles_(hasAllFiles),
          names_(names),
          sink_(sink),
          nodes_(graph.values_.size()) {}

    void run() {
        for (std::uint32_t value = 0; value < nodes_.size(); ++value) {
            if (isLeft(value) && nodes_[value].order == kNone) {
                walkFrom(value);
            }
        }
        for (std::uint32_t value = 0; value < nodes_.size(); ++value) {
            if (isLeft(value)) {
                tell(value);
            }
        }
    }

private:
    static constexpr std::uint32_t kNone = ReferenceGraph::kNone;

    /// What the walk finds out about a value. Values that can reach each other make a knot.
    struct Node {
        std::uint32_t order = kNone;   // of the first visit
        std::uint32_t lowest = kNone;  // the earliest order that can be reached
        std::uint32_t knot = kNone;    // set when the knot is complete
        std::uint32_t before = kNone;  // on the way around a circle
        std::uint32_t visits = 0;      // of a resolution, up to one too many
        bool isCircular = false;
        bool isTooMany = false;
        bool failsOnlyHere = true;  // none of its targets fails

        [[nodiscard]] bool fails() const { return isCircular || isTooMany || !failsOnlyHere; }
    };
    /// The targets of one value.
    class Targets {
    public:
        using Iterator = std::deque<Target>::const_iterator;
        Targets(const Iterator& first, const Iterator& last) : first_(first), last_(last) {}
        [[nodiscard]] Iterator begin() const { return first_; }
        [[nodiscard]] Iterator end() const { return last_; }

    private:
        Iterator first_;
        Iterator last_;
    };
    struct Step {
        std::uint32_t value;
        std::size_t target;  // the next to look at
    };

    [[nodiscard]] const ReferenceGraph::Key& keyOf(const Target& target) const {
        return graph_.keys_[target.key];
    }

    [[nodiscard]] bool isLeft(std::uint32_t value) const {
        return value >= graph_.keys_[graph_.values_[value].key].firstValue;
    }

    [[nodiscard]] Targets targetsOf(std::uint32_t value) const {
        const auto target = [&](std::size_t number) {
            return graph_.targets_.begin() + static_cast<std::ptrdiff_t>(number);
        };
        const Value& row = graph_.values_[value];
        return Targets{target(row.firstTarget), target(row.endTarget)};
    }

    [[nodiscard]] const ReferenceGraph::Line& lineOf(std::uint32_t value) const {
        return graph_.lines_[graph_.values_[value].line];
    }

    // Strongly connected components, depth first, with a stack of our own: a ring of references
    // may be as long as the files are.
    void walkFrom(std::uint32_t start) {
        std::vector<Step> path;
        enter(path, start);
        while (!path.empty()) {
            Step& step = path.back();
            if (step.target < graph_.values_[step.value].endTarget) {
                const Target& target = graph_.targets_[step.target++];
                follow(path, step.value, keyOf(target).lastValue);
                continue;
            }
            const std::uint32_t value = step.value;
            path.pop_back();
            if (!path.empty()) {
                lower(path.back().value, nodes_[value].lowest);
            }
            if (nodes_[value].lowest == nodes_[value].order) {
                closeKnot(value);
            }
        }
    }

    void enter(std::vector<Step>& path, std::uint32_t value) {
        nodes_[value].order = nodes_[value].lowest = nextOrder_++;
        open_.push_back(value);
        path.push_back({value, graph_.values_[value].firstTarget});
    }

    void follow(std::vector<Step>& path, std::uint32_t from, std::uint32_t to) {
        if (to == kNone) {
            return;
        }
        if (nodes_[to].order == kNone) {
            enter(path, to);
        } else if (nodes_[to].knot == kNone) {
            lower(from, nodes_[to].order);
        }
    }

    void lower(std::uint32_t value, std::uint32_t order) {
        nodes_[value].lowest = std::min(nodes_[value].lowest, order);
    }

    // All that the knot's values refer to has been judged by now, apart from the knot itself.
    void closeKnot(std::uint32_t first) {
        const bool isCircular = open_.back() != first || refersToItself(first);
        std::uint32_t value = kNone;
        do {
            value = open_.back();
            open_.pop_back();
            nodes_[value].knot = nextKnot_;
            nodes_[value].isCircular = isCircular;
        } while (value != first);
        ++nextKnot_;
        if (!isCircular) {
            countVisits(first);
        }
    }

    [[nodiscard]] bool refersToItself(std::uint32_t value) const {
        const Targets targets = targetsOf(value);
        return std::any_of(targets.begin(), targets.end(),
                           [&](const Target& target) { return keyOf(target).lastValue == value; });
    }

    // As the resolver counts: every value once for each time it is needed. A value that fails by
    // itself counts as one visit, so that its fault is told once and not for all who need it.
    void countVisits(std::uint32_t value) {
        constexpr auto kTooMany = static_cast<std::uint32_t>(kMostVisits) + 1;
        Node& node = nodes_[value];
        std::uint32_t visits = 1;
        for (const Target& target : targetsOf(value)) {
            const std::uint32_t last = keyOf(target).lastValue;
            if (last != kNone && nodes_[last].fails()) {
                node.failsOnlyHere = false;
                visits += 1;
            } else if (last != kNone) {
                visits += nodes_[last].visits;
            } else if (keyOf(target).state == KeyState::Set) {
                visits += 1;
            }
            visits = std::min(visits, kTooMany);
        }
        node.visits = visits;
        node.isTooMany = visits == kTooMany;
    }

    void tell(std::uint32_t value) {
        if (const std::optional<Shift>& shift = graph_.values_[value].shift) {
            tellShift(value, *shift);
        }
        if (nodes_[value].isCircular && toldKnots_.insert(nodes_[value].knot).second) {
            tellCircle(value);
        }
        if (nodes_[value].isTooMany) {
            report(RuleId::ReferenceTooMany, value, *targetsOf(value).begin(),
                   std::to_string(kMostVisits - 1));
        }
        if (hasAllFiles_) {
            tellUndefined(value);
        }
    }

    void tellShift(std::uint32_t value, const Shift& shift) {
        const bool isError = shift.severity == Severity::Error;
        Fault fault =
            faultAt(RuleId::ReferenceShift, value,
                    targetsOf(value).begin()[static_cast<std::ptrdiff_t>(shift.reference)],
                    isError ? "then stands past its end" : "no longer stands where it was written");
        fault.severity = shift.severity;
        sink_(fault);
    }

    void tellUndefined(std::uint32_t value) {
        for (const Target& target : targetsOf(value)) {
            const std::string& name = *graph_.names_[target.key];
            if (keyOf(target).state == KeyState::Set || isGenerated(name)) {
                continue;
            }
            Fault fault = faultAt(RuleId::ReferenceUndefined, value, target, shortened(name));
            if (keyOf(target).state == KeyState::Unset) {
                fault.message = "a file unsets the key '" + shortened(name) + "'";
            } else {
                fault.message += suggestionFor(name);
            }
            sink_(fault);
        }
    }

    // Not for a name that readers know: it is written as it was meant.
    [[nodiscard]] std::string suggestionFor(const std::string& name) const {
        const std::size_t slash = name.find('/');
        const std::string group = name.substr(0, slash);
        const std::string key = name.substr(slash + 1);
        if (names_.hasKey(group, key)) {
            return {};
        }
        return names_.hasGroup(group) ? suggestion(key, names_.keys(group))
                                      : suggestion(group, names_.groups());
    }

    // A generator writes its keys when it runs; the files at hand need not have them.
    static bool isGenerated(const std::string& name) {
        return name.starts_with(kGroupGeneratedConfig + '/');
    }

    // The shortest way from the value back to itself.
    void tellCircle(std::uint32_t first) {
        const std::uint32_t last = lastOfCircle(first);
        std::vector<std::uint32_t> circle;
        for (std::uint32_t value = last; value != first; value = nodes_[value].before) {
            circle.push_back(value);
        }
        circle.push_back(first);
        std::reverse(circle.begin(), circle.end());
        const std::uint32_t next = circle.size() > 1 ? circle[1] : first;
        for (const Target& target : targetsOf(first)) {
            if (keyOf(target).lastValue == next) {
                report(RuleId::ReferenceCircle, first, target, described(circle));
                return;
            }
        }
    }

    // Breadth first, inside the knot: the value that leads back to the first one.
    std::uint32_t lastOfCircle(std::uint32_t first) {
        std::deque<std::uint32_t> waiting{first};
        while (!waiting.empty()) {
            const std::uint32_t value = waiting.front();
            waiting.pop_front();
            for (const Target& target : targetsOf(value)) {
                const std::uint32_t next = keyOf(target).lastValue;
                if (next == first) {
                    return value;
                }
                if (next != kNone && nodes_[next].knot == nodes_[first].knot &&
                    nodes_[next].before == kNone) {
                    nodes_[next].before = value;
                    waiting.push_back(next);
                }
            }
        }
        return first;
    }

    [[nodiscard]] std::string described(const std::vector<std::uint32_t>& circle) const {
        std::string text;
        const std::size_t steps = std::min(circle.size(), kMostSteps);
        for (std::size_t step = 0; step < steps; ++step) {
            const ReferenceGraph::Line& line = lineOf(circle[step]);
            text += nameOfKey(circle[step]) + " (" + std::string(line.path) + ':' +
                    std::to_string(line.number) + ") -> ";
        }
        if (steps < circle.size()) {
            return text + std::to_string(circle.size() - steps) + " more -> " +
                   nameOfKey(circle.front());
        }
        return text + nameOfKey(circle.front());
    }

    [[nodiscard]] std::string nameOfKey(std::uint32_t value) const {
        return shortened(*graph_.names_[graph_.values_[value].key]);
    }

    [[nodiscard]] Fault faultAt(RuleId rule, std::uint32_t value, const Target& target,
                                std::string_view name) const {
        const ReferenceGraph::Line& line = lineOf(value);
        return makeFault(rule, {line.path, line.number, line.text}, {target.first, target.end},
                         name);
    }

    void report(RuleId rule, std::uint32_t value, const Target& target,
                std::string_view name) const {
        sink_(faultAt(rule, value, target, name));
    }

    const ReferenceGraph& graph_;
    bool hasAllFiles_;
    const KnownNames& names_;
    const FaultSink& sink_;
    std::vector<Node> nodes_;          // by value
    std::vector<std::uint32_t> open_;  // visited, and in no complete knot
    std::uint32_t nextOrder_ = 0;
    std::uint32_t nextKnot_ = 0;
    std::unordered_set<std::uint32_t> toldKnots_;
};

std::uint32_t ReferenceGraph::keepLine(const SourceLine& line) {
    lines_.push_back({line.path, line.number, std::string(line.text)});
    return static_cast<std::uint32_t>(lines_.size() - 1);
}

void ReferenceGraph::addPlain(const std::string& group, const std::string& key) {
    Key& added = keys_[keyNumber(group, key)];
    added.state = KeyState::Set;
    added.lastValue = kNone;
}

void ReferenceGraph::add(const std::string& group, const std::string& key, std::uint32_t line,
                         const std::vector<FoundReference>& references,
                         std::optional<Shift> shift) {
    const std::size_t firstTarget = targets_.size();
    for (const FoundReference& reference : references) {
        targets_.push_back({keyNumber(reference.group, reference.key),
                            static_cast<std::uint32_t>(reference.span.first),
                            static_cast<std::uint32_t>(reference.span.end)});
    }
    const std::uint32_t number = keyNumber(group, key);
    keys_[number].state = KeyState::Set;
    keys_[number].lastValue = static_cast<std::uint32_t>(values_.size());
    values_.push_back({line, number, firstTarget, targets_.size(), shift});
}

void ReferenceGraph::unset(const std::string& group, const std::string& key) {
    keys_[keyNumber(group, key)] = {.state = KeyState::Unset,
                                    .firstValue = static_cast<std::uint32_t>(values_.size())};
}

void ReferenceGraph::judge(bool hasAllFiles, const KnownNames& names, const FaultSink& sink) const {
    Judgement(*this, hasAllFiles, names, sink).run();
}

// No group and no key holds a slash.
std::uint32_t ReferenceGraph::keyNumber(std::string_view group, std::string_view key) {
    std::string name(group);
    name.append(1, '/').append(key);
    const auto [entry, isNew] =
        numbers_.try_emplace(std::move(name), static_cast<std::uint32_t>(keys_.size()));
    if (isNew) {
        keys_.emplace_back();
        names_.push_back(&entry->first);
    }
    return entry->second;
}

}  // namespace Tarnwick::Parser::ConfigTool
