#include "support/dynamic_library.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

using Function = int(const char*);

int unchanged(const char*) {
    return 0;
}

TEST(DynamicLibrary, FindsAFunctionOfTheLibrary) {
    Function* function = nullptr;
    EXPECT_TRUE(DynamicLibrary("libc.so.6").find("atoi", function));
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function("42"), 42);
}

TEST(DynamicLibrary, LeavesTheFunctionAsItWasWhenTheNameIsNotThere) {
    Function* function = unchanged;
    EXPECT_FALSE(DynamicLibrary("libc.so.6").find("no_such_function", function));
    EXPECT_EQ(function, &unchanged);
}

TEST(DynamicLibrary, FindsNothingWithoutTheLibrary) {
    Function* function = unchanged;
    EXPECT_FALSE(DynamicLibrary("libno-such-library.so.1").find("atoi", function));
    EXPECT_EQ(function, &unchanged);
}

}  // namespace
}  // namespace Tarnwick::Parser
