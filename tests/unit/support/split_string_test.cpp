#include "support/split_string.h"

#include <gtest/gtest.h>

namespace Tarnwick::Parser {
namespace {

using List = std::vector<std::string>;

struct Row {
    std::string text;
    List pieces;
};

void check(int maxSplits, EmptyMode mode, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(splitString(row.text, ':', maxSplits, mode), row.pieces)
            << "'" << row.text << "' at " << maxSplits << " splits in mode " << mode;
    }
}

TEST(SplitString, KeepsEmptyPiecesBetweenSeparatorsButNoneAfterTheLast) {
    check(kNoSplitLimit, KeepEmpty,
          {
              {"a:b", {"a", "b"}},
              {"a::b", {"a", "", "b"}},
              {":a", {"", "a"}},
              {"a:", {"a"}},
              {"a::", {"a", ""}},
              {":", {""}},
              {"::", {"", ""}},
              {"abc", {"abc"}},
              {"", {}},
              {"a b:c\nd", {"a b", "c\nd"}},
          });
}

TEST(SplitString, LeavesEmptyPiecesOut) {
    check(kNoSplitLimit, SkipEmpty,
          {
              {"a:b", {"a", "b"}},
              {"a::b", {"a", "b"}},
              {":a:", {"a"}},
              {":", {}},
              {"::", {}},
              {"", {}},
              {"abc", {"abc"}},
          });
}

TEST(SplitString, AddsAnEmptyPieceAfterATrailingSeparatorAndForTheEmptyText) {
    check(kNoSplitLimit, KeepEmptyAtEnd,
          {
              {"a:b", {"a", "b"}},
              {"a:b:", {"a", "b", ""}},
              {"a::b:", {"a", "", "b", ""}},
              {":", {"", ""}},
              {"", {""}},
              {"abc", {"abc"}},
          });
}

TEST(SplitString, TakesAnyNegativeLimitForNone) {
    EXPECT_EQ(splitString("a:b:c", ':', -7, KeepEmpty), (List{"a", "b", "c"}));
}

TEST(SplitString, LeavesWhatFollowsTheLastPermittedCutInOnePiece) {
    check(1, KeepEmpty,
          {
              {"N:a:b", {"N", "a:b"}},
              {"N:a:", {"N", "a:"}},
              {"N:", {"N"}},
              {"N", {"N"}},
              {":a:b", {"", "a:b"}},
              {"", {}},
          });
    check(2, KeepEmpty,
          {
              {"a:b:c:d", {"a", "b", "c:d"}},
              {"a:b:\nc", {"a", "b", ""}},
              {"a:b", {"a", "b"}},
              {"a:b:", {"a", "b"}},
              {"a::c:d", {"a", "", "c:d"}},
          });
}

TEST(SplitString, CountsAPieceThatIsLeftOutAsEmpty) {
    check(2, SkipEmpty,
          {
              {"a::b:c", {"a", "b:c"}},
              {"::b:c", {"b:c"}},
              {"a:b:\nc", {"a", "b"}},
              {"a:b:c:d", {"a", "b", "c:d"}},
          });
}

TEST(SplitString, EndsTheRestAtItsFirstLineFeed) {
    check(1, KeepEmpty,
          {
              {"a:b:c\nd:e", {"a", "b:c"}},
              {"a\nb:c\nd", {"a\nb", "c"}},
          });
}

TEST(SplitString, AddsNothingAfterARestThatWasLeftUncut) {
    check(1, KeepEmptyAtEnd,
          {
              {"N:a:", {"N", "a:"}},
              {"N:", {"N", ""}},
              {"N", {"N"}},
              {"", {""}},
              {"N:a", {"N", "a"}},
              {":", {"", ""}},
              {"::", {"", ":"}},
          });
    check(2, KeepEmptyAtEnd, {{"a:b:", {"a", "b", ""}}, {"a:b", {"a", "b"}}});
}

TEST(SplitString, TakesTheFirstLineAsTheOnlyPieceWhenNoCutIsPermitted) {
    for (const EmptyMode mode : {KeepEmpty, SkipEmpty, KeepEmptyAtEnd}) {
        check(0, mode, {{"a:b:c", {"a:b:c"}}, {"a:b\nc:d", {"a:b"}}, {"a:", {"a:"}}});
    }
    check(0, KeepEmpty, {{"", {}}});
    check(0, KeepEmptyAtEnd, {{"", {""}}});
}

TEST(SplitString, AcceptsALimitFarBeyondTheText) {
    check(1000000, KeepEmpty, {{"a:b", {"a", "b"}}, {"", {}}, {"a:", {"a"}}});
    check(1000000, KeepEmptyAtEnd, {{"a:b:", {"a", "b", ""}}});
}

TEST(SplitString, CutsAtEveryByteThatIsAskedFor) {
    EXPECT_EQ(splitString("a\nb\n", '\n', kNoSplitLimit, KeepEmpty), (List{"a", "b"}));
    EXPECT_EQ(splitString(std::string("a\0b", 3), '\0', kNoSplitLimit, KeepEmpty),
              (List{"a", "b"}));
    EXPECT_EQ(splitString("a\xFF"
                          "b",
                          '\xFF', kNoSplitLimit, KeepEmpty),
              (List{"a", "b"}));
}

TEST(TakePiece, TakesOnePieceAfterTheOtherAndThenNothing) {
    std::string_view rest = "a::b";
    std::string_view piece;
    List pieces;
    while (takePiece(rest, ':', piece)) {
        pieces.emplace_back(piece);
    }
    EXPECT_EQ(pieces, (List{"a", "", "b"}));
    EXPECT_EQ(piece, "b");
    EXPECT_TRUE(rest.empty());
}

TEST(TakePiece, LeavesThePieceAloneWhenNothingIsLeft) {
    std::string_view rest;
    std::string_view piece = "as it was";
    EXPECT_FALSE(takePiece(rest, ':', piece));
    EXPECT_EQ(piece, "as it was");
}

TEST(TakePiece, DropsTheSeparatorAtTheEnd) {
    std::string_view rest = "a:";
    std::string_view piece;
    EXPECT_TRUE(takePiece(rest, ':', piece));
    EXPECT_EQ(piece, "a");
    EXPECT_FALSE(takePiece(rest, ':', piece));
}

}  // namespace
}  // namespace Tarnwick::Parser
