#ifndef ZULMRSCellProbe_h
#define ZULMRSCellProbe_h

#include <cstddef>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSEdgePoints.h"
#include "ZULMRSPointSides.h"

/// A plane and the side of it that a tool leaves alone: with sign 1 in front of it, with -1 behind it.
struct ZULMRSSidedPlane {
    ZULMRSBSPPlane* m_Plane;
    int m_Sign;
};

/// Finds out what a convex tool does to a cell before the cell is touched, by clipping a copy of its loops:
/// whether they have an inside in common at all, and which of the tool's planes bound it. Cutting by these
/// alone leaves the fewest pieces.
class ZULMRSCellProbe
{
public:
    explicit ZULMRSCellProbe(ZULMRSEdgePoints& edgePoints) : m_EdgePoints(edgePoints) {}

    /// Keeps of the given planes, each of which crosses the cell, those that bound the common part, in their
    /// order. False when there is no common inside.
    bool Run(const ZULMRSBSPPolyhedron& cell, std::vector<ZULMRSSidedPlane>& planes);

private:
    struct Corner {
        ZULMRSBSPPoint* m_Point;  // the end of the edge
        ZULMRSBSPPlane* m_Edge;
    };
    /// A face, its loop positive seen from outside.
    struct Loop {
        ZULMRSBSPPlane* m_Plane = nullptr;
        std::vector<Corner> m_Corners;
    };

    void Load(const ZULMRSBSPPolyhedron& cell);
    bool Clip(const ZULMRSSidedPlane& plane);
    void ClipLoop(const Loop& loop, const ZULMRSSidedPlane& plane);
    void CloseWithWall(ZULMRSBSPPlane* plane);
    Loop& NextLoop(ZULMRSBSPPlane* plane);

    ZULMRSEdgePoints& m_EdgePoints;
    ZULMRSPointSides m_Sides;
    // Loops beyond the number in use keep their memory for the next cell.
    std::vector<Loop> m_Loops;
    std::vector<Loop> m_Clipped;
    std::size_t m_NbLoops = 0;
    std::size_t m_NbClipped = 0;

    struct WallEdge {
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
        ZULMRSBSPPlane* m_Plane;
    };
    std::vector<WallEdge> m_WallEdges;
};

#endif
