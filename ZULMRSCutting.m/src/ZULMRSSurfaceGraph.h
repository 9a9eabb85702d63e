#ifndef ZULMRSSurfaceGraph_h
#define ZULMRSSurfaceGraph_h

#include <cstdint>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSEdgeGroups.h"

/// The surface of a set of cells as loops of half-edges that run counter-clockwise seen from outside. Loops
/// are convex and planar. Everything is numbered in the order in which the cells name it. Objects are
/// borrowed from the cells.
struct ZULMRSSurfaceGraph {
    static constexpr std::uint32_t None = ZULMRSEdgeGroups::NoPartner;

    struct HalfEdge {
        std::uint32_t m_Origin;    ///< point number
        std::uint32_t m_Next;      ///< along the loop; None once the half-edge is gone
        std::uint32_t m_Previous;  ///< along the loop
        std::uint32_t m_Twin;      ///< the one half-edge that runs against this one; None when not unique
        std::uint32_t m_Face;      ///< the face that it was made for
        const ZULMRSBSPPlane* m_Plane;     ///< a plane that cuts the face's plane along the half-edge
        signed char m_Side = UnknownSide;  ///< side of m_Plane on which the face lies: 1 in front, -1 behind
    };

    struct Face {
        const ZULMRSBSPPlane* m_Plane;
        signed char m_Orientation;  ///< 1: the plane's front is outside, -1: its back
        std::uint32_t m_Region;     ///< the lowest face of the same connected flat part of the surface
    };

    static constexpr signed char UnknownSide = 0;

    std::vector<const ZULMRSBSPPoint*> m_Points;
    std::vector<HalfEdge> m_HalfEdges;
    std::vector<Face> m_Faces;

    std::uint32_t GetEnd(std::uint32_t halfEdge) const
    {
        return m_HalfEdges[m_HalfEdges[halfEdge].m_Next].m_Origin;
    }
    void Link(std::uint32_t first, std::uint32_t second)
    {
        m_HalfEdges[first].m_Next = second;
        m_HalfEdges[second].m_Previous = first;
    }
};

/// A polygon and the orientation with which a cell holds it (1: the front of its plane is outside, -1: the
/// back).
struct ZULMRSSurfacePolygon {
    const ZULMRSBSPPolygon* m_Polygon;
    signed char m_Orientation;
};

/// The polygons that one cell only holds, in the order in which the cells name them.
std::vector<ZULMRSSurfacePolygon> ZULMRSFindSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells);

/// The graph of these polygons, each of which is given once. A polygon with a missing plane or vertex, and
/// one without an orientation, is left out.
ZULMRSSurfaceGraph ZULMRSBuildSurfaceGraph(const std::vector<ZULMRSSurfacePolygon>& polygons);

/// Joins coplanar neighbours wherever the union is convex, and finds the regions. Where more than two faces
/// meet in an edge, nothing is joined across it.
void ZULMRSJoinCoplanarFaces(ZULMRSSurfaceGraph& graph);

/// Leaves out every vertex that all loops through it pass straight on, between the same two neighbours. Twins
/// are no longer valid after it.
void ZULMRSRemoveStraightVertices(ZULMRSSurfaceGraph& graph);

/// Whether the loop goes straight on where a half-edge ends and the next begins.
bool ZULMRSIsStraight(const ZULMRSSurfaceGraph& graph, std::uint32_t incoming);

#endif
