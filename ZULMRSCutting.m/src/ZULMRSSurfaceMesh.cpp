#include "ZULMRSSurfaceMesh.h"

#include <algorithm>

#include "ZULExpFloatStatus.h"
#include "ZULMRSCompensatedSum.h"
#include "ZULMRSEdgeGroups.h"
#include "ZULMRSFlatMesh.h"
#include "ZULMRSPointLocation.h"
#include "ZULMRSSurfaceGraph.h"

namespace
{
bool IsWithin(const std::array<std::uint32_t, 3>& triangle, std::size_t nbVertices)
{
    return std::all_of(triangle.begin(), triangle.end(), [&](std::uint32_t v) { return v < nbVertices; });
}

ZULMathPoint MiddleOf(const std::vector<ZULMathPoint>& points)
{
    ZULMathPoint low = points[0];
    ZULMathPoint high = points[0];
    for (const ZULMathPoint& p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    return low + 0.5 * (high - low);
}

ZULMRSSurfaceMesh MakeMesh(const ZULMRSSurfaceGraph& graph, const ZULMRSFlatMesh& flatMesh)
{
    ZULMRSSurfaceMesh mesh;
    std::vector<std::uint32_t> numbers(graph.m_Points.size(), ZULMRSSurfaceGraph::None);
    mesh.m_Triangles = flatMesh.m_Triangles;
    for (auto& triangle : mesh.m_Triangles) {
        for (std::uint32_t& vertex : triangle) {
            std::uint32_t& number = numbers[vertex];
            if (number == ZULMRSSurfaceGraph::None) {
                number = static_cast<std::uint32_t>(mesh.m_Vertices.size());
                mesh.m_Vertices.push_back(ZULMRSLocatePoint(*graph.m_Points[vertex]));
            }
            vertex = number;
        }
    }
    return mesh;
}
}  // namespace

bool ZULMRSSurfaceMesh::IsClosed() const
{
    std::vector<ZULMRSEdgeGroups::Edge> edges;
    edges.reserve(3 * m_Triangles.size());
    for (const auto& triangle : m_Triangles) {
        if (!IsWithin(triangle, m_Vertices.size())) {
            return false;
        }
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back({triangle[i], triangle[(i + 1) % 3]});
        }
    }
    const ZULMRSEdgeGroups groups(edges, m_Vertices.size());
    bool isClosed = true;
    groups.ForEach([&](auto group) { isClosed = isClosed && groups.GetImbalance(group) == 0; });
    return isClosed;
}

double ZULMRSSurfaceMesh::GetVolume() const
{
    if (m_Vertices.empty()) {
        return 0.0;
    }
    const ZULExpFloatScope scope;
    const ZULMathPoint apex = MiddleOf(m_Vertices);
    ZULMRSCompensatedSum sum;
    for (const auto& triangle : m_Triangles) {
        if (IsWithin(triangle, m_Vertices.size())) {
            sum.Add((m_Vertices[triangle[0]] - apex) *
                    ((m_Vertices[triangle[1]] - apex) ^ (m_Vertices[triangle[2]] - apex)));
        }
    }
    double volume = sum.Get() / 6.0;
    ZULExpProcessor::Pin(volume);
    return volume;
}

ZULMRSSurfaceMesh ZULMRSMeshSurface(const std::vector<ZULMRSSurfacePolygon>& polygons)
{
    ZULMRSSurfaceGraph graph = ZULMRSBuildSurfaceGraph(polygons);
    ZULMRSJoinCoplanarFaces(graph);
    ZULMRSRemoveStraightVertices(graph);
    ZULMRSFlatMesh mesh = ZULMRSTriangulateLoops(graph);
    ZULMRSRemoveFlatVertices(graph, mesh);
    return MakeMesh(graph, mesh);
}

ZULMRSSurfaceMesh ZULMRSExtractSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    const ZULExpFloatScope scope;
    return ZULMRSMeshSurface(ZULMRSFindSurface(cells));
}
