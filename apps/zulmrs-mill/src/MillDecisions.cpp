#include "MillDecisions.h"

#include "ZULMRSBSPStageStatistics.h"

namespace
{
MillStageCounts ToCounts(const ZULMRSBSPStageStatistics& statistics)
{
    return {statistics.m_Shortcut, statistics.m_Filter, statistics.m_Interval, statistics.m_Exact};
}

bool HasDecided(const MillStageCounts& counts)
{
    return (counts.m_Shortcut | counts.m_Filter | counts.m_Interval | counts.m_Exact) != 0;
}
}  // namespace

MillDecisions CollectDecisions()
{
    MillDecisions decisions;
    decisions.m_All = ToCounts(ZULMRSBSPStageStatistics::Get());
    for (unsigned int i = 0; i < ZULMRSBSPStageStatistics::NbPredicates; ++i) {
        const auto predicate = static_cast<ZULMRSBSPPredicate>(i);
        const MillStageCounts counts = ToCounts(ZULMRSBSPStageStatistics::Get(predicate));
        if (HasDecided(counts)) {
            decisions.m_ByPredicate.emplace(ZULMRSBSPStageStatistics::GetName(predicate), counts);
        }
    }
    return decisions;
}
