#include "NcInterpreter.h"

#include "NcTestHelp.h"

namespace
{

using Lines = std::vector<std::string>;

/// The end points of the moves, one a line: kind, X Y Z, and 'x' where the move is not to be swept.
std::string Ends(const NcProgram& iProgram)
{
    std::string text;
    for (const NcMove& move : iProgram.m_moves) {
        char line[128];
        snprintf(line, sizeof line, "%c%s %g %g %g|", "RLA"[static_cast<int>(move.m_kind)],
                 move.m_mayCut ? "" : "x", move.m_end.x, move.m_end.y, move.m_end.z);
        text += line;
    }
    return text;
}

TEST(NcInterpreter, MotionIsModal)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X0 Y0 Z5\nX1\nG1 Z-1\nX2Y3\nG00 Z5\nX0")),
              "R 0 0 5|R 1 0 5|L 1 0 -1|L 2 3 -1|R 2 3 5|R 0 3 5|");
}

TEST(NcInterpreter, MovesFollowOneAnother)
{
    const NcProgram program = Parse("G21 G0 X0 Y0 Z5\nX1\nG1 Z-1\nG2 X3 I1\nG1 Y7");
    for (std::size_t i = 1; i < program.m_moves.size(); ++i) {
        EXPECT_EQ(program.m_moves[i].m_start, program.m_moves[i - 1].m_end);
    }
    EXPECT_EQ(program.m_moves.back().m_line, 5);
}

TEST(NcInterpreter, AxisWordsNeedAMotionCode)
{
    EXPECT_EQ(Refusal("G21\nX5"),
              "p.nc:2: error: axis words without a motion code: no G0, G1, G2 or G3 stands before them");
    EXPECT_EQ(Refusal("G21 G0 X0\nG80\nX5"),
              "p.nc:3: error: axis words without a motion code: after G80 a G0, G1, G2 or G3 is needed");
    EXPECT_EQ(Ends(Parse("G21 G00 G80 X1 Y2 Z100.")), "R 1 2 100|");
    EXPECT_EQ(Ends(Parse("G21 G80 G00 X1 Y2 Z100.")), "R 1 2 100|");
}

TEST(NcInterpreter, Units)
{
    EXPECT_EQ(Ends(Parse("G20 G0 X1 Y0 Z0\nG1 X-.5\nG21 X5")), "R 25.4 0 0|L -12.7 0 0|L 5 0 0|");
    EXPECT_EQ(Ends(Parse("G0 X1 Y0 Z0")), "R 1 0 0|");
    NcOptions inch;
    inch.m_defaultUnits = NcUnits::Inches;
    EXPECT_EQ(Ends(Parse("G0 X1 Y0 Z0\nG21 X1", inch)), "R 25.4 0 0|R 1 0 0|");
    EXPECT_EQ(Warnings(Parse("G0 X1")),
              Lines{"p.nc: warning: the program states no units; its lengths are taken as millimetres"});
    EXPECT_EQ(Warnings(Parse("G0 X1", inch)),
              Lines{"p.nc: warning: the program states no units; its lengths are taken as inches"});
    EXPECT_TRUE(Warnings(Parse("G20 G0 X1")).empty());
    EXPECT_FALSE(Parse("G0 X1").m_statesUnits);
    EXPECT_TRUE(Parse("G21 G0 X1").m_statesUnits);
}

TEST(NcInterpreter, IncrementsAndAbsolutes)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\nG91 G1 X2\nZ-3 Y1\nG90 X0")),
              "R 1 1 1|L 3 1 1|L 3 2 -2|L 0 2 -2|");
}

