#ifndef ZULMRSEdgePoints_h
#define ZULMRSEdgePoints_h

#include <cstddef>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"

/// Makes the points at which planes cut edges and sees to it that the end points outlive the factory's entry
/// for them: the factory keys an entry by the addresses of the end points without holding them, so a new
/// point at a recycled address would be taken for an end of the old edge and get a wrong vertex.
class ZULMRSEdgePoints
{
public:
    explicit ZULMRSEdgePoints(ZULMRSBSPObjectFactory& factory) : m_Factory(factory) {}
    ~ZULMRSEdgePoints();
    ZULMRSEdgePoints(const ZULMRSEdgePoints&) = delete;
    ZULMRSEdgePoints& operator=(const ZULMRSEdgePoints&) = delete;

    /// The point at which the plane cuts the edge from start to end, the line in which supporting and edge
    /// meet. Borrowed: it lives at least until the next Compact(). Null when memory is exhausted.
    ZULMRSBSPPoint* Create(ZULMRSBSPPlane* supporting, ZULMRSBSPPlane* edge, ZULMRSBSPPlane* cut,
                           ZULMRSBSPPoint* start, ZULMRSBSPPoint* end);

    /// Lets go of every point that nobody but this table, the factory and points let go of here holds, and
    /// clears the factory.
    void Compact();

    /// True when enough has been created since the last Compact() to make another worth its cost.
    bool IsCompactDue() const { return m_Entries.size() > m_CompactAt; }

private:
    /// One entry of the factory's table: a reference on each of the three.
    struct Entry {
        ZULMRSBSPPoint* m_Point;
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
    };

    static constexpr std::size_t FirstCompactAt = 1U << 16;

    ZULMRSBSPObjectFactory& m_Factory;
    std::vector<Entry> m_Entries;
    std::size_t m_CompactAt = FirstCompactAt;
};

#endif
