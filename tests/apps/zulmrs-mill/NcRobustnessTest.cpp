#include <cmath>
#include <fstream>
#include <random>

#include "NcTestHelp.h"

namespace
{

std::string RealText(const std::string& iFile)
{
    std::ifstream stream(std::string(ZUL_SAMPLE_INPUTS) + "/nc/" + iFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// What any text must do: give moves of finite numbers that follow one another, or one clear line.
void ExpectSoundAnswer(std::string_view iText)
{
    try {
        const NcProgram program = ParseNcProgram(iText, "p.nc", {});
        for (const NcMove& move : program.m_moves) {
            for (int axis = 0; axis < 3; ++axis) {
                ASSERT_TRUE(std::isfinite(NcCoordinate(move.m_start, axis)));
                ASSERT_TRUE(std::isfinite(NcCoordinate(move.m_end, axis)));
            }
            if (move.m_kind == NcMoveKind::Arc) {
                ASSERT_GT(move.m_sweep, 0.0);
                ASSERT_GE(FlattenArc(move, 0.1 + NcArcRadius(move)).size(), 2U);
            }
        }
    } catch (const NcError& error) {
        const std::string line = error.what();
        ASSERT_EQ(line.rfind("p.nc:", 0), 0U) << line;
        ASSERT_GT(error.Line(), 0);
        ASSERT_EQ(line.find('\n'), std::string::npos);
        ASSERT_LT(line.size(), 300U);
    }
}

TEST(NcRobustness, EveryTruncationOfSmallPrograms)
{
    for (const char* file : {"haas_example.nc", "mill_hp_2.nc", "pcb_drill_g81.ngc", "spiral.gcode",
                             "circle-inch.gcode", "slant_test.nc", "cap.ngc", "axis_letter.ngc"}) {
        const std::string text = RealText(file);
        ASSERT_FALSE(text.empty());
        for (std::size_t length = 0; length < text.size(); ++length) {
            ExpectSoundAnswer(std::string_view(text).substr(0, length));
        }
    }
}

TEST(NcRobustness, ChangedBytes)
{
    std::mt19937_64 random(3);
    for (const char* file :
         {"haas_example.nc", "mill_hp_2.nc", "pcb_drill_g81.ngc", "spiral.gcode", "cap.ngc"}) {
        const std::string text = RealText(file);
        for (int i = 0; i < 1500; ++i) {
            std::string changed = text;
            for (int n = 0; n < 1 + i % 5; ++n) {
                changed[random() % changed.size()] = static_cast<char>(random());
            }
            ExpectSoundAnswer(changed);
        }
    }
}

TEST(NcRobustness, RandomBytes)
{
    std::mt19937_64 random(5);
    for (int i = 0; i < 5000; ++i) {
        std::string text(random() % 400, ' ');
        for (char& c : text) {
            c = static_cast<char>(random());
        }
        ExpectSoundAnswer(text);
    }
}

TEST(NcRobustness, RandomWords)
{
    const std::string letters = "GGGGGXYZIJKRPQLFSTMNODH";
    const std::vector<std::string> numbers = {
        "0",  "1",  "2",  "3",  "4",  "5",  "-5", "10", "17", "18", "19",  "28", "53",    "54",    "55",
        "73", "80", "81", "83", "90", "91", "98", "99", ".5", "1e", "-1.", "0.", "99999", "0.001", "2.5"};
    std::mt19937_64 random(9);
    for (int i = 0; i < 20000; ++i) {
        std::string text = "G21 G0 X0 Y0 Z5\n";
        for (int line = 0; line < 12; ++line) {
            for (std::size_t word = 0; word < 1 + random() % 6; ++word) {
                text += letters[random() % letters.size()] + numbers[random() % numbers.size()];
            }
            text += '\n';
        }
        ExpectSoundAnswer(text);
    }
}

TEST(NcRobustness, RandomValidMotion)
{
    // Words that fit together, so that the deeper parts are reached too.
    const std::vector<std::string> blocks = {
        "G0 X",  "G1 X",  "G2 I",  "G3 J",  "G81 R5 Z-", "G83 R5 Q2 Z-", "G73 Q1 R5 Z-", "G91 X",
        "G90 Y", "G28 Z", "G53 X", "G80 F", "G54 S",     "G55 F",        "G99 X",        "G18 F",
        "G17 F", "G19 F", "G20 F", "G21 F", "Z",         "G10 L2 P2 X",  "G2 R-50 X"};
    std::mt19937_64 random(13);
    int moves = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string text = "G21 G0 X0 Y0 Z5\n";
        for (int line = 0; line < 8; ++line) {
            text += blocks[random() % blocks.size()] + std::to_string(1 + random() % 30) + "\n";
        }
        ExpectSoundAnswer(text);
        moves += Refusal(text) == "accepted" ? 1 : 0;
    }
    EXPECT_GT(moves, 100);
}

TEST(NcRobustness, HostileLengths)
{
    ExpectSoundAnswer(std::string(2'000'000, '('));
    ExpectSoundAnswer(std::string(2'000'000, ')'));
    ExpectSoundAnswer("X" + std::string(2'000'000, '1'));
    ExpectSoundAnswer("X0." + std::string(2'000'000, '0') + "1");
    ExpectSoundAnswer(std::string(2'000'000, 'M'));
    ExpectSoundAnswer(std::string(2'000'000, '\n'));
    ExpectSoundAnswer(std::string(2'000'000, '/'));
    ExpectSoundAnswer(std::string(2'000'000, '%'));
    std::string words;
    for (int i = 0; i < 300'000; ++i) {
        words += "M3";
    }
    ExpectSoundAnswer(words);
}

TEST(NcRobustness, RepeatedCyclesEndBeforeTheMemoryDoes)
{
    std::string text = "G21 G0 X0 Y0 Z1\n";
    for (int i = 0; i < 300; ++i) {
        text += "G90 G81 X0 R1 Z0 L50000\n";
    }
    EXPECT_EQ(Refusal(text), "p.nc:12: error: too many strokes of drill cycles: a program may make 1000000");
}

}  // namespace
