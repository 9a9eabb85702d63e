#ifndef ZULMRSLeafBox_h
#define ZULMRSLeafBox_h

#include <array>
#include <cstddef>

#include "ZULMRSBSPPolyhedron.h"

/// An axis-parallel box, of a leaf of the spatial division or round a cell. What it stands for lies inside
/// it, exactly.
struct ZULMRSLeafBox {
    std::array<double, 3> m_Low;
    std::array<double, 3> m_High;

    /// A box that contains the cell for certain: infinite where its points' kept numbers tell nothing.
    static ZULMRSLeafBox Around(const ZULMRSBSPPolyhedron& cell);

    enum class Position { InFront, Behind, Unknown };

    /// Where the whole box lies with respect to a plane; Unknown also where doubles cannot tell.
    Position Locate(const std::array<double, 4>& equation) const;

    std::size_t LongestAxis() const;
    double Length(std::size_t axis) const { return m_High[axis] - m_Low[axis]; }

    /// A place near the middle of an axis that takes few bits, so that exact arithmetic on the wall there
    /// stays short.
    double Middle(std::size_t axis) const;
};

#endif
