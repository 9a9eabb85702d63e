#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSSeparation.h"
#include "ZULTestDyadic.h"
#include "ZULTestGeometry.h"
#include "ZULTestSupport.h"

namespace
{
using namespace ZULTest;

constexpr int NbCases = 40'000 / ZUL_TEST_CASES_DIVISOR;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TEST(ZULMRSSeparation, SumsWithstandAnAttack)
{
    Random random(72'001);
    int nbPositive = 0;
    int nbMissed = 0;
    for (const Regime regime : {Regime::Easy, Regime::NearDegenerate, Regime::Tiny, Regime::Denormal,
                                Regime::Huge, Regime::Mixed}) {
        for (int index = 0; index < NbCases; ++index) {
            const double second = random.Number(regime);
            const double factor = std::fabs(random.OneIn(2) ? random.Scaled(-40, 40) : random.Number(regime));
            const double first = random.OneIn(4) ? random.Number(regime) : random.Nudged(-factor * second, 3);
            const bool isPositive = ZULMRSSeparation::IsSumPositive(first, second, factor);
            if (!std::isfinite(first)) {
                continue;
            }
            const int sign = (Dyadic(first) + Dyadic(factor) * Dyadic(second)).Sign();
            ASSERT_TRUE(!isPositive || sign > 0) << first << " " << second << " " << factor;
            nbPositive += isPositive ? 1 : 0;
            nbMissed += sign > 0 && !isPositive ? 1 : 0;
        }
    }
    EXPECT_GT(nbPositive, NbCases);
    EXPECT_GT(nbMissed, 0);
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(NaN, 1.0, 1.0));
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(1.0, NaN, 1.0));
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(-Infinity, 1.0, 1.0));
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(1.0, -Infinity, 1.0));
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(-Infinity, 0x1p1000, 0x1p1000));
    EXPECT_TRUE(ZULMRSSeparation::IsSumPositive(-0x1.fffffffffffffp1023, 0x1p1000, 0x1p1000));
    EXPECT_FALSE(ZULMRSSeparation::IsSumPositive(0.0, 0x1p-1074, 0x1p-1));
    EXPECT_TRUE(ZULMRSSeparation::IsSumPositive(0x1p-1074, -0x1p-1074, 0x1p-1));
}

/// Some points as the vertices of a cell, and planes as the bounds of a tool, each turned one way or other.
class Scene
{
public:
    void AddVertex(ZULMRSBSPPoint* point, const DyadicPlane& exact)
    {
        m_Points.push_back(Own(point));
        m_Exact.push_back(exact);
        m_Cell->m_Vertices.push_back(point);
    }
    void AddVertex(const Point3& at)
    {
        AddVertex(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(at[0], at[1], at[2])),
                  {Dyadic(at[0]), Dyadic(at[1]), Dyadic(at[2]), Dyadic(1.0)});
    }
    /// A meeting point of planes; false where there is none.
    bool AddMeetingPoint(const std::array<Plane4, 3>& equations)
    {
        std::array<Owner<ZULMRSBSPPlane>, 3> planes;
        for (std::size_t i = 0; i < 3; ++i) {
            planes[i] = MakePlane(equations[i]);
        }
        bool isValid = false;
        auto point = Own(
            ZULMRSBSPPointNS::CreatePoint(planes[0].get(), planes[1].get(), planes[2].get(), isValid, true));
        if (isValid) {
            AddVertex(point.release(),
                      DyadicWithPositiveW(DyadicMeetingPoint(
                          {ToDyadic(equations[0]), ToDyadic(equations[1]), ToDyadic(equations[2])})));
        }
        return isValid;
    }
    void AddBound(const Plane4& outward, int sign)
    {
        Plane4 equation = outward;
        for (double& coefficient : equation) {
            coefficient *= sign;
        }
        m_Planes.push_back(MakePlane(equation));
        m_Bounds.push_back({m_Planes.back().get(), sign, outward});
    }
    bool Misses() const
    {
        ZULMRSVertexTable table;
        ZULMRSCellOutline outline;
        outline.Open(*m_Cell, table);
        std::vector<const ZULMRSToolBound*> bounds;
        for (const ZULMRSToolBound& bound : m_Bounds) {
            bounds.push_back(&bound);
        }
        return ZULMRSSeparation().Misses(outline, table, bounds);
    }
    /// Whether some sum of two bounds with factors that are not negative is nowhere negative, exactly.
    bool CanBeShownToMiss() const
    {
        for (std::size_t i = 0; i < m_Bounds.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (AreSeparated(HeightsOver(m_Bounds[i]), HeightsOver(m_Bounds[j]))) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    static Owner<ZULMRSBSPPlane> MakePlane(const Plane4& equation)
    {
        return Own<ZULMRSBSPPlane>(
            ZULMRSBSPPlaneNS::CreateCartesianPlane(equation[0], equation[1], equation[2], equation[3]));
    }
    /// Each times the W of the vertex, which is positive.
    std::vector<Dyadic> HeightsOver(const ZULMRSToolBound& bound) const
    {
        const DyadicPlane plane = ToDyadic(bound.m_Outward);
        std::vector<Dyadic> heights;
        for (const DyadicPlane& at : m_Exact) {
            heights.push_back(plane[0] * at[0] + plane[1] * at[1] + plane[2] * at[2] + plane[3] * at[3]);
        }
        return heights;
    }
    /// Every two vertices leave a common factor, and none has both heights negative: in the plane of the two
    /// heights no point, and no segment between two points, meets the open negative quadrant.
    static bool AreSeparated(const std::vector<Dyadic>& first, const std::vector<Dyadic>& second)
    {
        for (std::size_t i = 0; i < first.size(); ++i) {
            if (first[i].Sign() < 0 && second[i].Sign() < 0) {
                return false;
            }
            for (std::size_t j = 0; j < first.size(); ++j) {
                // One on the left of the quadrant, one below it, and the origin strictly beyond both.
                if (first[i].Sign() < 0 && second[j].Sign() < 0 &&
                    (first[i] * second[j] - first[j] * second[i]).Sign() > 0) {
                    return false;
                }
            }
        }
        return true;
    }

    Owner<ZULMRSCell> m_Cell = Own(new ZULMRSCell());
    std::vector<Owner<ZULMRSBSPPoint>> m_Points;
    std::vector<DyadicPlane> m_Exact;
    std::vector<Owner<ZULMRSBSPPlane>> m_Planes;
    std::vector<ZULMRSToolBound> m_Bounds;
};

/// Vertices about the edge of two or three planes through the origin or near it.
Scene MakeScene(Random& random, Regime regime)
{
    Scene scene;
    const int nbVertices = random.Integer(4, 8);
    const Point3 away = random.Point(regime);
    for (int vertex = 0; vertex < nbVertices; ++vertex) {
        if (random.OneIn(3) && scene.AddMeetingPoint(random.PlaneTriple(regime))) {
            continue;
        }
        Point3 at = random.Point(regime);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            at[axis] = random.OneIn(8) ? 0.0 : 0.5 * at[axis] + away[axis];
        }
        scene.AddVertex(at);
    }
    const int nbBounds = random.Integer(2, 3);
    for (int bound = 0; bound < nbBounds; ++bound) {
        Plane4 outward = random.Plane(regime);
        if (!random.OneIn(3)) {
            outward[3] = 0.0;
        }
        scene.AddBound(outward, random.OneIn(2) ? 1 : -1);
    }
    return scene;
}

