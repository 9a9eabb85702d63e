#ifndef ZULMRSBSPPolyhedron_h
#define ZULMRSBSPPolyhedron_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tbb/cache_aligned_allocator.h>
#include <tbb/concurrent_vector.h>

#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolygonEdge.h"
#include "ZULMRSBSPReferenceCount.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathOBB.h"
#include "ZULMathPoint.h"
#include "ZULMathVector.h"
#include "ZULPooledObject.h"

class ZULMRSBSPObjectFactory;

/// A closed solid: polygons, each with an orientation (1: the positive side of its supporting plane is
/// outside; -1: the negative side). Several polyhedra may hold one polygon. The polyhedron holds a reference
/// on each polygon and never stores a null one. Shared and reference counted, created with one owner,
/// destroyed only by the last Release(). Not synchronised: one polyhedron must not change while another
/// thread reads it. Positions are not checked. Open to derivation.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPolyhedron : public ZULPooledObject
{
public:
    using Face = std::pair<ZULMRSBSPPolygon*, char>;
    using PolygonIterator = std::vector<ZULMRSBSPPolygon*>::iterator;
    using PolygonConstIterator = std::vector<ZULMRSBSPPolygon*>::const_iterator;

    ZULMRSBSPPolyhedron();
    ZULMRSBSPPolyhedron(const ZULMRSBSPPolyhedron& other);
    /// All faces of all parts, duplicates kept; null parts are skipped. Not counted as a construction.
    explicit ZULMRSBSPPolyhedron(const std::vector<ZULMRSBSPPolyhedron*>& parts);
    /// The six faces of a box; planes and corners come from the factory, or are unshared when it is null. A
    /// plane that the factory refuses is missing from the loops, and the faces that need its corners have no
    /// cached points.
    ZULMRSBSPPolyhedron(const ZULMathOBB& box, ZULMRSBSPObjectFactory* factory);
    /// Copies the faces, taking references; the faces held before are not released (their references pass to
    /// the caller, in a self-assignment too) and the count is not copied.
    ZULMRSBSPPolyhedron& operator=(const ZULMRSBSPPolyhedron& other);

    // === Faces

    /// Null is ignored.
    void AddAPolygon(ZULMRSBSPPolygon* polygon, char orientation);
    /// Appends in order; null polygons are skipped with their orientation.
    void AddPolygons(const std::vector<Face>& faces);
    /// Appends in reverse order, orientations negated when reverse is true. Nothing is added when there are
    /// fewer orientations than polygons.
    void AddPolygons(const std::vector<ZULMRSBSPPolygon*>& polygons, const std::vector<char>& orientations,
                     bool reverse);
    /// As for a vector; no thread may still be adding to the faces.
    void AddPolygons(const tbb::concurrent_vector<Face, tbb::cache_aligned_allocator<Face>>& faces);
    /// Removes the first occurrence and releases its reference.
    void RemovePolygon(ZULMRSBSPPolygon* polygon);
    /// Replaces all faces. On a polyhedron that has faces, the references that the caller holds on the given
    /// polygons pass to the polyhedron, and its references on the faces dropped pass to the caller; an empty
    /// polyhedron takes references of its own.
    void ReplacePolygons(const std::vector<Face>& faces);
    /// Negates every orientation.
    void ReversePolygonsOrientation();

    // === Access

    std::size_t GetNbPolygons() const { return m_Polygons.size(); }
    ZULMRSBSPPolygon* GetPolygon(int position) const
    {
        return m_Polygons[static_cast<std::size_t>(position)];
    }
    ZULMRSBSPPolygon* GetPolygon(std::size_t position) const { return m_Polygons[position]; }
    char GetPolygonOrientation(int position) const
    {
        return m_Orientations[static_cast<std::size_t>(position)];
    }
    char GetPolygonOrientation(std::size_t position) const { return m_Orientations[position]; }
    std::vector<ZULMRSBSPPolygon*>& GetPolygons() { return m_Polygons; }
    const std::vector<ZULMRSBSPPolygon*>& GetPolygons() const { return m_Polygons; }
    std::vector<char>& GetPolygonsOrientations() { return m_Orientations; }
    const std::vector<char>& GetPolygonsOrientations() const { return m_Orientations; }
    PolygonIterator GetBeginPolygonIterator() { return m_Polygons.begin(); }
    PolygonIterator GetEndPolygonIterator() { return m_Polygons.end(); }

    /// The first position of a polygon, by its address; false, and position untouched, when it is none.
    bool FindPolygonPosition(const ZULMRSBSPPolygon* polygon, std::size_t& position) const;
    /// By identity of the plane object; the end iterator for null or none. Spelt so.
    PolygonConstIterator FindPolygonWithSuppportingPlane(const ZULMRSBSPPlane* plane) const;
    /// The first polygon but the excluded one that has the edge, which must be built sorted; position is the
    /// edge's index in it.
    PolygonConstIterator FindPolygonSharingEdge(const ZULMRSBSPPolygonEdge& edge, std::size_t& position,
                                                ZULMRSBSPPolygon* excluded) const;
    /// Bytes of the object and of the reserved slots.
    std::uint32_t EstimateInternalSize() const;

    // === Queries; cached points are read as they are, results hold no references

    /// Adds to the map, for each vertex, the faces round it. ZULMRSErrorPointsNotUpdated at the first missing
    /// point.
    ZULMRSErrorTypes BuildOneRingOfVertices(
        std::unordered_map<ZULMRSBSPPoint*, std::vector<ZULMRSBSPPolygon*>>& ring) const;
    /// Adds all edge planes to the set. Always ZULMRSNoError.
    ZULMRSErrorTypes ComputeAllEdges(std::unordered_set<ZULMRSBSPPlane*>& edgePlanes) const;
    /// Every cached vertex once, null among them when one is missing.
    std::unordered_set<ZULMRSBSPPoint*> GetAllPoints() const;
    /// The faces in order; none when orientations are missing.
    std::vector<Face> GetAllPolygonsAndOrientations() const;
    /// Exact for convex solids; the boundary counts as inside, a null point outside. A face without
    /// supporting plane bounds nothing. std::out_of_range when orientations are missing.
    bool PointIsInside(const ZULMathPoint& point) const;
    /// The same for a point of planes.
    bool PointIsInside(const ZULMRSBSPPoint* point) const;
    /// A box round all vertices, with a margin of 2.25 times the largest error of a point; 1.5 times that
    /// error goes to error unless it is null. Makes missing points. A default box when there is no point or
    /// fitting fails.
    ZULMathOBB GetOBB(double* error);
    /// Supporting planes bounding the solid: against first, along first, along D3, against D3, along D2,
    /// against D2, where (D2, D3) completes first to a basis, or is (second, first x second) when the two are
    /// nearly parallel. "Along" is the plane's own normal, whatever the face's orientation. No references are
    /// taken. All null when no face has a supporting plane.
    std::array<ZULMRSBSPPlane*, 6> GetBoundingPlanes(const ZULMathVector& first,
                                                     const ZULMathVector& second) const;

    // === Sharing

    void AddRef() { m_Count.Add(); }
    /// Lets go of one ownership; the last one destroys the object.
    void Release()
    {
        if (m_Count.Drop()) {
            delete this;
        }
    }
    static void ReleaseObject(ZULMRSBSPPolyhedron* object) { ZULMRSBSPReference::Release(object); }
    /// Exchanges the object held by a slot; null is allowed on both sides. Two threads must not use one slot
    /// at once.
    static void Replace(ZULMRSBSPPolyhedron*& slot, ZULMRSBSPPolyhedron* object)
    {
        ZULMRSBSPReference::Replace(slot, object);
    }
    /// Number of owners minus one.
    std::int32_t GetRefCount() const { return m_Count.Get(); }

protected:
    virtual ~ZULMRSBSPPolyhedron();

private:
    void ReserveMore(std::size_t nbPolygons);
    void InitFromOBB(const ZULMathOBB& box, ZULMRSBSPObjectFactory* factory);

    std::vector<ZULMRSBSPPolygon*> m_Polygons;
    std::vector<char> m_Orientations;
    ZULMRSBSPReferenceCount m_Count;

    /// Constructions since load, starting at one; plain and unsynchronised, a diagnostic only.
    static unsigned int m_GID;
    friend struct ZULMRSBSPInstanceCounters;
};

#endif
