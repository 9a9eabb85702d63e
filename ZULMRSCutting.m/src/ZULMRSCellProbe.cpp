#include "ZULMRSCellProbe.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace
{
/// Heights below this part of the greatest terms that a sum for the cell may have count as none.
constexpr double Tolerance = 1e-11;
}  // namespace

bool ZULMRSCellProbe::Sort(const ZULMRSCell& cell, const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
                           std::vector<const ZULMRSToolBound*>& bounds)
{
    Sketch(cell, outline, table);
    for (std::size_t position = 0; position < bounds.size(); ++position) {
        if (!Clip(*bounds[position], position)) {
            return false;
        }
    }
    m_Areas.assign(bounds.size(), 0.0);
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        if (m_Loops[index].m_Bound != NoBound) {
            m_Areas[m_Loops[index].m_Bound] = AreaOf(m_Loops[index]);
        }
    }
    m_Sorted.clear();
    for (std::size_t position = 0; position < bounds.size(); ++position) {
        std::size_t place = m_Sorted.size();
        m_Sorted.push_back({m_Areas[position], bounds[position]});
        for (; place > 0 && m_Sorted[place - 1].first < m_Areas[position]; --place) {
            std::swap(m_Sorted[place - 1], m_Sorted[place]);
        }
    }
    for (std::size_t position = 0; position < bounds.size(); ++position) {
        bounds[position] = m_Sorted[position].second;
    }
    return true;
}

/// Twice the area, squared.
double ZULMRSCellProbe::AreaOf(const Loop& loop) const
{
    const auto& apex = m_Vertices[loop.m_Corners.front()];
    std::array<double, 3> normal{};
    std::array<double, 3> previous{};
    for (const Index corner : loop.m_Corners) {
        const auto& at = m_Vertices[corner];
        const std::array<double, 3> arm{at[0] - apex[0], at[1] - apex[1], at[2] - apex[2]};
        normal[0] += previous[1] * arm[2] - previous[2] * arm[1];
        normal[1] += previous[2] * arm[0] - previous[0] * arm[2];
        normal[2] += previous[0] * arm[1] - previous[1] * arm[0];
        previous = arm;
    }
    return normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2];
}

void ZULMRSCellProbe::Sketch(const ZULMRSCell& cell, const ZULMRSCellOutline& outline,
                             ZULMRSVertexTable& table)
{
    m_Vertices.clear();
    m_Live.clear();
    m_Farthest = {};
    for (const Index vertex : outline.GetVertices()) {
        m_Live.push_back(static_cast<Index>(m_Vertices.size()));
        const std::array<double, 3>& at = m_Vertices.emplace_back(table.PlaceOf(vertex).m_At);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_Farthest[axis] = std::max(m_Farthest[axis], std::fabs(at[axis]));
        }
    }
    m_NbLoops = 0;
    for (std::size_t face = 0; face < cell.GetNbPolygons(); ++face) {
        const std::span<const Index> corners = outline.GetLoop(face);
        Loop& loop = NextLoop(NoBound);
        // Positive seen from outside.
        if (cell.GetPolygonOrientation(face) < 0) {
            loop.m_Corners.assign(corners.rbegin(), corners.rend());
        } else {
            loop.m_Corners.assign(corners.begin(), corners.end());
        }
    }
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
    m_CutVertices.clear();
    m_WallEdges.clear();
    std::size_t nbKept = 0;
    for (std::size_t index = 0; index < m_NbLoops; ++index) {
        if (ClipLoop(m_Loops[index])) {
            std::swap(m_Loops[nbKept++], m_Loops[index]);
        }
    }
    m_NbLoops = nbKept;
    DropVerticesInFront();
    CloseWithWall(position);
    return true;
}

/// The heights of all vertices in use. False when none is behind the plane.
bool ZULMRSCellProbe::LocateVertices(const std::array<double, 4>& equation, bool& isCut)
{
    m_Heights.resize(m_Vertices.size());
    m_Marks.resize(m_Vertices.size());
    const double most = std::fabs(equation[0]) * m_Farthest[0] + std::fabs(equation[1]) * m_Farthest[1] +
                        std::fabs(equation[2]) * m_Farthest[2] + std::fabs(equation[3]);
    unsigned int marks = 0;
    for (const Index vertex : m_Live) {
        const auto& [x, y, z] = m_Vertices[vertex];
        double height = equation[0] * x + equation[1] * y + (equation[2] * z + equation[3]);
        if (std::fabs(height) <= Tolerance * most) {
            height = 0.0;
        }
        m_Heights[vertex] = height;
        m_Marks[vertex] = height < 0.0 ? IsBehind : (height > 0.0 ? IsInFront : IsOn);
        marks |= m_Marks[vertex];
    }
    isCut = (marks & IsInFront) != 0;
    return (marks & IsBehind) != 0;
}

void ZULMRSCellProbe::DropVerticesInFront()
{
    std::size_t nbKept = 0;
    for (const Index vertex : m_Live) {
        m_Live[nbKept] = vertex;
        nbKept += m_Marks[vertex] != IsInFront ? 1 : 0;
    }
    m_Live.resize(nbKept);
    for (const CutVertex& cut : m_CutVertices) {
        m_Live.push_back(cut.m_Vertex);
    }
}

/// False when nothing of the loop is left.
bool ZULMRSCellProbe::ClipLoop(Loop& loop)
{
    unsigned int marks = 0;
    for (const Index corner : loop.m_Corners) {
        marks |= m_Marks[corner];
    }
    if (marks == IsBehind) {
        return true;
    }
    if ((marks & IsBehind) == 0) {
        return false;
    }
    if ((marks & IsInFront) != 0) {
        CutLoop(loop);
    }
    if (loop.m_Corners.size() < 3) {
        return false;
    }
    // Every edge on the plane, passed the other way round, belongs to the wall.
    Index start = loop.m_Corners.back();
    for (const Index end : loop.m_Corners) {
        if (m_Marks[start] == IsOn && m_Marks[end] == IsOn) {
            m_WallEdges.push_back({end, start});
        }
        start = end;
    }
    return true;
}

void ZULMRSCellProbe::CutLoop(Loop& loop)
{
    m_Corners.clear();
    Index previous = loop.m_Corners.back();
    for (const Index corner : loop.m_Corners) {
        if ((m_Marks[previous] | m_Marks[corner]) == (IsBehind | IsInFront)) {
            m_Corners.push_back(Cut(previous, corner));
        }
        if (m_Marks[corner] != IsInFront) {
            m_Corners.push_back(corner);
        }
        previous = corner;
    }
    loop.m_Corners.swap(m_Corners);
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
    m_Marks.push_back(IsOn);
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
        --m_NbLoops;
    }
}

ZULMRSCellProbe::Loop& ZULMRSCellProbe::NextLoop(std::size_t bound)
{
    if (m_NbLoops == m_Loops.size()) {
        m_Loops.emplace_back();
    }
    Loop& loop = m_Loops[m_NbLoops++];
    loop.m_Bound = bound;
    loop.m_Corners.clear();
    return loop;
}
