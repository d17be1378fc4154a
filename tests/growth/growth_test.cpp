#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "config_parser.h"
#include "counted_operations.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

constexpr int kFew = 1000;
constexpr int kMany = 8 * kFew;
// Work for one of many things, as a multiple of that for one of few. Tables grow by doubling.
constexpr double kAllowance = 1.5;

/// A configuration of so many things, written by `line`, which names the thing.
using Line = std::function<std::string(int number)>;

struct Shape {
    const char* name;
    Line line;
};

std::ostream& operator<<(std::ostream& stream, const Shape& shape) {
    return stream << shape.name;
}

std::string numbered(const char* text, int number) {
    return text + std::to_string(100'000 + number);  // all of one length
}

std::string contentOf(const Shape& shape, int count) {
    std::string content = "[G]\nLast=x\n";
    for (int number = 0; number < count; ++number) {
        content += shape.line(number);
    }
    return content;
}

CountedOperations since(const CountedOperations& before) {
    const CountedOperations now = countedOperations();
    return {now.comparisons - before.comparisons, now.copiedBytes - before.copiedBytes,
            now.allocations - before.allocations, now.allocatedBytes - before.allocatedBytes};
}

void expectInStep(const CountedOperations& few, const CountedOperations& many) {
    const struct {
        const char* name;
        std::uint64_t CountedOperations::*count;
    } kCounts[] = {
        {"comparisons", &CountedOperations::comparisons},
        {"bytes copied", &CountedOperations::copiedBytes},
        {"allocations", &CountedOperations::allocations},
        {"bytes allocated", &CountedOperations::allocatedBytes},
    };
    for (const auto& [name, count] : kCounts) {
        EXPECT_GT(many.*count, 0U) << name;
        EXPECT_LT(static_cast<double>(many.*count) / kMany,
                  kAllowance * static_cast<double>(few.*count) / kFew)
            << name;
    }
}

class Growth : public testing::TestWithParam<Shape> {
protected:
    /// Returns what it costs to load so many things and to look all their keys up.
    CountedOperations costOf(int count) {
        const std::string path =
            directory_.write(std::to_string(count), contentOf(GetParam(), count));
        const CountedOperations before = countedOperations();
        ConfigParser parser(-1);
        EXPECT_TRUE(parser.loadFile(path));
        lookUpAll(parser);
        return since(before);
    }

private:
    static void lookUpAll(const ConfigParser& parser) {
        for (const std::string& group : parser.groups()) {
            for (const std::string& key : parser.keys(group)) {
                std::string text;
                parser.getValue(group, key, text);
                EXPECT_FALSE(text.empty());
            }
        }
    }

    Testing::TemporaryDirectory directory_;
};

TEST_P(Growth, OfWorkIsThatOfTheConfiguration) {
    const CountedOperations few = costOf(kFew);
    expectInStep(few, costOf(kMany));
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, Growth,
    testing::Values(
        Shape{"KeysOfOneGroup", [](int n) { return numbered("K", n) + "=v\n"; }},
        Shape{"Groups", [](int n) { return "[" + numbered("G", n) + "]\nK=v\n"; }},
        Shape{"ValuesOfOneKey", [](int n) { return "K=" + numbered("v", n) + ";w\n"; }},
        Shape{"KeysThatAreUnset", [](int n) { return numbered("K", n) + "=v\nK=w\nK=\n"; }},
        Shape{"References", [](int n) { return numbered("K", n) + "=${config:G/Last}\n"; }},
        Shape{"Comments", [](int n) { return numbered("# ", n) + "\nK=v\n"; }}),
    [](const testing::TestParamInfo<Shape>& shape) { return std::string(shape.param.name); });

CountedOperations costOfRegistering(int count) {
    const CountedOperations before = countedOperations();
    ConfigParser parser(-1);
    for (int number = 0; number < count; ++number) {
        parser.addKey("Group", numbered("AKeyWithALongName", number), KeyMode::Append);
    }
    for (int number = 0; number < count; ++number) {
        EXPECT_EQ(parser.keyMode("Group", numbered("AKeyWithALongName", number)), 1);
    }
    return since(before);
}

TEST(RegistryGrowth, OfWorkIsThatOfTheRegistry) {
    const CountedOperations few = costOfRegistering(kFew);
    expectInStep(few, costOfRegistering(kMany));
}

}  // namespace
}  // namespace Tarnwick::Parser