TEST(NcInterpreter, CodesThatExcludeEachOther)
{
    EXPECT_EQ(Refusal("G0 G1 X1"),
              "p.nc:1: error: 'G0' and 'G1' in one block: the two codes exclude each other");
    EXPECT_EQ(Refusal("G90 G91"),
              "p.nc:1: error: 'G90' and 'G91' in one block: the two codes exclude each other");
    EXPECT_EQ(Refusal("G20 G21"),
              "p.nc:1: error: 'G20' and 'G21' in one block: the two codes exclude each other");
    EXPECT_EQ(Refusal("G28 G53 X0"),
              "p.nc:1: error: 'G28' and 'G53' in one block: the two codes exclude each other");
    EXPECT_EQ(Refusal("G1 X1 X2"),
              "p.nc:1: error: second 'X' in one block ('X2'): a word can be given only once in a block");
    Parse("G21 G0 G0 X0 G90 G17 G40 G49 G54");
}

TEST(NcInterpreter, WorkOffsetsAreApplied)
{
    const char* const text =
        "G21 G90\nG10 L2 P2 X10 Y-101.6 Z1\nG0 X0 Y0 Z0\nG55 G1 X0 Y0 Z0\nX1\n"
        "G10 L2 P2 Y0\nX1 Y0\nG54 X0 Y0 Z0";
    EXPECT_EQ(Ends(Parse(text)), "R 0 0 0|L 10 -101.6 1|L 11 -101.6 1|L 11 0 1|L 0 0 0|");
    EXPECT_EQ(Ends(Parse("G20 G10 L2 P6 X1\nG59 G0 X1 Y0 Z0")), "R 50.8 0 0|");
}

TEST(NcInterpreter, AWorkOffsetMovesNoTool)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X5 Y5 Z5\nG10 L2 P1 X100\nG1 Z0\nG91 X1")), "R 5 5 5|L 5 5 0|L 6 5 0|");
    // An axis without a word yet is at the zero of the offset in force.
    EXPECT_EQ(Ends(Parse("G21 G10 L2 P2 Y-100\nG55\nG1 X1")), "L 1 -100 0|");
}

TEST(NcInterpreter, OtherG10)
{
    EXPECT_EQ(Refusal("G10 L20 P1 X0"),
              "p.nc:1: error: unsupported code 'G10': only work offsets can be set (G10 L2 P1 to P6)");
    EXPECT_EQ(Refusal("G10 P1 X0"),
              "p.nc:1: error: unsupported code 'G10': only work offsets can be set (G10 L2 P1 to P6)");
    EXPECT_EQ(Refusal("G10 L2 X0"),
              "p.nc:1: error: G10 L2 without P: the number of the work offset is needed");
    EXPECT_EQ(Refusal("G10 L2 P0 X0"),
              "p.nc:1: error: bad number in 'P0': P must be a whole number from 1 to 6");
    EXPECT_EQ(Refusal("G10 L2 P7 X0"),
              "p.nc:1: error: bad number in 'P7': P must be a whole number from 1 to 6");
    EXPECT_EQ(Refusal("G10 L2 P1 R30"),
              "p.nc:1: error: unsupported word 'R30': work offsets cannot be rotated");
    EXPECT_EQ(Refusal("G91 G10 L2 P1 X1"),
              "p.nc:1: error: G10 L2 under G91: controls differ in its meaning; set work offsets under G90");
    EXPECT_EQ(Refusal("G54.1 P3"),
              "p.nc:1: error: unsupported code 'G54.1': only the work offsets G54 to G59 are supported");
    EXPECT_EQ(Refusal("G59.1"),
              "p.nc:1: error: unsupported code 'G59.1': only the work offsets G54 to G59 are supported");
}

TEST(NcInterpreter, FirstRapidComesFromNowhere)
{
    const NcProgram program = Parse("G21 G0 X50 Y50\nZ5\nX0\nG1 Z-1");
    EXPECT_EQ(Ends(program), "Rx 50 50 0|R 50 50 5|R 0 50 5|L 0 50 -1|");
    // Its way is not known, its end is.
    EXPECT_EQ(program.m_moves[1].m_start, program.m_moves[1].m_end);
    EXPECT_EQ(program.m_moves[0].m_knownAxes, 3U);
    EXPECT_NE(program.m_moves[2].m_start, program.m_moves[2].m_end);
}

