#ifndef ZULMRSCellCheck_h
#define ZULMRSCellCheck_h

#include <cstddef>
#include <string>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCuttingExport.h"

/// What is wrong with a set of cells; empty when all is well.
struct ZULMRSCellCheckReport {
    std::vector<std::string> m_Faults;

    bool IsValid() const { return m_Faults.empty(); }
};

/// Checks, exactly, that every loop is consistent and turns positively about its plane, that every vertex
/// lies on its planes, that every cell is convex with Euler characteristic 2 and each of its edges is met
/// once in each direction, that a polygon is held by at most two cells, with opposite orientations, and that
/// every surface edge is met by as many faces in one direction as in the other. Stops describing after
/// maxFaults.
ZULMRSCutting_API ZULMRSCellCheckReport ZULMRSCheckCells(const std::vector<ZULMRSBSPPolyhedron*>& cells,
                                                         std::size_t maxFaults = 20);

/// Volume of the cells in the cube of the unit of the coordinates, summed in doubles from approximate
/// vertices.
ZULMRSCutting_API double ZULMRSVolumeOfCells(const std::vector<ZULMRSBSPPolyhedron*>& cells);

#endif
