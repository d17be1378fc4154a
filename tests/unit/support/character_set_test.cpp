#include "support/character_set.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

constexpr CharacterSet kLetters("abc");

TEST(CharacterSet, HoldsWhatItWasMadeOfAndNothingElse) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(kLetters.has(static_cast<char>(code)), code >= 'a' && code <= 'c') << code;
    }
}

TEST(CharacterSet, IsKnownToTheCompiler) {
    static_assert(kLetters.has('b'));
    static_assert(!kLetters.has('d'));
    static_assert(consistsOf("cab", kLetters));
}

TEST(CharacterSet, TakesBytesAboveAsciiForWhatTheyAre) {
    const CharacterSet set("\xE4\xFF");
    EXPECT_TRUE(set.has('\xE4'));
    EXPECT_TRUE(set.has('\xFF'));
    EXPECT_FALSE(set.has('\x64'));
}

TEST(ConsistsOf, AcceptsTextsOfTheSetAlone) {
    EXPECT_TRUE(consistsOf("abccba", kLetters));
    EXPECT_TRUE(consistsOf("", kLetters));
    EXPECT_FALSE(consistsOf("abd", kLetters));
    EXPECT_FALSE(consistsOf("dab", kLetters));
    EXPECT_FALSE(consistsOf(std::string_view("a\0b", 3), kLetters));
}

}  // namespace
}  // namespace Tarnwick::Parser
