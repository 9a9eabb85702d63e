#include "ZULMRSCellComplex.h"

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
    for (std::size_t position = 0; position < count; ++position) {
        if (points[position] == end || points[position] == start) {
            const ZULMRSBSPPoint* other = points[position] == end ? start : end;
            if (points[Before(position, count)] == other) {
                return position;
            }
        }
    }
    return count;
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

/// The part of a polygon from one vertex on to another, closed by an edge on the given plane.
ZULMRSBSPPolygon* MakePart(const ZULMRSBSPPolygon& polygon, std::size_t first, std::size_t last,
                           ZULMRSBSPPlane* plane, char orientation)
{
    const std::size_t count = polygon.GetNbPoints();
    const std::size_t size = (last + count - first) % count + 1;
    std::vector<ZULMRSBSPPlane*> edges;
    std::vector<ZULMRSBSPPoint*> points;
    std::vector<char> orientations;
    edges.reserve(size);
    points.reserve(size);
    orientations.reserve(size);
    for (std::size_t step = 0; step < size; ++step) {
        const std::size_t position = (first + step) % count;
        points.push_back(polygon.GetPoints()[position]);
        edges.push_back(step == 0 ? plane : polygon.GetAllEdges()[position]);
        orientations.push_back(step == 0 ? orientation : polygon.GetAllEdgeOrientations()[position]);
    }
    return new ZULMRSBSPPolygon(polygon.GetSupportingPlane(), std::move(edges), std::move(points),
                                std::move(orientations));
}

void Require(bool condition, const char* text, int line)
{
    if (!condition) {
        ZULFatalError(text, nullptr, nullptr, nullptr, "ZULMRSCellComplex", line);
    }
}
}  // namespace

ZULMRSCellComplex::ZULMRSCellComplex(ZULMRSBSPObjectFactory& factory) : m_EdgePoints(factory) {}

ZULMRSCellComplex::~ZULMRSCellComplex()
{
    for (ZULMRSBSPPolyhedron* cell : m_Cells) {
        ZULMRSBSPPolyhedron::ReleaseObject(cell);
    }
}

ZULMRSCellComplex::CellId ZULMRSCellComplex::AddBox(const ZULMathOBB& box, ZULMRSBSPObjectFactory& factory)
{
    auto* polyhedron = new ZULMRSBSPPolyhedron(box, &factory);
    for (const ZULMRSBSPPolygon* polygon : polyhedron->GetPolygons()) {
        if (polygon->GetSupportingPlane() == nullptr || polygon->GetNbPoints() != 4) {
            polyhedron->Release();
            return NoCell;
        }
    }
    const CellId id = NewCell(polyhedron);
    for (std::size_t index = 0; index < polyhedron->GetNbPolygons(); ++index) {
        Holders holders{NoCell, NoCell};
        holders[HolderSlot(polyhedron->GetPolygonOrientation(index))] = id;
        RegisterFace(*polyhedron->GetPolygon(index), holders);
    }
    return id;
}

ZULMRSCellComplex::Position ZULMRSCellComplex::Locate(CellId cell, const ZULMRSBSPPlane& plane)
{
    m_Sides.Begin(plane);
    bool hasFront = false;
    bool hasBehind = false;
    for (const ZULMRSBSPPolygon* polygon : m_Cells[cell]->GetPolygons()) {
        for (const ZULMRSBSPPoint* point : polygon->GetPoints()) {
            const int side = m_Sides.Of(point);
            hasFront = hasFront || side > 0;
            hasBehind = hasBehind || side < 0;
            if (hasFront && hasBehind) {
                return Position::Crossing;
            }
        }
    }
    return hasFront ? Position::InFront : Position::Behind;
}