TEST(NcInterpreter, CuttingTakesAnUnsaidAxisAsZero)
{
    const NcProgram program = Parse("G21\nG0 Z5\nG0 X-25\nG1 Z-3\nG0 Z5\nX1");
    EXPECT_EQ(Ends(program), "Rx 0 0 5|Rx -25 0 5|L -25 0 -3|R -25 0 5|R 1 0 5|");
}

TEST(NcInterpreter, MachineMovesCutNothingAndLoseThePlace)
{
    const NcProgram program = Parse("G21 G0 X1 Y2 Z3\nG53 Z0\nG0 X5\nY6\nZ4\nG1 Z-1");
    EXPECT_EQ(Ends(program), "R 1 2 3|Rx 1 2 3|Rx 5 2 3|Rx 5 6 3|R 5 6 4|L 5 6 -1|");
    EXPECT_TRUE(program.m_moves[1].m_isMachineMove);
    EXPECT_EQ(program.m_moves[1].m_knownAxes, 3U);
    EXPECT_FALSE(program.m_moves[2].m_isMachineMove);
    EXPECT_EQ(program.m_moves[4].m_start, program.m_moves[4].m_end);
    // Nothing of the machine coordinates gets into the extents.
    ExpectPoint(Parse("G21 G0 X1 Y2 Z3\nG53 G0 X-508. Y-90 Z400").MotionExtents().Max(), 1, 2, 3);
}

TEST(NcInterpreter, ReferenceMoves)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y2 Z3\nG28 G91 Z0.\nG90\nG0 X7 Y7\nZ3")),
              "R 1 2 3|Rx 1 2 3|Rx 7 7 3|R 7 7 3|");
    const NcProgram all = Parse("G21 G0 X1 Y2 Z3\nG28");
    EXPECT_EQ(all.m_moves.back().m_knownAxes, 0U);
    EXPECT_TRUE(all.m_moves.back().m_isMachineMove);
    EXPECT_EQ(Parse("G21 G0 X1 Y2 Z3\nG30 Z0 P2").m_moves.back().m_knownAxes, 3U);
    // G53 without an axis moves nothing.
    EXPECT_EQ(Parse("G21 G0 X1 Y2 Z3\nG53 M5").m_moves.size(), 1U);
}

TEST(NcInterpreter, CuttingFromALostPlaceIsRefused)
{
    EXPECT_EQ(Refusal("G21 G0 X1 Y1 Z1\nG28 Z0\nG1 X5"),
              "p.nc:3: error: cutting move from an unknown place: the place along Z was lost by the move in "
              "machine "
              "coordinates on line 2");
    // Not even where the block itself gives the place: the way to it is unknown.
    EXPECT_EQ(Refusal("G21 G0 X1 Y1 Z1\nG53 Y0\nG1 X5 Y5 Z5"),
              "p.nc:3: error: cutting move from an unknown place: the place along Y was lost by the move in "
              "machine "
              "coordinates on line 2");
    EXPECT_EQ(Refusal("G21 G0 X1 Y1 Z1\nG53 X0\nG2 X1 I5"),
              "p.nc:3: error: arc from an unknown place: the place along X was lost by the move in machine "
              "coordinates on "
              "line 2");
    // An increment from a lost place leads to a lost place.
    EXPECT_EQ(Refusal("G21 G0 X1 Y1 Z1\nG91 G28 Z0\nG0 Z-5\nG1 X5"),
              "p.nc:4: error: cutting move from an unknown place: the place along Z was lost by the move in "
              "machine "
              "coordinates on line 2");
}

TEST(NcInterpreter, ToolsWithToolChange)
{
    const NcProgram program =
        Parse("G21 T5 M6\nG0 X0 Y0 Z5 T3\nG1 Z0\nG0 Z5 M5\nM06\nG1 Z-1\nM6 T0\nG1 Z-2\nT7\nG1 Z-3");
    std::vector<int> tools;
    for (const NcMove& move : program.m_moves) {
        tools.push_back(move.m_tool);
    }
    EXPECT_EQ(tools, (std::vector<int>{5, 5, 5, 3, 0, 0}));
    EXPECT_EQ(program.CuttingTools(), (std::vector<int>{0, 3, 5}));
}

