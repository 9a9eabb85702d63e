#include <array>
#include <filesystem>

#include "NcTestHelp.h"

namespace
{

std::string Path(const std::string& iFile)
{
    return std::string(ZUL_PROJECT_SAMPLES) + "/" + iFile;
}

struct Sample {
    const char* m_file;
    ZULMathPoint m_stockMin;
    ZULMathPoint m_stockMax;
    std::vector<int> m_tools;
    std::size_t m_moves;
    int m_holes;
};

const std::vector<Sample>& Samples()
{
    static const std::vector<Sample> samples = {
        {"bracket.nc", {0, 0, -10}, {96, 72, 0}, {1, 2}, 413, 6},
        {"relief.nc", {0, 0, -8}, {32, 24, 0}, {1}, 2911, 0},
        {"engraving.nc", {-30, -30, -5}, {30, 30, 0}, {3}, 351, 0},
    };
    return samples;
}

TEST(NcSamples, AreReadWithoutAWarning)
{
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.m_file);
        const NcProgram program = ReadNcProgram(Path(sample.m_file));
        EXPECT_TRUE(Warnings(program).empty());
        EXPECT_TRUE(program.m_statesUnits);
        EXPECT_EQ(program.CuttingTools(), sample.m_tools);
        EXPECT_EQ(program.m_moves.size(), sample.m_moves);
        EXPECT_EQ(program.m_holeCount, sample.m_holes);
        EXPECT_LT(std::filesystem::file_size(Path(sample.m_file)), 200'000U);
    }
}

TEST(NcSamples, CutWithinTheirStock)
{
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.m_file);
        const NcProgram program = ReadNcProgram(Path(sample.m_file));
        EXPECT_GE(program.CuttingExtents().Min().z, sample.m_stockMin.z);
        NcExtents below;
        for (const NcMove& move : program.m_moves) {
            if (move.m_kind != NcMoveKind::Rapid && move.m_end.z < 0.0) {
                below.AddMove(move);
            }
        }
        // The tool may run off the edge, but not far.
        constexpr double kRunOff = 8.0;
        EXPECT_GE(below.Min().x, sample.m_stockMin.x - kRunOff);
        EXPECT_GE(below.Min().y, sample.m_stockMin.y - kRunOff);
        EXPECT_LE(below.Max().x, sample.m_stockMax.x + kRunOff);
        EXPECT_LE(below.Max().y, sample.m_stockMax.y + kRunOff);
    }
}

TEST(NcSamples, MoveFastOnlyAboveTheStock)
{
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.m_file);
        const NcProgram program = ReadNcProgram(Path(sample.m_file));
        for (const NcMove& move : program.m_moves) {
            if (move.m_kind != NcMoveKind::Rapid || !move.m_mayCut) {
                continue;
            }
            const bool isLevel = move.m_start.x != move.m_end.x || move.m_start.y != move.m_end.y;
            const bool isUp = move.m_end.z > move.m_start.z;
            // Down a hole only where the cycle has drilled before.
            EXPECT_TRUE(isUp || move.m_end.z >= 1.0 || (!isLevel && move.m_isCycleStroke)) << move.m_line;
            EXPECT_FALSE(isLevel && move.m_start.z < 1.0) << move.m_line;
        }
    }
}

TEST(NcSamples, BracketUsesBothFormsOfArcs)
{
    const NcProgram program = ReadNcProgram(Path("bracket.nc"));
    std::array<int, 4> counts{};
    for (const NcMove& move : program.m_moves) {
        if (move.m_kind == NcMoveKind::Arc) {
            ++counts[(move.m_isRadiusForm ? 2U : 0U) + (move.m_isCounterclockwise ? 1U : 0U)];
        }
    }
    for (const int count : counts) {
        EXPECT_GT(count, 1);
    }
}

TEST(NcSamples, ReliefIsFine)
{
    const NcProgram program = ReadNcProgram(Path("relief.nc"));
    EXPECT_GT(program.CuttingExtents().Min().z, -3.0);
    EXPECT_LT(program.CuttingExtents().Min().z, -1.5);
}

}  // namespace
