#ifndef ZULBenchStages_h
#define ZULBenchStages_h

#include "ZULBenchHarness.h"
#include "ZULMRSBSPStageStatistics.h"

namespace ZULBench
{
/// Tells which stages of the library made the decisions of a workload, where the library counts them.
class StageObserver final : public Observer
{
public:
    static void Register()
    {
        static StageObserver observer;
        if (ZULMRSBSPStageStatistics::IsCounting()) {
            OfThisProgram() = &observer;
        }
    }

    void Begin() override { m_Before = ZULMRSBSPStageStatistics::Get(); }
    void End(benchmark::State& state) override
    {
        const ZULMRSBSPStageStatistics now = ZULMRSBSPStageStatistics::Get();
        Tell(state, "stage_shortcut", now.m_Shortcut - m_Before.m_Shortcut);
        Tell(state, "stage_filter", now.m_Filter - m_Before.m_Filter);
        Tell(state, "stage_interval", now.m_Interval - m_Before.m_Interval);
        Tell(state, "stage_exact", now.m_Exact - m_Before.m_Exact);
    }

private:
    static void Tell(benchmark::State& state, const char* stage, std::uint64_t count)
    {
        state.counters[stage] = static_cast<double>(count);
    }

    ZULMRSBSPStageStatistics m_Before;
};
}  // namespace ZULBench

#endif
