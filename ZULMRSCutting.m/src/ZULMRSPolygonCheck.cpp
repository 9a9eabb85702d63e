#include "ZULMRSPolygonCheck.h"

#include <algorithm>
#include <sstream>

#include "ZULMRSBSPPredicates.h"

namespace
{
template <class... Parts>
std::string Say(const Parts&... parts)
{
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

// Three planes that meet in a point and nowhere else.
class PlanesThroughPoint
{
public:
    explicit PlanesThroughPoint(const ZULMRSBSPPoint& point) : m_Planes(point.GetPlanes())
    {
        if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
            const std::array<double, 3> xyz = point.GetApproximatedXYZ();
            m_Planes = {ZULMRSBSPPlaneNS::CreateCartesianPlane(1.0, 0.0, 0.0, -xyz[0]),
                        ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 1.0, 0.0, -xyz[1]),
                        ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 0.0, 1.0, -xyz[2])};
            m_AreOwned = true;
        }
    }
    ~PlanesThroughPoint()
    {
        for (ZULMRSBSPPlane* plane : m_Planes) {
            if (m_AreOwned) {
                ZULMRSBSPPlane::ReleaseObject(plane);
            }
        }
    }
    PlanesThroughPoint(const PlanesThroughPoint&) = delete;
    PlanesThroughPoint& operator=(const PlanesThroughPoint&) = delete;

    bool AllContain(const ZULMRSBSPPoint& other) const
    {
        return std::all_of(m_Planes.begin(), m_Planes.end(), [&](const ZULMRSBSPPlane* plane) {
            return plane == nullptr || ZULMRSTrueSide(*plane, other) == 0;
        });
    }
    // For three points of one line: whether the point lies strictly between the other two.
    bool Separate(const ZULMRSBSPPoint& a, const ZULMRSBSPPoint& b) const
    {
        return std::any_of(m_Planes.begin(), m_Planes.end(), [&](const ZULMRSBSPPlane* plane) {
            return plane != nullptr && ZULMRSTrueSide(*plane, a) * ZULMRSTrueSide(*plane, b) < 0;
        });
    }

private:
    std::array<ZULMRSBSPPlane*, 3> m_Planes;
    bool m_AreOwned = false;
};

bool IsPoint(const ZULMRSBSPPoint& point)
{
    if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
        return true;
    }
    const auto planes = point.GetPlanes();
    return std::find(planes.begin(), planes.end(), nullptr) == planes.end() &&
           ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*planes[0], *planes[1], *planes[2]) != 0;
}

class PolygonCheck
{
public:
    explicit PolygonCheck(const ZULMRSBSPPolygon& polygon)
        : m_Polygon(polygon),
          m_Edges(polygon.GetAllEdges()),
          m_Points(polygon.GetPoints()),
          m_Count(m_Edges.size())
    {
    }

    // Each step may rely on those before it.
    std::string FindFault()
    {
        using Step = std::string (PolygonCheck::*)();
        constexpr std::array<Step, 6> steps{&PolygonCheck::CheckParts,    &PolygonCheck::CheckPlanes,
                                            &PolygonCheck::CheckVertices, &PolygonCheck::CheckSides,
                                            &PolygonCheck::CheckTurns,    &PolygonCheck::CheckRuns};
        for (const Step step : steps) {
            std::string fault = (this->*step)();
            if (!fault.empty()) {
                return fault;
            }
        }
        return {};
    }

private:
    std::size_t After(std::size_t i) const { return (i + 1) % m_Count; }
    std::size_t Before(std::size_t i) const { return (i + m_Count - 1) % m_Count; }

    std::string CheckParts()
    {
        if (m_Polygon.GetSupportingPlane() == nullptr) {
            return "has no supporting plane";
        }
        if (m_Count < 3) {
            return Say("has fewer than 3 edges, namely ", m_Count);
        }
        const std::size_t nbOrientations = m_Polygon.GetAllEdgeOrientations().size();
        if (m_Points.size() != m_Count || nbOrientations != m_Count) {
            return Say("has ", m_Count, " edge planes, but ", m_Points.size(), " vertices and ",
                       nbOrientations, " edge orientations");
        }
        for (std::size_t i = 0; i < m_Count; ++i) {
            if (m_Edges[i] == nullptr || m_Points[i] == nullptr) {
                return Say("has no ", m_Edges[i] == nullptr ? "edge plane " : "vertex ", i);
            }
        }
        return {};
    }

    std::string CheckPlanes()
    {
        const ZULMRSBSPPlane& supporting = *m_Polygon.GetSupportingPlane();
        if (ZULMRSBSPPredicates::IsPlaneValid(supporting) != ZULMRSExtendedTrue) {
            return "has a supporting plane without a normal";
        }
        for (std::size_t i = 0; i < m_Count; ++i) {
            if (ZULMRSBSPPredicates::IsPlaneValid(*m_Edges[i]) != ZULMRSExtendedTrue) {
                return Say("has an edge plane ", i, " without a normal");
            }
            if (ZULMRSBSPPredicates::ArePlanesParallel(*m_Edges[i], supporting) == ZULMRSExtendedTrue) {
                return Say("has an edge plane ", i, " that is parallel to its supporting plane");
            }
        }
        return {};
    }

