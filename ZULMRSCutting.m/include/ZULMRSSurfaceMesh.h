#ifndef ZULMRSSurfaceMesh_h
#define ZULMRSSurfaceMesh_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCuttingExport.h"
#include "ZULMathPoint.h"

/// A closed triangle mesh, counter-clockwise seen from outside. Vertices are approximations (to the last bits
/// of a double) of the exact ones; connectivity is exact: every directed edge is met by as many triangles as
/// its reverse, and no vertex lies inside an edge of another triangle unless the solid itself touches itself
/// there.
struct ZULMRSSurfaceMesh {
    std::vector<ZULMathPoint> m_Vertices;
    std::vector<std::array<std::uint32_t, 3>> m_Triangles;

    /// True when every directed edge is met as often as its reverse.
    ZULMRSCutting_API bool IsClosed() const;
    /// Volume enclosed, in the cube of the unit of the coordinates.
    ZULMRSCutting_API double GetVolume() const;
};

/// The surface of a set of conforming cells: the polygons that only one of them holds. Walls between cells do
/// not show: coplanar neighbours are joined where the result stays convex, and vertices that no corner needs
/// are left out.
ZULMRSCutting_API ZULMRSSurfaceMesh ZULMRSExtractSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells);

#endif
