// A program of another project that links Tarnwick::Parser in this tree gets what it would get from
// an installed package.

#include <gtest/gtest.h>

#include <tarnwick/vocabulary.h>
#include <fstream>
#include <iterator>
#include <string>

#if !__has_include(<tarnwick/config_parser.h>) || !__has_include(<tarnwick/logging/log_record.h>)
#error "an installed header cannot be reached"
#endif
#if __has_include(<tarnwick/config_file.h>) || __has_include(<tarnwick/logging/journal.h>) || \
    __has_include(<tarnwick/support/trim.h>) || __has_include("config_parser.h")
#error "a private header can be reached"
#endif

namespace Tarnwick::Parser {
namespace {

TEST(TheTreesTarget, IsTheSharedLibrary) {
    EXPECT_FALSE(vocabularyGroups().empty());
    std::ifstream maps("/proc/self/maps");
    const std::string loaded{std::istreambuf_iterator<char>(maps), {}};
    EXPECT_NE(loaded.find("/libtarnwick-parser.so"), std::string::npos);
}

}  // namespace
}  // namespace Tarnwick::Parser
