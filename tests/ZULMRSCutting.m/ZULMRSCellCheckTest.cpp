#include "ZULMRSCellCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "ZULTestBlocks.h"
#include "ZULTestVolume.h"

namespace
{
using ZULTest::Block;
using ZULTest::BlockCells;
using ZULTest::DivideWholly;
using ZULTest::MakePlane;
using ZULTest::OwnedPlane;
using ZULTest::OwnedPoint;
using ZULTest::OwnedPolygon;
using ZULTest::OwnedPolyhedron;

using Faults = std::vector<std::string>;

Faults Check(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    return ZULMRSCheckCells(cells).m_Faults;
}

std::size_t CountWith(const Faults& faults, const std::string& part)
{
    return static_cast<std::size_t>(
        std::count_if(faults.begin(), faults.end(),
                      [&](const std::string& fault) { return fault.find(part) != std::string::npos; }));
}

// A sentence about the first polygon of the first cell.
std::string Named(const ZULMRSBSPPolygon& polygon, const std::string& rest)
{
    std::ostringstream text;
    text << "Cell 0, polygon 0 (" << static_cast<const void*>(&polygon) << ')' << rest;
    return text.str();
}

// One cell of all polygons that only one of the cells holds.
OwnedPolyhedron JoinSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    const OwnedPolyhedron all(new ZULMRSBSPPolyhedron(cells));
    OwnedPolyhedron surface(new ZULMRSBSPPolyhedron);
    for (const auto& [polygon, orientation] : all->GetAllPolygonsAndOrientations()) {
        const auto& polygons = all->GetPolygons();
        if (std::count(polygons.begin(), polygons.end(), polygon) == 1) {
            surface->AddAPolygon(polygon, orientation);
        }
    }
    return surface;
}

// What is wrong with one polygon that makes up a cell, when the polygon itself is sound.
const std::string OnlyOpen =
    "has an edge after vertex 0 that the cell's polygons meet 1 and 0 times in its two "
    "directions, instead of once in each.";

// While alive, a place holds another value.
template <class Value>
class Exchange
{
public:
    Exchange(Value& place, Value value) : m_Place(place), m_Kept(std::exchange(place, std::move(value))) {}
    ~Exchange() { m_Place = std::move(m_Kept); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

private:
    Value& m_Place;
    Value m_Kept;
};

ZULMathOBB MakeBox(const ZULMathPoint& center)
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, center));
}

// A box whose faces the tests break one at a time.
class ZULMRSCellCheckTest : public testing::Test
{
protected:
    ZULMRSBSPPolygon& Face(std::size_t position) { return *m_Box->GetPolygon(position); }
    Faults CheckBox() { return Check({m_Box.get()}); }
    std::string NameOf(std::size_t position)
    {
        std::ostringstream text;
        text << "Cell 0, polygon " << position << " (" << static_cast<const void*>(&Face(position)) << ")";
        return text.str();
    }

    OwnedPolyhedron m_Box{new ZULMRSBSPPolyhedron(MakeBox({0, 0, 0}), nullptr)};
};

// A polygon in the plane z = 0, front up, whose loop is given by its corners and upright edge planes.
class FlatPolygon
{
public:
    // For an edge given as (position, equation) the plane is that one.
    explicit FlatPolygon(const std::vector<std::array<double, 2>>& corners,
                         const std::vector<std::array<double, 5>>& givenEdges = {})
    {
        const std::size_t count = corners.size();
        m_Planes.push_back(MakePlane(0, 0, 1, 0));
        std::vector<ZULMRSBSPPlane*> edges;
        for (std::size_t i = 0; i < count; ++i) {
            const auto& from = corners[(i + count - 1) % count];
            const double a = corners[i][1] - from[1];
            const double b = from[0] - corners[i][0];
            m_Planes.push_back(MakePlane(a, b, 0, -(a * from[0] + b * from[1])));
            for (const auto& given : givenEdges) {
                if (given[0] == static_cast<double>(i)) {
                    m_Planes.back() = MakePlane(given[1], given[2], given[3], given[4]);
                }
            }
            edges.push_back(m_Planes.back().get());
        }
        std::vector<ZULMRSBSPPoint*> points;
        for (std::size_t i = 0; i < count; ++i) {
            m_Points.emplace_back(
                ZULMRSBSPPointNS::CreatePoint(m_Planes[0].get(), edges[i], edges[(i + 1) % count],
                                              ZULMathPoint(corners[i][0], corners[i][1], 0)));
            points.push_back(m_Points.back().get());
        }
        m_Polygon =
            OwnedPolygon(new ZULMRSBSPPolygon(m_Planes[0].get(), std::move(edges), std::move(points)));
    }

