#include "ZULMRSCellSplitter.h"

#include <algorithm>
#include <utility>

#include "ZULMRSBSPPredicates.h"
#include "ZULSystem.h"

namespace
{
using Points = std::vector<ZULMRSBSPPoint*>;

std::size_t Before(std::size_t position, std::size_t count)
{
    return position == 0 ? count - 1 : position - 1;
}

/// The position of the edge between two points, in either direction; count when the polygon does not have it.
std::size_t FindEdge(const Points& points, const ZULMRSBSPPoint* start, const ZULMRSBSPPoint* end)
{
    const std::size_t count = points.size();
    const auto found = std::find(points.begin(), points.end(), start);
    if (found == points.end()) {
        return count;
    }
    const auto position = static_cast<std::size_t>(found - points.begin());
    const std::size_t next = position + 1 == count ? 0 : position + 1;
    if (points[next] == end) {
        return next;
    }
    return points[Before(position, count)] == end ? position : count;
}

/// Inserts a vertex into the edge between two points; false when the polygon does not have that edge (any
/// more).
bool InsertVertex(ZULMRSBSPPolygon& polygon, const ZULMRSBSPPoint* start, const ZULMRSBSPPoint* end,
                  ZULMRSBSPPoint* vertex)
{
    const std::size_t position = FindEdge(polygon.GetPoints(), start, end);
    if (position == polygon.GetNbPoints()) {
        return false;
    }
    polygon.InsertPointOnEdge(position, vertex, polygon.GetAllEdges()[position],
                              polygon.GetAllEdgeOrientations()[position]);
    return true;
}

/// Goes round an edge from cell to cell, starting across one of the two faces of the first, and gives the
/// vertex to every cell and polygon met. True when the round closed, false when it ended on the surface.
bool InsertRound(const ZULMRSCell* cell, ZULMRSFace* face, const ZULMRSBSPPoint* start,
                 const ZULMRSBSPPoint* end, ZULMRSBSPPoint* vertex)
{
    for (ZULMRSCell* other = face->GetOtherHolder(cell); other != nullptr;
         other = face->GetOtherHolder(other)) {
        other->m_Vertices.push_back(vertex);
        ZULMRSFace* next = nullptr;
        for (std::size_t position = 0; position < other->GetNbPolygons() && next == nullptr; ++position) {
            ZULMRSFace* candidate = other->GetFace(position);
            if (candidate != face && InsertVertex(*candidate, start, end, vertex)) {
                next = candidate;
            }
        }
        if (next == nullptr) {
            return true;
        }
        face = next;
    }
    return false;
}

/// The part of a polygon from one vertex on to another, closed by an edge on the given plane.
ZULMRSFace* MakePart(const ZULMRSFace& face, std::size_t first, std::size_t last, ZULMRSBSPPlane* plane,
                     char orientation)
{
    const std::size_t count = face.GetNbPoints();
    const std::size_t size = (last + count - first) % count + 1;
    std::vector<ZULMRSBSPPlane*> edges;
    std::vector<ZULMRSBSPPoint*> points;
    std::vector<char> orientations;
    edges.reserve(size);
    points.reserve(size);
    orientations.reserve(size);
    for (std::size_t step = 0; step < size; ++step) {
        const std::size_t position = (first + step) % count;
        points.push_back(face.GetPoints()[position]);
        edges.push_back(step == 0 ? plane : face.GetAllEdges()[position]);
        orientations.push_back(step == 0 ? orientation : face.GetAllEdgeOrientations()[position]);
    }
    return new ZULMRSFace(face.GetSupportingPlane(), std::move(edges), std::move(points),
                          std::move(orientations));
}

/// Hands a polygon to a cell with a reference of the caller's.
void HandOver(ZULMRSCell& cell, ZULMRSFace* face, char orientation)
{
    cell.GetPolygons().push_back(face);
    cell.GetPolygonsOrientations().push_back(orientation);
    face->HolderWith(orientation) = &cell;
}

/// Puts the two parts of a polygon in its place in the cell on its other side.
void ReplaceInNeighbour(ZULMRSCell& neighbour, ZULMRSFace& face, const std::array<ZULMRSFace*, 2>& parts,
                        char orientation)
{
    std::size_t position = 0;
    neighbour.FindPolygonPosition(&face, position);
    for (ZULMRSFace* part : parts) {
        part->AddRef();
        part->HolderWith(orientation) = &neighbour;
    }
    neighbour.GetPolygons()[position] = parts[0];
    neighbour.GetPolygons().push_back(parts[1]);
    neighbour.GetPolygonsOrientations().push_back(orientation);
    face.Release();
}

char Opposite(char orientation)
{
    return static_cast<char>(-static_cast<signed char>(orientation));
}

void Require(bool condition, const char* text, int line)
{
    if (!condition) {
        ZULFatalError(text, nullptr, nullptr, nullptr, "ZULMRSCellSplitter", line);
    }
}
}  // namespace

