#ifndef ZULMRSSurfaceMesh_h
#define ZULMRSSurfaceMesh_h

#include <array>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCuttingExport.h"
#include "ZULMathPoint.h"

/// A closed triangle mesh, counter-clockwise seen from outside. Vertices are approximations (to the last bits
/// of a double) of the exact ones; connectivity is exact: every directed edge is met by as many triangles as
/// its reverse, no exact triangle is without area, and no vertex lies inside an edge of another triangle
/// unless the solid itself touches itself there. Vertices so close that they round to the same coordinates
/// stay apart. A plain value.
struct ZULMRSSurfaceMesh {
    std::vector<ZULMathPoint> m_Vertices;
    std::vector<std::array<std::uint32_t, 3>> m_Triangles;

    /// True when every directed edge is met as often as its reverse (an empty mesh is closed); false for a
    /// triangle with a vertex that does not exist.
    ZULMRSCutting_API bool IsClosed() const;
    /// Volume enclosed, in the cube of the unit of the coordinates: the signed tetrahedra from the middle of
    /// the mesh's box to each triangle. Meaningless for a mesh that is not closed. Triangles with a vertex
    /// that does not exist count for nothing.
    ZULMRSCutting_API double GetVolume() const;
};

/// The surface of a set of conforming cells: the polygons that only one of them holds. Walls between cells do
/// not show: flat regions are joined whatever cells they belong to, and a vertex stays only where the surface
/// has a corner or where the solid touches itself. Vertices and triangles come in the order in which the
/// cells name their polygons, so that equal solids give equal meshes wherever they lie in memory.
///
/// The cells are only read, except that points may fill their own caches. Null cells and null polygons are
/// skipped. A surface polygon that lacks its plane, an edge plane, a cached vertex or its orientation is left
/// out, which leaves a hole. Time is nearly proportional to the number of polygons.
ZULMRSCutting_API ZULMRSSurfaceMesh ZULMRSExtractSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells);

#endif