    ZULMRSBSPPolygon& operator*() const { return *m_Polygon; }

    // The fault of the polygon, without its name.
    std::string FindFault() const
    {
        const OwnedPolyhedron cell(new ZULMRSBSPPolyhedron);
        cell->AddAPolygon(m_Polygon.get(), 1);
        const Faults faults = Check({cell.get()});
        const std::string first = faults.empty() ? std::string() : faults[0];
        return first.substr(std::min(first.size(), first.find(") ") + 2));
    }

private:
    std::vector<OwnedPlane> m_Planes;
    std::vector<OwnedPoint> m_Points;
    OwnedPolygon m_Polygon;
};

TEST_F(ZULMRSCellCheckTest, SoundCellsHaveNoFault)
{
    EXPECT_EQ(Check({}), Faults{});
    EXPECT_EQ(CheckBox(), Faults{});
    const BlockCells cells(DivideWholly({3, 3, 3}, [](int i, int j, int k) { return (i + j + k) % 2 == 0; }));
    EXPECT_EQ(Check(cells.GetCells()), Faults{});
    EXPECT_TRUE(ZULMRSCheckCells(cells.GetCells()).IsValid());
}

TEST_F(ZULMRSCellCheckTest, RecordedEdgeOrientationsThatAreTrueAreFine)
{
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t edge = 0; edge < 4; ++edge) {
            EXPECT_NE(Face(i).GetEdgeOrientation(edge), 0);
        }
    }
    EXPECT_EQ(CheckBox(), Faults{});
    char& recorded = Face(1).GetAllEdgeOrientations()[2];
    const Exchange<char> wrong(recorded, static_cast<char>(-recorded));
    const int right = -static_cast<signed char>(recorded);
    EXPECT_EQ(CheckBox(), (Faults{NameOf(1) + " records orientation " + std::to_string(-right) +
                                  " for edge 2 instead of " + std::to_string(right) + "."}));
}

TEST_F(ZULMRSCellCheckTest, NullCell)
{
    EXPECT_EQ(Check({m_Box.get(), nullptr}), (Faults{"Cell 1 is null."}));
}

TEST_F(ZULMRSCellCheckTest, MissingOrientation)
{
    m_Box->GetPolygonsOrientations().pop_back();
    EXPECT_EQ(CheckBox(), (Faults{"Cell 0 has 6 polygons, but 5 orientations."}));
}

TEST_F(ZULMRSCellCheckTest, NullPolygon)
{
    const Exchange<ZULMRSBSPPolygon*> gone(m_Box->GetPolygons()[3], nullptr);
    EXPECT_EQ(CheckBox(), (Faults{"Cell 0, polygon 3 is null."}));
}

TEST_F(ZULMRSCellCheckTest, OrientationThatIsNone)
{
    for (const int orientation : {0, 2, -128}) {
        m_Box->GetPolygonsOrientations()[3] = static_cast<char>(orientation);
        EXPECT_EQ(CheckBox(), (Faults{NameOf(3) + " has orientation " + std::to_string(orientation) +
                                      ", which is neither 1 nor -1."}));
    }
}

TEST_F(ZULMRSCellCheckTest, PolygonTwiceInOneCell)
{
    m_Box->AddAPolygon(&Face(2), -1);
    EXPECT_EQ(CheckBox(), (Faults{NameOf(6) + " stands in the cell already, as polygon 2."}));
}

TEST_F(ZULMRSCellCheckTest, MissingParts)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    {
        const OwnedPolyhedron cell(new ZULMRSBSPPolyhedron);
        const OwnedPolygon empty(new ZULMRSBSPPolygon);
        cell->AddAPolygon(empty.get(), 1);
        EXPECT_EQ(Check({cell.get()}), Faults{Named(*empty, " has no supporting plane.")});
        empty->SetSupportingPlane(plane.get());
        EXPECT_EQ(Check({cell.get()}), Faults{Named(*empty, " has fewer than 3 edges, namely 0.")});
    }
    {
        const Exchange<ZULMRSBSPPlane*> gone(Face(0).GetAllEdges()[1], nullptr);
        EXPECT_EQ(CheckBox(), (Faults{NameOf(0) + " has no edge plane 1."}));
    }
    {
        const Exchange<ZULMRSBSPPoint*> gone(Face(0).GetPoints()[2], nullptr);
        EXPECT_EQ(CheckBox(), (Faults{NameOf(0) + " has no vertex 2."}));
    }
    Face(4).GetAllEdgeOrientations().push_back(0);
    EXPECT_EQ(CheckBox(),
              (Faults{NameOf(4) + " has 4 edge planes, but 4 vertices and 5 edge orientations."}));
    Face(4).GetAllEdgeOrientations().pop_back();
    Face(4).DEBUG_ClearAllPoints();
    EXPECT_EQ(CheckBox(),
              (Faults{NameOf(4) + " has 4 edge planes, but 0 vertices and 4 edge orientations."}));
}