ZULMRSCell* ZULMRSMakeBoxCell(const ZULMathOBB& box, ZULMRSBSPObjectFactory& factory)
{
    auto* polyhedron = new ZULMRSBSPPolyhedron(box, &factory);
    const bool isComplete =
        std::all_of(polyhedron->GetPolygons().begin(), polyhedron->GetPolygons().end(),
                    [](const ZULMRSBSPPolygon* polygon) {
                        return polygon->GetSupportingPlane() != nullptr && polygon->GetNbPoints() == 4;
                    });
    ZULMRSCell* cell = isComplete ? new ZULMRSCell() : nullptr;
    for (std::size_t position = 0; isComplete && position < polyhedron->GetNbPolygons(); ++position) {
        const ZULMRSBSPPolygon& polygon = *polyhedron->GetPolygon(position);
        HandOver(
            *cell,
            new ZULMRSFace(polygon.GetSupportingPlane(), std::vector<ZULMRSBSPPlane*>(polygon.GetAllEdges()),
                           std::vector<ZULMRSBSPPoint*>(polygon.GetPoints()),
                           std::vector<char>(polygon.GetAllEdgeOrientations())),
            polyhedron->GetPolygonOrientation(position));
        for (ZULMRSBSPPoint* point : polygon.GetPoints()) {
            if (std::find(cell->m_Vertices.begin(), cell->m_Vertices.end(), point) ==
                cell->m_Vertices.end()) {
                cell->m_Vertices.push_back(point);
            }
        }
    }
    polyhedron->Release();
    if (cell != nullptr) {
        cell->m_Box = ZULMRSLeafBox::Around(cell->m_Vertices);
    }
    return cell;
}

ZULMRSCellSplitter::Position ZULMRSCellSplitter::Locate(const ZULMRSCell& cell, const ZULMRSBSPPlane& plane)
{
    m_Sides.Begin(plane);
    bool hasFront = false;
    bool hasBehind = false;
    for (const ZULMRSBSPPoint* point : cell.m_Vertices) {
        const int side = m_Sides.Of(point);
        hasFront = hasFront || side > 0;
        hasBehind = hasBehind || side < 0;
        if (hasFront && hasBehind) {
            return Position::Crossing;
        }
    }
    return hasFront ? Position::InFront : Position::Behind;
}

ZULMRSCell* ZULMRSCellSplitter::Split(ZULMRSCell& cell, ZULMRSBSPPlane* plane)
{
    m_Sides.Begin(*plane);
    InsertCutVertices(cell, plane);
    auto* front = new ZULMRSCell();
    PartFaces(cell, *front, plane);

    // The wall turns positively about the plane's normal, which points out of the part behind.
    CollectWallEdges(*front);
    ZULMRSFace* wall = MakeWall(plane);
    HandOver(*front, wall, -1);
    wall->AddRef();
    HandOver(cell, wall, 1);

    PartVertices(cell, *front);
    return front;
}

void ZULMRSCellSplitter::Remove(ZULMRSCell* cell)
{
    for (std::size_t position = 0; position < cell->GetNbPolygons(); ++position) {
        cell->GetFace(position)->HolderWith(cell->GetPolygonOrientation(position)) = nullptr;
    }
    m_Removed.push_back(cell);
}

void ZULMRSCellSplitter::Finish()
{
    m_Sides.Clear();
    for (ZULMRSCell* cell : m_Removed) {
        cell->Release();
    }
    m_Removed.clear();
}

