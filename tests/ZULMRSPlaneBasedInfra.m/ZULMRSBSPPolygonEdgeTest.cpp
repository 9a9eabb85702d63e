#include "ZULMRSBSPPolygonEdge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <type_traits>
#include <vector>

#include "ZULTestPolygons.h"

using namespace ZULTest;

static_assert(std::is_trivially_copyable_v<ZULMRSBSPPolygonEdge>);
static_assert(std::is_copy_assignable_v<ZULMRSBSPPolygonEdge> &&
              std::is_move_assignable_v<ZULMRSBSPPolygonEdge>);
static_assert(!std::is_polymorphic_v<ZULMRSBSPPolygonEdge>);
static_assert(sizeof(ZULMRSBSPPolygonEdge) == 2 * sizeof(void*));
static_assert(
    std::is_same_v<std::iterator_traits<decltype(ZULMRSBSPPolygonEdge().begin())>::iterator_category,
                   std::random_access_iterator_tag>);

namespace
{
class PolygonEdgeTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_Points.push_back(MakePoint(0, 0, 0));
        m_Points.push_back(MakePoint(1, 0, 0));
        m_Points.push_back(MakePoint(2, 0, 0));
        std::vector<ZULMRSBSPPoint*> pointers = Pointers(m_Points);
        std::sort(pointers.begin(), pointers.end(), std::less<>());
        m_A = pointers[0];
        m_B = pointers[1];
        m_C = pointers[2];
    }

    std::vector<OwnedPoint> m_Points;
    // In the order of their addresses.
    ZULMRSBSPPoint* m_A = nullptr;
    ZULMRSBSPPoint* m_B = nullptr;
    ZULMRSBSPPoint* m_C = nullptr;
};

TEST_F(PolygonEdgeTest, SortingPutsTheLowerAddressFirst)
{
    const ZULMRSBSPPolygonEdge sorted(m_B, m_A, true);
    EXPECT_EQ(sorted[0], m_A);
    EXPECT_EQ(sorted[1], m_B);
    EXPECT_TRUE(sorted == ZULMRSBSPPolygonEdge(m_A, m_B, true));
    EXPECT_TRUE(sorted == ZULMRSBSPPolygonEdge(m_A, m_B, false));
    EXPECT_TRUE(sorted != ZULMRSBSPPolygonEdge(m_B, m_A, false));
    EXPECT_FALSE(sorted == ZULMRSBSPPolygonEdge(m_B, m_A, false));
}

TEST_F(PolygonEdgeTest, WithoutSortingTheOrderIsKept)
{
    const ZULMRSBSPPolygonEdge edge(m_B, m_A, false);
    EXPECT_EQ(edge[0], m_B);
    EXPECT_EQ(edge[1], m_A);
}

TEST_F(PolygonEdgeTest, SortingPutsNullFirst)
{
    const ZULMRSBSPPolygonEdge edge(m_A, nullptr, true);
    EXPECT_EQ(edge[0], nullptr);
    EXPECT_EQ(edge[1], m_A);
}

TEST_F(PolygonEdgeTest, EqualityNeedsBothEnds)
{
    const ZULMRSBSPPolygonEdge edge(m_A, m_B, false);
    EXPECT_FALSE(edge == ZULMRSBSPPolygonEdge(m_A, m_C, false));
    EXPECT_FALSE(edge == ZULMRSBSPPolygonEdge(m_C, m_B, false));
    EXPECT_FALSE(edge != ZULMRSBSPPolygonEdge(m_A, m_B, false));
}

TEST_F(PolygonEdgeTest, DefaultHasTwoNullEnds)
{
    const ZULMRSBSPPolygonEdge edge;
    EXPECT_EQ(edge[0], nullptr);
    EXPECT_EQ(edge[1], nullptr);
    EXPECT_TRUE(edge.IsNull());
    EXPECT_TRUE(edge.IsPonctual());
}

TEST_F(PolygonEdgeTest, AnyOtherIndexIsNull)
{
    const ZULMRSBSPPolygonEdge edge(m_A, m_B, false);
    EXPECT_EQ(edge[2], nullptr);
    EXPECT_EQ(edge[3], nullptr);
    EXPECT_EQ(edge[0xFFFFFFFFU], nullptr);
}

TEST_F(PolygonEdgeTest, OneNullEndIsEnoughToBeNull)
{
    EXPECT_TRUE(ZULMRSBSPPolygonEdge(m_A, nullptr, false).IsNull());
    EXPECT_TRUE(ZULMRSBSPPolygonEdge(nullptr, m_A, false).IsNull());
    EXPECT_FALSE(ZULMRSBSPPolygonEdge(m_A, m_B, false).IsNull());
    EXPECT_FALSE(ZULMRSBSPPolygonEdge(m_A, nullptr, false).IsPonctual());
}

TEST_F(PolygonEdgeTest, TheSamePointTwiceIsPonctual)
{
    EXPECT_TRUE(ZULMRSBSPPolygonEdge(m_A, m_A, false).IsPonctual());
    EXPECT_FALSE(ZULMRSBSPPolygonEdge(m_A, m_A, false).IsNull());
    EXPECT_FALSE(ZULMRSBSPPolygonEdge(m_A, m_B, false).IsPonctual());
}

TEST_F(PolygonEdgeTest, OrderIsByAddressFirstEndsFirst)
{
    const ZULMRSBSPPolygonEdge ab(m_A, m_B, false);
    const ZULMRSBSPPolygonEdge ac(m_A, m_C, false);
    const ZULMRSBSPPolygonEdge ba(m_B, m_A, false);
    const ZULMRSBSPPolygonEdge same(m_A, m_B, false);
    EXPECT_FALSE(ab < same);
    EXPECT_FALSE(same < ab);
    EXPECT_TRUE(ab < ac);
    EXPECT_FALSE(ac < ab);
    EXPECT_TRUE(ac < ba);
    EXPECT_FALSE(ba < ac);
    EXPECT_TRUE(ZULMRSBSPPolygonEdge() < ab);
}

TEST_F(PolygonEdgeTest, SwappingExchangesTheEnds)
{
    ZULMRSBSPPolygonEdge edge(m_A, m_B, false);
    edge.SwapPoints();
    EXPECT_TRUE(edge == ZULMRSBSPPolygonEdge(m_B, m_A, false));
}

TEST_F(PolygonEdgeTest, AssignmentCopiesBothEndsAndNoReference)
{
    ZULMRSBSPPolygonEdge edge;
    const ZULMRSBSPPolygonEdge other(m_A, m_B, false);
    EXPECT_EQ(&(edge = other), &edge);
    EXPECT_TRUE(edge == other);
    ZULMRSBSPPolygonEdge moved;
    moved = ZULMRSBSPPolygonEdge(m_C, m_B, false);
    EXPECT_EQ(moved[0], m_C);
    EXPECT_EQ(RefCounts(m_Points), std::vector<int>({0, 0, 0}));
}

TEST_F(PolygonEdgeTest, IteratorsWalkTheTwoEnds)
{
    ZULMRSBSPPolygonEdge edge(m_A, m_B, false);
    const ZULMRSBSPPolygonEdge& constant = edge;
    EXPECT_EQ(edge.end() - edge.begin(), 2);
    EXPECT_EQ(constant.cend() - constant.cbegin(), 2);
    EXPECT_EQ(*constant.begin(), m_A);
    EXPECT_EQ(*(constant.end() - 1), m_B);
    *edge.begin() = m_C;
    EXPECT_EQ(edge[0], m_C);
}
}  // namespace
