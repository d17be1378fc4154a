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
    static_assert(isMadeOf("cab", kLetters));
}

TEST(CharacterSet, TakesBytesAboveAsciiForWhatTheyAre) {
    const CharacterSet set("\xE4\xFF");
    EXPECT_TRUE(set.has('\xE4'));
    EXPECT_TRUE(set.has('\xFF'));
    EXPECT_FALSE(set.has('\x64'));
}

TEST(IsMadeOf, AcceptsTextsOfPermittedCharactersAlone) {
    EXPECT_TRUE(isMadeOf("abccba", kLetters));
    EXPECT_TRUE(isMadeOf("", kLetters));
    EXPECT_FALSE(isMadeOf("abd", kLetters));
    EXPECT_FALSE(isMadeOf(std::string_view("a\0b", 3), kLetters));
}

TEST(IsMadeOf, WantsEveryRequiredCharacterOnce) {
    EXPECT_TRUE(isMadeOf("ab", kLetters, "a"));
    EXPECT_TRUE(isMadeOf("bca", kLetters, "ab"));
    EXPECT_FALSE(isMadeOf("bc", kLetters, "ab"));
    EXPECT_FALSE(isMadeOf("", kLetters, "a"));
}

TEST(IsMadeOf, AcceptsEveryCharacterOfNames) {
    constexpr CharacterSet kNames(kNameCharacters);
    EXPECT_EQ(kNameCharacters.size(), 66U);
    EXPECT_TRUE(isMadeOf(kNameCharacters, kNames));
    EXPECT_FALSE(isMadeOf("a/b", kNames));
    EXPECT_FALSE(isMadeOf("a\tb", kNames));
}

}  // namespace
}  // namespace Tarnwick::Parser
