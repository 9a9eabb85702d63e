#ifndef ZULMRSLeafBox_h
#define ZULMRSLeafBox_h

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSBSPPoint.h"

/// An axis-parallel box, of a leaf of the spatial division or round a cell. What it stands for lies inside
/// it, exactly.
struct ZULMRSLeafBox {
    std::array<double, 3> m_Low;
    std::array<double, 3> m_High;

    /// A box that contains the vertices for certain: infinite where their kept numbers tell nothing.
    static ZULMRSLeafBox Around(const std::vector<ZULMRSBSPPoint*>& vertices);

    enum class Position { InFront, Behind, Unknown };

    /// Where the whole box lies with respect to a plane; Unknown also where doubles cannot tell.
    Position Locate(const std::array<double, 4>& equation) const;

    /// Whether the boxes have a point in common, if only on their sides.
    bool Touches(const ZULMRSLeafBox& other) const
    {
        bool isApart = false;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            isApart = isApart || m_High[axis] < other.m_Low[axis] || other.m_High[axis] < m_Low[axis];
        }
        return !isApart;
    }

    std::size_t LongestAxis() const;
    double Length(std::size_t axis) const { return m_High[axis] - m_Low[axis]; }

    /// A place near the middle of an axis that takes few bits, so that exact arithmetic on the wall there
    /// stays short.
    double Middle(std::size_t axis) const;
};

#endif
