#include "ZULMRSCellMerger.h"

#include <algorithm>
#include <utility>

#include "ZULMRSFaceEdges.h"

namespace
{
template <class Element>
void EraseAt(std::vector<Element>& elements, std::size_t position)
{
    elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(position));
}

/// Takes a polygon off a cell's list; its reference becomes the caller's.
void TakeOff(ZULMRSCell& cell, const ZULMRSFace* face)
{
    std::size_t position = 0;
    if (cell.FindPolygonPosition(face, position)) {
        EraseAt(cell.GetPolygons(), position);
        EraseAt(cell.GetPolygonsOrientations(), position);
    }
}

std::size_t Next(std::size_t position, std::size_t count)
{
    return position + 1 == count ? 0 : position + 1;
}
std::size_t Previous(std::size_t position, std::size_t count)
{
    return position == 0 ? count - 1 : position - 1;
}

/// Whether two corners at one vertex have the same two vertices beside it.
bool HaveSameArms(const std::vector<ZULMRSBSPPoint*>& loop, std::size_t position,
                  const std::vector<ZULMRSBSPPoint*>& other, std::size_t otherPosition)
{
    const ZULMRSBSPPoint* before = loop[Previous(position, loop.size())];
    const ZULMRSBSPPoint* after = loop[Next(position, loop.size())];
    const ZULMRSBSPPoint* otherBefore = other[Previous(otherPosition, other.size())];
    const ZULMRSBSPPoint* otherAfter = other[Next(otherPosition, other.size())];
    return (before == otherBefore && after == otherAfter) || (before == otherAfter && after == otherBefore);
}
}  // namespace

void ZULMRSCellMerger::Merge(ZULMRSCell& cell, std::vector<ZULMRSCell*>& emptied)
{
    std::size_t position = 0;
    while (position < cell.GetNbPolygons()) {
        ZULMRSFace* wall = cell.GetFace(position);
        ZULMRSCell* other = wall->GetOtherHolder(&cell);
        if (other != nullptr && other->m_Leaf == cell.m_Leaf && IsUnionConvex(cell, *other, *wall)) {
            Join(cell, *other, *wall);
            emptied.push_back(other);
            position = 0;
        } else {
            ++position;
        }
    }
}

/// Two convex cells with a whole face in common are convex together when they are along that face's edges.
bool ZULMRSCellMerger::IsUnionConvex(const ZULMRSCell& cell, const ZULMRSCell& other, const ZULMRSFace& wall)
{
    m_Seams.clear();
    const ZULMRSBSPPoint* start = wall.GetPoints().back();
    for (const ZULMRSBSPPoint* end : wall.GetPoints()) {
        const ZULMRSFaceEdge mine = ZULMRSFindOtherFace(cell, &wall, start, end);
        const ZULMRSFaceEdge others = ZULMRSFindOtherFace(other, &wall, start, end);
        if (mine.m_Face == nullptr || others.m_Face == nullptr) {
            return false;
        }
        const char orientation = cell.GetPolygonOrientation(mine.m_Position);
        const bool isFlat = mine.m_Face->GetSupportingPlane() == others.m_Face->GetSupportingPlane();
        if (isFlat ? orientation != other.GetPolygonOrientation(others.m_Position)
                   : !IsBehind(*others.m_Face, *mine.m_Face, orientation)) {
            return false;
        }
        m_Seams.push_back({mine.m_Face, others.m_Face, isFlat});
        start = end;
    }
    return true;
}

/// Whether a face that meets another in an edge lies on the inner side of it.
bool ZULMRSCellMerger::IsBehind(const ZULMRSFace& other, const ZULMRSFace& face, char orientation)
{
    m_Table.Turn(*face.GetSupportingPlane());
    for (ZULMRSBSPPoint* point : other.GetPoints()) {
        const int side = m_Table.SideOf(m_Table.IndexOf(point));
        if (side != 0) {
            return side * static_cast<signed char>(orientation) < 0;
        }
    }
    return false;
}

void ZULMRSCellMerger::Join(ZULMRSCell& cell, ZULMRSCell& other, ZULMRSFace& wall)
{
    m_WallPoints.assign(wall.GetPoints().begin(), wall.GetPoints().end());
    m_Joined.clear();
    JoinSeams(cell, other);
    TakeOver(cell, other, wall);
    for (ZULMRSBSPPoint* vertex : m_WallPoints) {
        DropIfStraight(cell, vertex);
    }
}

