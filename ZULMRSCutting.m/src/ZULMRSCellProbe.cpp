#include "ZULMRSCellProbe.h"

#include <algorithm>
#include <utility>

bool ZULMRSCellProbe::Run(const ZULMRSBSPPolyhedron& cell, std::vector<ZULMRSSidedPlane>& planes)
{
    Load(cell);
    for (const ZULMRSSidedPlane& plane : planes) {
        if (!Clip(plane)) {
            return false;
        }
    }
    const auto bounds = [this](const ZULMRSSidedPlane& plane) {
        return std::any_of(m_Loops.begin(), m_Loops.begin() + static_cast<std::ptrdiff_t>(m_NbLoops),
                           [&](const Loop& loop) { return loop.m_Plane == plane.m_Plane; });
    };
    planes.erase(std::remove_if(planes.begin(), planes.end(),
                                [&](const ZULMRSSidedPlane& plane) { return !bounds(plane); }),
                 planes.end());
    return true;
}

void ZULMRSCellProbe::Load(const ZULMRSBSPPolyhedron& cell)
{
    m_NbClipped = 0;
    for (std::size_t index = 0; index < cell.GetNbPolygons(); ++index) {
        const ZULMRSBSPPolygon& polygon = *cell.GetPolygon(index);
        Loop& loop = NextLoop(polygon.GetSupportingPlane());
        const std::size_t count = polygon.GetNbPoints();
        const bool isReversed = cell.GetPolygonOrientation(index) < 0;
        for (std::size_t step = 0; step < count; ++step) {
            // Backwards, the edge that ends at a vertex is the one that starts there in the polygon.
            const std::size_t position = isReversed ? count - 1 - step : step;
            const std::size_t edge = isReversed ? (position + 1) % count : position;
            loop.m_Corners.push_back({polygon.GetPoints()[position], polygon.GetAllEdges()[edge]});
        }
    }
    std::swap(m_Loops, m_Clipped);
    m_NbLoops = m_NbClipped;
}

/// Keeps the part on the tool's side of the plane; false when nothing with an inside is left.
bool ZULMRSCellProbe::Clip(const ZULMRSSidedPlane& plane)
{
    m_Sides.Begin(*plane.m_Plane);
    bool hasInside = false;
    bool hasOutside = false;
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        for (const Corner& corner : m_Loops[index].m_Corners) {
            const int side = m_Sides.Of(corner.m_Point) * plane.m_Sign;
            hasInside = hasInside || side < 0;
            hasOutside = hasOutside || side > 0;
        }
    }
    if (!hasInside || !hasOutside) {
        return hasInside;
    }
    m_NbClipped = 0;
    m_WallEdges.clear();
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        ClipLoop(m_Loops[index], plane);
    }
    CloseWithWall(plane.m_Plane);
    std::swap(m_Loops, m_Clipped);
    m_NbLoops = m_NbClipped;
    return true;
}

void ZULMRSCellProbe::ClipLoop(const Loop& loop, const ZULMRSSidedPlane& plane)
{
    Loop& clipped = NextLoop(loop.m_Plane);
    ZULMRSBSPPoint* previous = loop.m_Corners.back().m_Point;
    int previousSide = m_Sides.Of(previous) * plane.m_Sign;
    bool hasInside = false;
    for (const Corner& corner : loop.m_Corners) {
        const int side = m_Sides.Of(corner.m_Point) * plane.m_Sign;
        if (previousSide * side < 0) {
            ZULMRSBSPPoint* cut =
                m_EdgePoints.Create(loop.m_Plane, corner.m_Edge, plane.m_Plane, previous, corner.m_Point);
            m_Sides.SetOn(cut);
            clipped.m_Corners.push_back({cut, side < 0 ? plane.m_Plane : corner.m_Edge});
        }
        if (side <= 0) {
            // Coming from outside straight onto a vertex of the plane, the edge that ends there is the
            // wall's.
            clipped.m_Corners.push_back(
                {corner.m_Point, previousSide > 0 && side == 0 ? plane.m_Plane : corner.m_Edge});
        }
        hasInside = hasInside || side < 0;
        previous = corner.m_Point;
        previousSide = side;
    }
    if (!hasInside) {
        --m_NbClipped;
        return;
    }
    // Every edge on the plane, seen the other way round, belongs to the wall.
    ZULMRSBSPPoint* start = clipped.m_Corners.back().m_Point;
    for (const Corner& corner : clipped.m_Corners) {
        if (m_Sides.Of(start) == 0 && m_Sides.Of(corner.m_Point) == 0) {
            m_WallEdges.push_back({corner.m_Point, start, loop.m_Plane});
        }
        start = corner.m_Point;
    }
}

void ZULMRSCellProbe::CloseWithWall(ZULMRSBSPPlane* plane)
{
    Loop& wall = NextLoop(plane);
    const WallEdge* edge = m_WallEdges.data();
    while (wall.m_Corners.size() < m_WallEdges.size()) {
        wall.m_Corners.push_back({edge->m_End, edge->m_Plane});
        edge = &*std::find_if(m_WallEdges.begin(), m_WallEdges.end(),
                              [&](const WallEdge& other) { return other.m_Start == edge->m_End; });
    }
}

ZULMRSCellProbe::Loop& ZULMRSCellProbe::NextLoop(ZULMRSBSPPlane* plane)
{
    if (m_NbClipped == m_Clipped.size()) {
        m_Clipped.emplace_back();
    }
    Loop& loop = m_Clipped[m_NbClipped++];
    loop.m_Plane = plane;
    loop.m_Corners.clear();
    return loop;
}
