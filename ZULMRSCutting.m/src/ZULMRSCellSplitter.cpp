#include "ZULMRSCellSplitter.h"

#include <algorithm>
#include <utility>

#include "ZULMRSFaceEdges.h"
#include "ZULSystem.h"

namespace
{
void Require(bool condition, const char* text, int line)
{
    if (!condition) {
        ZULFatalError(text, nullptr, nullptr, nullptr, "ZULMRSCellSplitter", line);
    }
}

/// Goes round an edge from cell to cell, from one of the two faces of the first on, and gives the vertex to
/// every cell met and every polygon between them. True when it arrives at the other face, false when it ends
/// on the surface.
bool InsertRound(const ZULMRSCell* cell, const std::array<ZULMRSFace*, 2>& faces, const ZULMRSBSPPoint* start,
                 const ZULMRSBSPPoint* end, ZULMRSBSPPoint* vertex)
{
    ZULMRSFace* face = faces[0];
    for (ZULMRSCell* other = face->GetOtherHolder(cell); other != nullptr;
         other = face->GetOtherHolder(other)) {
        other->m_Vertices.push_back(vertex);
        const auto [next, position, edge] = ZULMRSFindOtherFace(*other, face, start, end);
        if (next == faces[1]) {
            return true;
        }
        Require(next != nullptr, "an edge of a cell has one face", __LINE__);
        next->InsertPointOnEdge(edge, vertex, next->GetAllEdges()[edge],
                                next->GetAllEdgeOrientations()[edge]);
        face = next;
    }
    return false;
}

char Opposite(char orientation)
{
    return static_cast<char>(-static_cast<signed char>(orientation));
}

/// Appends the elements of a ring from one position round to an earlier one, both included.
template <class Element>
void AppendArc(const std::vector<Element>& ring, std::size_t first, std::size_t last,
               std::vector<Element>& target)
{
    target.insert(target.end(), ring.begin() + static_cast<std::ptrdiff_t>(first), ring.end());
    target.insert(target.end(), ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(last + 1));
}

/// Makes a vector the elements of a ring from one position to a later one, both included, with hardly more
/// memory than needed.
template <class Element>
void AssignArc(const std::vector<Element>& ring, std::size_t first, std::size_t last,
               std::vector<Element>& target)
{
    const std::size_t size = last + 1 - first;
    if (target.capacity() > size + 1) {
        target = std::vector<Element>();
    }
    target.assign(ring.begin() + static_cast<std::ptrdiff_t>(first),
                  ring.begin() + static_cast<std::ptrdiff_t>(last + 1));
}
void ShrinkToFit(ZULMRSCell& cell)
{
    cell.m_Vertices.shrink_to_fit();
    cell.GetPolygons().shrink_to_fit();
    cell.GetPolygonsOrientations().shrink_to_fit();
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
        ZULMRSHandOver(
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
        cell->m_Box = ZULMRSLeafBox::Empty();
        for (const ZULMRSBSPPoint* point : cell->m_Vertices) {
            cell->m_Box.Include(ZULMRSPlace::Of(*point));
        }
    }
    return cell;
}

ZULMRSCellSplitter::Position ZULMRSCellSplitter::Locate(const ZULMRSCell& cell, const ZULMRSBSPPlane& plane)
{
    m_Outline.Open(cell, m_Table);
    m_Table.Turn(plane);
    bool hasFront = false;
    bool hasBehind = false;
    bool isSure = true;
    const auto isCrossing = [&](int side) {
        hasFront = hasFront || side > 0;
        hasBehind = hasBehind || side < 0;
        return hasFront && hasBehind;
    };
    for (const Index vertex : m_Outline.GetVertices()) {
        const int side = m_Table.GuessSideOf(vertex);
        isSure = isSure && side != 0;
        if (isCrossing(side)) {
            return Position::Crossing;
        }
    }
    if (!isSure) {
        for (const Index vertex : m_Outline.GetVertices()) {
            if (isCrossing(m_Table.SideOf(vertex))) {
                return Position::Crossing;
            }
        }
    }
    return hasFront ? Position::InFront : Position::Behind;
}

ZULMRSCell* ZULMRSCellSplitter::Split(ZULMRSCell& cell, ZULMRSBSPPlane* plane)
{
    m_Outline.OpenLoops(cell, m_Table);
    m_Table.Turn(*plane);
    FindSides();
    FindPasses(cell);
    MakeVertices(cell, plane);
    auto* front = new ZULMRSCell();
    front->m_Box = cell.m_Box;
    front->m_Leaf = cell.m_Leaf;
    PartFaces(cell, *front, plane);

    // The wall turns positively about the plane's normal, which points out of the part behind.
    ZULMRSFace* wall = MakeWall(plane);
    ZULMRSHandOver(*front, wall, -1);
    wall->AddRef();
    ZULMRSHandOver(cell, wall, 1);

    PartVertices(cell, *front);
    m_Outline.Forget();
    return front;
}

void ZULMRSCellSplitter::Fit(ZULMRSCell& cell)
{
    m_Outline.Open(cell, m_Table);
    ZULMRSLeafBox box = ZULMRSLeafBox::Empty();
    for (const Index vertex : m_Outline.GetVertices()) {
        box.Include(m_Table.PlaceOf(vertex));
    }
    cell.m_Box = box;
    ShrinkToFit(cell);
}

void ZULMRSCellSplitter::Merge(ZULMRSCell& cell)
{
    const std::size_t nbEmptied = m_Emptied.size();
    m_Merger.Merge(cell, m_Emptied);
    if (m_Emptied.size() != nbEmptied) {
        m_Outline.Forget();
        ShrinkToFit(cell);
    }
}

void ZULMRSCellSplitter::Remove(ZULMRSCell* cell)
{
    for (std::size_t position = 0; position < cell->GetNbPolygons(); ++position) {
        cell->GetFace(position)->HolderWith(cell->GetPolygonOrientation(position)) = nullptr;
    }
    m_Outline.Forget();
    cell->Release();
}

ZULMRSCell* ZULMRSCellSplitter::CopyAlone(const ZULMRSCell& cell)
{
    auto* copy = new ZULMRSCell();
    copy->m_Box = cell.m_Box;
    copy->m_Vertices = cell.m_Vertices;
    copy->GetPolygons().reserve(cell.GetNbPolygons());
    copy->GetPolygonsOrientations().reserve(cell.GetNbPolygons());
    for (std::size_t position = 0; position < cell.GetNbPolygons(); ++position) {
        const ZULMRSFace& face = *cell.GetFace(position);
        ZULMRSHandOver(
            *copy,
            new ZULMRSFace(face.GetSupportingPlane(), std::vector<ZULMRSBSPPlane*>(face.GetAllEdges()),
                           std::vector<ZULMRSBSPPoint*>(face.GetPoints()),
                           std::vector<char>(face.GetAllEdgeOrientations())),
            cell.GetPolygonOrientation(position));
    }
    return copy;
}

void ZULMRSCellSplitter::Finish()
{
    m_Table.Clear();
    m_Outline.Forget();
    for (ZULMRSCell* cell : m_Emptied) {
        cell->Release();
    }
    m_Emptied.clear();
}

void ZULMRSCellSplitter::FindSides()
{
    m_Vertices.clear();
    m_Sides.clear();
    for (const Index vertex : m_Outline.GetVertices()) {
        m_Vertices.push_back(m_Table.PointOf(vertex));
        m_Sides.push_back(static_cast<signed char>(m_Table.SideOf(vertex)));
    }
}

/// Where each face passes the plane, and the edges that cross it.
void ZULMRSCellSplitter::FindPasses(const ZULMRSCell& cell)
{
    m_CrossingEdges.clear();
    m_States.clear();
    for (std::size_t face = 0; face < cell.GetNbPolygons(); ++face) {
        m_States.push_back(FindPasses(face));
    }
}

ZULMRSCellSplitter::FaceState ZULMRSCellSplitter::FindPasses(std::size_t face)
{
    FaceState state{FaceSide::Behind, 0, {}};
    const auto add = [&](const Pass& pass) {
        if (state.m_NbPasses < state.m_Passes.size()) {
            state.m_Passes[state.m_NbPasses] = pass;
        }
        ++state.m_NbPasses;
    };
    const std::span<const Index> loop = m_Outline.GetLoop(face);
    bool hasFront = false;
    bool hasBehind = false;
    Index start = loop.back();
    int startSide = m_Sides[start];
    for (std::size_t position = 0; position < loop.size(); ++position) {
        const Index end = loop[position];
        const int endSide = m_Sides[end];
        if (endSide == 0) {
            add({position, end, NoEdge});
        } else if (startSide * endSide < 0) {
            const Index edge = AddCrossing(face, position, start, end);
            add({position, static_cast<Index>(m_Outline.GetNbVertices()) + edge, edge});
        }
        hasFront = hasFront || endSide > 0;
        hasBehind = hasBehind || endSide < 0;
        start = end;
        startSide = endSide;
    }
    // A face on the plane counts as behind.
    if (hasFront) {
        state.m_Side = hasBehind ? FaceSide::Crossing : FaceSide::InFront;
    }
    Require(state.m_Side != FaceSide::Crossing || state.m_NbPasses == 2,
            "a crossing face is not cut in two vertices", __LINE__);
    return state;
}

/// The number of a crossing edge, which the two faces that meet in it name.
ZULMRSCellSplitter::Index ZULMRSCellSplitter::AddCrossing(std::size_t face, std::size_t position, Index start,
                                                          Index end)
{
    for (Index edge = 0; edge < m_CrossingEdges.size(); ++edge) {
        CrossingEdge& known = m_CrossingEdges[edge];
        if ((known.m_Start == end && known.m_End == start) ||
            (known.m_Start == start && known.m_End == end)) {
            known.m_Faces[1] = face;
            return edge;
        }
    }
    m_CrossingEdges.push_back({start, end, {face, face}, position, nullptr});
    return static_cast<Index>(m_CrossingEdges.size() - 1);
}

/// Makes the vertices on the crossing edges and gives them to all that meet in these, except the cell.
void ZULMRSCellSplitter::MakeVertices(const ZULMRSCell& cell, ZULMRSBSPPlane* plane)
{
    for (CrossingEdge& edge : m_CrossingEdges) {
        Require(edge.m_Faces[1] != edge.m_Faces[0], "an edge of a cell has one face", __LINE__);
        const std::array<ZULMRSFace*, 2> faces{cell.GetFace(edge.m_Faces[0]), cell.GetFace(edge.m_Faces[1])};
        bool isValid = false;
        edge.m_Vertex = ZULMRSBSPPointNS::CreatePoint(
            faces[0]->GetSupportingPlane(), faces[0]->GetAllEdges()[edge.m_Position], plane, isValid, true);
        Require(edge.m_Vertex != nullptr, "no memory for a vertex", __LINE__);
        m_Table.SetOn(m_Table.IndexOf(edge.m_Vertex));
        m_Vertices.push_back(edge.m_Vertex);
        m_Sides.push_back(0);
        const ZULMRSBSPPoint* start = m_Vertices[edge.m_Start];
        const ZULMRSBSPPoint* end = m_Vertices[edge.m_End];
        if (!InsertRound(&cell, faces, start, end, edge.m_Vertex)) {
            InsertRound(&cell, {faces[1], faces[0]}, start, end, edge.m_Vertex);
        }
    }
}

/// Moves the faces and parts of faces in front to the new cell.
void ZULMRSCellSplitter::PartFaces(ZULMRSCell& cell, ZULMRSCell& front, ZULMRSBSPPlane* plane)
{
    const auto nbBehind =
        static_cast<std::size_t>(std::count_if(m_States.begin(), m_States.end(), [](const FaceState& state) {
            return state.m_Side == FaceSide::Behind;
        }));
    front.GetPolygons().reserve(m_States.size() - nbBehind + 1);
    front.GetPolygonsOrientations().reserve(m_States.size() - nbBehind + 1);
    m_WallEdges.clear();
    std::size_t nbKept = 0;
    const auto keep = [&](ZULMRSFace* face, char orientation) {
        cell.GetPolygons()[nbKept] = face;
        cell.GetPolygonsOrientations()[nbKept] = orientation;
        face->HolderWith(orientation) = &cell;
        ++nbKept;
    };
    for (std::size_t position = 0; position < m_States.size(); ++position) {
        ZULMRSFace* face = cell.GetFace(position);
        const char orientation = cell.GetPolygonOrientation(position);
        const FaceSide side = m_States[position].m_Side;
        if (side == FaceSide::Behind) {
            keep(face, orientation);
            continue;
        }
        ZULMRSFace* inFront = face;
        if (side == FaceSide::Crossing) {
            ZULMRSFace* second = SplitFace(cell, *face, position, plane);
            const bool isFirstInFront = IsFirstPartInFront(position);
            keep(isFirstInFront ? second : face, orientation);
            inFront = isFirstInFront ? face : second;
        }
        AddWallEdges(face->GetSupportingPlane(), position, orientation);
        ZULMRSHandOver(front, inFront, orientation);
    }
    cell.GetPolygons().resize(nbKept);
    cell.GetPolygonsOrientations().resize(nbKept);
    // Room for the wall.
    cell.GetPolygons().reserve(nbKept + 1);
    cell.GetPolygonsOrientations().reserve(nbKept + 1);
}

bool ZULMRSCellSplitter::IsFirstPartInFront(std::size_t face) const
{
    const Pass& pass = m_States[face].m_Passes[0];
    const std::size_t inside = pass.m_Edge == NoEdge ? pass.m_Position + 1 : pass.m_Position;
    return m_Sides[m_Outline.GetLoop(face)[inside]] > 0;
}

/// Makes a face its part from the first to the second vertex on the plane, and the rest, which it returns, a
/// polygon of its own; also in the cell on the other side.
ZULMRSFace* ZULMRSCellSplitter::SplitFace(ZULMRSCell& cell, ZULMRSFace& face, std::size_t index,
                                          ZULMRSBSPPlane* plane)
{
    const FaceState& state = m_States[index];
    ReadLoop(face, index);
    const std::size_t first = state.m_Passes[0].m_Position;
    const std::size_t last = state.m_Passes[1].m_Position + (state.m_Passes[0].m_Edge == NoEdge ? 0 : 1);
    const std::size_t nbOfRest = m_Loop.m_Points.size() - (last - first) + 1;
    auto* rest = new ZULMRSFace(face.GetSupportingPlane(), nbOfRest);
    rest->GetPoints().reserve(nbOfRest);
    AppendArc(m_Loop.m_Points, last, first, rest->GetPoints());
    AppendArc(m_Loop.m_Edges, last, first, rest->GetAllEdges());
    AppendArc(m_Loop.m_Orientations, last, first, rest->GetAllEdgeOrientations());
    AssignArc(m_Loop.m_Points, first, last, face.GetPoints());
    AssignArc(m_Loop.m_Edges, first, last, face.GetAllEdges());
    AssignArc(m_Loop.m_Orientations, first, last, face.GetAllEdgeOrientations());

    // Both ends belong to both; each edge belongs to the part in which it ends, and the plane closes both.
    m_Loop.m_Points[first]->AddRef();
    m_Loop.m_Points[last]->AddRef();
    plane->AddRef();
    plane->AddRef();
    const char orientation = IsFirstPartInFront(index) ? -1 : 1;
    face.GetAllEdges().front() = plane;
    face.GetAllEdgeOrientations().front() = orientation;
    rest->GetAllEdges().front() = plane;
    rest->GetAllEdgeOrientations().front() = Opposite(orientation);
    face.ResizePoints();
    rest->ResizePoints();

    if (ZULMRSCell* neighbour = face.GetOtherHolder(&cell)) {
        const char ofNeighbour = &cell == face.HolderWith(1) ? -1 : 1;
        rest->AddRef();
        ZULMRSHandOver(*neighbour, rest, ofNeighbour);
    }
    return rest;
}

void ZULMRSCellSplitter::Loop::Clear()
{
    m_Edges.clear();
    m_Points.clear();
    m_Orientations.clear();
}

void ZULMRSCellSplitter::Loop::Add(ZULMRSBSPPlane* edge, ZULMRSBSPPoint* point, char orientation)
{
    m_Edges.push_back(edge);
    m_Points.push_back(point);
    m_Orientations.push_back(orientation);
}

/// A face's loop with the vertices that were made on its edges.
void ZULMRSCellSplitter::ReadLoop(ZULMRSFace& face, std::size_t index)
{
    m_Loop.Clear();
    const FaceState& state = m_States[index];
    std::size_t pass = 0;
    for (std::size_t position = 0; position < face.GetNbPoints(); ++position) {
        ZULMRSBSPPlane* edge = face.GetAllEdges()[position];
        const char orientation = face.GetAllEdgeOrientations()[position];
        if (pass < state.m_Passes.size() && state.m_Passes[pass].m_Position == position) {
            if (state.m_Passes[pass].m_Edge != NoEdge) {
                const CrossingEdge& crossing = m_CrossingEdges[state.m_Passes[pass].m_Edge];
                // The first face takes over the reference with which the vertex was made.
                if (crossing.m_Faces[0] != index) {
                    crossing.m_Vertex->AddRef();
                }
                edge->AddRef();
                m_Loop.Add(edge, crossing.m_Vertex, orientation);
            }
            ++pass;
        }
        m_Loop.Add(edge, face.GetPoints()[position], orientation);
    }
}

/// The edges on the plane of a face that is in front, or of the part of it that is.
void ZULMRSCellSplitter::AddWallEdges(ZULMRSBSPPlane* supportingPlane, std::size_t index, char orientation)
{
    const FaceState& state = m_States[index];
    if (state.m_Side == FaceSide::Crossing) {
        const bool isFirst = IsFirstPartInFront(index);
        AddWallEdge(state.m_Passes[isFirst ? 1 : 0].m_Vertex, state.m_Passes[isFirst ? 0 : 1].m_Vertex,
                    supportingPlane, orientation);
        return;
    }
    if (state.m_NbPasses < 2) {
        return;
    }
    const std::span<const Index> loop = m_Outline.GetLoop(index);
    Index start = loop.back();
    for (const Index end : loop) {
        if (m_Sides[start] == 0 && m_Sides[end] == 0) {
            AddWallEdge(start, end, supportingPlane, orientation);
        }
        start = end;
    }
}

/// An edge that a face passes from start to end, kept in the direction seen from outside.
void ZULMRSCellSplitter::AddWallEdge(Index start, Index end, ZULMRSBSPPlane* supportingPlane,
                                     char orientation)
{
    if (static_cast<signed char>(orientation) < 0) {
        std::swap(start, end);
    }
    m_WallEdges.push_back({start, end, supportingPlane, orientation});
}

/// The polygon that closes the part in front: its loop follows the wall's edges, which is positive about the
/// plane's normal.
ZULMRSFace* ZULMRSCellSplitter::MakeWall(ZULMRSBSPPlane* plane)
{
    Require(m_WallEdges.size() > 2, "the wall of a split has no area", __LINE__);
    std::vector<ZULMRSBSPPlane*> edges;
    std::vector<ZULMRSBSPPoint*> points;
    std::vector<char> orientations;
    edges.reserve(m_WallEdges.size());
    points.reserve(m_WallEdges.size());
    orientations.reserve(m_WallEdges.size());
    for (const WallEdge* edge = &m_WallEdges.front(); points.size() < m_WallEdges.size();) {
        points.push_back(m_Vertices[edge->m_End]);
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
    front.m_Vertices.reserve(static_cast<std::size_t>(
        std::count_if(m_Sides.begin(), m_Sides.end(), [](signed char side) { return side >= 0; })));
    cell.m_Vertices.clear();
    cell.m_Vertices.reserve(static_cast<std::size_t>(
        std::count_if(m_Sides.begin(), m_Sides.end(), [](signed char side) { return side <= 0; })));
    for (std::size_t vertex = 0; vertex < m_Vertices.size(); ++vertex) {
        if (m_Sides[vertex] >= 0) {
            front.m_Vertices.push_back(m_Vertices[vertex]);
        }
        if (m_Sides[vertex] <= 0) {
            cell.m_Vertices.push_back(m_Vertices[vertex]);
        }
    }
}