/// Makes one polygon of two that the wall parts and that have the same cell, or none, on their other side.
void ZULMRSCellMerger::JoinSeams(ZULMRSCell& cell, ZULMRSCell& other)
{
    for (const Seam& seam : m_Seams) {
        ZULMRSCell* neighbour = seam.m_Face->GetOtherHolder(&cell);
        Overlap overlap{};
        if (!seam.m_IsFlat || neighbour != seam.m_Other->GetOtherHolder(&other) ||
            std::find(m_Joined.begin(), m_Joined.end(), seam.m_Other) != m_Joined.end() ||
            !FindOverlap(*seam.m_Face, *seam.m_Other, overlap) ||
            !MayVanish(*seam.m_Face, overlap, cell, neighbour)) {
            continue;
        }
        for (std::size_t step = 0; step + 1 < overlap.m_NbEdges; ++step) {
            ZULMRSBSPPoint* vertex =
                seam.m_Face->GetPoints()[(overlap.m_FirstEdge + step) % seam.m_Face->GetNbPoints()];
            DropVertex(cell, vertex);
            DropVertex(other, vertex);
            if (neighbour != nullptr) {
                DropVertex(*neighbour, vertex);
            }
            m_WallPoints.erase(std::find(m_WallPoints.begin(), m_WallPoints.end(), vertex));
        }
        JoinFaces(*seam.m_Face, *seam.m_Other, overlap, neighbour);
        m_Joined.push_back(seam.m_Other);
    }
}

/// The common edges of two polygons of one plane; false when together they are not convex.
bool ZULMRSCellMerger::FindOverlap(ZULMRSFace& face, ZULMRSFace& other, Overlap& overlap)
{
    const auto& points = face.GetPoints();
    const auto& others = other.GetPoints();
    const std::size_t count = points.size();
    const auto isCommon = [&](std::size_t edge) {
        return ZULMRSFindEdge(others, points[Previous(edge, count)], points[edge]) < others.size();
    };
    std::size_t first = 0;
    while (first < count && !isCommon(first)) {
        ++first;
    }
    if (first == count) {
        return false;
    }
    if (first == 0) {
        while (isCommon(Previous(first, count)) && Previous(first, count) != 0) {
            first = Previous(first, count);
        }
    }
    std::size_t nbEdges = 1;
    while (nbEdges < count && isCommon((first + nbEdges) % count)) {
        ++nbEdges;
    }
    const std::size_t start = Previous(first, count);
    const std::size_t afterEnd = (first + nbEdges) % count;
    const std::size_t end = Previous(afterEnd, count);
    const auto startInOther =
        static_cast<std::size_t>(std::find(others.begin(), others.end(), points[start]) - others.begin());
    const auto endInOther =
        static_cast<std::size_t>(std::find(others.begin(), others.end(), points[end]) - others.begin());
    overlap = {first, nbEdges, startInOther};
    return nbEdges + 2 <= count + others.size() - nbEdges &&
           IsConvexWhere(face, start, others[Next(startInOther, others.size())]) &&
           IsConvexWhere(other, endInOther, points[afterEnd]);
}

/// Whether a loop that goes on from the end of an edge to another vertex does not turn outwards.
bool ZULMRSCellMerger::IsConvexWhere(ZULMRSFace& face, std::size_t edge, ZULMRSBSPPoint* next)
{
    const auto orientation = static_cast<signed char>(face.GetEdgeOrientation(edge));
    m_Table.Turn(*face.GetAllEdges()[edge]);
    return orientation != 0 && m_Table.SideOf(m_Table.IndexOf(next)) * orientation <= 0;
}

