#include <algorithm>
#include <cstddef>
#include <functional>

#include "ZULMRSFlatMesh.h"
#include "ZULMRSTurn.h"

namespace
{
constexpr std::uint32_t None = ZULMRSSurfaceGraph::None;
constexpr std::uint32_t Closing = None - 1;

using Triangle = std::array<std::uint32_t, 3>;

// A simple polygon of one plane, cut into triangles by taking off ears.
class EarClipper
{
public:
    EarClipper(ZULMRSTurn& turn, const ZULMRSTurnFrame& frame, const std::vector<std::uint32_t>& polygon)
        : m_Turn(turn), m_Frame(frame), m_Left(polygon)
    {
    }

    // False when the polygon is not simple. The search for an ear goes on behind the last one, which keeps
    // triangles fat.
    bool Run(std::vector<Triangle>& triangles)
    {
        std::size_t i = 0;
        for (std::size_t nbTried = 0; m_Left.size() > 3;) {
            const std::size_t count = m_Left.size();
            if (nbTried++ == count) {
                return false;
            }
            if (IsEar(i)) {
                triangles.push_back({m_Left[(i + count - 1) % count], m_Left[i], m_Left[(i + 1) % count]});
                m_Left.erase(m_Left.begin() + static_cast<std::ptrdiff_t>(i));
                nbTried = 0;
            }
            i = (i + 1) % m_Left.size();
        }
        triangles.push_back({m_Left[0], m_Left[1], m_Left[2]});
        return Turn(m_Left[0], m_Left[1], m_Left[2]) > 0;
    }

private:
    int Turn(std::uint32_t p, std::uint32_t q, std::uint32_t r) { return m_Turn.Sign(m_Frame, p, q, r); }

    // A corner whose triangle no other vertex touches.
    bool IsEar(std::size_t i)
    {
        const std::size_t count = m_Left.size();
        const std::uint32_t p = m_Left[(i + count - 1) % count];
        const std::uint32_t q = m_Left[i];
        const std::uint32_t r = m_Left[(i + 1) % count];
        return Turn(p, q, r) > 0 && std::none_of(m_Left.begin(), m_Left.end(), [&](std::uint32_t other) {
                   return other != p && other != q && other != r && Turn(r, p, other) >= 0 &&
                          Turn(p, q, other) >= 0 && Turn(q, r, other) >= 0;
               });
    }

    ZULMRSTurn& m_Turn;
    const ZULMRSTurnFrame& m_Frame;
    std::vector<std::uint32_t> m_Left;
};

// Half-edge 3 t + i of the mesh runs from corner i of triangle t to the next.
class FlatVertexRemover
{
public:
    FlatVertexRemover(const ZULMRSSurfaceGraph& graph, ZULMRSFlatMesh& mesh)
        : m_Graph(graph),
          m_Triangles(mesh.m_Triangles),
          m_Regions(mesh.m_Regions),
          m_Turn(graph.m_Points),
          m_Frames(graph.m_Faces.size()),
          m_HalfEdgeAt(graph.m_Points.size(), None),
          m_NbTriangles(graph.m_Points.size(), 0)
    {
    }

    void Run()
    {
        Connect();
        // Stars that are small first: their removal rarely makes others large.
        for (const std::size_t maxStar : {std::size_t{12}, std::size_t{48}, std::size_t{200}}) {
            for (std::uint32_t vertex = 0; vertex < m_HalfEdgeAt.size(); ++vertex) {
                if (m_NbTriangles[vertex] != 0 && m_NbTriangles[vertex] <= maxStar) {
                    TryRemove(vertex);
                }
            }
        }
        DropGoneTriangles();
    }

private:
    // What takes the place of one flat sector of a star.
    struct Patch {
        std::vector<std::uint32_t> m_Polygon;  // vertices round the sector
        std::vector<std::uint32_t> m_Outside;  // half-edge across each side; Closing where the other patch is
        std::vector<Triangle> m_Triangles;
        std::uint32_t m_Region = None;
        std::uint32_t m_ClosingHalfEdge = None;
    };

