#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "environment/Utilities.h"

namespace {

using Pieces = std::vector<std::string>;

/// All pieces of a text. One that isn't used up after as many steps as it has characters gives a
/// last piece "...".
Pieces PiecesOf(bool (*split)(std::string&, int, std::string&), std::string text, int columns) {
  Pieces pieces;
  std::string piece;
  for (std::size_t left = text.size() + 1; split(text, columns, piece); --left) {
    if (left == 0) return pieces.push_back("..."), pieces;
    pieces.push_back(piece);
  }
  return pieces;
}

Pieces Lines(const std::string& text, int columns) {
  return PiecesOf(&COSUtil::SplitLine, text, columns);
}

Pieces Names(const std::string& name, int columns) {
  return PiecesOf(&CKUtil::SplitName, name, columns);
}

TEST(SplitLine, AnEmptyTextHasNoPiece) {
  std::string text;
  std::string piece = "old";
  EXPECT_FALSE(COSUtil::SplitLine(text, 80, piece));
  EXPECT_EQ(piece, "");
}

TEST(SplitLine, TakesThePieceOffTheText) {
  std::string text = "one two three";
  std::string piece;
  EXPECT_TRUE(COSUtil::SplitLine(text, 8, piece));
  EXPECT_EQ(piece, "one two");
  EXPECT_EQ(text, "three");
}

TEST(SplitLine, ATextThatFitsIsOnePiece) {
  EXPECT_EQ(Lines("one two", 7), Pieces({"one two"}));
  EXPECT_EQ(Lines(" one ", 7), Pieces({" one "}));
}

TEST(SplitLine, CutsAtTheLastBlankThatFits) {
  EXPECT_EQ(Lines("1, 2, 3, 4", 6), Pieces({"1, 2,", "3, 4"}));
}

TEST(SplitLine, ABlankRightBehindTheColumnsFits) {
  EXPECT_EQ(Lines("four five", 4), Pieces({"four", "five"}));
}

TEST(SplitLine, AllBlanksAtTheCutAreDropped) {
  EXPECT_EQ(Lines("ab    cd", 4), Pieces({"ab", "cd"}));
  EXPECT_EQ(Lines("abcd    ", 4), Pieces({"abcd"}));
}

TEST(SplitLine, CutsAWordThatIsTooLong) {
  EXPECT_EQ(Lines("abcdefgh", 3), Pieces({"abc", "def", "gh"}));
  EXPECT_EQ(Lines("a bcdefgh", 3), Pieces({"a", "bcd", "efg", "h"}));
}

TEST(SplitLine, IndentationIsNoPlaceToCut) {
  EXPECT_EQ(Lines("  abcdef", 4), Pieces({"  ab", "cdef"}));
}

TEST(SplitLine, ALineFeedEndsAPiece) {
  EXPECT_EQ(Lines("a\nb\n", 80), Pieces({"a", "b"}));
  EXPECT_EQ(Lines("a\n\nb", 80), Pieces({"a", "", "b"}));
  EXPECT_EQ(Lines("\n", 80), Pieces({""}));
}

TEST(SplitLine, ALineFeedRightBehindTheColumnsMakesNoEmptyPiece) {
  EXPECT_EQ(Lines("abc\ndef", 3), Pieces({"abc", "def"}));
  EXPECT_EQ(Lines("abc   \ndef", 3), Pieces({"abc", "def"}));
}

TEST(SplitLine, BlanksAloneAreOneEmptyPiece) {
  EXPECT_EQ(Lines("          ", 3), Pieces({""}));
}

TEST(SplitLine, WithoutColumnsItTakesOneCharacterAtATime) {
  EXPECT_EQ(Lines("ab c", 0), Pieces({"a", "b", "c"}));
  EXPECT_EQ(Lines("abc", -5), Pieces({"a", "b", "c"}));
}

TEST(SplitName, AnEmptyNameHasNoPiece) {
  std::string name;
  std::string piece = "old";
  EXPECT_FALSE(CKUtil::SplitName(name, 14, piece));
  EXPECT_EQ(piece, "");
}

TEST(SplitName, CutsHardAndKeepsBlanks) {
  EXPECT_EQ(Names("abcdefgh", 3), Pieces({"abc", "def", "gh"}));
  EXPECT_EQ(Names("a bc  d", 3), Pieces({"a b", "c  ", "d"}));
}

TEST(SplitName, ANameThatFitsIsOnePiece) {
  EXPECT_EQ(Names("abc", 3), Pieces({"abc"}));
}

TEST(SplitName, ALineFeedEndsAPiece) {
  EXPECT_EQ(Names("ab\ncdef\n", 4), Pieces({"ab", "cdef"}));
  EXPECT_EQ(Names("abcd\nef", 4), Pieces({"abcd", "ef"}));
}

TEST(SplitName, WithoutColumnsItTakesOneCharacterAtATime) {
  EXPECT_EQ(Names("abc", 0), Pieces({"a", "b", "c"}));
  EXPECT_EQ(Names("abc", -1), Pieces({"a", "b", "c"}));
}

}  // namespace