TEST(NcInterpreter, ToolsWithoutToolChange)
{
    const NcProgram program = Parse("G21 G0 X0 Y0 Z0\nT03\nG1 X1\nT4\nX2\n");
    EXPECT_EQ(program.m_moves[0].m_tool, kNcNoTool);
    EXPECT_EQ(program.m_moves[1].m_tool, 3);
    EXPECT_EQ(program.m_moves[2].m_tool, 4);
    EXPECT_EQ(Refusal("T1.5"),
              "p.nc:1: error: bad number in 'T1.5': T must be a whole number from 0 to 99999999");
    EXPECT_EQ(Refusal("T-1"),
              "p.nc:1: error: bad number in 'T-1': T must be a whole number from 0 to 99999999");
}

TEST(NcInterpreter, ToolOnAnEarlierLine)
{
    const NcProgram program = Parse("G21\nT9\nM5\nG04 P1.0\n(MSG, change)\nM6\nM0\nG1 X1");
    EXPECT_EQ(program.m_moves.at(0).m_tool, 9);
    EXPECT_EQ(Parse("G21 T1 M6\nT2\nG1 X1\nM61 Q8\nG1 X2").m_moves.at(1).m_tool, 8);
}

TEST(NcInterpreter, EndOfProgram)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\nM2\nX2 ~")), "R 1 1 1|");
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\nX3 M30\nX2")), "R 1 1 1|R 3 1 1|");
    EXPECT_EQ(Ends(Parse("%\nG21 G0 X1 Y1 Z1\n%\nX2")), "R 1 1 1|");
    EXPECT_EQ(Ends(Parse("O100\n%\nG21 G0 X1 Y1 Z1\n%\n#1=2")), "R 1 1 1|");
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\n%\nX2")), "R 1 1 1|");
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\nM99\nX2")), "R 1 1 1|");
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1")), "R 1 1 1|");
    EXPECT_EQ(Warnings(Parse("G21 G0 X1\nM30\nX2")),
              Lines{"p.nc:2: warning: the program ends here; the text after it is ignored"});
    EXPECT_TRUE(Warnings(Parse("%\nG21 G0 X1\nM30\n%\n(END)\n")).empty());
    NcOptions joined;
    joined.m_readJoinedPrograms = true;
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\nM30\nX2\nM30\n%\nX3", joined)), "R 1 1 1|R 2 1 1|");
}

TEST(NcInterpreter, BlockDelete)
{
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\n/X2\n/ #1=5\nX3")), "R 1 1 1|R 3 1 1|");
    EXPECT_EQ(Warnings(Parse("G21 G0 X1\n/X2\n/X3")),
              Lines{"p.nc:2: warning: blocks that start with '/' are passed over"});
    NcOptions run;
    run.m_runDeletedBlocks = true;
    EXPECT_EQ(Ends(Parse("G21 G0 X1 Y1 Z1\n/X2\nX3", run)), "R 1 1 1|R 2 1 1|R 3 1 1|");
    EXPECT_TRUE(Warnings(Parse("G21 G0 X1\n/X2", run)).empty());
}

TEST(NcInterpreter, NumbersOfBlocksAndPrograms)
{
    EXPECT_EQ(Ends(Parse("O1001\n:5\nN1 G21 G0 X1 Y1 Z1\nn0020 n30 x2")), "R 1 1 1|R 2 1 1|");
}

TEST(NcInterpreter, CompensationIsWarnedOfOnce)
{
    const NcProgram program = Parse("G21 G0 X0 Y0 Z0\nG41 D1 G1 X1\nG42 D2 X2\nG40 X3");
    EXPECT_EQ(Ends(program), "R 0 0 0|L 1 0 0|L 2 0 0|L 3 0 0|");
    EXPECT_EQ(
        Warnings(program),
        Lines{"p.nc:2: warning: cutter compensation (G41, G42) is not applied; the programmed path is cut"});
}