void ZULMRSCellSplitter::CollectCrossingEdges(const ZULMRSCell& cell)
{
    m_CrossingEdges.clear();
    for (std::size_t index = 0; index < cell.GetNbPolygons(); ++index) {
        ZULMRSFace* face = cell.GetFace(index);
        const Points& points = face->GetPoints();
        ZULMRSBSPPoint* start = points.back();
        int startSide = m_Sides.Of(start);
        for (std::size_t position = 0; position < points.size(); ++position) {
            ZULMRSBSPPoint* end = points[position];
            const int endSide = m_Sides.Of(end);
            if (startSide * endSide < 0) {
                const auto known = std::find_if(m_CrossingEdges.begin(), m_CrossingEdges.end(),
                                                [&](const CrossingEdge& edge) {
                                                    return (edge.m_Start == end && edge.m_End == start) ||
                                                           (edge.m_Start == start && edge.m_End == end);
                                                });
                if (known == m_CrossingEdges.end()) {
                    m_CrossingEdges.push_back({start, end, {face, nullptr}, face->GetAllEdges()[position]});
                } else {
                    known->m_Faces[1] = face;
                }
            }
            start = end;
            startSide = endSide;
        }
    }
}

void ZULMRSCellSplitter::InsertCutVertices(ZULMRSCell& cell, ZULMRSBSPPlane* plane)
{
    CollectCrossingEdges(cell);
    for (const CrossingEdge& edge : m_CrossingEdges) {
        Require(edge.m_Faces[1] != nullptr, "an edge of a cell has one face", __LINE__);
        bool isValid = false;
        ZULMRSBSPPoint* vertex = ZULMRSBSPPointNS::CreatePoint(edge.m_Faces[0]->GetSupportingPlane(),
                                                               edge.m_Edge, plane, isValid, true);
        Require(vertex != nullptr, "no memory for a vertex", __LINE__);
        m_Sides.SetOn(vertex);
        for (ZULMRSFace* face : edge.m_Faces) {
            InsertVertex(*face, edge.m_Start, edge.m_End, vertex);
        }
        cell.m_Vertices.push_back(vertex);
        if (!InsertRound(&cell, edge.m_Faces[0], edge.m_Start, edge.m_End, vertex)) {
            InsertRound(&cell, edge.m_Faces[1], edge.m_Start, edge.m_End, vertex);
        }
        vertex->Release();
    }
}

/// On which side of the plane each face lies; one on the plane counts as behind.
void ZULMRSCellSplitter::FindSides(const std::vector<ZULMRSBSPPolygon*>& faces)
{
    m_FaceSides.clear();
    for (const ZULMRSBSPPolygon* face : faces) {
        bool hasFront = false;
        bool hasBehind = false;
        for (const ZULMRSBSPPoint* point : face->GetPoints()) {
            const int side = m_Sides.Of(point);
            hasFront = hasFront || side > 0;
            hasBehind = hasBehind || side < 0;
        }
        const FaceSide whole = hasFront ? FaceSide::InFront : FaceSide::Behind;
        m_FaceSides.push_back(hasFront && hasBehind ? FaceSide::Crossing : whole);
    }
}

/// Moves the faces and parts of faces in front to the new cell.
void ZULMRSCellSplitter::PartFaces(ZULMRSCell& cell, ZULMRSCell& front, ZULMRSBSPPlane* plane)
{
    const std::vector<ZULMRSBSPPolygon*> faces = std::move(cell.GetPolygons());
    const std::vector<char> orientations = std::move(cell.GetPolygonsOrientations());
    FindSides(faces);
    // Exactly as long as needed, with the wall.
    const auto reserve = [this](ZULMRSCell& part, FaceSide side) {
        const auto count = 1 + std::count(m_FaceSides.begin(), m_FaceSides.end(), side) +
                           std::count(m_FaceSides.begin(), m_FaceSides.end(), FaceSide::Crossing);
        part.GetPolygons() = {};
        part.GetPolygons().reserve(static_cast<std::size_t>(count));
        part.GetPolygonsOrientations() = {};
        part.GetPolygonsOrientations().reserve(static_cast<std::size_t>(count));
    };
    reserve(cell, FaceSide::Behind);
    reserve(front, FaceSide::InFront);
    for (std::size_t position = 0; position < faces.size(); ++position) {
        auto* face = static_cast<ZULMRSFace*>(faces[position]);
        const char orientation = orientations[position];
        if (m_FaceSides[position] == FaceSide::Crossing) {
            const auto [behindPart, frontPart] = SplitFace(cell, *face, orientation, plane);
            HandOver(cell, behindPart, orientation);
            HandOver(front, frontPart, orientation);
            face->Release();
        } else {
            HandOver(m_FaceSides[position] == FaceSide::InFront ? front : cell, face, orientation);
        }
    }
}

