#ifndef ZULMRSFlatMesh_h
#define ZULMRSFlatMesh_h

#include <array>
#include <cstdint>
#include <vector>

#include "ZULMRSSurfaceGraph.h"
#include "ZULMRSSurfaceMesh.h"

/// Triangles over the point numbers of a surface graph, each with the flat region (a face number of the
/// graph) that it is a part of.
struct ZULMRSFlatMesh {
    std::vector<std::array<std::uint32_t, 3>> m_Triangles;
    std::vector<std::uint32_t> m_Regions;
};

/// The mesh of the polygons of a surface; see ZULMRSExtractSurface.
ZULMRSSurfaceMesh ZULMRSMeshSurface(const std::vector<ZULMRSSurfacePolygon>& polygons);

/// Cuts every loop of the graph into triangles, none of which has its three vertices on one line.
ZULMRSFlatMesh ZULMRSTriangulateLoops(const ZULMRSSurfaceGraph& graph);

/// Removes every vertex round which the surface is flat, or bent along one straight line only, and fills the
/// gap with triangles over the other vertices. A vertex where the surface touches itself stays. Decided
/// exactly.
void ZULMRSRemoveFlatVertices(const ZULMRSSurfaceGraph& graph, ZULMRSFlatMesh& mesh);

#endif
