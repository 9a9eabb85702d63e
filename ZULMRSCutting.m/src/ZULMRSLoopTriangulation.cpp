#include "ZULMRSFlatMesh.h"

namespace
{
// A convex loop being cut into triangles. A corner is where the loop turns; the other vertices are flat.
class ConvexLoop
{
public:
    struct Vertex {
        std::uint32_t m_Point;
        bool m_IsCorner;
        std::uint32_t m_Next = 0;
        std::uint32_t m_Previous = 0;
    };

    void Clear() { m_Vertices.clear(); }
    void Add(std::uint32_t point, bool isCorner) { m_Vertices.push_back({point, isCorner}); }

    // Cuts off every other corner, round after round, which keeps triangles fat. A flat vertex beside the cut
    // becomes a corner, so what is left has an area as long as three corners are left.
    template <class Emit>
    void Triangulate(Emit emit)
    {
        Connect();
        std::size_t nbLeft = m_Vertices.size();
        std::uint32_t i = 0;
        while (nbLeft > 3 && m_NbCorners >= 3) {
            const std::uint32_t previous = m_Vertices[i].m_Previous;
            const std::uint32_t next = m_Vertices[i].m_Next;
            if (!m_Vertices[i].m_IsCorner) {
                i = next;
                continue;
            }
            if (m_NbCorners == 3 && m_Vertices[previous].m_IsCorner && m_Vertices[next].m_IsCorner) {
                break;  // all others lie on the opposite side
            }
            Emit3(emit, previous, i, next);
            m_Vertices[previous].m_Next = next;
            m_Vertices[next].m_Previous = previous;
            --m_NbCorners;
            MakeCorner(previous);
            MakeCorner(next);
            --nbLeft;
            i = m_Vertices[next].m_Next;
        }
        Fan(emit, i);
    }

private:
    void Connect()
    {
        const auto count = static_cast<std::uint32_t>(m_Vertices.size());
        m_NbCorners = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            m_Vertices[i].m_Next = (i + 1) % count;
            m_Vertices[i].m_Previous = (i + count - 1) % count;
            m_NbCorners += m_Vertices[i].m_IsCorner ? 1 : 0;
        }
    }

    void MakeCorner(std::uint32_t i)
    {
        m_NbCorners += m_Vertices[i].m_IsCorner ? 0 : 1;
        m_Vertices[i].m_IsCorner = true;
    }

    template <class Emit>
    void Emit3(Emit emit, std::uint32_t i, std::uint32_t j, std::uint32_t k)
    {
        emit(m_Vertices[i].m_Point, m_Vertices[j].m_Point, m_Vertices[k].m_Point);
    }

    template <class Emit>
    void Fan(Emit emit, std::uint32_t apex)
    {
        for (std::uint32_t i = m_Vertices[apex].m_Next; m_Vertices[i].m_Next != apex;
             i = m_Vertices[i].m_Next) {
            Emit3(emit, apex, i, m_Vertices[i].m_Next);
        }
    }

    std::vector<Vertex> m_Vertices;
    std::size_t m_NbCorners = 0;
};
}  // namespace

ZULMRSFlatMesh ZULMRSTriangulateLoops(const ZULMRSSurfaceGraph& graph)
{
    ZULMRSFlatMesh mesh;
    mesh.m_Triangles.reserve(graph.m_HalfEdges.size());
    mesh.m_Regions.reserve(graph.m_HalfEdges.size());
    std::vector<bool> isDone(graph.m_HalfEdges.size(), false);
    ConvexLoop loop;
    for (std::uint32_t start = 0; start < graph.m_HalfEdges.size(); ++start) {
        if (isDone[start] || graph.m_HalfEdges[start].m_Next == ZULMRSSurfaceGraph::None) {
            continue;
        }
        loop.Clear();
        for (std::uint32_t i = start; !isDone[i]; i = graph.m_HalfEdges[i].m_Next) {
            isDone[i] = true;
            loop.Add(graph.m_HalfEdges[i].m_Origin,
                     !ZULMRSIsStraight(graph, graph.m_HalfEdges[i].m_Previous));
        }
        const std::uint32_t region = graph.m_Faces[graph.m_HalfEdges[start].m_Face].m_Region;
        loop.Triangulate([&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
            mesh.m_Triangles.push_back({a, b, c});
            mesh.m_Regions.push_back(region);
        });
    }
    return mesh;
}
