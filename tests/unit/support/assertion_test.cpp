#include "support/assertion.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

int evaluations = 0;

bool evaluate(bool result) {
    ++evaluations;
    return result;
}

TEST(Assertion, LetsATrueConditionPass) {
    TARNWICK_ASSERT(1 + 1 == 2);
}

TEST(Assertion, EvaluatesItsConditionOnceInEveryBuild) {
    evaluations = 0;
    TARNWICK_ASSERT(evaluate(true));
    EXPECT_EQ(evaluations, 1);
}

TEST(AssertionDeathTest, NamesPlaceAndConditionAndAborts) {
    EXPECT_EXIT(TARNWICK_ASSERT(evaluate(false)), testing::KilledBySignal(SIGABRT),
                "assertion_test.cpp:[0-9]+: TestBody: "
                "Assertion `evaluate\\(false\\)' failed\\.");
}

}  // namespace
}  // namespace Tarnwick::Parser