    static std::uint32_t Next(std::uint32_t halfEdge)
    {
        return halfEdge % 3 == 2 ? halfEdge - 2 : halfEdge + 1;
    }
    static std::uint32_t Previous(std::uint32_t halfEdge)
    {
        return halfEdge % 3 == 0 ? halfEdge + 2 : halfEdge - 1;
    }
    std::uint32_t Origin(std::uint32_t halfEdge) const { return m_Triangles[halfEdge / 3][halfEdge % 3]; }
    std::uint32_t RegionOf(std::uint32_t halfEdge) const { return m_Regions[halfEdge / 3]; }

    void Connect()
    {
        std::vector<ZULMRSEdgeGroups::Edge> edges;
        edges.reserve(3 * m_Triangles.size());
        for (std::uint32_t i = 0; i < 3 * m_Triangles.size(); ++i) {
            edges.push_back({Origin(i), Origin(Next(i))});
            m_HalfEdgeAt[Origin(i)] = i;
            ++m_NbTriangles[Origin(i)];
        }
        m_Twins = ZULMRSEdgeGroups(edges, m_HalfEdgeAt.size()).FindPartners();
    }

    // The half-edges that leave a vertex, counter-clockwise; false when they do not form one full turn.
    bool CollectStar(std::uint32_t vertex)
    {
        m_Star.clear();
        std::uint32_t halfEdge = m_HalfEdgeAt[vertex];
        do {
            m_Star.push_back(halfEdge);
            halfEdge = m_Twins[Previous(halfEdge)];
        } while (halfEdge != None && halfEdge != m_Star[0] && m_Star.size() <= m_NbTriangles[vertex]);
        return halfEdge == m_Star[0] && m_Star.size() == m_NbTriangles[vertex];
    }

    // Positions in the star where the region changes.
    std::vector<std::size_t> FindCreases() const
    {
        std::vector<std::size_t> creases;
        for (std::size_t i = 0; i < m_Star.size(); ++i) {
            if (RegionOf(m_Star[i]) != RegionOf(m_Star[(i + m_Star.size() - 1) % m_Star.size()])) {
                creases.push_back(i);
            }
        }
        return creases;
    }

    void TryRemove(std::uint32_t vertex)
    {
        if (!CollectStar(vertex)) {
            return;
        }
        const std::vector<std::size_t> creases = FindCreases();
        std::vector<Patch> patches;
        if (creases.empty()) {
            patches.push_back(MakeFullPatch());
        } else if (creases.size() == 2 && IsStraight(vertex, creases)) {
            patches.push_back(MakeSectorPatch(creases[0], creases[1]));
            patches.push_back(MakeSectorPatch(creases[1], creases[0]));
        }
        const bool isFilled =
            !patches.empty() && std::all_of(patches.begin(), patches.end(), [&](Patch& patch) {
                return patch.m_Polygon.size() >= 3 &&
                       EarClipper(m_Turn, FrameOf(patch.m_Region), patch.m_Polygon).Run(patch.m_Triangles);
            });
        if (isFilled) {
            Replace(vertex, patches);
        }
    }

    bool IsStraight(std::uint32_t vertex, const std::vector<std::size_t>& creases)
    {
        return m_Turn.Sign(FrameOf(RegionOf(m_Star[creases[0]])), Origin(Next(m_Star[creases[0]])), vertex,
                           Origin(Next(m_Star[creases[1]]))) == 0;
    }

    const ZULMRSTurnFrame& FrameOf(std::uint32_t region)
    {
        if (m_Frames[region].m_Sign == 0) {
            const auto& face = m_Graph.m_Faces[region];
            m_Frames[region] = ZULMRSMakeTurnFrame(*face.m_Plane, face.m_Orientation);
        }
        return m_Frames[region];
    }

    Patch MakeFullPatch() const
    {
        Patch patch;
        patch.m_Region = RegionOf(m_Star[0]);
        for (const std::uint32_t halfEdge : m_Star) {
            patch.m_Polygon.push_back(Origin(Next(halfEdge)));
            patch.m_Outside.push_back(m_Twins[Next(halfEdge)]);
        }
        return patch;
    }

    Patch MakeSectorPatch(std::size_t from, std::size_t to) const
    {
        Patch patch;
        patch.m_Region = RegionOf(m_Star[from]);
        for (std::size_t i = from; i != to; i = (i + 1) % m_Star.size()) {
            patch.m_Polygon.push_back(Origin(Next(m_Star[i])));
            patch.m_Outside.push_back(m_Twins[Next(m_Star[i])]);
        }
        patch.m_Polygon.push_back(Origin(Next(m_Star[to])));
        patch.m_Outside.push_back(Closing);
        return patch;
    }

