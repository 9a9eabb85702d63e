#ifndef ZULMRSBSPPointOnEdgeFactory_h
#define ZULMRSBSPPointOnEdgeFactory_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>

#include <tbb/concurrent_unordered_map.h>
#include <tbb/tbb_allocator.h>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMRSPlaneBasedInfraExport.h"

/// Shares the points at which planes cut edges, so that all polygons round an edge get the same new point.
/// The table holds one reference on each point, and none on the end points in its keys: they must outlive
/// every entry that names them.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPointOnEdgeFactory
{
public:
    /// Lower end point, higher end point (by address), cutting plane.
    using Key = std::tuple<ZULMRSBSPPoint*, ZULMRSBSPPoint*, ZULMRSBSPPlane*>;
    /// The cutting plane takes no part.
    struct KeyHash {
        /// A hash of the two end points.
        std::size_t operator()(const Key& key) const;
    };
    using Table = tbb::concurrent_unordered_map<Key, ZULMRSBSPPoint*, KeyHash, std::equal_to<Key>,
                                                tbb::tbb_allocator<std::pair<const Key, ZULMRSBSPPoint*>>>;

    ZULMRSBSPPointOnEdgeFactory();
    ZULMRSBSPPointOnEdgeFactory(const ZULMRSBSPPointOnEdgeFactory&) = delete;
    ZULMRSBSPPointOnEdgeFactory& operator=(const ZULMRSBSPPointOnEdgeFactory&) = delete;
    /// Releases the points of the table.
    virtual ~ZULMRSBSPPointOnEdgeFactory();

    /// The shared point of the edge (its end points in either order) and the cutting plane, with one
    /// reference for the caller; made from the three planes when new. Null when it cannot be made. Safe from
    /// many threads at once.
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes, ZULMRSBSPPoint* start,
                                      ZULMRSBSPPoint* end, ZULMRSBSPPlane* cuttingPlane);

    /// Drops the points that nobody else holds; writes one line. Not while points are being created. Always
    /// ZULMRSNoError.
    ZULMRSErrorTypes Tass();

    /// Number of points in the table.
    std::uint64_t Size() const;

    /// The entries, in no order; not while points are being created.
    Table::iterator begin();
    /// Past the last entry.
    Table::iterator end();
    /// As begin(), read only.
    Table::const_iterator cbegin() const;
    /// As end(), read only.
    Table::const_iterator cend() const;

private:
    Table m_Table;
};

/// The member of the same name.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPointOnEdgeFactory::Table::iterator begin(
    ZULMRSBSPPointOnEdgeFactory& factory);
/// The member of the same name.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPointOnEdgeFactory::Table::iterator end(
    ZULMRSBSPPointOnEdgeFactory& factory);
/// The member of the same name.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPointOnEdgeFactory::Table::const_iterator cbegin(
    const ZULMRSBSPPointOnEdgeFactory& factory);
/// The member of the same name.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPointOnEdgeFactory::Table::const_iterator cend(
    const ZULMRSBSPPointOnEdgeFactory& factory);

#endif
