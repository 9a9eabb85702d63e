#include "ZULMRSBSPPointOnEdgeFactory.h"

#include <algorithm>
#include <functional>

#include "ZULMRSBSPFactoryReport.h"
#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPReport.h"
#include "ZULMRSBSPSharedPoints.h"

namespace
{
ZULMRSBSPPointOnEdgeFactory::Key MakeKey(ZULMRSBSPPoint* start, ZULMRSBSPPoint* end,
                                         ZULMRSBSPPlane* cuttingPlane)
{
    const auto [low, high] = std::minmax(start, end, std::less<ZULMRSBSPPoint*>());
    return {low, high, cuttingPlane};
}
}  // namespace

std::size_t ZULMRSBSPPointOnEdgeFactory::KeyHash::operator()(const Key& key) const
{
    return ZULMRSBSPHash::OfPointers(std::get<0>(key), std::get<1>(key));
}

ZULMRSBSPPointOnEdgeFactory::ZULMRSBSPPointOnEdgeFactory() = default;

ZULMRSBSPPointOnEdgeFactory::~ZULMRSBSPPointOnEdgeFactory()
{
    ZULMRSBSPSharedPoints::ReleasePoints(m_Table);
}

ZULMRSBSPPoint* ZULMRSBSPPointOnEdgeFactory::CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes,
                                                               ZULMRSBSPPoint* start, ZULMRSBSPPoint* end,
                                                               ZULMRSBSPPlane* cuttingPlane)
{
    const auto make = [&planes] {
        bool isValid = false;
        return ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], isValid, true);
    };
    return ZULMRSBSPSharedPoints::FindOrMake(m_Table, MakeKey(start, end, cuttingPlane), make).m_Point;
}

ZULMRSErrorTypes ZULMRSBSPPointOnEdgeFactory::Tass()
{
    const std::uint64_t before = Size();
    for (auto entry = m_Table.begin(); entry != m_Table.end();) {
        ZULMRSBSPPoint* const point = entry->second;
        if (point != nullptr && point->GetRefCount() != 0) {
            ++entry;
            continue;
        }
        ZULMRSBSPPoint::ReleaseObject(point);
        entry = m_Table.unsafe_erase(entry);
    }
    ZULMRSBSPReport::Information(
        ZULMRSBSPFactoryReport::TassSummary{"ZULMRSBSPPointOnEdgeFactory", "Points", before, Size()});
    return ZULMRSNoError;
}

std::uint64_t ZULMRSBSPPointOnEdgeFactory::Size() const
{
    const auto nbPoints = std::count_if(m_Table.begin(), m_Table.end(), [](const Table::value_type& entry) {
        return entry.second != nullptr;
    });
    return static_cast<std::uint64_t>(nbPoints);
}

ZULMRSBSPPointOnEdgeFactory::Table::iterator ZULMRSBSPPointOnEdgeFactory::begin()
{
    return m_Table.begin();
}

ZULMRSBSPPointOnEdgeFactory::Table::iterator ZULMRSBSPPointOnEdgeFactory::end()
{
    return m_Table.end();
}

ZULMRSBSPPointOnEdgeFactory::Table::const_iterator ZULMRSBSPPointOnEdgeFactory::cbegin() const
{
    return m_Table.cbegin();
}

ZULMRSBSPPointOnEdgeFactory::Table::const_iterator ZULMRSBSPPointOnEdgeFactory::cend() const
{
    return m_Table.cend();
}

ZULMRSBSPPointOnEdgeFactory::Table::iterator begin(ZULMRSBSPPointOnEdgeFactory& factory)
{
    return factory.begin();
}

ZULMRSBSPPointOnEdgeFactory::Table::iterator end(ZULMRSBSPPointOnEdgeFactory& factory)
{
    return factory.end();
}

ZULMRSBSPPointOnEdgeFactory::Table::const_iterator cbegin(const ZULMRSBSPPointOnEdgeFactory& factory)
{
    return factory.cbegin();
}

ZULMRSBSPPointOnEdgeFactory::Table::const_iterator cend(const ZULMRSBSPPointOnEdgeFactory& factory)
{
    return factory.cend();
}
