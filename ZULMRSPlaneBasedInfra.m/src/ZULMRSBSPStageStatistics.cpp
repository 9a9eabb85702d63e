#include "ZULMRSBSPStageStatistics.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "ZULMRSBSPStageCounters.h"

namespace
{
/// The counters of the living threads, and what ended ones have left. Never destroyed: threads may outlive
/// static objects.
struct Registry {
    std::mutex m_Guard;
    std::vector<const ZULMRSBSPStageCounters*> m_Living;
    ZULMRSBSPStageCounters::Sums m_Ended{};
};

Registry& TheRegistry()
{
    static Registry* registry = new Registry;
    return *registry;
}
}  // namespace

ZULMRSBSPStageCounters::ZULMRSBSPStageCounters()
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.m_Guard);
    registry.m_Living.push_back(this);
}

ZULMRSBSPStageCounters::~ZULMRSBSPStageCounters()
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.m_Guard);
    AddTo(registry.m_Ended);
    registry.m_Living.erase(std::find(registry.m_Living.begin(), registry.m_Living.end(), this));
}

ZULMRSBSPStageCounters& ZULMRSBSPStageCounters::OfThisThread()
{
    static thread_local ZULMRSBSPStageCounters counters;
    return counters;
}

void ZULMRSBSPStageCounters::AddTo(Sums& sums) const
{
    for (std::size_t stage = 0; stage < NbStages; ++stage) {
        sums[stage] += m_Counts[stage].load(std::memory_order_relaxed);
    }
}

ZULMRSBSPStageCounters::Sums ZULMRSBSPStageCounters::SumOverThreads()
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.m_Guard);
    Sums sums = registry.m_Ended;
    for (const ZULMRSBSPStageCounters* counters : registry.m_Living) {
        counters->AddTo(sums);
    }
    return sums;
}

bool ZULMRSBSPStageStatistics::IsCounting()
{
#if defined(ZULMRS_STATISTICS)
    return true;
#else
    return false;
#endif
}

ZULMRSBSPStageStatistics ZULMRSBSPStageStatistics::Get()
{
    const ZULMRSBSPStageCounters::Sums sums = ZULMRSBSPStageCounters::SumOverThreads();
    return {sums[0], sums[1], sums[2], sums[3]};
}
