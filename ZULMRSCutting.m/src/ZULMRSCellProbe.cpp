#include "ZULMRSCellProbe.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace
{
/// Heights below this part of the terms they are summed from count as none.
constexpr double Tolerance = 1e-11;
}  // namespace

void ZULMRSCellProbe::Sort(const ZULMRSBSPPolyhedron& cell, std::vector<ZULMRSToolBound>& bounds)
{
    Sketch(cell);
    for (std::size_t position = 0; position < bounds.size(); ++position) {
        if (!Clip(bounds[position], position)) {
            return;
        }
    }
    std::vector<bool> isBounding(bounds.size(), false);
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        if (m_Loops[index].m_Bound != NoBound) {
            isBounding[m_Loops[index].m_Bound] = true;
        }
    }
    const ZULMRSToolBound* first = bounds.data();
    std::vector<ZULMRSToolBound> sorted;
    sorted.reserve(bounds.size());
    for (const bool wanted : {true, false}) {
        std::copy_if(bounds.begin(), bounds.end(), std::back_inserter(sorted),
                     [&](const ZULMRSToolBound& bound) {
                         return isBounding[static_cast<std::size_t>(&bound - first)] == wanted;
                     });
    }
    bounds.swap(sorted);
}

void ZULMRSCellProbe::Sketch(const ZULMRSBSPPolyhedron& cell)
{
    std::size_t nbCorners = 0;
    for (const ZULMRSBSPPolygon* polygon : cell.GetPolygons()) {
        nbCorners += polygon->GetNbPoints();
    }
    if (m_Slots.size() < 2 * nbCorners) {
        m_Slots.assign(std::bit_ceil(2 * nbCorners), {});
    }
    ++m_Generation;
    m_Vertices.clear();
    m_NbClipped = 0;
    for (std::size_t index = 0; index < cell.GetNbPolygons(); ++index) {
        Loop& loop = NextLoop(NoBound);
        for (const ZULMRSBSPPoint* point : cell.GetPolygon(index)->GetPoints()) {
            loop.m_Corners.push_back(VertexOf(point));
        }
        // Positive seen from outside.
        if (cell.GetPolygonOrientation(index) < 0) {
            std::reverse(loop.m_Corners.begin(), loop.m_Corners.end());
        }
    }
    std::swap(m_Loops, m_Clipped);
    m_NbLoops = m_NbClipped;
}

ZULMRSCellProbe::Index ZULMRSCellProbe::VertexOf(const ZULMRSBSPPoint* point)
{
    const std::size_t mask = m_Slots.size() - 1;
    std::size_t position =
        (reinterpret_cast<std::uintptr_t>(point) >> 4) * 0x9E3779B97F4A7C15ULL >> 40 & mask;
    while (m_Slots[position].m_Generation == m_Generation && m_Slots[position].m_Point != point) {
        position = (position + 1) & mask;
    }
    Slot& slot = m_Slots[position];
    if (slot.m_Generation != m_Generation) {
        slot = {point, m_Generation, static_cast<Index>(m_Vertices.size())};
        m_Vertices.push_back(point->GetApproximatedXYZ());
    }
    return slot.m_Vertex;
}

/// Keeps the part behind the plane; false when nothing with an inside seems to be left.
bool ZULMRSCellProbe::Clip(const ZULMRSToolBound& bound, std::size_t position)
{
    bool isCut = false;
    if (!LocateVertices(bound.m_Outward, isCut)) {
        return false;
    }
    if (!isCut) {
        return true;
    }
    m_NbClipped = 0;
    m_CutVertices.clear();
    m_WallEdges.clear();
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        ClipLoop(m_Loops[index]);
    }
    CloseWithWall(position);
    std::swap(m_Loops, m_Clipped);
    m_NbLoops = m_NbClipped;
    return true;
}