TEST(NcInterpreter, UnknownMCodesAreWarnedOfOnceEach)
{
    EXPECT_EQ(Warnings(Parse("G21 G0 X1\nM88\nM89 M88\nM3 M4 M5 M7 M8 M9 M0 M1 M19 R90\n")),
              (Lines{"p.nc:2: warning: M88 is not known here and is ignored",
                     "p.nc:3: warning: M89 is not known here and is ignored"}));
    EXPECT_EQ(Refusal("M3.5"),
              "p.nc:1: error: unknown code 'M3.5': an M code is a whole number from 0 to 99999");
    EXPECT_EQ(Refusal("M98 P1000"),
              "p.nc:1: error: unsupported code 'M98': subprogram calls are not supported");
}

TEST(NcInterpreter, AcceptedCodes)
{
    const char* const text =
        "G17 G20 G40 G49 G80 G54 G94\nG21\nG64p.001q.005\nG64 P0.1 Q0.01\nG61\nG61.1\nG43 H1\n"
        "G4 P1.00000\nG04 X1.5\nG09\nG15\nG50\nG69\nG91.1\nG93\nG95\nG97 S100\nG92.1\n"
        "F9991300.0\nF0\nS-1\nD1 H2\nG0 X0.779 Y1 Z5.0 G43  H00 M8\n";
    const NcProgram program = Parse(text);
    EXPECT_EQ(Ends(program), "R 0.779 1 5|");
    EXPECT_TRUE(Warnings(program).empty());
}

TEST(NcInterpreter, RefusedCodes)
{
    const auto refusal = [](const std::string& iCode) { return Refusal("G21\n\n" + iCode); };
    const std::string cycle = ": of the canned cycles only G73, G81, G82 and G83 are supported";
    for (const char* code : {"G74", "G76", "G84", "G85", "G86", "G87", "G88", "G89"}) {
        EXPECT_EQ(refusal(code), "p.nc:3: error: unsupported code '" + std::string(code) + "'" + cycle);
    }
    EXPECT_EQ(refusal("G92 X0"),
              "p.nc:3: error: unsupported code 'G92': a shift of the coordinates is not supported; use "
              "a work offset (G54 to G59, G10 L2)");
    EXPECT_EQ(refusal("G52 X1"),
              "p.nc:3: error: unsupported code 'G52': local coordinate systems are not supported");
    EXPECT_EQ(refusal("G68 X0 Y0 R45"),
              "p.nc:3: error: unsupported code 'G68': rotated coordinates are not supported");
    EXPECT_EQ(refusal("G51 P2"),
              "p.nc:3: error: unsupported code 'G51': scaling and mirroring are not supported");
    EXPECT_EQ(refusal("G16"), "p.nc:3: error: unsupported code 'G16': polar coordinates are not supported");
    EXPECT_EQ(refusal("G43.1 Z1"),
              "p.nc:3: error: unsupported code 'G43.1': an offset written in the program is not supported");
    EXPECT_EQ(refusal("G65 P9000"), "p.nc:3: error: unsupported code 'G65': macro calls are not supported");
    for (const char* code : {"G5", "G12", "G33", "G38.2", "G999", "G1.55", "G-1", "G99999999999999999999"}) {
        EXPECT_EQ(refusal(code),
                  "p.nc:3: error: unknown code '" + std::string(code) + "': no such G code is supported");
    }
}

