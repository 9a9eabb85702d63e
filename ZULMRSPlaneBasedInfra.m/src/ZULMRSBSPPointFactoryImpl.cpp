#include "ZULMRSBSPPointFactoryImpl.h"

#include <algorithm>
#include <chrono>
#include <new>

#include <tbb/parallel_for_each.h>
#include <tbb/task_group.h>

#include "ZULExpFloatStatus.h"
#include "ZULKLOOutput.h"
#include "ZULMRSBSPFactoryReport.h"
#include "ZULMRSBSPSharedPoints.h"
#include "ZULSystem.h"

namespace
{
/// A point with this count or less is dropped by Tass: one holder besides the factory does not keep it.
constexpr std::int32_t LargestCountDropped = 1;

/// MRS_DISABLE_PPL is defined, whatever its value. Asked once per process.
bool IsParallelismDisabled()
{
    static const bool isDisabled = ZULGetEnv("MRS_DISABLE_PPL") != nullptr;
    return isDisabled;
}

/// Counts a point that is still null at the end of its making, be it by an exception.
class FailureCounter
{
public:
    FailureCounter(ZULMRSBSPPoint* const& point, std::atomic<std::uint64_t>& nbFailures)
        : m_Point(point), m_NbFailures(nbFailures)
    {
    }
    ~FailureCounter()
    {
        if (m_Point == nullptr) {
            m_NbFailures.fetch_add(1, std::memory_order_relaxed);
        }
    }
    FailureCounter(const FailureCounter&) = delete;
    FailureCounter& operator=(const FailureCounter&) = delete;

private:
    ZULMRSBSPPoint* const& m_Point;
    std::atomic<std::uint64_t>& m_NbFailures;
};

template <class Table, class Body>
void ForEachEntry(Table& table, const Body& body)
{
    if (IsParallelismDisabled()) {
        std::for_each(table.begin(), table.end(), body);
        return;
    }
    // References must be given back even where the caller's own tasks have been cancelled.
    tbb::task_group_context context(tbb::task_group_context::isolated);
    tbb::parallel_for_each(table, body, context);
}
}  // namespace

ZULMRSBSPPointFactory* ZULMRSCreatePointFactory()
{
    return new (std::nothrow) ZULMRSBSPPointFactoryImpl;
}

ZULMRSBSPPointFactoryImpl::~ZULMRSBSPPointFactoryImpl()
{
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::Statistics{
        "ZULMRSBSPPointFactory", "Points", m_NbPointsRequired.load(), m_NbPointsReused.load(),
        ZULMRSBSPPointFactoryImpl::Size()};
    const auto start = std::chrono::steady_clock::now();
    ForEachEntry(m_TripleTable,
                 [](const TripleTable::value_type& entry) { ZULMRSBSPPoint::ReleaseObject(entry.second); });
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - start);
    const ZULExpFloatScope scope;
    ZULKLOOutput::GetOut() << " ~ZULMRSBSPPointFactoryImpl release time : "
                           << static_cast<float>(static_cast<double>(elapsed.count()) / 1e9) << "\n";
    ZULMRSBSPSharedPoints::ReleasePoints(m_CoordinatesTable);
}

template <class Make>
ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::FindOrMake(const Triple& triple, const Make& make)
{
    m_NbPointsRequired.fetch_add(1, std::memory_order_relaxed);
    const auto makeCounted = [this, &make] {
        ZULMRSBSPPoint* point = nullptr;
        const FailureCounter counter(point, m_NbPointsNotMade);
        point = make();
        return point;
    };
    const ZULMRSBSPSharedPoints::Request request =
        ZULMRSBSPSharedPoints::FindOrMake(m_TripleTable, triple, makeCounted);
    if (!request.m_IsNew) {
        m_NbPointsReused.fetch_add(1, std::memory_order_relaxed);
    }
    return request.m_Point;
}

ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2,
                                                       ZULMRSBSPPlane* p3, const ZULMathPoint* coordinates)
{
    if (coordinates == nullptr) {
        bool isValid = true;
        return CreatePoint({p1, p2, p3}, isValid);
    }
    return FindOrMake({p1, p2, p3}, [&] { return ZULMRSBSPPointNS::CreatePoint(p1, p2, p3, *coordinates); });
}

ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes,
                                                       bool& isValid)
{
    return FindOrMake(planes, [&] {
        return ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], isValid, true);
    });
}

ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::CreatePoint(const ZULMathPoint& coordinates)
{
    m_NbCoordinatePointsRequired.fetch_add(1, std::memory_order_relaxed);
    const Coordinates key = {coordinates.x, coordinates.y, coordinates.z};
    const auto entry = m_CoordinatesTable.find(key);
    if (entry == m_CoordinatesTable.end()) {
        ZULMRSBSPPoint* const point = ZULMRSBSPPointNS::CreatePoint(coordinates);
        return point != nullptr ? Insert(key, point) : nullptr;
    }
    m_NbCoordinatePointsReused.fetch_add(1, std::memory_order_relaxed);
    entry->second->AddRef();
    return entry->second;
}

ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::Insert(const Coordinates& key, ZULMRSBSPPoint* point)
{
    const auto [entry, isNew] = m_CoordinatesTable.insert({key, point});
    if (!isNew) {
        m_NbCoordinatePointsReused.fetch_add(1, std::memory_order_relaxed);
        point->Release();
    }
    entry->second->AddRef();
    return entry->second;
}

ZULMRSBSPPoint* ZULMRSBSPPointFactoryImpl::CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes,
                                                             ZULMRSBSPPoint* start, ZULMRSBSPPoint* end,
                                                             ZULMRSBSPPlane* cuttingPlane)
{
    return m_PointOnEdgeFactory.CreatePointOnEdge(planes, start, end, cuttingPlane);
}

std::uint64_t ZULMRSBSPPointFactoryImpl::Size()
{
    return m_TripleTable.size() - m_NbPointsNotMade.load(std::memory_order_relaxed);
}

ZULMRSErrorTypes ZULMRSBSPPointFactoryImpl::Tass()
{
    const std::uint64_t before = Size();
    TripleTable kept;
    ForEachEntry(m_TripleTable, [&kept](const TripleTable::value_type& entry) {
        ZULMRSBSPPoint* const point = entry.second;
        if (point == nullptr) {
            return;
        }
        if (point->GetRefCount() > LargestCountDropped) {
            kept.insert(entry);  // the table's reference moves with it
        } else {
            point->Release();
        }
    });
    m_TripleTable.swap(kept);
    m_NbPointsNotMade = 0;
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::TassSummary{"ZULMRSBSPPointFactoryImpl", "Points",
                                                                  before, Size()}
                           << "\n";
    m_PointOnEdgeFactory.Tass();
    return ZULMRSNoError;
}
