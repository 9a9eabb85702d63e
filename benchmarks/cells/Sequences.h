#ifndef ZULBenchCellsSequences_h
#define ZULBenchCellsSequences_h

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ZULBench
{
using Equation = std::array<double, 4>;

/// Planes that cut the box [-1, 1]^3 one after the other; what is in front of a plane goes.
struct Sequence {
    std::string m_Name;
    std::vector<Equation> m_Planes;
    /// Vertices of the cell at the end.
    std::size_t m_NbVertices;
};

/// k10, k50, k200: planes that touch the unit sphere. degen20: a rhombic dodecahedron, then the octahedron in
/// it, so that planes pass through vertices and edges. coincident: the dodecahedron with every plane again as
/// twice its equation, as the box's planes are, and at last a plane turned round, which leaves nothing.
std::vector<Sequence> MakeSequences();
}  // namespace ZULBench

#endif
