#include "NcTokenizer.h"

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NcError.h"

namespace
{

/// All words of a text as "LETTER=value" with its line, blocks separated by '|'.
std::string Words(std::string_view iText, bool iReadDeleted = false)
{
    NcTokenizer tokenizer(iText, iReadDeleted);
    NcBlock block;
    std::string words;
    while (tokenizer.NextBlock(block)) {
        words +=
            std::to_string(block.m_line) + (block.m_isPercent ? "%" : "") + (block.m_isDeleted ? "/" : "");
        for (const NcWord& word : block.m_words) {
            char number[64];
            snprintf(number, sizeof number, " %c%.17g", word.m_letter, word.m_value);
            words += number;
        }
        words += '|';
    }
    return words;
}

std::string Fault(std::string_view iText)
{
    try {
        return "accepted " + Words(iText);
    } catch (const NcFault& fault) {
        return fault.m_subject + ": " + fault.m_reason;
    }
}

TEST(NcTokenizer, WordsNeedNoBlanks)
{
    EXPECT_EQ(Words("G1X2.5Y-3Z+.5F100"), "1 G1 X2.5 Y-3 Z0.5 F100|");
    EXPECT_EQ(Words("G64p.001q.005"), "1 G64 P0.001 Q0.0050000000000000001|");
    EXPECT_EQ(Words("S10000M03"), "1 S10000 M3|");
    EXPECT_EQ(Words("T1M6"), "1 T1 M6|");
}

TEST(NcTokenizer, BlanksMayStandBetweenLetterAndNumber)
{
    EXPECT_EQ(Words("g3 x 0\ty0 z 20 i20"), "1 G3 X0 Y0 Z20 I20|");
}

TEST(NcTokenizer, LettersOfEitherCase)
{
    EXPECT_EQ(Words("n0080 g90 X1 x2"), "1 N80 G90 X1 X2|");
}

TEST(NcTokenizer, FormsOfNumbers)
{
    EXPECT_EQ(Words("X1. X.5 X+0.0 X007 X-.25 X0 X00.10"), "1 X1 X0.5 X0 X7 X-0.25 X0 X0.10000000000000001|");
    EXPECT_EQ(Words("X-0.00"), "1 X-0|");
    EXPECT_EQ(Words("F9991300.0"), "1 F9991300|");
}

TEST(NcTokenizer, EighteenDecimalsAreReadToTheNearestDouble)
{
    NcTokenizer tokenizer("X0.333333333333333315 Y-12.100000000000000089", false);
    NcBlock block;
    ASSERT_TRUE(tokenizer.NextBlock(block));
    EXPECT_EQ(block.m_words.at(0).m_value, 0.333333333333333315);
    EXPECT_EQ(block.m_words.at(1).m_value, -12.1);
}

TEST(NcTokenizer, NumberTooSmallForADoubleIsZero)
{
    EXPECT_EQ(Words("X0." + std::string(400, '0') + "1"), "1 X0|");
}

TEST(NcTokenizer, NumberTooLargeForADoubleIsRefused)
{
    EXPECT_EQ(Fault("X" + std::string(400, '9')),
              "number '9999999999999999999999999999999999999999...' too large: it does not fit a double");
}

TEST(NcTokenizer, CommentsAnywhere)
{
    EXPECT_EQ(Words("(a)G1(b)X5(c)Y6 ; d (e"), "1 G1 X5 Y6|");
    EXPECT_EQ(Words("()\n(\n;\n;;)(\nG1 ()X1"), "1|2|3|4|5 G1 X1|");
    EXPECT_EQ(Words("G0 X1 ; G1 (X2)"), "1 G0 X1|");
    EXPECT_EQ(Words("(G1 X1 ; still inside) G0 X3"), "1 G0 X3|");
}

TEST(NcTokenizer, CommentsMayHoldAnything)
{
    EXPECT_EQ(Words("(1/4\"  #5 [x] % / \xc3\xa4\xe2\x82\xac \xff) G1"), "1 G1|");
    EXPECT_EQ(Words("G1 ; \xc2\xb5m = 100 %"), "1 G1|");
    EXPECT_EQ(Words("( M1 \xe2\x80\x94 caf\xc3\xa9 )"), "1|");
}

TEST(NcTokenizer, PairedParenthesesNest)
{
    EXPECT_EQ(Words("(end mill (1/4 in) long) G1"), "1 G1|");
    // One too many '(': the first ')' ends the comment, so that no motion gets lost.
    EXPECT_EQ(Words("(end mill (1/4 in) G1 X5"), "1 G1 X5|");
    EXPECT_EQ(Words("(a (b) G1 (c)"), "1 G1|");
}

TEST(NcTokenizer, UnclosedCommentTakesTheRestOfItsLineAndIsReported)
{
    NcTokenizer tokenizer("G1 (open X5\nX6", false);
    NcBlock block;
    ASSERT_TRUE(tokenizer.NextBlock(block));
    EXPECT_TRUE(block.m_hasUnclosedComment);
    EXPECT_EQ(block.m_words.size(), 1U);
    ASSERT_TRUE(tokenizer.NextBlock(block));
    EXPECT_FALSE(block.m_hasUnclosedComment);
    EXPECT_EQ(block.m_words.size(), 1U);
    EXPECT_FALSE(tokenizer.NextBlock(block));
}

TEST(NcTokenizer, FirstLineMayBeABrokenComment)
{
    EXPECT_EQ(Words("\nmade by hand, 50 %) G21\nG1"), "1|2 G21|3 G1|");
    EXPECT_EQ(Words("( made by hand\nG1"), "1|2 G1|");
    EXPECT_EQ(Fault("G21\nX5 made by hand)"), "missing number after 'm': a word is a letter and a number");
    EXPECT_EQ(Fault("G21\nX5)"), "')' without '(': a comment stands between parentheses");
}

TEST(NcTokenizer, ByteOrderMarkIsPassedOver)
{
    EXPECT_EQ(Words("\xef\xbb\xbfG21"), "1 G21|");
}

TEST(NcTokenizer, LineEnds)
{
    EXPECT_EQ(Words("G1\r\nX1\r\n\r\nX2\r\n"), "1 G1|2 X1|3|4 X2|");
    EXPECT_EQ(Words("G1\nX1"), "1 G1|2 X1|");
    EXPECT_EQ(Words("G1\rX1\rX2"), "1 G1|2 X1|3 X2|");
    EXPECT_EQ(Words("G1\r\r\nX1"), "1 G1|2 X1|");
    EXPECT_EQ(Words("G1\n\x1aX~~"), "1 G1|");
    EXPECT_EQ(Words(""), "");
}

TEST(NcTokenizer, PercentLines)
{
    EXPECT_EQ(Words("%\nG1\n % rest = ignored\n"), "1%|2 G1|3%|");
    EXPECT_EQ(Fault("G1 %"), "unknown character '%': a block is made of words and comments");
}

TEST(NcTokenizer, BlockDelete)
{
    EXPECT_EQ(Words("/G1 X1\n /2 X2\nN5/X3\n/ ~~ \n"), "1/|2/|3/ N5|4/|");
    EXPECT_EQ(Words("/G1 X1\n /2 X2\nN5/X3", true), "1/ G1 X1|2/ X2|3/ N5 X3|");
    EXPECT_EQ(Fault("G1 / X1"), "'/' inside a block: block delete stands at the start of a block");
}

TEST(NcTokenizer, NumbersOfLinesAndPrograms)
{
    EXPECT_EQ(Words("O00094 ( HAAS )\n:1001\nN10.5 G1"), "1 O94|2 :1001|3 N10.5 G1|");
}

TEST(NcTokenizer, TextThatIsNoWord)
{
    EXPECT_EQ(Fault("G1 X"), "missing number after 'X': a word is a letter and a number");
    EXPECT_EQ(Fault("G1 XY5"), "missing number after 'X': a word is a letter and a number");
    EXPECT_EQ(Fault("G1 X-"), "missing number after 'X': a word is a letter and a number");
    EXPECT_EQ(Fault("G1 X."), "missing number after 'X': a word is a letter and a number");
    EXPECT_EQ(Fault("G1 X(c)5"), "missing number after 'X': a word is a letter and a number");
    EXPECT_EQ(Fault("X1.2.3"), "malformed number '1.2.3': a number is a sign, digits and one decimal point");
    EXPECT_EQ(Fault("X--1"), "malformed number '--1': a number is a sign, digits and one decimal point");
    EXPECT_EQ(Fault("X+-1"), "malformed number '+-1': a number is a sign, digits and one decimal point");
    EXPECT_EQ(Fault("X1-2"), "malformed number '1-2': a number is a sign, digits and one decimal point");
    // There are no exponents: E is a letter like any other, for the interpreter to refuse.
    EXPECT_EQ(Words("X1e5"), "1 X1 E5|");
    EXPECT_EQ(Fault("G1 X1 5"), "number '5' without a letter: a word is a letter and a number");
    EXPECT_EQ(Fault("12"), "number '12' without a letter: a word is a letter and a number");
    EXPECT_EQ(Fault("G1 ,R5"), "unknown character ',': a block is made of words and comments");
    EXPECT_EQ(Fault("G1 \xc3\xa4"), "unknown character '\\xc3': a block is made of words and comments");
    EXPECT_EQ(Fault(std::string_view("G1\0X1", 5)),
              "unknown character '\\x00': a block is made of words and comments");
}

TEST(NcTokenizer, MacrosAreNamed)
{
    const std::string reason = ": variables, expressions and flow control are not supported";
    EXPECT_EQ(Fault("#100=5"), "macro text '#100=5'" + reason);
    EXPECT_EQ(Fault("G1 X#100 Y2"), "macro text '#100'" + reason);
    EXPECT_EQ(Fault("G1 X[1+2]"), "macro text '[1+2]'" + reason);
    EXPECT_EQ(Fault("N40 IF [ #5405 GE 6000 ] THEN #3000= 15"), "macro text 'IF'" + reason);
    EXPECT_EQ(Fault("while [#1 lt 5] do1"), "macro text 'while'" + reason);
    EXPECT_EQ(Fault("o100 sub"), "macro text 'sub'" + reason);
    EXPECT_EQ(Fault("O<name> call"), "macro text '<name>'" + reason);
    EXPECT_EQ(Fault("GOTO10"), "macro text 'GOTO'" + reason);
}

TEST(NcTokenizer, TellsWhetherTextFollows)
{
    const auto more = [](std::string_view iText) {
        NcTokenizer tokenizer(iText, false);
        NcBlock block;
        tokenizer.NextBlock(block);
        return tokenizer.HasMoreText();
    };
    EXPECT_FALSE(more("M30"));
    EXPECT_FALSE(more("M30\n\n(END)\n(OF PROGRAM)\n%\n ; bye"));
    EXPECT_TRUE(more("M30\n(END)\nG1"));
    EXPECT_TRUE(more("M30\n~~"));
}

TEST(NcTokenizer, LongHostileLineTakesNoQuadraticTime)
{
    std::string line;
    for (int i = 0; i < 200'000; ++i) {
        line += "((a)";
    }
    NcTokenizer tokenizer(line, false);
    NcBlock block;
    ASSERT_TRUE(tokenizer.NextBlock(block));
    EXPECT_TRUE(block.m_words.empty());
}

}  // namespace