TEST(NcInterpreter, RefusedWords)
{
    for (const char letter : std::string("ABCUVW")) {
        const std::string word = std::string(1, letter) + "90.";
        EXPECT_EQ(Refusal("G21\nG1 X1 " + word),
                  "p.nc:2: error: axis word '" + word + "': only the axes X, Y and Z are supported");
    }
    EXPECT_EQ(Refusal("E5"), "p.nc:1: error: unknown word 'E5': no such address letter is supported");
    EXPECT_EQ(Refusal("G1 X1\nG1 X2 I5"),
              "p.nc:2: error: misplaced word 'I5': it has no meaning in a straight move");
    EXPECT_EQ(Refusal("G1 X2 R5"),
              "p.nc:1: error: misplaced word 'R5': it has no meaning in a straight move");
    EXPECT_EQ(Refusal("G4 P1 X5"),
              "p.nc:1: error: misplaced word 'X5': G4 cannot stand in one block with a move");
    EXPECT_EQ(Refusal("G4 Z5"),
              "p.nc:1: error: misplaced word 'Z5': G4 cannot stand in one block with a move");
}

TEST(NcInterpreter, MacrosAreRefusedWithTheirLine)
{
    EXPECT_EQ(Refusal("G21\nG0 X1\n#1=5"),
              "p.nc:3: error: macro text '#1=5': variables, expressions and flow control are not supported");
    EXPECT_EQ(Refusal("G21\nG0 X[2*3]"),
              "p.nc:2: error: macro text '[2*3]': variables, expressions and flow control are not supported");
    EXPECT_EQ(Refusal("o1 while [1]"),
              "p.nc:1: error: macro text 'while': variables, expressions and flow control are not supported");
}

TEST(NcInterpreter, LengthsHaveAnEnd)
{
    EXPECT_EQ(Refusal("G21 G0 X100000001"),
              "p.nc:1: error: number too large in 'X100000001': lengths end at 100000000 mm");
    EXPECT_EQ(Refusal("G20 G0 X9999999"),
              "p.nc:1: error: number too large in 'X9999999': lengths end at 100000000 mm");
    EXPECT_EQ(Refusal("G21 G0 X90000000\nG91 X90000000"),
              "p.nc:2: error: move too far in 'X90000000': lengths end at 100000000 mm");
}

TEST(NcInterpreter, BrokenCommentsAreWarnedOf)
{
    EXPECT_EQ(Warnings(Parse("broken header )\nG21 G0 X1 (open\nX2 (open")),
              (Lines{"p.nc:1: warning: text before ')' without '(' is taken for a comment",
                     "p.nc:2: warning: a comment that is not closed takes the rest of its line"}));
}

TEST(NcInterpreter, ProgramWithoutMoves)
{
    for (const char* text : {"", "%\n%\n", "(nothing)\n", "G21\nM30"}) {
        EXPECT_EQ(Warnings(Parse(text)), Lines{"p.nc: warning: the program makes no move"}) << text;
    }
}

TEST(NcInterpreter, ErrorsCarryTheirParts)
{
    try {
        ParseNcProgram("G21\n\nG1 X", "some dir/part.nc", {});
        FAIL();
    } catch (const NcError& error) {
        EXPECT_EQ(error.File(), "some dir/part.nc");
        EXPECT_EQ(error.Line(), 3);
        EXPECT_EQ(error.Subject(), "missing number after 'X'");
        EXPECT_EQ(error.Reason(), "a word is a letter and a number");
        EXPECT_STREQ(error.what(),
                     "some dir/part.nc:3: error: missing number after 'X': a word is a letter and a number");
    }
}

TEST(NcInterpreter, ErrorsStayOnOneLine)
{
    const NcError error("a\nb.nc", 0, "x", "y");
    EXPECT_STREQ(error.what(), "a\\x0ab.nc: error: x: y");
}

TEST(NcInterpreter, FilesThatCannotBeRead)
{
    try {
        ReadNcProgram("/no/such/file.nc");
        FAIL();
    } catch (const NcError& error) {
        EXPECT_STREQ(error.what(),
                     "/no/such/file.nc: error: cannot open the program: No such file or directory");
        EXPECT_EQ(error.Line(), 0);
    }
    EXPECT_THROW(ReadNcProgram("/"), NcError);
}

}  // namespace
