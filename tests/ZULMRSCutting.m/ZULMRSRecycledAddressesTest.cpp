// New points at the addresses of old ones: this program hands freed memory out again at once, the last freed
// first.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <sstream>

#include "ZULKLOOutput.h"
#include "ZULMRSCellCheck.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULTestTools.h"

namespace
{
constexpr std::size_t Granule = 16;
constexpr std::size_t NbClasses = 64;

struct FreeBlock {
    FreeBlock* m_Next;
};

/// Every block carries its size class in front, so that unsized deletes find it.
struct Header {
    std::size_t m_Class;
    std::size_t m_Padding;
};

std::mutex& Guard()
{
    static std::mutex guard;
    return guard;
}
std::array<FreeBlock*, NbClasses> g_FreeBlocks{};

void* Take(std::size_t size)
{
    const std::size_t sizeClass = (size + Granule - 1) / Granule;
    if (sizeClass < NbClasses) {
        const std::lock_guard<std::mutex> lock(Guard());
        if (FreeBlock* block = g_FreeBlocks[sizeClass]) {
            g_FreeBlocks[sizeClass] = block->m_Next;
            return block;
        }
    }
    auto* header =
        static_cast<Header*>(std::malloc(sizeof(Header) + (sizeClass == 0 ? 1 : sizeClass) * Granule));
    if (header == nullptr) {
        throw std::bad_alloc();
    }
    header->m_Class = sizeClass;
    return header + 1;
}

void GiveBack(void* memory)
{
    if (memory == nullptr) {
        return;
    }
    Header* header = static_cast<Header*>(memory) - 1;
    if (header->m_Class == 0 || header->m_Class >= NbClasses) {
        std::free(header);
        return;
    }
    const std::lock_guard<std::mutex> lock(Guard());
    auto* block = static_cast<FreeBlock*>(memory);
    block->m_Next = g_FreeBlocks[header->m_Class];
    g_FreeBlocks[header->m_Class] = block;
}
}  // namespace

void* operator new(std::size_t size)
{
    return Take(size);
}
void* operator new[](std::size_t size)
{
    return Take(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Take(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return Take(size);
}
void operator delete(void* memory) noexcept
{
    GiveBack(memory);
}
void operator delete[](void* memory) noexcept
{
    GiveBack(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    GiveBack(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    GiveBack(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    GiveBack(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    GiveBack(memory);
}

namespace
{
using ZULTest::AxisBox;
using ZULTest::Random;

class ZULMRSRecycledAddressesTest : public testing::Test
{
protected:
    ZULMRSRecycledAddressesTest() { ZULKLOOutput::Redirect(&m_Lines); }
    ~ZULMRSRecycledAddressesTest() override { ZULKLOOutput::Redirect(nullptr); }

    std::ostringstream m_Lines;
};

ZULMRSBSPPoint* MakePoint(double x, double y, double z)
{
    return ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(x, y, z));
}

// The danger is real: with this allocator a new edge at the old addresses meets the old edge's entry in the
// factory.
TEST_F(ZULMRSRecycledAddressesTest, TheFactoryTakesANewEdgeForAnOldOne)
{
    const std::unique_ptr<ZULMRSBSPObjectFactory> factory(ZULMRSCreateObjectFactory(false));
    bool isOpposite = false;
    ZULMRSBSPPlane* cut = factory->CreatePlane({1, 0, 0, -1}, isOpposite, 0);
    ZULMRSBSPPlane* y = factory->CreatePlane({0, 1, 0, 0}, isOpposite, 0);
    ZULMRSBSPPlane* z = factory->CreatePlane({0, 0, 1, 0}, isOpposite, 0);
    ZULMRSBSPPlane* higher = factory->CreatePlane({0, 0, 1, -5}, isOpposite, 0);

    ZULMRSBSPPoint* start = MakePoint(0, 0, 0);
    ZULMRSBSPPoint* end = MakePoint(2, 0, 0);
    ZULMRSBSPPoint* old = factory->CreatePointOnEdge({y, z, cut}, start, end, cut);
    end->Release();
    start->Release();
    ZULMRSBSPPoint* newStart = MakePoint(0, 0, 5);
    ZULMRSBSPPoint* newEnd = MakePoint(2, 0, 5);
    ASSERT_EQ(std::minmax(newStart, newEnd), std::minmax(start, end)) << "the allocator did not recycle";
    ZULMRSBSPPoint* wrong = factory->CreatePointOnEdge({y, higher, cut}, newStart, newEnd, cut);
    EXPECT_EQ(wrong, old);
    for (ZULMRSBSPPoint* point : {old, wrong, newStart, newEnd}) {
        point->Release();
    }
    for (ZULMRSBSPPlane* plane : {cut, y, z, higher}) {
        plane->Release();
    }
}

void ExpectValid(const ZULMRSCuttingSolid& solid)
{
    for (const std::string& fault : ZULMRSCheckCells(solid.GetCells()).m_Faults) {
        ADD_FAILURE() << fault;
    }
}

// Slot after slot makes upright edges, which the same two planes cut at both ends: the vertices on them live
// on, the old ends die, and the next slot's ends take their places in memory.
TEST_F(ZULMRSRecycledAddressesTest, TheCutterNeverMeetsAStaleEntryOfAPlaneUsedAgain)
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = 1000.0;
    options.m_MaxCellsPerLeaf = 1000;
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 100, 10, 10), options);
    for (int index = 0; index < 20; ++index) {
        const double x = 5.0 * index;
        solid.Subtract(ZULTest::BoxTool(x + 1, -1, -1, x + 2, 4, 11));
        solid.Subtract(ZULTest::BoxTool(x, -1, 5, x + 5, 11, 11));
        solid.Subtract(ZULTest::BoxTool(x, -1, -1, x + 5, 11, 2));
        solid.Compact();
    }
    ExpectValid(solid);
    EXPECT_DOUBLE_EQ(solid.GetVolume(), 20.0 * 3.0 * (5.0 * 10.0 - 4.0));
}

TEST_F(ZULMRSRecycledAddressesTest, TheCutterNeverMeetsAStaleEntryOfAnyTool)
{
    Random random(17);
    for (int round = 0; round < 12; ++round) {
        ZULMRSCuttingOptions options;
        options.m_LeafSize = 2.5;
        options.m_MaxCellsPerLeaf = 6;
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), options);
        for (int index = 0; index < 12; ++index) {
            solid.Subtract(index % 3 == 0 ? ZULTest::RandomTool(random, 2.0, 6)
                                          : ZULTest::LatticeTool(random));
            solid.Compact();
        }
        ExpectValid(solid);
    }
}
}  // namespace