TEST_F(ZULMRSCellCheckTest, PlanesThatAreNoPlanes)
{
    const OwnedPlane none(ZULMRSBSPPlaneNS::Create3PointsPlane(ZULMathPoint(0, 0, 0), ZULMathPoint(1, 1, 1),
                                                               ZULMathPoint(2, 2, 2)));
    {
        ZULMRSBSPPlane* kept = Face(5).GetSupportingPlane();
        kept->AddRef();
        Face(5).SetSupportingPlane(none.get());
        EXPECT_EQ(CheckBox(), (Faults{NameOf(5) + " has a supporting plane without a normal."}));
        Face(5).SetSupportingPlane(kept);
        kept->Release();
    }
    {
        const Exchange<ZULMRSBSPPlane*> wrong(Face(5).GetAllEdges()[3], none.get());
        EXPECT_EQ(CheckBox(), (Faults{NameOf(5) + " has an edge plane 3 without a normal."}));
    }
    const OwnedPlane parallel = MakePlane(-3, 0, 0, 1);
    const Exchange<ZULMRSBSPPlane*> wrong(Face(5).GetAllEdges()[3], parallel.get());
    EXPECT_EQ(CheckBox(),
              (Faults{NameOf(5) + " has an edge plane 3 that is parallel to its supporting plane."}));
}

TEST_F(ZULMRSCellCheckTest, VertexThatIsNoPoint)
{
    const OwnedPlane first = MakePlane(1, 0, 0.5, 0);
    const OwnedPlane second = MakePlane(1, 0, 0.5, 1);
    bool isValid = true;
    const ZULTest::LineCapture lines;
    const OwnedPoint none(ZULMRSBSPPointNS::CreatePoint(first.get(), second.get(),
                                                        Face(0).GetSupportingPlane(), isValid, true));
    ASSERT_FALSE(isValid);
    const Exchange<ZULMRSBSPPoint*> wrong(Face(0).GetPoints()[1], none.get());
    EXPECT_EQ(CheckBox(), (Faults{NameOf(0) + " has a vertex 1 whose planes do not meet in one point."}));
}

TEST_F(ZULMRSCellCheckTest, VertexOffItsPlanes)
{
    const auto checkWith = [&](ZULMRSBSPPoint* point) {
        const Exchange<ZULMRSBSPPoint*> wrong(Face(0).GetPoints()[1], point);
        return CheckBox();
    };
    const std::string vertex = NameOf(0) + " has a vertex 1 that does not lie on ";
    EXPECT_EQ(checkWith(ZULTest::MakePoint(1, -2, 3).get()), Faults{vertex + "the supporting plane."});
    EXPECT_EQ(checkWith(ZULTest::MakePoint(-1, -2, -3).get()), Faults{vertex + "edge plane 1."});
    EXPECT_EQ(checkWith(ZULTest::MakePoint(1, 0, -3).get()), Faults{vertex + "edge plane 2."});
    // Coordinates count, not the planes that a point with coordinates names.
    const auto planes = Face(0).GetPoints()[1]->GetPlanes();
    const OwnedPoint liar(
        ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], ZULMathPoint(1, -2, -3.5)));
    EXPECT_EQ(checkWith(liar.get()), Faults{vertex + "the supporting plane."});
}

TEST(ZULMRSCellCheck, LoopsThatTurnWrong)
{
    EXPECT_EQ(FlatPolygon({{0, 0}, {4, 0}, {4, 4}, {0, 4}}).FindFault(), OnlyOpen);
    EXPECT_EQ(FlatPolygon({{0, 0}, {1, 0}, {4, 0}, {4, 4}, {2, 4}, {1, 4}, {0, 4}}).FindFault(), OnlyOpen);
    EXPECT_EQ(FlatPolygon({{0, 0}, {0, 4}, {4, 4}, {4, 0}}).FindFault(), "turns the wrong way at vertex 0.");
    EXPECT_EQ(FlatPolygon({{0, 0}, {4, 0}, {1, 1}, {0, 4}}).FindFault(),
              "is not convex: edge plane 2 has vertices on both sides, vertex 3 among them.");
    EXPECT_EQ(FlatPolygon({{0, 0}, {1, 0}, {3, 0}}).FindFault(),
              "has no area: all vertices lie on edge plane 0.");
    EXPECT_EQ(FlatPolygon({{0, 0}, {2, 0}, {1, 0}, {3, 0}, {3, 3}, {0, 3}}).FindFault(),
              "turns back at vertex 1.");
    EXPECT_EQ(FlatPolygon({{0, 0}, {3, 0}, {0, 3}, {0, 0}, {3, 0}, {0, 3}}).FindFault(),
              "goes round more than once, meeting the line of edge 0 again.");
}

