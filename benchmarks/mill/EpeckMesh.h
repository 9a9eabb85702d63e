#ifndef ZULBenchMillEpeckMesh_h
#define ZULBenchMillEpeckMesh_h

#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/measure.h>
#include <CGAL/Polygon_mesh_processing/triangulate_faces.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/convex_hull_3.h>

#include <vector>

#include "Sweeps.h"

/// What the peers on CGAL's kernel of exact constructions have in common.
namespace ZULBench
{
using Kernel = CGAL::Exact_predicates_exact_constructions_kernel;
using Mesh = CGAL::Surface_mesh<Kernel::Point_3>;

inline Mesh MakeHull(const std::vector<Corner>& corners)
{
    std::vector<Kernel::Point_3> points;
    for (const Corner& corner : corners) {
        points.emplace_back(corner[0], corner[1], corner[2]);
    }
    Mesh mesh;
    CGAL::convex_hull_3(points.begin(), points.end(), mesh);
    CGAL::Polygon_mesh_processing::triangulate_faces(mesh);
    return mesh;
}

inline Mesh MakeStock()
{
    std::vector<Corner> corners;
    for (unsigned int i = 0; i < 8; ++i) {
        corners.push_back({Stock[i & 1U][0], Stock[(i >> 1U) & 1U][1], Stock[(i >> 2U) & 1U][2]});
    }
    return MakeHull(corners);
}

inline double VolumeOf(const Mesh& mesh)
{
    return CGAL::to_double(CGAL::Polygon_mesh_processing::volume(mesh));
}
}  // namespace ZULBench

#endif