    std::string CheckVertices()
    {
        for (std::size_t i = 0; i < m_Count; ++i) {
            const ZULMRSBSPPoint& point = *m_Points[i];
            if (!IsPoint(point)) {
                return Say("has a vertex ", i, " whose planes do not meet in one point");
            }
            if (ZULMRSTrueSide(*m_Polygon.GetSupportingPlane(), point) != 0) {
                return Say("has a vertex ", i, " that does not lie on the supporting plane");
            }
            for (const std::size_t edge : {i, After(i)}) {
                if (ZULMRSTrueSide(*m_Edges[edge], point) != 0) {
                    return Say("has a vertex ", i, " that does not lie on edge plane ", edge);
                }
            }
            if (std::find(m_Points.begin() + static_cast<std::ptrdiff_t>(i) + 1, m_Points.end(), &point) !=
                m_Points.end()) {
                return Say("passes through the point of vertex ", i, " twice");
            }
            if (PlanesThroughPoint(point).AllContain(*m_Points[Before(i)])) {
                return Say("has vertices ", Before(i), " and ", i, " at one place");
            }
        }
        return {};
    }

    // The polygon lies on one side of each edge plane, the recorded one if any.
    std::string CheckSides()
    {
        m_Sides.assign(m_Count, 0);
        m_VertexSides.assign(m_Count * m_Count, 0);
        for (std::size_t i = 0; i < m_Count; ++i) {
            for (std::size_t j = 0; j < m_Count; ++j) {
                const int side = ZULMRSTrueSide(*m_Edges[i], *m_Points[j]);
                m_VertexSides[i * m_Count + j] = side;
                if (side * m_Sides[i] < 0) {
                    return Say("is not convex: edge plane ", i, " has vertices on both sides, vertex ", j,
                               " among them");
                }
                m_Sides[i] = side != 0 ? side : m_Sides[i];
            }
            if (m_Sides[i] == 0) {
                return Say("has no area: all vertices lie on edge plane ", i);
            }
            const auto recorded = static_cast<signed char>(m_Polygon.GetAllEdgeOrientations()[i]);
            if (recorded != 0 && recorded != -m_Sides[i]) {
                return Say("records orientation ", static_cast<int>(recorded), " for edge ", i,
                           " instead of ", -m_Sides[i]);
            }
        }
        return {};
    }

    // With outward normals n of two consecutive edge planes and the supporting plane's normal s, the loop
    // turns to the left when s . (n x n') is positive, and goes straight on when it is zero.
    std::string CheckTurns()
    {
        for (std::size_t i = 0; i < m_Count; ++i) {
            const int turn = m_Sides[i] * m_Sides[After(i)] *
                             ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*m_Polygon.GetSupportingPlane(),
                                                                           *m_Edges[i], *m_Edges[After(i)]);
            if (turn < 0) {
                return Say("turns the wrong way at vertex ", i);
            }
            if (turn == 0 &&
                !PlanesThroughPoint(*m_Points[i]).Separate(*m_Points[Before(i)], *m_Points[After(i)])) {
                return Say("turns back at vertex ", i);
            }
        }
        return {};
    }

    // A loop that goes round more than once comes back to the line of an edge.
    std::string CheckRuns()
    {
        for (std::size_t i = 0; i < m_Count; ++i) {
            std::size_t nbArrivals = 0;
            for (std::size_t j = 0; j < m_Count; ++j) {
                const bool isOn = m_VertexSides[i * m_Count + j] == 0;
                nbArrivals += isOn && m_VertexSides[i * m_Count + Before(j)] != 0 ? 1 : 0;
            }
            if (nbArrivals > 1) {
                return Say("goes round more than once, meeting the line of edge ", i, " again");
            }
        }
        return {};
    }

    const ZULMRSBSPPolygon& m_Polygon;
    const std::vector<ZULMRSBSPPlane*>& m_Edges;
    const std::vector<ZULMRSBSPPoint*>& m_Points;
    std::size_t m_Count;
    std::vector<int> m_Sides;        // of each edge plane, where the polygon lies
    std::vector<int> m_VertexSides;  // of each edge plane, where each vertex lies
};
}  // namespace

int ZULMRSTrueSide(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
        const std::array<double, 3> xyz = point.GetApproximatedXYZ();
        return ZULMRSBSPPredicates::IsPointInFrontOfPlane(plane, ZULMathPoint(xyz[0], xyz[1], xyz[2]));
    }
    return ZULMRSBSPPredicates::IsPointInFrontOfPlane(plane, point);
}

std::string ZULMRSFindPolygonFault(const ZULMRSBSPPolygon& polygon)
{
    return PolygonCheck(polygon).FindFault();
}