TEST(ZULMRSCellCheck, LoopsThatMeetAPointTwice)
{
    const FlatPolygon twice({{0, 0}, {3, 0}, {0, 3}, {0, 0}, {3, 0}, {0, 3}});
    std::vector<ZULMRSBSPPoint*>& points = (*twice).GetPoints();
    {
        const Exchange<ZULMRSBSPPoint*> same(points[4], points[1]);
        EXPECT_EQ(twice.FindFault(), "passes through the point of vertex 1 twice.");
    }
    // A plane that only touches the corner of a square, where two vertices coincide.
    const FlatPolygon touched({{0, 0}, {2, 0}, {2, 2}, {2, 2}, {0, 2}}, {{3, 1, 1, 0, -4}});
    EXPECT_EQ(touched.FindFault(), "has vertices 2 and 3 at one place.");
}

TEST_F(ZULMRSCellCheckTest, MissingFace)
{
    const std::string name = NameOf(1);
    m_Box->RemovePolygon(&Face(0));
    const Faults faults = CheckBox();
    EXPECT_EQ(CountWith(faults,
                        " that the cell's polygons meet 1 and 0 times in its two directions, instead of "
                        "once in each."),
              4U);
    EXPECT_EQ(CountWith(faults,
                        " that surface faces meet 1 and 0 times in its two directions, instead of "
                        "equally often."),
              4U);
    EXPECT_EQ(faults.size(), 8U);
}

TEST_F(ZULMRSCellCheckTest, FaceTurnedOver)
{
    m_Box->GetPolygonsOrientations()[2] = -1;
    const Faults faults = CheckBox();
    EXPECT_EQ(CountWith(faults, " that the cell's polygons meet 2 and 0 times"), 4U);
    EXPECT_EQ(CountWith(faults, " that surface faces meet 2 and 0 times"), 4U);
    EXPECT_EQ(CountWith(faults, NameOf(2) + " has a vertex of its cell outside."), 1U);
    EXPECT_EQ(faults.size(), 9U);
}

TEST_F(ZULMRSCellCheckTest, EdgesAreNamedByTheVertexBeforeThem)
{
    m_Box->RemovePolygon(&Face(5));
    // The loop of the first face begins with the two vertices that it shared with the last.
    EXPECT_EQ(CheckBox().front(), NameOf(0) +
                                      " has an edge after vertex 0 that the cell's polygons meet 1 and 0 "
                                      "times in its two directions, instead of once in each.");
}

TEST(ZULMRSCellCheck, CellThatIsNotConvex)
{
    const BlockCells parts(DivideWholly({2, 2, 1}, [](int i, int j, int) { return i == 0 || j == 0; }));
    ASSERT_EQ(Check(parts.GetCells()), Faults{});
    const OwnedPolyhedron whole = JoinSurface(parts.GetCells());
    const Faults faults = Check({whole.get()});
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(CountWith(faults, " has a vertex of its cell outside."), 1U);
}

TEST(ZULMRSCellCheck, CellOfTwoParts)
{
    const BlockCells parts(DivideWholly({3, 1, 1}, [](int i, int, int) { return i != 1; }));
    const OwnedPolyhedron both = JoinSurface(parts.GetCells());
    const Faults faults = Check({both.get()});
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0], "Cell 0 has Euler characteristic 4 instead of 2.");
    EXPECT_EQ(CountWith(faults, " has a vertex of its cell outside."), 1U);
}

TEST(ZULMRSCellCheck, CellWithoutDepth)
{
    const FlatPolygon front({{0, 0}, {3, 0}, {0, 3}});
    const OwnedPlane backPlane = MakePlane(0, 0, -1, 0);
    ZULMRSBSPPolygon& polygon = *front;
    auto edges = polygon.GetAllEdges();
    auto points = polygon.GetPoints();
    const OwnedPolygon back(new ZULMRSBSPPolygon(backPlane.get(), {edges[0], edges[2], edges[1]},
                                                 {points[2], points[1], points[0]}));
    const OwnedPolyhedron pillow(new ZULMRSBSPPolyhedron);
    pillow->AddAPolygon(&polygon, 1);
    pillow->AddAPolygon(back.get(), 1);
    const Faults faults = Check({pillow.get()});
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(CountWith(faults, " has the whole cell in its plane."), 1U);
}

