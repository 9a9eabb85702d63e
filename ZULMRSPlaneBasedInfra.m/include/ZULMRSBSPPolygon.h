#ifndef ZULMRSBSPPolygon_h
#define ZULMRSBSPPolygon_h

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPPolygonEdge.h"
#include "ZULMRSBSPReferenceCount.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathOBB.h"
#include "ZULPooledObject.h"

/// Caller data carried by a polygon and copied by value; the library never interprets it.
struct ZULMRSBSPExtraAttribute {
    std::array<unsigned char, 4> m_Bytes{{0, 0, 0, 0}};
    std::int32_t m_Index = -1;
};

/// A convex planar polygon described by planes: a supporting plane and a loop of edge planes. Vertex i is the
/// meeting point of the supporting plane and edge planes i and i+1 (cyclically); edge i runs from vertex i-1
/// to vertex i. Vertices are made on demand and cached. Orientation i tells on which side of edge plane i the
/// polygon lies: 1 behind it, -1 in front of it, 0 not yet known. The polygon holds a reference on every
/// plane and cached point. Shared and reference counted, created with one owner, destroyed only by the last
/// Release(). Only GetCachedPoint and UpdatePoints may run on one polygon from several threads at once;
/// everything else that changes it needs exclusive access. Positions are not checked unless said. Open to
/// derivation: a derived class sees every boundary through the virtual AddBoundary.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPolygon : public ZULPooledObject
{
public:
    ZULMRSBSPPolygon();
    /// Reserves room for the edges; std::length_error beyond the containers' maximum.
    ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::size_t nbEdges);
    /// Takes the arrays over and references on what they hold; every orientation is unknown.
    ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::vector<ZULMRSBSPPlane*>&& edges,
                     std::vector<ZULMRSBSPPoint*>&& points);
    /// The same with the orientations as given; their number is not checked.
    ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::vector<ZULMRSBSPPlane*>&& edges,
                     std::vector<ZULMRSBSPPoint*>&& points, std::vector<char>&& orientations);
    ZULMRSBSPPolygon(const ZULMRSBSPPolygon&) = delete;
    ZULMRSBSPPolygon& operator=(const ZULMRSBSPPolygon&) = delete;

    // === Loop

    /// Reserves room in the edges array only.
    virtual void ReserveNbEdges(std::size_t nbEdges);
    /// Appends each plane with an unknown orientation, through the virtual AddBoundary.
    virtual void AddBoundaries(const std::vector<ZULMRSBSPPlane*>& planes);
    /// Overwrites one position, which must not hold a reference yet: what stands there is not released. Null
    /// is ignored.
    virtual void AddBoundary(ZULMRSBSPPlane* plane, std::size_t position, char orientation);
    /// Appends an edge plane. Null is ignored.
    virtual void AddBoundary(ZULMRSBSPPlane* plane, char orientation);
    /// Reverses the loop and its vertices; edge 0 keeps its place and the orientations stay where they are. A
    /// polygon without points reverses its edges alone. Always ZULMRSNoError.
    virtual ZULMRSErrorTypes ReverseLoop();
    /// Reverses edges and orientations, the last edge first; the vertices stay and no longer match. Always
    /// ZULMRSNoError.
    virtual ZULMRSErrorTypes ReverseLoopWithoutPoint();

    // === Access

    ZULMRSBSPPlane* GetSupportingPlane() const { return m_SupportingPlane; }
    /// Exchanges the supporting plane with its reference; cached vertices stay.
    void SetSupportingPlane(ZULMRSBSPPlane* plane);
    std::size_t GetNbEdges() const { return m_Edges.size(); }
    std::size_t GetNbPoints() const { return m_Points.size(); }
    const ZULMRSBSPPlane* GetEdge(std::size_t position) const { return m_Edges[position]; }
    /// The arrays themselves. Who changes a length through them answers for the references, and calls
    /// ResizePoints before threads share the polygon again.
    std::vector<ZULMRSBSPPlane*>& GetAllEdges() { return m_Edges; }
    const std::vector<ZULMRSBSPPlane*>& GetAllEdges() const { return m_Edges; }
    std::vector<char>& GetAllEdgeOrientations() { return m_Orientations; }
    const std::vector<char>& GetAllEdgeOrientations() const { return m_Orientations; }
    std::vector<ZULMRSBSPPoint*>& GetPoints() { return m_Points; }
    const std::vector<ZULMRSBSPPoint*>& GetPoints() const { return m_Points; }
    const ZULMRSBSPExtraAttribute& GetAttribute() const { return m_Attribute; }
    void SetAttribute(const ZULMRSBSPExtraAttribute& attribute) { m_Attribute = attribute; }
    /// Bytes of the object and of the reserved slots of edges and points.
    std::uint32_t EstimateInternalSize() const;

    // === Edges and vertices

    /// The orientation of an edge, computed and kept when unknown, which needs the points; 0 when every
    /// vertex lies on the edge plane.
    char GetEdgeOrientation(std::size_t position);
    /// Vertex i, made when missing; null when it cannot be made or the loop has no edge i. The polygon keeps
    /// the reference. Safe from several threads at once, which then all get the same point.
    ZULMRSBSPPoint* GetCachedPoint(std::size_t position);
    /// Fills an empty slot, taking a reference; a slot that holds a point is left alone, and so is a position
    /// outside the loop.
    void SetCachedPoint(std::size_t position, ZULMRSBSPPoint* point);
    /// Gives an empty points array one null slot per edge.
    void ResizePoints();
    /// The edge that ends at vertex i, in loop direction; both ends null without points.
    ZULMRSBSPPolygonEdge GetPolygonEdge(std::size_t position) const;
    /// All edges, edge 0 first, in loop direction or, when not oriented, each with the lower address first.
    std::vector<ZULMRSBSPPolygonEdge> GetAllPolygonEdges(bool oriented) const;
    /// The position of an edge that was built sorted; false, and position untouched, when it is not in the
    /// loop.
    bool FindEdgePosition(const ZULMRSBSPPolygonEdge& edge, std::size_t& position) const;
    /// The position of an edge given in either direction; -1 when it is not in the loop.
    int GetEdgePosition(const ZULMRSBSPPolygonEdge& edge) const;
    /// The first position of an edge plane, by its address; false, and position untouched, when it has none.
    bool FindEdgePosition(const ZULMRSBSPPlane* plane, std::size_t& position) const;
    /// The same for a cached vertex.
    bool FindPointPosition(const ZULMRSBSPPoint* point, std::size_t& position) const;

    // === Maintenance of the vertices

    /// Makes every missing vertex, in parallel, when there are not as many slots as edges (missing slots are
    /// added); a cache of the right length is not looked at. Safe from several threads at once. Always
    /// ZULMRSNoError.
    ZULMRSErrorTypes UpdatePoints();
    /// Inserts a vertex, an edge plane and its orientation at one position, taking references; the vertex
    /// ends the new edge and starts the one that stood there. ZULMRSErrorInvalidInput, and nothing changed,
    /// when the point or the plane is null or an array ends before the position.
    ZULMRSErrorTypes InsertPointOnEdge(std::size_t position, ZULMRSBSPPoint* point, ZULMRSBSPPlane* plane,
                                       char orientation);
    /// Removes the vertices given, with the edges at their positions. Their references stay counted: the
    /// caller answers for them. Always ZULMRSNoError.
    ZULMRSErrorTypes RemovePoints(const std::vector<ZULMRSBSPPoint*>& points);
    /// Puts another point in every slot of the old one; exactly one reference changes hands, found or not.
    /// Null is ignored.
    void ReplacePoint(ZULMRSBSPPoint* oldPoint, ZULMRSBSPPoint* newPoint);
    /// Releases and drops all cached vertices.
    void DEBUG_ClearAllPoints();
    /// Reports parallel boundaries on the diagnostic stream and returns how many it found.
    int Check() const;

    // === Box

    /// A box round the polygon, as thin as 0.02 along the supporting plane's normal: axes U and V in the
    /// plane, W along the normal, centre at the mean of the vertices, extents with a margin of 0.01.
    /// Approximate, from rounded vertices; along U and V it reaches as far as the projection of the origin.
    /// Makes missing vertices, as UpdatePoints. ZULMRSErrorInvalidInput, the box unchanged, without a
    /// supporting plane or when a vertex is missing.
    ZULMRSErrorTypes GetOBB(ZULMathOBB& box);

    // === Sharing

    void AddRef() { m_Count.Add(); }
    /// Lets go of one ownership; the last one destroys the object.
    void Release()
    {
        if (m_Count.Drop()) {
            delete this;
        }
    }
    static void ReleaseObject(ZULMRSBSPPolygon* object) { ZULMRSBSPReference::Release(object); }
    /// Exchanges the object held by a slot; null is allowed on both sides. Two threads must not use one slot
    /// at once.
    static void Replace(ZULMRSBSPPolygon*& slot, ZULMRSBSPPolygon* object)
    {
        ZULMRSBSPReference::Replace(slot, object);
    }
    /// Number of owners minus one.
    std::int32_t GetRefCount() const { return m_Count.Get(); }

