#ifndef ZULMRSBSPPointFactoryImpl_h
#define ZULMRSBSPPointFactoryImpl_h

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include <tbb/concurrent_unordered_map.h>
#include <tbb/tbb_allocator.h>

#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPPointFactory.h"
#include "ZULMRSBSPPointOnEdgeFactory.h"

/// The point factory. The creation operations are safe from many threads at once and take no lock; the other
/// operations must run alone.
class ZULMRSBSPPointFactoryImpl : public ZULMRSBSPPointFactory
{
public:
    ZULMRSBSPPointFactoryImpl() = default;
    ZULMRSBSPPointFactoryImpl(const ZULMRSBSPPointFactoryImpl&) = delete;
    ZULMRSBSPPointFactoryImpl& operator=(const ZULMRSBSPPointFactoryImpl&) = delete;
    /// Writes the statistics and releases every point.
    ~ZULMRSBSPPointFactoryImpl() override;

    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                const ZULMathPoint* coordinates) override;
    ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) override;
    ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) override;
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes, ZULMRSBSPPoint* start,
                                      ZULMRSBSPPoint* end, ZULMRSBSPPlane* cuttingPlane) override;
    std::uint64_t Size() override;
    ZULMRSErrorTypes Tass() override;

private:
    /// Three planes in the caller's order.
    using Triple = std::array<ZULMRSBSPPlane*, 3>;
    struct TripleHash {
        std::size_t operator()(const Triple& triple) const
        {
            return ZULMRSBSPHash::OfPointers(triple[0], triple[1], triple[2]);
        }
    };
    using Coordinates = std::array<double, 3>;
    struct CoordinatesHash {
        std::size_t operator()(const Coordinates& coordinates) const
        {
            return ZULMRSBSPHash::OfDoubles(coordinates[0], coordinates[1], coordinates[2]);
        }
    };
    template <class Key, class Hash>
    using Table = tbb::concurrent_unordered_map<Key, ZULMRSBSPPoint*, Hash, std::equal_to<Key>,
                                                tbb::tbb_allocator<std::pair<const Key, ZULMRSBSPPoint*>>>;
    using TripleTable = Table<Triple, TripleHash>;
    using CoordinatesTable = Table<Coordinates, CoordinatesHash>;

    template <class Make>
    ZULMRSBSPPoint* FindOrMake(const Triple& triple, const Make& make);
    /// Adds a new point to the coordinate table; of two threads that race, both get the one that stays.
    ZULMRSBSPPoint* Insert(const Coordinates& key, ZULMRSBSPPoint* point);

    TripleTable m_TripleTable;
    CoordinatesTable m_CoordinatesTable;
    ZULMRSBSPPointOnEdgeFactory m_PointOnEdgeFactory;
    std::atomic<std::uint32_t> m_NbPointsRequired{0};
    std::atomic<std::uint32_t> m_NbCoordinatePointsRequired{0};
    std::atomic<std::uint32_t> m_NbPointsReused{0};
    std::atomic<std::uint32_t> m_NbCoordinatePointsReused{0};
    std::atomic<std::uint64_t> m_NbPointsNotMade{0};  // entries without a point in the plane-triple table
};

#endif
