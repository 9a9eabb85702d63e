#ifndef ZULMRSPolygonLoop_h
#define ZULMRSPolygonLoop_h

#include <algorithm>
#include <cstddef>

#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"

/// Whether a polygon has its plane and, for three edges or more, every edge plane and every vertex.
inline bool ZULMRSHasCompleteLoop(const ZULMRSBSPPolygon& polygon)
{
    const auto& edges = polygon.GetAllEdges();
    const auto& points = polygon.GetPoints();
    return polygon.GetSupportingPlane() != nullptr && edges.size() >= 3 && points.size() == edges.size() &&
           std::find(edges.begin(), edges.end(), nullptr) == edges.end() &&
           std::find(points.begin(), points.end(), nullptr) == points.end();
}

/// Calls visit(polygon, orientation) for every polygon of the cell that has both and is not null.
template <class Visit>
void ZULMRSForEachFace(const ZULMRSBSPPolyhedron& cell, Visit visit)
{
    const auto& polygons = cell.GetPolygons();
    const auto& orientations = cell.GetPolygonsOrientations();
    for (std::size_t i = 0; i < std::min(polygons.size(), orientations.size()); ++i) {
        if (polygons[i] != nullptr) {
            visit(*polygons[i], static_cast<signed char>(orientations[i]));
        }
    }
}

#endif