TEST(ZULMRSSeparation, WhatItShowsIsTrue)
{
    Random random(72'002);
    const LineCapture lines;  // of planes that do not meet
    for (const Regime regime : {Regime::Easy, Regime::Degenerate, Regime::NearDegenerate, Regime::Tiny,
                                Regime::Denormal, Regime::Huge, Regime::Mixed}) {
        int nbShown = 0;
        int nbTrue = 0;
        for (int index = 0; index < NbCases / 10; ++index) {
            const Scene scene = MakeScene(random, regime);
            const bool isTrue = scene.CanBeShownToMiss();
            const bool isShown = scene.Misses();
            ASSERT_TRUE(!isShown || isTrue) << index;
            nbShown += isShown ? 1 : 0;
            nbTrue += isTrue ? 1 : 0;
        }
        if (regime == Regime::Easy || regime == Regime::Degenerate) {
            EXPECT_GT(nbShown, nbTrue / 4);
            EXPECT_GT(nbTrue - nbShown, -1);
            EXPECT_LT(nbTrue, NbCases / 10);
        }
    }
}

/// Both planes through a vertex, which only exact arithmetic can tell; the others on both sides of each.
TEST(ZULMRSSeparation, AVertexOnBothPlanesIsNotBehind)
{
    const auto misses = [](double offset) {
        Scene scene;
        scene.AddVertex({0.1, 0.2, 0.3});
        scene.AddVertex({2.1, -0.8, 0.3});
        scene.AddVertex({-0.9, 2.2, 0.3});
        scene.AddVertex({1.1, 1.2, 1.3});
        scene.AddBound({1.0, 0.0, 0.0, -0.1}, 1);
        scene.AddBound({0.0, 1.0, 0.0, offset}, -1);
        return scene.Misses();
    };
    EXPECT_TRUE(misses(-0.2));
    EXPECT_TRUE(misses(-0.2 + 0x1p-54));
    EXPECT_FALSE(misses(-0.2 - 0x1p-50));
}

/// The edge beside the segment between two vertices: exactly on it, a little to either side.
TEST(ZULMRSSeparation, AnEdgeBesideASegment)
{
    const auto misses = [](double shift) {
        Scene scene;
        scene.AddVertex({2.0, -1.0, 0.0});
        scene.AddVertex({-1.0, 2.0, 0.0});
        scene.AddVertex({5.0, 5.0, 1.0});
        scene.AddVertex({5.0, 6.0, -1.0});
        scene.AddBound({1.0, 0.0, 0.0, -0.5 - shift}, -1);
        scene.AddBound({0.0, 1.0, 0.0, -0.5 - shift}, 1);
        return scene.Misses();
    };
    EXPECT_TRUE(misses(-1e-9));
    EXPECT_FALSE(misses(1e-9));
    EXPECT_FALSE(misses(0x1p-52));
}
}  // namespace