TEST_F(ZULMRSCellCheckTest, PolygonHeldTooOften)
{
    const OwnedPolyhedron second(new ZULMRSBSPPolyhedron(*m_Box));
    const OwnedPolyhedron third(new ZULMRSBSPPolyhedron(*m_Box));
    const Faults twice = Check({m_Box.get(), second.get()});
    ASSERT_EQ(twice.size(), 6U);
    EXPECT_EQ(twice[0], NameOf(0) + " is held with the same orientation by cell 1.");
    const Faults thrice = Check({m_Box.get(), second.get(), third.get()});
    ASSERT_EQ(thrice.size(), 6U);
    EXPECT_EQ(thrice[5], NameOf(5) + " is held by 3 cells instead of at most 2.");
}

TEST_F(ZULMRSCellCheckTest, SurfaceOfUnevenEdges)
{
    // The second cell lacks what it should have in common with the first.
    const BlockCells parts(DivideWholly({2, 1, 1}, [](int, int, int) { return true; }));
    const auto& cells = parts.GetCells();
    EXPECT_EQ(Check({cells[0], cells[1]}), Faults{});
    EXPECT_EQ(Check({cells[1]}), Faults{});
    const OwnedPolyhedron open(new ZULMRSBSPPolyhedron(*cells[1]));
    for (std::size_t i = 0; i < cells[0]->GetNbPolygons(); ++i) {
        open->RemovePolygon(cells[0]->GetPolygon(i));
    }
    ASSERT_EQ(open->GetNbPolygons(), 5U);
    const Faults faults = Check({cells[0], open.get()});
    EXPECT_EQ(CountWith(faults, "Cell 1, polygon "), 4U);
    EXPECT_EQ(CountWith(faults, " that surface faces meet "), 4U);
}

TEST_F(ZULMRSCellCheckTest, DescribesNoMoreThanAskedFor)
{
    const OwnedPolyhedron second(new ZULMRSBSPPolyhedron(*m_Box));
    const std::vector<ZULMRSBSPPolyhedron*> cells{m_Box.get(), second.get()};
    EXPECT_EQ(ZULMRSCheckCells(cells, 4).m_Faults.size(), 4U);
    EXPECT_EQ(ZULMRSCheckCells(cells, 0).m_Faults.size(), 1U);
    EXPECT_FALSE(ZULMRSCheckCells(cells, 0).IsValid());
    const std::vector<ZULMRSBSPPolyhedron*> many(100, nullptr);
    EXPECT_EQ(ZULMRSCheckCells(many).m_Faults.size(), 20U);
}

TEST_F(ZULMRSCellCheckTest, VolumesAgreeWithRationalArithmetic)
{
    EXPECT_DOUBLE_EQ(ZULMRSVolumeOfCells({m_Box.get()}), 48.0);
    EXPECT_EQ(ZULTest::ExactVolume({m_Box.get()}), 48);
    ZULTest::Random random(11);
    for (int round = 0; round < 20; ++round) {
        auto blocks = ZULTest::DivideAtRandom(random, {{0, 0, 0}, {5, 6, 7}}, 20);
        for (Block& block : blocks) {
            block.m_IsSolid = !random.OneIn(4);
        }
        const BlockCells cells(blocks, BlockCells::SkewNormals, round % 2 == 0);
        mpq_class sum = 0;
        for (ZULMRSBSPPolyhedron* cell : cells.GetCells()) {
            sum += ZULTest::ExactVolume({cell});
        }
        EXPECT_EQ(ZULTest::ExactVolume(cells.GetCells()), sum);
        EXPECT_NEAR(ZULMRSVolumeOfCells(cells.GetCells()), sum.get_d(), 1e-13 * sum.get_d());
    }
}

TEST_F(ZULMRSCellCheckTest, WhatCannotBeMeasuredHasNoVolume)
{
    EXPECT_EQ(ZULMRSVolumeOfCells({}), 0.0);
    EXPECT_EQ(ZULMRSVolumeOfCells({nullptr}), 0.0);
    for (std::size_t i = 0; i < 6; ++i) {
        Face(i).DEBUG_ClearAllPoints();
    }
    EXPECT_EQ(ZULMRSVolumeOfCells({m_Box.get()}), 0.0);
}
}  // namespace
