#include "MillDecisions.h"

#include "ZULMRSBSPStageStatistics.h"

MillDecisions CollectDecisions()
{
    const ZULMRSBSPStageStatistics statistics = ZULMRSBSPStageStatistics::Get();
    return {statistics.m_Shortcut, statistics.m_Filter, statistics.m_Interval, statistics.m_Exact};
}
