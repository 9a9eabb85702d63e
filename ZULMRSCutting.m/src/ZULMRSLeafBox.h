#ifndef ZULMRSLeafBox_h
#define ZULMRSLeafBox_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "ZULMRSPlace.h"

/// An axis-parallel box, of a leaf of the spatial division or round a cell. What it stands for lies inside
/// it, exactly.
struct ZULMRSLeafBox {
    std::array<double, 3> m_Low;
    std::array<double, 3> m_High;

    static ZULMRSLeafBox Empty()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
    }
    /// Widens the box until it contains a point for certain, if need be to all there is.
    void Include(const ZULMRSPlace& place)
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_Low[axis] = std::min(m_Low[axis], place.m_At[axis] - place.m_Error);
            m_High[axis] = std::max(m_High[axis], place.m_At[axis] + place.m_Error);
        }
    }

    void Include(const ZULMRSLeafBox& other)
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_Low[axis] = std::min(m_Low[axis], other.m_Low[axis]);
            m_High[axis] = std::max(m_High[axis], other.m_High[axis]);
        }
    }

    enum class Position { InFront, Behind, Unknown };

    /// Where the whole box lies with respect to a plane; Unknown also where doubles cannot tell. Proved in
    /// docs/arithmetic.md, "The cutter's doubles".
    Position Locate(const std::array<double, 4>& equation) const
    {
        double least = equation[3];
        double greatest = equation[3];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double atLow = equation[axis] * m_Low[axis];
            const double atHigh = equation[axis] * m_High[axis];
            least += std::min(atLow, atHigh);
            greatest += std::max(atLow, atHigh);
        }
        if (least > 0.0) {
            return least > BoundOfError(equation) ? Position::InFront : Position::Unknown;
        }
        return greatest < 0.0 && greatest < -BoundOfError(equation) ? Position::Behind : Position::Unknown;
    }

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

private:
    double BoundOfError(const std::array<double, 4>& equation) const;
};

#endif