/// Gives a face what the other one adds to it, and takes the other one from the neighbour.
void ZULMRSCellMerger::JoinFaces(ZULMRSFace& face, ZULMRSFace& other, const Overlap& overlap,
                                 ZULMRSCell* neighbour)
{
    const std::size_t count = face.GetNbPoints();
    const std::size_t countOfOther = other.GetNbPoints();
    m_LoopEdges.clear();
    m_LoopPoints.clear();
    m_LoopOrientations.clear();
    const auto add = [this](const ZULMRSFace& from, std::size_t position) {
        m_LoopEdges.push_back(from.GetAllEdges()[position]);
        m_LoopPoints.push_back(from.GetPoints()[position]);
        m_LoopOrientations.push_back(from.GetAllEdgeOrientations()[position]);
    };
    for (std::size_t step = overlap.m_NbEdges; step < count; ++step) {
        add(face, (overlap.m_FirstEdge + step) % count);
    }
    for (std::size_t step = 1; step <= countOfOther - overlap.m_NbEdges; ++step) {
        add(other, (overlap.m_StartInOther + step) % countOfOther);
        m_LoopEdges.back()->AddRef();
        m_LoopPoints.back()->AddRef();
    }
    for (std::size_t step = 0; step < overlap.m_NbEdges; ++step) {
        const std::size_t position = (overlap.m_FirstEdge + step) % count;
        face.GetPoints()[position]->Release();
        face.GetAllEdges()[position]->Release();
    }
    face.GetPoints().assign(m_LoopPoints.begin(), m_LoopPoints.end());
    face.GetAllEdges().assign(m_LoopEdges.begin(), m_LoopEdges.end());
    face.GetAllEdgeOrientations().assign(m_LoopOrientations.begin(), m_LoopOrientations.end());
    face.ResizePoints();
    if (neighbour != nullptr) {
        TakeOff(*neighbour, &other);
        other.Release();
    }
}

/// Moves what is left of the other cell over, without the wall.
void ZULMRSCellMerger::TakeOver(ZULMRSCell& cell, ZULMRSCell& other, ZULMRSFace& wall)
{
    TakeOff(cell, &wall);
    wall.Release();
    for (std::size_t position = 0; position < other.GetNbPolygons(); ++position) {
        ZULMRSFace* face = other.GetFace(position);
        if (face == &wall || std::find(m_Joined.begin(), m_Joined.end(), face) != m_Joined.end()) {
            face->Release();
        } else {
            ZULMRSHandOver(cell, face, other.GetPolygonOrientation(position));
        }
    }
    for (ZULMRSBSPPoint* vertex : other.m_Vertices) {
        if (std::find(m_WallPoints.begin(), m_WallPoints.end(), vertex) == m_WallPoints.end()) {
            cell.m_Vertices.push_back(vertex);
        }
    }
    cell.m_Box.Include(other.m_Box);
    other.GetPolygons().clear();
    other.GetPolygonsOrientations().clear();
    other.m_Vertices.clear();
}

/// Whether nothing else needs the edges where two faces of a cell meet, nor the vertices between them: not
/// where something touches them from outside.
bool ZULMRSCellMerger::MayVanish(const ZULMRSFace& face, const Overlap& overlap, ZULMRSCell& cell,
                                 const ZULMRSCell* neighbour)
{
    const auto& points = face.GetPoints();
    const std::size_t count = points.size();
    const auto at = [&](std::size_t step) { return points[(overlap.m_FirstEdge + step) % count]; };
    // The two faces and the wall.
    constexpr std::size_t nbOwnersBetween = 3;
    for (std::size_t step = 0; step + 1 < overlap.m_NbEdges; ++step) {
        if (CountOwners(at(step)) != nbOwnersBetween) {
            return false;
        }
    }
    return neighbour != nullptr || !IsTouched(cell, at(count - 1)) ||
           !IsTouched(cell, at(overlap.m_NbEdges - 1));
}

/// The number of polygons that have a vertex.
std::size_t ZULMRSCellMerger::CountOwners(ZULMRSBSPPoint* vertex)
{
    m_Table.IndexOf(vertex);  // so that the table is an owner, too
    return static_cast<std::size_t>(vertex->GetRefCount());
}

/// Whether a vertex has polygons that cannot be reached from a cell by going from face to face at the vertex.
bool ZULMRSCellMerger::IsTouched(ZULMRSCell& cell, ZULMRSBSPPoint* vertex)
{
    std::size_t nbHoldings = 0;  // two for each polygon
    m_Cells.assign(1, &cell);
    for (std::size_t index = 0; index < m_Cells.size(); ++index) {
        const ZULMRSCell* at = m_Cells[index];
        for (std::size_t position = 0; position < at->GetNbPolygons(); ++position) {
            const ZULMRSFace* face = at->GetFace(position);
            const auto& points = face->GetPoints();
            if (std::find(points.begin(), points.end(), vertex) == points.end()) {
                continue;
            }
            ZULMRSCell* other = face->GetOtherHolder(at);
            nbHoldings += other == nullptr ? 2 : 1;
            if (other != nullptr && std::find(m_Cells.begin(), m_Cells.end(), other) == m_Cells.end()) {
                m_Cells.push_back(other);
            }
        }
    }
    return CountOwners(vertex) != nbHoldings / 2;
}

