#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSCellCheck.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULMRSSurfaceMesh.h"
#include "ZULTestSupport.h"
#include "ZULTestTools.h"

// The cutter in environments that a host may have set: rounding, denormals, flags, unmasked exceptions.
namespace
{
using namespace ZULTest;

[[maybe_unused]] std::vector<ZULMRSConvexTool> MakeTools()
{
    Random random(73'001);
    std::vector<ZULMRSConvexTool> tools;
    for (int index = 0; index < 5; ++index) {
        tools.push_back(RandomTool(random, 2.0, 4));
    }
    // Zeros that may come out negative, and numbers that may count as zero.
    tools.push_back({{{-1.0, -0.0, 0.0, 0.5}, {1.0, 0.0, 0.0, -0.75}, {0x1p-1060, 0.0, 1.0, -3.0}}});
    tools.push_back({{{-0x1p-1050, 0.0, 0.0, 0x1p-1050}}});
    return tools;
}

struct Outcome {
    std::vector<bool> m_HasCut;
    std::vector<double> m_Progress;
    std::array<double, 3> m_Volumes{};
    std::array<std::size_t, 3> m_Counts{};
    std::vector<std::array<double, 3>> m_Vertices;

    bool operator==(const Outcome&) const = default;
};

[[maybe_unused]] Outcome Cut(const std::vector<ZULMRSConvexTool>& tools, std::size_t nbThreads,
                             const ZULMRSCuttingSolid::ProgressCall& watch)
{
    Outcome outcome;
    ZULMRSCuttingOptions options;
    options.m_NbThreads = nbThreads;
    options.m_LeafSize = 2.5;
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), options);
    outcome.m_HasCut = solid.SubtractAll(tools, [&](double part) {
        watch(part);
        // Which of several threads is ahead is not the same each time.
        if (nbThreads == 1) {
            outcome.m_Progress.push_back(part);
        }
    });
    outcome.m_HasCut.push_back(solid.Subtract(BoxTool(1, 1, 1, 3, 9.3, 3.1)));
    outcome.m_HasCut.push_back(solid.KeepInside(BoxTool(0.1, 0.1, 0.1, 9.9, 9.7, 9.9)));
    outcome.m_Counts = {solid.Split({1.0, 0.3, 0.1, -5.5}), solid.GetNbCells(), solid.GetNbSurfaceFaces()};
    const ZULMRSSurfaceMesh mesh = solid.ExtractSurface();
    outcome.m_Volumes = {solid.GetVolume(), mesh.GetVolume(), ZULMRSVolumeOfCells(solid.GetCells())};
    for (const ZULMathPoint& vertex : mesh.m_Vertices) {
        outcome.m_Vertices.push_back({vertex.x, vertex.y, vertex.z});
    }
    return outcome;
}

#if ZUL_HAS_SSE2
TEST(ZULMRSCuttingEnvironment, OutcomeDependsOnNothing)
{
    const std::vector<ZULMRSConvexTool> tools = MakeTools();
    for (const std::size_t nbThreads : {1U, 2U}) {
        const Outcome expected = Cut(tools, nbThreads, [](double) {});
        ASSERT_GT(expected.m_Counts[1], 10U);
        for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
            Outcome outcome;
            bool isAsSet = true;
            const ZULExpProcessor::ControlWord left = RunUnder(word, [&] {
                outcome = Cut(tools, nbThreads, [&](double) {
                    isAsSet = isAsSet && ZULExpProcessor::ReadControlWord() == word;
                });
            });
            EXPECT_EQ(left, word);
            EXPECT_TRUE(isAsSet) << std::hex << word;
            EXPECT_TRUE(outcome == expected) << std::hex << word;
        }
    }
}
#endif
}  // namespace