ZULMRSCellComplex::CellId ZULMRSCellComplex::Split(CellId cell, ZULMRSBSPPlane* plane)
{
    m_Sides.Begin(*plane);
    InsertCutVertices(cell, plane);

    ZULMRSBSPPolyhedron* whole = m_Cells[cell];
    SplitFaces faces;
    for (const Face& face : whole->GetAllPolygonsAndOrientations()) {
        bool isCrossing = false;
        const int side = SideOfFace(*face.first, isCrossing);
        if (isCrossing) {
            SplitFace(cell, face, plane, faces);
        } else {
            face.first->AddRef();
            (side > 0 ? faces.m_Front : faces.m_Behind).push_back(face);
        }
    }

    // The wall turns positively about the plane's normal, which points out of the part behind.
    ZULMRSBSPPolygon* wall = MakeWall(faces.m_Front, plane);
    const CellId front = NewCell(nullptr);
    m_Cells[front] = MakeCell(front, faces.m_Front, wall, -1);
    m_Cells[cell] = MakeCell(cell, faces.m_Behind, wall, 1);
    RegisterFace(*wall, {cell, front});
    wall->Release();
    whole->Release();
    return front;
}

void ZULMRSCellComplex::Remove(CellId cell)
{
    ZULMRSBSPPolyhedron* polyhedron = m_Cells[cell];
    for (std::size_t index = 0; index < polyhedron->GetNbPolygons(); ++index) {
        const ZULMRSBSPPolygon& polygon = *polyhedron->GetPolygon(index);
        Holders& holders = HoldersOf(polygon);
        holders[HolderSlot(polyhedron->GetPolygonOrientation(index))] = NoCell;
        if (holders[0] == NoCell && holders[1] == NoCell) {
            UnregisterFace(polygon);
        }
    }
    polyhedron->Release();
    m_Cells[cell] = nullptr;
    m_FreeCells.push_back(cell);
    --m_NbCells;
}

std::vector<ZULMRSBSPPolyhedron*> ZULMRSCellComplex::GetCells() const
{
    std::vector<ZULMRSBSPPolyhedron*> cells;
    cells.reserve(m_NbCells);
    std::copy_if(m_Cells.begin(), m_Cells.end(), std::back_inserter(cells),
                 [](const ZULMRSBSPPolyhedron* cell) { return cell != nullptr; });
    return cells;
}

std::size_t ZULMRSCellComplex::GetNbSurfaceFaces() const
{
    return static_cast<std::size_t>(std::count_if(m_Faces.begin(), m_Faces.end(), [](const Holders& holders) {
        return (holders[0] == NoCell) != (holders[1] == NoCell);
    }));
}

ZULMRSCellComplex::Holders& ZULMRSCellComplex::HoldersOf(const ZULMRSBSPPolygon& polygon)
{
    return m_Faces[static_cast<std::size_t>(polygon.GetAttribute().m_Index)];
}

ZULMRSCellComplex::CellId ZULMRSCellComplex::OtherHolder(const ZULMRSBSPPolygon& polygon, CellId cell)
{
    const Holders& holders = HoldersOf(polygon);
    return holders[0] == cell ? holders[1] : holders[0];
}

void ZULMRSCellComplex::RegisterFace(ZULMRSBSPPolygon& polygon, const Holders& holders)
{
    ZULMRSBSPExtraAttribute attribute = polygon.GetAttribute();
    if (m_FreeFaces.empty()) {
        attribute.m_Index = static_cast<std::int32_t>(m_Faces.size());
        m_Faces.push_back(holders);
    } else {
        attribute.m_Index = static_cast<std::int32_t>(m_FreeFaces.back());
        m_FreeFaces.pop_back();
        m_Faces[static_cast<std::size_t>(attribute.m_Index)] = holders;
    }
    polygon.SetAttribute(attribute);
}

void ZULMRSCellComplex::UnregisterFace(const ZULMRSBSPPolygon& polygon)
{
    HoldersOf(polygon) = {NoCell, NoCell};
    m_FreeFaces.push_back(static_cast<std::uint32_t>(polygon.GetAttribute().m_Index));
}

ZULMRSCellComplex::CellId ZULMRSCellComplex::NewCell(ZULMRSBSPPolyhedron* polyhedron)
{
    ++m_NbCells;
    if (m_FreeCells.empty()) {
        m_Cells.push_back(polyhedron);
        return static_cast<CellId>(m_Cells.size() - 1);
    }
    const CellId id = m_FreeCells.back();
    m_FreeCells.pop_back();
    m_Cells[id] = polyhedron;
    return id;
}