void ZULMRSCellMerger::DropVertex(ZULMRSCell& cell, ZULMRSBSPPoint* vertex)
{
    const auto found = std::find(cell.m_Vertices.begin(), cell.m_Vertices.end(), vertex);
    if (found != cell.m_Vertices.end()) {
        cell.m_Vertices.erase(found);
    }
}

/// Takes a vertex that no polygon needs out of all cells that meet in its edge.
void ZULMRSCellMerger::DropIfStraight(ZULMRSCell& cell, ZULMRSBSPPoint* vertex)
{
    Corner corners[2];
    if (!FindCorners(cell, vertex, corners)) {
        return;
    }
    m_Corners.assign(corners, corners + 2);
    m_Cells.assign(1, &cell);
    bool isClosed = false;
    if (!WalkRound(&cell, corners[0], corners[1].m_Face, isClosed) ||
        (!isClosed && !WalkRound(&cell, corners[1], corners[0].m_Face, isClosed))) {
        return;
    }
    // Not where something touches the edge that does not hang together with these cells.
    if (CountOwners(vertex) != m_Corners.size()) {
        return;
    }
    for (const Corner& corner : m_Corners) {
        RemoveCorner(corner);
    }
    for (ZULMRSCell* each : m_Cells) {
        DropVertex(*each, vertex);
    }
}

/// The two corners of a cell at a vertex on an edge; false when it is a true vertex of the cell.
bool ZULMRSCellMerger::FindCorners(const ZULMRSCell& cell, const ZULMRSBSPPoint* vertex,
                                   Corner (&corners)[2]) const
{
    std::size_t nbFound = 0;
    for (std::size_t index = 0; index < cell.GetNbPolygons(); ++index) {
        ZULMRSFace* face = cell.GetFace(index);
        const auto& points = face->GetPoints();
        const auto found = std::find(points.begin(), points.end(), vertex);
        if (found != points.end()) {
            if (nbFound == 2) {
                return false;
            }
            corners[nbFound++] = {face, static_cast<std::size_t>(found - points.begin())};
        }
    }
    return nbFound == 2 && HaveSameArms(corners[0].m_Face->GetPoints(), corners[0].m_Position,
                                        corners[1].m_Face->GetPoints(), corners[1].m_Position);
}

/// Collects the cells and corners round an edge until it arrives at the last face, when the round is closed,
/// or at the surface. False when a cell needs the vertex.
bool ZULMRSCellMerger::WalkRound(ZULMRSCell* from, const Corner& start, const ZULMRSFace* last,
                                 bool& isClosed)
{
    const ZULMRSBSPPoint* vertex = start.m_Face->GetPoints()[start.m_Position];
    ZULMRSFace* face = start.m_Face;
    for (ZULMRSCell* cell = face->GetOtherHolder(from); cell != nullptr; cell = face->GetOtherHolder(cell)) {
        Corner corners[2];
        if (!FindCorners(*cell, vertex, corners)) {
            return false;
        }
        m_Cells.push_back(cell);
        const Corner& next = corners[corners[0].m_Face == face ? 1 : 0];
        if (next.m_Face == last) {
            isClosed = true;
            return true;
        }
        m_Corners.push_back(next);
        face = next.m_Face;
    }
    return true;
}

void ZULMRSCellMerger::RemoveCorner(const Corner& corner)
{
    ZULMRSFace& face = *corner.m_Face;
    face.GetPoints()[corner.m_Position]->Release();
    face.GetAllEdges()[corner.m_Position]->Release();
    EraseAt(face.GetPoints(), corner.m_Position);
    EraseAt(face.GetAllEdges(), corner.m_Position);
    EraseAt(face.GetAllEdgeOrientations(), corner.m_Position);
    face.ResizePoints();
}
