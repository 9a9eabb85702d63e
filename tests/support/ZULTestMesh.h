#ifndef ZULTestMesh_h
#define ZULTestMesh_h

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ZULMRSCellCheck.h"
#include "ZULMRSSurfaceMesh.h"
#include "ZULTestVolume.h"

/// What must hold for the surface mesh of any sound cells.
namespace ZULTest
{
/// Twice the area, along the normal.
inline ZULMathVector NormalOf(const ZULMRSSurfaceMesh& mesh, const std::array<std::uint32_t, 3>& triangle)
{
    const ZULMathPoint& a = mesh.m_Vertices[triangle[0]];
    return (mesh.m_Vertices[triangle[1]] - a) ^ (mesh.m_Vertices[triangle[2]] - a);
}

inline double AreaOf(const ZULMRSSurfaceMesh& mesh)
{
    double area = 0.0;
    for (const auto& triangle : mesh.m_Triangles) {
        area += 0.5 * NormalOf(mesh, triangle).Norm();
    }
    return area;
}

inline double AreaOf(const ZULMRSBSPPolygon& polygon)
{
    const auto locate = [](const ZULMRSBSPPoint* point) {
        const std::array<double, 3> xyz = point->GetApproximatedXYZ();
        return ZULMathPoint(xyz[0], xyz[1], xyz[2]);
    };
    const auto& points = polygon.GetPoints();
    ZULMathVector sum;
    for (std::size_t i = 2; i < points.size(); ++i) {
        sum = sum + ((locate(points[i - 1]) - locate(points[0])) ^ (locate(points[i]) - locate(points[0])));
    }
    return 0.5 * sum.Norm();
}

/// Of the polygons that one cell only holds.
inline double SurfaceAreaOf(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    std::map<const ZULMRSBSPPolygon*, int> holders;
    for (const ZULMRSBSPPolyhedron* cell : cells) {
        for (const ZULMRSBSPPolygon* polygon : cell->GetPolygons()) {
            ++holders[polygon];
        }
    }
    double area = 0.0;
    for (const auto& [polygon, count] : holders) {
        area += count == 1 ? AreaOf(*polygon) : 0.0;
    }
    return area;
}

/// How many triangles meet in the edge that most meet in: 2 unless the solid touches itself along an edge.
inline std::size_t CountMaxUses(const ZULMRSSurfaceMesh& mesh)
{
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::size_t> uses;
    std::size_t most = 0;
    for (const auto& triangle : mesh.m_Triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            most = std::max(most, ++uses[std::minmax(triangle[i], triangle[(i + 1) % 3])]);
        }
    }
    return most;
}

/// For small integer coordinates, where doubles are exact.
inline std::size_t CountVerticesInsideEdges(const ZULMRSSurfaceMesh& mesh)
{
    const auto isInside = [](const ZULMathPoint& p, const ZULMathPoint& a, const ZULMathPoint& b) {
        const ZULMathVector cross = (b - a) ^ (p - a);
        return cross * cross == 0.0 && (p - a) * (p - b) < 0.0;
    };
    std::size_t count = 0;
    for (const auto& triangle : mesh.m_Triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            for (const ZULMathPoint& vertex : mesh.m_Vertices) {
                count +=
                    isInside(vertex, mesh.m_Vertices[triangle[i]], mesh.m_Vertices[triangle[(i + 1) % 3]])
                        ? 1
                        : 0;
            }
        }
    }
    return count;
}

/// Extracts the surface and expects it closed, with the exact volume and the area of the cells (which a fold
/// would exceed).
inline ZULMRSSurfaceMesh ExtractSound(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    for (const std::string& fault : ZULMRSCheckCells(cells).m_Faults) {
        ADD_FAILURE() << fault;
    }
    ZULMRSSurfaceMesh mesh = ZULMRSExtractSurface(cells);
    EXPECT_TRUE(mesh.IsClosed());
    const double volume = ExactVolume(cells).get_d();
    EXPECT_NEAR(mesh.GetVolume(), volume, 1e-11 * volume);
    EXPECT_NEAR(ZULMRSVolumeOfCells(cells), volume, 1e-11 * volume);
    const double area = SurfaceAreaOf(cells);
    EXPECT_NEAR(AreaOf(mesh), area, 1e-9 * area);
    return mesh;
}

/// The same for cells whose vertices are not closer than doubles tell: no triangle is without area.
inline ZULMRSSurfaceMesh ExtractSolidTriangles(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    ZULMRSSurfaceMesh mesh = ExtractSound(cells);
    for (const auto& triangle : mesh.m_Triangles) {
        EXPECT_GT(NormalOf(mesh, triangle).Norm(), 1e-9);
    }
    return mesh;
}
}  // namespace ZULTest

#endif
