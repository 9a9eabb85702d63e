#include "zulmrsCell.h"

#include <memory>
#include <utility>

#include "ZULMRSBSPPredicates.h"

namespace ZULBench
{
namespace
{
/// The box: face f is x_(f / 2) = -1 or 1, corner c has the sign of x_i in its bit i.
constexpr std::array<std::array<std::uint32_t, 4>, 6> BoxLoops = {
    {{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}}};

double SignOfBit(std::size_t number, std::size_t bit)
{
    return ((number >> bit) & 1U) != 0 ? 1.0 : -1.0;
}
}  // namespace

ZulmrsCell::ZulmrsCell(ZULMRSBSPObjectFactory& factory) : m_Factory(factory)
{
    m_Faces.reserve(16);
    m_Vertices.reserve(32);
    m_HalfEdges.reserve(96);
    for (std::size_t face = 0; face < 6; ++face) {
        std::array<double, 4> equation{0, 0, 0, -1};
        equation[face / 2] = SignOfBit(face, 0);
        bool isOpposite = false;
        AddFace(m_Factory.CreatePlane(equation, isOpposite, 0));
    }
    for (std::size_t corner = 0; corner < 8; ++corner) {
        const std::array<double, 3> place = {SignOfBit(corner, 0), SignOfBit(corner, 1),
                                             SignOfBit(corner, 2)};
        bool isValid = false;
        ZULMRSBSPPoint* const point =
            m_Factory.CreatePoint({m_Faces[corner & 1U].m_Plane, m_Faces[2 + ((corner >> 1U) & 1U)].m_Plane,
                                   m_Faces[4 + ((corner >> 2U) & 1U)].m_Plane},
                                  isValid);
        m_Vertices.push_back({point, place, None, 0, 0});
    }
    std::array<std::array<Index, 8>, 8> byEnds{};
    for (Index i = 0; i < 24; ++i) {
        const Index face = i / 4;
        const Index first = 4 * face;
        const Index start = BoxLoops[face][i % 4];
        m_HalfEdges.push_back({start, None, first + (i + 1) % 4, first + (i + 3) % 4, face});
        byEnds[start][BoxLoops[face][(i + 1) % 4]] = i;
        m_Vertices[start].m_HalfEdge = i;
        m_Faces[face].m_HalfEdge = i;
    }
    for (Index i = 0; i < 24; ++i) {
        m_HalfEdges[i].m_Twin = byEnds[m_HalfEdges[m_HalfEdges[i].m_Next].m_Start][m_HalfEdges[i].m_Start];
    }
}

ZulmrsCell::~ZulmrsCell()
{
    Clear();
}

void ZulmrsCell::Clear()
{
    for (const Vertex& vertex : m_Vertices) {
        ZULMRSBSPPoint::ReleaseObject(vertex.m_Point);
    }
    for (const Face& face : m_Faces) {
        ZULMRSBSPPlane::ReleaseObject(face.m_Plane);
    }
    m_Vertices.clear();
    m_HalfEdges.clear();
    m_Faces.clear();
    m_FreeVertices.clear();
    m_FreeHalfEdges.clear();
    m_FreeFaces.clear();
}

template <class Item>
ZulmrsCell::Index ZulmrsCell::Take(std::vector<Item>& items, std::vector<Index>& free)
{
    if (free.empty()) {
        items.emplace_back();
        return static_cast<Index>(items.size()) - 1;
    }
    const Index index = free.back();
    free.pop_back();
    return index;
}

void ZulmrsCell::Link(Index first, Index second)
{
    m_HalfEdges[first].m_Next = second;
    m_HalfEdges[second].m_Previous = first;
}

ZulmrsCell::Index ZulmrsCell::AddFace(ZULMRSBSPPlane* plane)
{
    const Index face = Take(m_Faces, m_FreeFaces);
    m_Faces[face] = {plane, None};
    return face;
}

void ZulmrsCell::FreeFace(Index face)
{
    m_Faces[face].m_Plane->Release();
    m_Faces[face].m_Plane = nullptr;
    m_FreeFaces.push_back(face);
}

int ZulmrsCell::SideOf(Index index)
{
    Vertex& vertex = m_Vertices[index];
    if (vertex.m_Cut != m_Cut) {
        vertex.m_Cut = m_Cut;
        vertex.m_Side = ZULMRSBSPPredicates::IsPointInFrontOfPlane(*m_Plane, *vertex.m_Point);
    }
    return vertex.m_Side;
}

double ZulmrsCell::HeightOf(Index vertex) const
{
    const std::array<double, 3>& place = m_Vertices[vertex].m_Hint;
    return m_Equation[0] * place[0] + m_Equation[1] * place[1] + m_Equation[2] * place[2];
}

ZulmrsCell::Index ZulmrsCell::FindInFront()
{
    // The height has one maximum on a convex cell. Where the walk does not end in front of the plane, roughly
    // is not good enough: all vertices are asked.
    Index top = m_Last;
    double height = HeightOf(top);
    for (bool isTop = false; !isTop;) {
        isTop = true;
        const Index first = m_Vertices[top].m_HalfEdge;
        Index halfEdge = first;
        do {
            const Index end = End(halfEdge);
            const double other = HeightOf(end);
            if (other > height) {
                height = other;
                top = end;
                isTop = false;
            }
            halfEdge = Around(halfEdge);
        } while (halfEdge != first);
    }
    if (SideOf(top) > 0) {
        return top;
    }
    for (Index vertex = 0; vertex < static_cast<Index>(m_Vertices.size()); ++vertex) {
        if (m_Vertices[vertex].m_Point != nullptr && SideOf(vertex) > 0) {
            return vertex;
        }
    }
    return None;
}

/// Collects what the cut removes; false when nothing would be left.
bool ZulmrsCell::FloodFront(Index seed)
{
    bool hasBehind = false;
    m_FirstLeaving = None;
    m_Dead.clear();
    m_Front.assign(1, seed);
    m_Vertices[seed].m_Side = 2;  // collected
    for (std::size_t i = 0; i < m_Front.size(); ++i) {
        const Index first = m_Vertices[m_Front[i]].m_HalfEdge;
        Index halfEdge = first;
        do {
            const Index end = End(halfEdge);
            const int side = SideOf(end);
            if (side == 1) {
                m_Vertices[end].m_Side = 2;
                m_Front.push_back(end);
            }
            if (side <= 0) {
                m_FirstLeaving = halfEdge;
            }
            hasBehind = hasBehind || side < 0;
            if (side >= 0) {
                m_Dead.push_back(halfEdge);
                if (side == 0) {
                    m_Dead.push_back(m_HalfEdges[halfEdge].m_Twin);
                }
            }
            halfEdge = Around(halfEdge);
        } while (halfEdge != first);
    }
    for (Index i = 0; !hasBehind && i < static_cast<Index>(m_Vertices.size()); ++i) {
        hasBehind = m_Vertices[i].m_Point != nullptr && SideOf(i) < 0;
    }
    return hasBehind;
}

/// Goes once round the cut, from face to face.
void ZulmrsCell::CollectCrossings()
{
    m_Crossings.clear();
    Index leaving = m_FirstLeaving;
    do {
        const Index entering = m_HalfEdges[leaving].m_Twin;
        leaving = m_HalfEdges[entering].m_Next;
        while (m_Vertices[End(leaving)].m_Side > 0) {
            leaving = m_HalfEdges[leaving].m_Next;
        }
        m_Crossings.push_back({entering, leaving});
    } while (leaving != m_FirstLeaving);
}

/// Where the plane meets the edge of a leaving half-edge: a new vertex, or the end of the edge.
ZulmrsCell::Index ZulmrsCell::CrossingVertex(Index leaving, Index entering)
{
    const Index end = m_HalfEdges[entering].m_Start;
    if (m_Vertices[end].m_Side == 0) {
        return end;
    }
    const Index vertex = Take(m_Vertices, m_FreeVertices);
    const Vertex& from = m_Vertices[m_HalfEdges[leaving].m_Start];
    const Vertex& to = m_Vertices[end];
    ZULMRSBSPPoint* const point =
        m_Factory.CreatePointOnEdge({m_Faces[m_HalfEdges[leaving].m_Face].m_Plane,
                                     m_Faces[m_HalfEdges[entering].m_Face].m_Plane, m_Plane},
                                    from.m_Point, to.m_Point, m_Plane);
    const double above = HeightOf(m_HalfEdges[leaving].m_Start) + m_Equation[3];
    const double below = HeightOf(end) + m_Equation[3];
    const double part = above > below ? above / (above - below) : 0.5;
    std::array<double, 3> hint{};
    for (std::size_t i = 0; i < 3; ++i) {
        hint[i] = from.m_Hint[i] + part * (to.m_Hint[i] - from.m_Hint[i]);
    }
    m_Vertices[vertex] = {point, hint, leaving, m_Cut, 0};
    return vertex;
}

/// Shortens a face to its part behind the plane and gives the wall its edge there, from end to start. None:
/// the face touches the plane in a vertex.
ZulmrsCell::Index ZulmrsCell::MakeWallEdge(const Crossing& crossing, Index start, Index end, Index wall)
{
    const auto [entering, leaving] = crossing;
    const Index face = m_HalfEdges[leaving].m_Face;
    if (start == end) {
        FreeFace(face);
        return None;
    }
    // An edge that ends on the plane goes with what is removed; one that crosses it stays, shortened.
    const bool isStartOld = m_HalfEdges[entering].m_Start == start;
    const bool isEndOld = End(leaving) == end;
    const Index before = isStartOld ? m_HalfEdges[entering].m_Previous : entering;
    const Index after = isEndOld ? m_HalfEdges[leaving].m_Next : leaving;
    if (before == after) {
        FreeFace(face);  // only an edge of it is left, in the plane
        m_HalfEdges[before].m_Face = wall;
        return before;
    }
    const Index inFace = Take(m_HalfEdges, m_FreeHalfEdges);
    const Index inWall = Take(m_HalfEdges, m_FreeHalfEdges);
    m_HalfEdges[inFace] = {start, inWall, None, None, face};
    m_HalfEdges[inWall] = {end, inFace, None, None, wall};
    Link(before, inFace);
    Link(inFace, after);
    m_Faces[face].m_HalfEdge = inFace;
    return inWall;
}

void ZulmrsCell::CloseWall()
{
    const Index wall = AddFace(m_Plane);
    // The vertices first: they are made from edges that are still as they were.
    m_Ends.clear();
    for (const Crossing& crossing : m_Crossings) {
        m_Ends.push_back(CrossingVertex(crossing.m_Leaving, m_HalfEdges[crossing.m_Leaving].m_Twin));
    }
    const std::size_t count = m_Crossings.size();
    Index first = None;
    Index last = None;
    for (std::size_t i = 0; i < count; ++i) {
        const Index start = m_Ends[(i == 0 ? count : i) - 1];
        const Index end = m_Ends[i];
        const Index edge = MakeWallEdge(m_Crossings[i], start, end, wall);
        if (edge == None) {
            continue;
        }
        m_Vertices[end].m_HalfEdge = edge;
        if (last != None) {
            Link(edge, last);
        } else {
            first = edge;
        }
        last = edge;
    }
    Link(first, last);
    m_Faces[wall].m_HalfEdge = first;
    for (std::size_t i = 0; i < count; ++i) {
        const Index leaving = m_Crossings[i].m_Leaving;
        if (m_Vertices[m_HalfEdges[m_HalfEdges[leaving].m_Twin].m_Start].m_Side < 0) {
            m_HalfEdges[leaving].m_Start = m_Ends[i];
        }
    }
    m_Last = m_Ends.back();
}

void ZulmrsCell::FreeRemoved()
{
    for (const Index halfEdge : m_Dead) {
        // A face with a removed edge that no wall edge has shortened is gone with all its edges.
        const Index face = m_HalfEdges[halfEdge].m_Face;
        if (m_Faces[face].m_Plane != nullptr && m_Faces[face].m_HalfEdge == halfEdge) {
            FreeFace(face);
        }
        m_FreeHalfEdges.push_back(halfEdge);
    }
    for (const Index vertex : m_Front) {
        m_Vertices[vertex].m_Point->Release();
        m_Vertices[vertex].m_Point = nullptr;
        m_FreeVertices.push_back(vertex);
    }
}

void ZulmrsCell::Cut(const std::array<double, 4>& equation)
{
    if (GetNbVertices() == 0) {
        return;
    }
    ++m_Cut;
    m_Equation = equation;
    bool isOpposite = false;
    m_Plane = m_Factory.CreatePlane(equation, isOpposite, 0);
    const Index seed = FindInFront();
    if (seed == None) {
        m_Plane->Release();
    } else if (!FloodFront(seed)) {
        m_Plane->Release();
        Clear();
    } else {
        CollectCrossings();
        CloseWall();
        FreeRemoved();
    }
}

ZULMRSBSPPolyhedron* ZulmrsCell::MakePolyhedron() const
{
    auto* const polyhedron = new ZULMRSBSPPolyhedron();
    for (const Face& face : m_Faces) {
        if (face.m_Plane == nullptr) {
            continue;
        }
        std::vector<ZULMRSBSPPlane*> edges;
        std::vector<ZULMRSBSPPoint*> points;
        edges.reserve(8);
        points.reserve(8);
        Index halfEdge = face.m_HalfEdge;
        do {
            edges.push_back(m_Faces[m_HalfEdges[m_HalfEdges[halfEdge].m_Twin].m_Face].m_Plane);
            points.push_back(m_Vertices[End(halfEdge)].m_Point);
            halfEdge = m_HalfEdges[halfEdge].m_Next;
        } while (halfEdge != face.m_HalfEdge);
        std::vector<char> orientations(edges.size(), 1);
        auto* const polygon =
            new ZULMRSBSPPolygon(face.m_Plane, std::move(edges), std::move(points), std::move(orientations));
        polyhedron->AddAPolygon(polygon, 1);
        polygon->Release();
    }
    return polyhedron;
}

bool ZulmrsCell::IsSound() const
{
    bool isSound = GetNbVertices() == 0 || GetNbVertices() + GetNbFaces() == GetNbEdges() + 2;
    std::size_t nbHalfEdges = 0;
    for (std::size_t i = 0; i < m_Faces.size(); ++i) {
        const Face& face = m_Faces[i];
        if (face.m_Plane == nullptr) {
            continue;
        }
        Index halfEdge = face.m_HalfEdge;
        do {
            const HalfEdge& one = m_HalfEdges[halfEdge];
            isSound = isSound && one.m_Face == static_cast<Index>(i) &&
                      m_HalfEdges[one.m_Next].m_Previous == halfEdge &&
                      m_HalfEdges[one.m_Twin].m_Twin == halfEdge &&
                      m_HalfEdges[one.m_Next].m_Start == End(halfEdge) &&
                      ZULMRSBSPPredicates::IsPointInFrontOfPlane(
                          *face.m_Plane, *m_Vertices[one.m_Start].m_Point) == ZULMRSExtendedUndetermined;
            halfEdge = one.m_Next;
            ++nbHalfEdges;
        } while (isSound && halfEdge != face.m_HalfEdge);
        for (const Vertex& vertex : m_Vertices) {
            isSound = isSound && (vertex.m_Point == nullptr ||
                                  ZULMRSBSPPredicates::IsPointInFrontOfPlane(
                                      *face.m_Plane, *vertex.m_Point) != ZULMRSExtendedTrue);
        }
    }
    return isSound && nbHalfEdges == 2 * GetNbEdges();
}
}  // namespace ZULBench