/// Splits a face that already has its vertices on the plane, for the neighbour too: the parts behind and in
/// front, each with a reference of the caller's.
std::array<ZULMRSFace*, 2> ZULMRSCellSplitter::SplitFace(ZULMRSCell& cell, ZULMRSFace& face, char orientation,
                                                         ZULMRSBSPPlane* plane)
{
    const Points& points = face.GetPoints();
    std::array<std::size_t, 2> cuts{0, 0};
    std::size_t nbCuts = 0;
    for (std::size_t position = 0; position < points.size(); ++position) {
        if (m_Sides.Of(points[position]) == 0) {
            Require(nbCuts < 2, "a convex face is cut in more than two vertices", __LINE__);
            cuts[nbCuts++] = position;
        }
    }
    Require(nbCuts == 2, "a crossing face is not cut in two vertices", __LINE__);

    const bool isFirstInFront = m_Sides.Of(points[cuts[0] + 1]) > 0;
    const char firstOrientation = isFirstInFront ? -1 : 1;
    const std::array<ZULMRSFace*, 2> parts{
        MakePart(face, cuts[0], cuts[1], plane, firstOrientation),
        MakePart(face, cuts[1], cuts[0], plane, Opposite(firstOrientation))};
    if (ZULMRSCell* neighbour = face.GetOtherHolder(&cell)) {
        ReplaceInNeighbour(*neighbour, face, parts, Opposite(orientation));
    }
    return isFirstInFront ? std::array{parts[1], parts[0]} : parts;
}

/// The edges of the faces in front that lie on the plane, in the direction in which these faces pass them
/// seen from outside.
void ZULMRSCellSplitter::CollectWallEdges(const ZULMRSCell& front)
{
    m_WallEdges.clear();
    for (std::size_t index = 0; index < front.GetNbPolygons(); ++index) {
        const ZULMRSFace* face = front.GetFace(index);
        const char orientation = front.GetPolygonOrientation(index);
        ZULMRSBSPPoint* start = face->GetPoints().back();
        bool isStartOn = m_Sides.Of(start) == 0;
        for (ZULMRSBSPPoint* end : face->GetPoints()) {
            const bool isEndOn = m_Sides.Of(end) == 0;
            if (isStartOn && isEndOn) {
                const bool isForward = static_cast<signed char>(orientation) > 0;
                m_WallEdges.push_back({isForward ? start : end, isForward ? end : start,
                                       face->GetSupportingPlane(), orientation});
            }
            start = end;
            isStartOn = isEndOn;
        }
    }
    Require(m_WallEdges.size() > 2, "the wall of a split has no area", __LINE__);
}

/// The polygon that closes the part in front: its loop follows the wall's edges, which is positive about the
/// plane's normal.
ZULMRSFace* ZULMRSCellSplitter::MakeWall(ZULMRSBSPPlane* plane)
{
    std::vector<ZULMRSBSPPlane*> edges;
    std::vector<ZULMRSBSPPoint*> points;
    std::vector<char> orientations;
    edges.reserve(m_WallEdges.size());
    points.reserve(m_WallEdges.size());
    orientations.reserve(m_WallEdges.size());
    for (const WallEdge* edge = &m_WallEdges.front(); points.size() < m_WallEdges.size();) {
        points.push_back(edge->m_End);
        edges.push_back(edge->m_Plane);
        orientations.push_back(edge->m_Orientation);
        const auto next = std::find_if(m_WallEdges.begin(), m_WallEdges.end(),
                                       [&](const WallEdge& other) { return other.m_Start == edge->m_End; });
        Require(next != m_WallEdges.end(), "the wall of a split is not closed", __LINE__);
        edge = &*next;
    }
    return new ZULMRSFace(plane, std::move(edges), std::move(points), std::move(orientations));
}

/// Shares the vertices out; those on the plane belong to both parts.
void ZULMRSCellSplitter::PartVertices(ZULMRSCell& cell, ZULMRSCell& front)
{
    m_FrontVertices.clear();
    m_BehindVertices.clear();
    for (ZULMRSBSPPoint* point : cell.m_Vertices) {
        const int side = m_Sides.Of(point);
        if (side >= 0) {
            m_FrontVertices.push_back(point);
        }
        if (side <= 0) {
            m_BehindVertices.push_back(point);
        }
    }
    // Exactly as long as needed.
    front.m_Vertices = m_FrontVertices;
    cell.m_Vertices = std::vector<ZULMRSBSPPoint*>(m_BehindVertices);
    cell.m_Box = ZULMRSLeafBox::Around(cell.m_Vertices);
    front.m_Box = ZULMRSLeafBox::Around(front.m_Vertices);
}