    // A star of n triangles round one point makes room for the n - 2 that come instead.
    void Replace(std::uint32_t vertex, std::vector<Patch>& patches)
    {
        std::vector<std::uint32_t> room;
        for (const std::uint32_t halfEdge : m_Star) {
            const std::uint32_t triangle = halfEdge / 3;
            for (const std::uint32_t corner : m_Triangles[triangle]) {
                --m_NbTriangles[corner];
            }
            room.push_back(triangle);
        }
        std::sort(room.begin(), room.end(), std::greater<>());
        for (Patch& patch : patches) {
            Fill(patch, room);
        }
        if (patches.size() == 2) {
            m_Twins[patches[0].m_ClosingHalfEdge] = patches[1].m_ClosingHalfEdge;
            m_Twins[patches[1].m_ClosingHalfEdge] = patches[0].m_ClosingHalfEdge;
        }
        for (const std::uint32_t triangle : room) {
            m_Regions[triangle] = None;
        }
        m_HalfEdgeAt[vertex] = None;
    }

    // Puts the triangles in place ear by ear, in the order in which they were cut: the side that an ear
    // leaves behind is one of the rest.
    void Fill(Patch& patch, std::vector<std::uint32_t>& room)
    {
        std::vector<std::uint32_t>& polygon = patch.m_Polygon;
        std::vector<std::uint32_t>& outside = patch.m_Outside;
        for (const Triangle& ear : patch.m_Triangles) {
            const std::size_t count = polygon.size();
            const auto i =
                static_cast<std::size_t>(std::find(polygon.begin(), polygon.end(), ear[1]) - polygon.begin());
            const std::size_t before = (i + count - 1) % count;
            const std::uint32_t first = 3 * room.back();
            Place(ear, patch.m_Region, room.back());
            room.pop_back();
            Attach(patch, first, outside[before]);
            Attach(patch, first + 1, outside[i]);
            outside[before] = first + 2;
            if (count == 3) {
                Attach(patch, first + 2, outside[(i + 1) % 3]);
                return;
            }
            polygon.erase(polygon.begin() + static_cast<std::ptrdiff_t>(i));
            outside.erase(outside.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }

    void Place(const Triangle& corners, std::uint32_t region, std::uint32_t triangle)
    {
        m_Triangles[triangle] = corners;
        m_Regions[triangle] = region;
        for (std::uint32_t i = 0; i < 3; ++i) {
            m_HalfEdgeAt[corners[i]] = 3 * triangle + i;
            ++m_NbTriangles[corners[i]];
        }
    }

    void Attach(Patch& patch, std::uint32_t halfEdge, std::uint32_t outside)
    {
        if (outside == Closing) {
            patch.m_ClosingHalfEdge = halfEdge;
            return;
        }
        m_Twins[halfEdge] = outside;
        if (outside != None) {
            m_Twins[outside] = halfEdge;
        }
    }

    void DropGoneTriangles()
    {
        std::size_t nbLeft = 0;
        for (std::size_t i = 0; i < m_Triangles.size(); ++i) {
            if (m_Regions[i] != None) {
                m_Triangles[nbLeft] = m_Triangles[i];
                m_Regions[nbLeft++] = m_Regions[i];
            }
        }
        m_Triangles.resize(nbLeft);
        m_Regions.resize(nbLeft);
    }

    const ZULMRSSurfaceGraph& m_Graph;
    std::vector<Triangle>& m_Triangles;
    std::vector<std::uint32_t>& m_Regions;
    ZULMRSTurn m_Turn;
    std::vector<ZULMRSTurnFrame> m_Frames;
    std::vector<std::uint32_t> m_Twins;
    std::vector<std::uint32_t> m_HalfEdgeAt;  // one that leaves the vertex
    std::vector<std::size_t> m_NbTriangles;   // round the vertex
    std::vector<std::uint32_t> m_Star;
};
}  // namespace

void ZULMRSRemoveFlatVertices(const ZULMRSSurfaceGraph& graph, ZULMRSFlatMesh& mesh)
{
    FlatVertexRemover(graph, mesh).Run();
}
