#ifndef ZULMRSSeparation_h
#define ZULMRSSeparation_h

#include <cstddef>
#include <vector>

#include "ZULMRSCellOutline.h"
#include "ZULMRSToolBound.h"
#include "ZULMRSVertexTable.h"

/// Proves that a tool misses a cell that all its planes in question cross: by a plane through an edge of the
/// tool, a sum of two of its planes with positive factors, behind which the cell has no vertex. The inside of
/// the tool lies behind every such sum.
class ZULMRSSeparation
{
public:
    /// True when the tool certainly has nothing inside the cell; false when no two planes show it.
    bool Misses(const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
                const std::vector<const ZULMRSToolBound*>& bounds);

    /// Whether first + factor * second is certainly positive, and so for all greater numbers; the factor is
    /// positive and finite. Rounding to nearest can make the sum zero, but never turn it: see
    /// docs/arithmetic.md, "The cutter's doubles". False for what is not a number.
    static bool IsSumPositive(double first, double second, double factor);

private:
    using Index = ZULMRSVertexTable::Index;

    /// How far in front of a plane a vertex is at least; and as far as is known.
    struct Height {
        double m_Least;
        double m_Value;
    };

    void Measure(const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
                 const std::vector<const ZULMRSToolBound*>& bounds);
    double FindFactor(const Height* first, const Height* second) const;
    bool IsProof(const Height* first, const Height* second, double factor);
    bool IsNowhereBehind(const ZULMRSToolBound& bound, const ZULMRSCellOutline& outline,
                         ZULMRSVertexTable& table) const;

    std::size_t m_NbVertices = 0;
    std::vector<Height> m_Heights;        // of all vertices, plane after plane
    std::vector<std::size_t> m_Doubtful;  // vertices that only exact arithmetic can tell
};

#endif
