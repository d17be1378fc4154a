#include "support/value_conversion.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "helpers/process_state.h"

namespace Tarnwick::Parser {
namespace {

template <typename T>
struct Row {
    std::string text;
    T value;
    bool ok;
};

template <typename T>
using Rows = std::vector<Row<T>>;

// Runs each row once with a flag that starts the other way round, and once without a flag.
template <typename T>
void check(T (*convert)(const std::string&, bool*), const Rows<T>& rows) {
    for (const Row<T>& row : rows) {
        SCOPED_TRACE("'" + row.text + "'");
        bool ok = !row.ok;
        EXPECT_EQ(convert(row.text, &ok), row.value);
        EXPECT_EQ(ok, row.ok);
        EXPECT_EQ(convert(row.text, nullptr), row.value);
    }
}

TEST(ParseBool, KnowsExactlyTwoWords) {
    const Rows<bool> rows{
        {"true", true, true},
        {"false", false, true},
        {"True", false, false},
        {"TRUE", false, false},
        {"False", false, false},
        {"1", false, false},
        {"0", false, false},
        {"yes", false, false},
        {" true", false, false},
        {"true ", false, false},
        {"truely", false, false},
        {"", false, false},
        {std::string("true\0", 5), false, false},
    };
    check(parseBool, rows);
}

TEST(ParseInt, ReadsDecimalNumbers) {
    const Rows<int> rows{
        {"0", 0, true},
        {"12", 12, true},
        {"-12", -12, true},
        {"+12", 12, true},
        {"007", 7, true},
        {"2147483647", INT_MAX, true},
        {"-2147483648", INT_MIN, true},
    };
    check(parseInt, rows);
}

TEST(ParseInt, ReadsHexadecimalNumbersAfterALowerCasePrefixAtTheVeryStart) {
    const Rows<int> rows{
        {"0x1F", 31, true},  {"0x1f", 31, true},
        {"0x0", 0, true},    {"0x7fffffff", INT_MAX, true},
        {"0X1F", 0, false},  {"-0x10", 0, false},
        {" 0x10", 0, false}, {"0x", 0, false},
        {"0xg", 0, false},   {"0x10 ", 16, false},
    };
    check(parseInt, rows);
}

TEST(ParseInt, SkipsLeadingWhiteSpaceAndRefusesAnythingBehindTheNumber) {
    const Rows<int> rows{
        {" 12", 12, true},   {"\t\n12", 12, true},
        {"12 ", 12, false},  {"12x", 12, false},
        {"12.", 12, false},  {"3.5", 3, false},
        {"1 2", 1, false},   {"1,000", 1, false},
        {"1.000", 1, false}, {std::string("12\0", 3), 12, false},
    };
    check(parseInt, rows);
}

TEST(ParseInt, GivesZeroForTextWithoutANumber) {
    const Rows<int> rows{
        {"", 0, false},    {" ", 0, false},    {"abc", 0, false}, {"-", 0, false},
        {"--1", 0, false}, {"true", 0, false}, {"x1", 0, false},
    };
    check(parseInt, rows);
}

TEST(ParseInt, GivesTheLimitOnOverflow) {
    const Rows<int> rows{
        {"2147483648", INT_MAX, false},
        {"0x80000000", INT_MAX, false},
        {"-2147483649", INT_MIN, false},
        {"99999999999999999999999", INT_MAX, false},
    };
    check(parseInt, rows);
}

TEST(ParseLongLong, ReadsTheWholeRange) {
    const Rows<long long> rows{
        {"9223372036854775807", LLONG_MAX, true},
        {"-9223372036854775808", LLONG_MIN, true},
        {"0x1F", 31, true},
        {"0x80000000", 2147483648, true},
        {"0X1F", 0, false},
        {"-0x10", 0, false},
        {"9223372036854775808", LLONG_MAX, false},
        {"-9223372036854775809", LLONG_MIN, false},
        {"12 ", 12, false},
        {" 12", 12, true},
        {"", 0, false},
        {"3.5", 3, false},
    };
    check(parseLongLong, rows);
}

TEST(ParseDouble, ReadsDecimalAndScientificNotation) {
    const Rows<double> rows{
        {"3.5", 3.5, true},   {"-3.5", -3.5, true}, {"3", 3, true},       {".5", .5, true},
        {"5.", 5, true},      {"1e3", 1000, true},  {"1E-2", 0.01, true}, {" 3.5", 3.5, true},
        {"3.5 ", 3.5, false}, {"3.5x", 3.5, false}, {"3,5", 3, false},    {"", 0, false},
        {"abc", 0, false},
    };
    check(parseDouble, rows);
}

TEST(ParseDouble, DoesNotReadHexadecimalText) {
    const Rows<double> rows{
        {"0x1", 0, false},
        {"0x1F", 0, false},
        {"0X1", 0, false},
    };
    check(parseDouble, rows);
}

TEST(ParseDouble, GivesTheLimitOnOverflow) {
    const Rows<double> rows{
        {"1e999", std::numeric_limits<double>::max(), false},
        {"-1e999", std::numeric_limits<double>::lowest(), false},
    };
    check(parseDouble, rows);
}

TEST(ValueConversion, KeepsToTheClassicLocale) {
    const Testing::ForeignLocaleScope scope;
    check<int>(parseInt, {{"1000", 1000, true}, {"1.000", 1, false}});
    check<long long>(parseLongLong, {{"1000", 1000, true}, {"1.000", 1, false}});
    check<double>(parseDouble, {{"1000.5", 1000.5, true}, {"1000,5", 1000, false}});
    check<bool>(parseBool, {{"true", true, true}, {"wahr", false, false}});
}

TEST(ValueConversion, FitsTheCallableOfTheLookups) {
    const ValueConverter<int> convert = parseInt;
    bool ok = false;
    EXPECT_EQ(convert("7", &ok), 7);
    EXPECT_TRUE(ok);
}

}  // namespace
}  // namespace Tarnwick::Parser