protected:
    virtual ~ZULMRSBSPPolygon();

private:
    class PointsGuard;

    void AcquireLockForUpdatePoints();
    void ReleaseLockForUpdatePoints();
    bool ArePointSlotsSettled() const;
    void UnsettlePointSlots();
    void AddMissingPointSlots();
    ZULMRSBSPPoint* LoadPoint(std::size_t position);
    void StorePoint(std::size_t position, ZULMRSBSPPoint* point);
    void CreateMissingPoints();
    void CreateBlockOfPoints(std::uint32_t block, std::uint32_t nbEdges);
    char ComputeEdgeOrientation(std::size_t position) const;
    ZULMRSBSPPoint* CreateVertex(std::size_t position) const;

    ZULMRSBSPReferenceCount m_Count;
    /// Bit 0: a thread fills the points. Bit 1: the points array has all its slots, so that a reader without
    /// the lock may look at its length.
    std::atomic<std::int32_t> m_PointsLock;
    ZULMRSBSPPlane* m_SupportingPlane;
    std::vector<ZULMRSBSPPlane*> m_Edges;
    std::vector<ZULMRSBSPPoint*> m_Points;
    std::vector<char> m_Orientations;
    ZULMRSBSPExtraAttribute m_Attribute;

    /// Constructions since load; plain and unsynchronised, a diagnostic only.
    static unsigned int m_GID;
    friend struct ZULMRSBSPInstanceCounters;
};

#endif
