#ifndef ZULMRSBSPPolygonEdge_h
#define ZULMRSBSPPolygonEdge_h

#include <array>
#include <functional>
#include <utility>

#include "ZULMRSBSPPoint.h"

/// Names an edge of a polygon by its two end points, which it does not own. Edges are the same when they hold
/// the same points in the same order; nothing is compared geometrically. A plain value.
class ZULMRSBSPPolygonEdge
{
public:
    using Points = std::array<const ZULMRSBSPPoint*, 2>;

    /// Both ends null.
    ZULMRSBSPPolygonEdge() : m_Points{nullptr, nullptr} {}
    /// With sort, the end of the lower address comes first: a key that does not depend on the loop's
    /// direction.
    ZULMRSBSPPolygonEdge(const ZULMRSBSPPoint* first, const ZULMRSBSPPoint* second, bool sort)
        : m_Points{first, second}
    {
        if (sort && std::less<const ZULMRSBSPPoint*>()(second, first)) {
            SwapPoints();
        }
    }

    friend bool operator==(const ZULMRSBSPPolygonEdge& a, const ZULMRSBSPPolygonEdge& b)
    {
        return a.m_Points == b.m_Points;
    }
    friend bool operator!=(const ZULMRSBSPPolygonEdge& a, const ZULMRSBSPPolygonEdge& b) { return !(a == b); }
    /// By the addresses, first ends first.
    friend bool operator<(const ZULMRSBSPPolygonEdge& a, const ZULMRSBSPPolygonEdge& b)
    {
        const std::less<const ZULMRSBSPPoint*> before;
        return a.m_Points[0] != b.m_Points[0] ? before(a.m_Points[0], b.m_Points[0])
                                              : before(a.m_Points[1], b.m_Points[1]);
    }

    /// The end 0 or 1; null for any other index.
    ZULMRSBSPPoint* operator[](unsigned int index) const
    {
        return index < 2 ? const_cast<ZULMRSBSPPoint*>(m_Points[index]) : nullptr;
    }

    /// True when at least one end is null.
    bool IsNull() const { return m_Points[0] == nullptr || m_Points[1] == nullptr; }
    /// True when both ends are the same point (two nulls included). Spelt so.
    bool IsPonctual() const { return m_Points[0] == m_Points[1]; }
    void SwapPoints() { std::swap(m_Points[0], m_Points[1]); }

    Points::iterator begin() { return m_Points.begin(); }
    Points::iterator end() { return m_Points.end(); }
    Points::const_iterator begin() const { return m_Points.begin(); }
    Points::const_iterator end() const { return m_Points.end(); }
    Points::const_iterator cbegin() const { return m_Points.cbegin(); }
    Points::const_iterator cend() const { return m_Points.cend(); }

private:
    Points m_Points;
};

#endif