/// The heights of all vertices in use. False when none is behind the plane.
bool ZULMRSCellProbe::LocateVertices(const std::array<double, 4>& equation, bool& isCut)
{
    m_Heights.resize(m_Vertices.size());
    for (std::size_t index = 0; index < m_Vertices.size(); ++index) {
        const auto& [x, y, z] = m_Vertices[index];
        const double height = equation[0] * x + equation[1] * y + (equation[2] * z + equation[3]);
        const double terms = std::fabs(equation[0] * x) + std::fabs(equation[1] * y) +
                             std::fabs(equation[2] * z) + std::fabs(equation[3]);
        m_Heights[index] = std::fabs(height) <= Tolerance * terms ? 0.0 : height;
    }
    bool isBehind = false;
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        for (const Index corner : m_Loops[index].m_Corners) {
            isBehind = isBehind || m_Heights[corner] < 0.0;
            isCut = isCut || m_Heights[corner] > 0.0;
        }
    }
    return isBehind;
}

void ZULMRSCellProbe::ClipLoop(const Loop& loop)
{
    Loop& clipped = NextLoop(loop.m_Bound);
    Index previous = loop.m_Corners.back();
    bool isBehind = false;
    for (const Index corner : loop.m_Corners) {
        if (m_Heights[previous] * m_Heights[corner] < 0.0) {
            clipped.m_Corners.push_back(Cut(previous, corner));
        }
        if (m_Heights[corner] <= 0.0) {
            clipped.m_Corners.push_back(corner);
        }
        isBehind = isBehind || m_Heights[corner] < 0.0;
        previous = corner;
    }
    if (!isBehind || clipped.m_Corners.size() < 3) {
        --m_NbClipped;
        return;
    }
    // Every edge on the plane, passed the other way round, belongs to the wall.
    Index start = clipped.m_Corners.back();
    for (const Index end : clipped.m_Corners) {
        if (m_Heights[start] == 0.0 && m_Heights[end] == 0.0) {
            m_WallEdges.push_back({end, start});
        }
        start = end;
    }
}

/// The vertex in which the plane cuts an edge, the same one for both faces at it.
ZULMRSCellProbe::Index ZULMRSCellProbe::Cut(Index start, Index end)
{
    const Edge edge{std::min(start, end), std::max(start, end)};
    const auto known = std::find_if(m_CutVertices.begin(), m_CutVertices.end(), [&](const CutVertex& cut) {
        return cut.m_Edge.m_Start == edge.m_Start && cut.m_Edge.m_End == edge.m_End;
    });
    if (known != m_CutVertices.end()) {
        return known->m_Vertex;
    }
    const double part = m_Heights[edge.m_Start] / (m_Heights[edge.m_Start] - m_Heights[edge.m_End]);
    std::array<double, 3> vertex{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        vertex[axis] = m_Vertices[edge.m_Start][axis] +
                       part * (m_Vertices[edge.m_End][axis] - m_Vertices[edge.m_Start][axis]);
    }
    const Index index = static_cast<Index>(m_Vertices.size());
    m_Vertices.push_back(vertex);
    m_Heights.push_back(0.0);
    m_CutVertices.push_back({edge, index});
    return index;
}

/// The wall of a sketch may fail to close where vertices nearly coincide; it is then left as far as it goes.
void ZULMRSCellProbe::CloseWithWall(std::size_t position)
{
    if (m_WallEdges.empty()) {
        return;
    }
    Loop& wall = NextLoop(position);
    const Index first = m_WallEdges.front().m_Start;
    Index at = first;
    while (wall.m_Corners.size() < m_WallEdges.size()) {
        const auto next = std::find_if(m_WallEdges.begin(), m_WallEdges.end(),
                                       [at](const Edge& edge) { return edge.m_Start == at; });
        if (next == m_WallEdges.end()) {
            break;
        }
        at = next->m_End;
        wall.m_Corners.push_back(at);
        if (at == first) {
            break;
        }
    }
    if (wall.m_Corners.size() < 3) {
        --m_NbClipped;
    }
}

ZULMRSCellProbe::Loop& ZULMRSCellProbe::NextLoop(std::size_t bound)
{
    if (m_NbClipped == m_Clipped.size()) {
        m_Clipped.emplace_back();
    }
    Loop& loop = m_Clipped[m_NbClipped++];
    loop.m_Bound = bound;
    loop.m_Corners.clear();
    return loop;
}
