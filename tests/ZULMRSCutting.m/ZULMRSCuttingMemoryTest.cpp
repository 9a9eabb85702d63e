// What a solid keeps in memory follows the surface that is left, not the number of cuts. This program counts
// the blocks of memory that are alive.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <vector>

#include "ZULKLOOutput.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULTestAllocation.h"
#include "ZULTestTools.h"

namespace
{
class ZULMRSCuttingMemoryTest : public testing::Test
{
protected:
    ZULMRSCuttingMemoryTest() { ZULKLOOutput::Redirect(&m_Lines); }
    ~ZULMRSCuttingMemoryTest() override { ZULKLOOutput::Redirect(nullptr); }

    std::ostringstream m_Lines;
};

/// Grooves side by side, each of them turned a little, that take a layer off a block of 10 x 10.
std::vector<ZULMRSConvexTool> Layer(double bottom)
{
    std::vector<ZULMRSConvexTool> tools;
    for (int groove = 0; groove < 20; ++groove) {
        const double y = 0.5 * groove;
        const double slope = 0.01 * (groove % 3 - 1);
        tools.push_back({{{slope, 1, 0, -(y + 0.6)},
                          {slope, -1, 0, y - 0.1},
                          {0.1, 0.5, -1, bottom - 0.5 * y},
                          {0.1, -0.5, -1, bottom + 0.5 * y}}});
    }
    return tools;
}

ZULMRSCuttingOptions SmallLeaves()
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = 2.5;
    return options;
}

// Points made on edges used to keep the ends of the edges alive, those the ends of theirs, and so on.
TEST_F(ZULMRSCuttingMemoryTest, LayerAfterLayerTakesNoMoreMemory)
{
    ZULMRSCuttingSolid solid(ZULTest::AxisBox(0, 0, -40, 10, 10, 0), SmallLeaves());
    std::vector<std::ptrdiff_t> blocksPerFace;
    for (int layer = 1; layer <= 16; ++layer) {
        solid.SubtractAll(Layer(-2.0 * layer));
        solid.Compact();
        blocksPerFace.push_back(ZULTest::GetLiveBlocks() /
                                static_cast<std::ptrdiff_t>(solid.GetNbSurfaceFaces()));
    }
    EXPECT_GT(blocksPerFace.front(), 0);
    EXPECT_LE(blocksPerFace.back(), 2 * blocksPerFace.front());
}

TEST_F(ZULMRSCuttingMemoryTest, PlanesOfThePastAreDroppedWithoutBeingAsked)
{
    ZULMRSCuttingOptions oneLeaf;
    oneLeaf.m_LeafSize = 100.0;
    ZULMRSCuttingSolid solid(ZULTest::AxisBox(0, 0, -40, 10, 10, 0), oneLeaf);
    constexpr std::uint64_t neverLookedThrough = 1U << 14;
    std::uint64_t most = 0;
    for (int batch = 1; batch <= 20; ++batch) {
        std::vector<ZULMRSConvexTool> tools;
        for (int cut = 0; cut < 2000; ++cut) {
            tools.push_back({{{0, 0, -1, -0.0005 * (2000 * batch + cut)}}});  // each a little lower
        }
        solid.SubtractAll(tools);
        most = std::max(most, solid.GetFactory().Size());
    }
    EXPECT_GT(most, neverLookedThrough / 2) << "too few planes for a test";
    EXPECT_LE(most, neverLookedThrough);
    solid.Compact();
    EXPECT_LT(solid.GetFactory().Size(), 100U);
}

TEST_F(ZULMRSCuttingMemoryTest, NothingIsLeftBehind)
{
    const auto cut = [] {
        ZULMRSCuttingOptions options = SmallLeaves();
        options.m_NbThreads = 2;
        ZULMRSCuttingSolid solid(ZULTest::AxisBox(0, 0, -40, 10, 10, 0), options);
        solid.SubtractAll(Layer(-2.0));
    };
    cut();  // what is made once and kept
    m_Lines.str({});
    const std::ptrdiff_t before = ZULTest::GetLiveBlocks();
    cut();
    m_Lines.str({});
    EXPECT_LE(ZULTest::GetLiveBlocks(), before + 1);
}
}  // namespace