void ZULMRSCellComplex::CollectCrossingEdges(const ZULMRSBSPPolyhedron& cell)
{
    m_CrossingEdges.clear();
    for (ZULMRSBSPPolygon* polygon : cell.GetPolygons()) {
        const Points& points = polygon->GetPoints();
        for (std::size_t position = 0; position < points.size(); ++position) {
            ZULMRSBSPPoint* start = points[Before(position, points.size())];
            ZULMRSBSPPoint* end = points[position];
            if (m_Sides.Of(start) * m_Sides.Of(end) >= 0) {
                continue;
            }
            const auto known =
                std::find_if(m_CrossingEdges.begin(), m_CrossingEdges.end(), [&](const CrossingEdge& edge) {
                    return (edge.m_Start == end && edge.m_End == start) ||
                           (edge.m_Start == start && edge.m_End == end);
                });
            if (known == m_CrossingEdges.end()) {
                m_CrossingEdges.push_back({start, end, {polygon, nullptr}, polygon->GetAllEdges()[position]});
            } else {
                known->m_Polygons[1] = polygon;
            }
        }
    }
}

void ZULMRSCellComplex::InsertCutVertices(CellId cell, ZULMRSBSPPlane* plane)
{
    CollectCrossingEdges(*m_Cells[cell]);
    for (const CrossingEdge& edge : m_CrossingEdges) {
        Require(edge.m_Polygons[1] != nullptr, "an edge of a cell has one face", __LINE__);
        ZULMRSBSPPoint* vertex = m_EdgePoints.Create(edge.m_Polygons[0]->GetSupportingPlane(), edge.m_Edge,
                                                     plane, edge.m_Start, edge.m_End);
        Require(vertex != nullptr, "no memory for a vertex", __LINE__);
        m_Sides.SetOn(vertex);
        for (ZULMRSBSPPolygon* polygon : edge.m_Polygons) {
            InsertVertex(*polygon, edge.m_Start, edge.m_End, vertex);
        }
        if (!InsertRound(cell, edge.m_Polygons[0], edge, vertex)) {
            InsertRound(cell, edge.m_Polygons[1], edge, vertex);
        }
    }
}

/// Goes round the edge from cell to cell, starting across one of the two faces of the first, and gives the
/// vertex to every polygon met. True when the round closed, false when it ended on the surface.
bool ZULMRSCellComplex::InsertRound(CellId cell, ZULMRSBSPPolygon* first, const CrossingEdge& edge,
                                    ZULMRSBSPPoint* vertex)
{
    ZULMRSBSPPolygon* polygon = first;
    for (cell = OtherHolder(*polygon, cell); cell != NoCell; cell = OtherHolder(*polygon, cell)) {
        ZULMRSBSPPolygon* next = nullptr;
        for (ZULMRSBSPPolygon* candidate : m_Cells[cell]->GetPolygons()) {
            if (candidate != polygon && InsertVertex(*candidate, edge.m_Start, edge.m_End, vertex)) {
                next = candidate;
                break;
            }
        }
        if (next == nullptr) {
            return true;
        }
        polygon = next;
    }
    return false;
}

int ZULMRSCellComplex::SideOfFace(const ZULMRSBSPPolygon& polygon, bool& isCrossing)
{
    int side = 0;
    for (const ZULMRSBSPPoint* point : polygon.GetPoints()) {
        const int pointSide = m_Sides.Of(point);
        isCrossing = isCrossing || side * pointSide < 0;
        side = side == 0 ? pointSide : side;
    }
    return side;
}

