#ifndef ZULMRSCellCheck_h
#define ZULMRSCellCheck_h

#include <cstddef>
#include <string>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCuttingExport.h"

/// What is wrong with a set of cells, one sentence a fault; empty when all is well. A plain value.
struct ZULMRSCellCheckReport {
    std::vector<std::string> m_Faults;

    bool IsValid() const { return m_Faults.empty(); }
};

/// Checks, exactly, that
/// - every polygon has its planes and vertices, every vertex lies on its planes, and the loop turns once,
///   positively, about the plane's own normal, its recorded edge orientations (where known) true;
/// - every cell is convex, lies inside each of its faces, meets each of its edges once in each direction, and
///   has Euler characteristic 2;
/// - a polygon is held by at most two cells, with opposite orientations;
/// - every surface edge is met by as many faces in one direction as in the other.
///
/// A fault names the cell and the polygon by position, counted from 0, and the polygon by address too. What
/// rests on a part that is already at fault is not judged. Describes at most maxFaults faults, and at least
/// one. The cells are only read, except that points may fill their own caches; any pointer in them may be
/// null.
ZULMRSCutting_API ZULMRSCellCheckReport ZULMRSCheckCells(const std::vector<ZULMRSBSPPolyhedron*>& cells,
                                                         std::size_t maxFaults = 20);

/// Volume of the cells in the cube of the unit of the coordinates, summed in doubles from approximate
/// vertices. Null cells, and polygons that lack a plane, a vertex or an orientation, count for nothing.
ZULMRSCutting_API double ZULMRSVolumeOfCells(const std::vector<ZULMRSBSPPolyhedron*>& cells);

#endif
