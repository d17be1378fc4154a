#include "config/check/reference_graph.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Texts = std::vector<std::string>;

/// Sets keys of the group G, each on a line of its own, and tells the faults as "LINE id".
class Graph : public testing::Test {
protected:
    void plain(const std::string& key) {
        ++line_;
        graph_.addPlain("G", key);
    }

    void refers(const std::string& key, const std::vector<std::string_view>& keys,
                std::optional<Shift> shift = std::nullopt) {
        std::vector<FoundReference> references;
        for (const std::string_view to : keys) {
            references.push_back({"G", to, {references.size(), references.size() + 1}});
        }
        const std::uint32_t line = graph_.keepLine({"a.conf", ++line_, "text"});
        graph_.add("G", key, line, references, shift);
    }

    void unset(const std::string& key) {
        ++line_;
        graph_.unset("G", key);
    }

    [[nodiscard]] Texts faults(bool hasAllFiles = true) const {
        Texts found;
        const FaultSink sink = [&](const Fault& fault) {
            found.push_back(std::to_string(fault.line) + ' ' +
                            std::string(ruleOf(fault.rule).name));
        };
        graph_.judge(hasAllFiles, KnownNames(), sink);
        return found;
    }

    ReferenceGraph graph_;
    std::uint32_t line_ = 0;
};

TEST_F(Graph, FindsNothingWhereReferencesLeadToTexts) {
    plain("A");
    refers("B", {"A", "A"});
    refers("C", {"B"});
    EXPECT_EQ(faults(), Texts());
}

TEST_F(Graph, FindsAKeyThatLeadsToItself) {
    refers("A", {"A"});
    EXPECT_EQ(faults(), Texts{"1 reference-circle"});
}

TEST_F(Graph, TellsTwoKnotsOnceEachAndNotWhoLeadsToThem) {
    refers("A", {"B"});
    refers("B", {"A", "C"});
    refers("C", {"D"});
    refers("D", {"C"});
    refers("E", {"A", "D"});
    EXPECT_EQ(faults(), (Texts{"1 reference-circle", "3 reference-circle"}));
}

TEST_F(Graph, LooksAtTheLastValueOfAKeyAlone) {
    refers("A", {"B"});
    refers("B", {"A"});
    plain("B");
    EXPECT_EQ(faults(), Texts());
}

TEST_F(Graph, ForgetsTheValuesOfAKeyThatIsUnset) {
    refers("A", {"A"});
    unset("A");
    EXPECT_EQ(faults(), Texts());
    refers("A", {"None"});
    EXPECT_EQ(faults(), Texts{"3 reference-undefined"});
}

TEST_F(Graph, FindsReferencesToKeysThatWereUnset) {
    refers("A", {"B"});
    plain("B");
    EXPECT_EQ(faults(), Texts());
    unset("B");
    EXPECT_EQ(faults(), Texts{"1 reference-undefined"});
    EXPECT_EQ(faults(false), Texts());
}

TEST_F(Graph, Allows32ReferencesAndNot33) {
    plain("A");
    refers("Fine", std::vector<std::string_view>(32, "A"));
    EXPECT_EQ(faults(), Texts());
    refers("Many", std::vector<std::string_view>(33, "A"));
    EXPECT_EQ(faults(), Texts{"3 reference-too-many"});
}

TEST_F(Graph, CountsNoVisitForAMissingKey) {
    refers("A", std::vector<std::string_view>(100, "None"));
    EXPECT_EQ(faults(false), Texts());
}

TEST_F(Graph, TellsAShiftWithItsSeverityInTheOrderOfReading) {
    plain("A");
    refers("B", {"A"}, Shift{Severity::Warning, 0});
    refers("C", {"C"});
    refers("B", {"A"}, Shift{Severity::Error, 0});
    EXPECT_EQ(faults(), (Texts{"2 reference-shift", "3 reference-circle", "4 reference-shift"}));
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