/// Replaces a face by its two parts, in the neighbour at once, in the cell's two future parts through the
/// lists.
void ZULMRSCellComplex::SplitFace(CellId cell, const Face& face, ZULMRSBSPPlane* plane, SplitFaces& faces)
{
    ZULMRSBSPPolygon& polygon = *face.first;
    const Points& points = polygon.GetPoints();
    std::array<std::size_t, 2> cuts{};
    std::size_t nbCuts = 0;
    for (std::size_t position = 0; position < points.size(); ++position) {
        if (m_Sides.Of(points[position]) == 0) {
            Require(nbCuts < 2, "a convex face is cut in more than two vertices", __LINE__);
            cuts[nbCuts++] = position;
        }
    }
    Require(nbCuts == 2, "a crossing face is not cut in two vertices", __LINE__);

    const int firstSide = m_Sides.Of(points[cuts[0] + 1]);
    const char firstOrientation = firstSide < 0 ? 1 : -1;
    ZULMRSBSPPolygon* first = MakePart(polygon, cuts[0], cuts[1], plane, firstOrientation);
    ZULMRSBSPPolygon* second =
        MakePart(polygon, cuts[1], cuts[0], plane, static_cast<char>(-firstOrientation));

    const Holders holders = HoldersOf(polygon);
    const CellId neighbour = OtherHolder(polygon, cell);
    UnregisterFace(polygon);
    for (ZULMRSBSPPolygon* part : {first, second}) {
        RegisterFace(*part, holders);
        if (neighbour != NoCell) {
            m_Cells[neighbour]->AddAPolygon(part, static_cast<char>(-static_cast<signed char>(face.second)));
        }
    }
    if (neighbour != NoCell) {
        m_Cells[neighbour]->RemovePolygon(&polygon);
    }
    (firstSide > 0 ? faces.m_Front : faces.m_Behind).emplace_back(first, face.second);
    (firstSide > 0 ? faces.m_Behind : faces.m_Front).emplace_back(second, face.second);
}

/// The polygon that closes the part in front: its loop follows the edges of the faces in front that lie on
/// the plane, in the direction in which these faces pass them seen from outside, which is positive about the
/// plane's normal.
ZULMRSBSPPolygon* ZULMRSCellComplex::MakeWall(const std::vector<Face>& frontFaces, ZULMRSBSPPlane* plane)
{
    struct WallEdge {
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
        ZULMRSBSPPlane* m_Plane;
        char m_Orientation;
    };
    std::vector<WallEdge> wallEdges;
    for (const Face& face : frontFaces) {
        const Points& points = face.first->GetPoints();
        for (std::size_t position = 0; position < points.size(); ++position) {
            ZULMRSBSPPoint* start = points[Before(position, points.size())];
            ZULMRSBSPPoint* end = points[position];
            if (m_Sides.Of(start) == 0 && m_Sides.Of(end) == 0) {
                if (face.second < 0) {
                    std::swap(start, end);
                }
                wallEdges.push_back({start, end, face.first->GetSupportingPlane(), face.second});
            }
        }
    }
    Require(wallEdges.size() > 2, "the wall of a split has no area", __LINE__);

    std::vector<ZULMRSBSPPlane*> edges;
    std::vector<ZULMRSBSPPoint*> points;
    std::vector<char> orientations;
    for (const WallEdge* edge = &wallEdges.front(); points.size() < wallEdges.size();) {
        points.push_back(edge->m_End);
        edges.push_back(edge->m_Plane);
        orientations.push_back(edge->m_Orientation);
        const auto next = std::find_if(wallEdges.begin(), wallEdges.end(),
                                       [&](const WallEdge& other) { return other.m_Start == edge->m_End; });
        Require(next != wallEdges.end(), "the wall of a split is not closed", __LINE__);
        edge = &*next;
    }
    return new ZULMRSBSPPolygon(plane, std::move(edges), std::move(points), std::move(orientations));
}

/// A cell of the given faces, whose references it takes over, and the wall.
ZULMRSBSPPolyhedron* ZULMRSCellComplex::MakeCell(CellId id, const std::vector<Face>& faces,
                                                 ZULMRSBSPPolygon* wall, char orientation)
{
    auto* polyhedron = new ZULMRSBSPPolyhedron();
    polyhedron->AddPolygons(faces);
    polyhedron->AddAPolygon(wall, orientation);
    for (const Face& face : faces) {
        HoldersOf(*face.first)[HolderSlot(face.second)] = id;
        face.first->Release();
    }
    return polyhedron;
}
