#include "ZULMRSBSPStageStatistics.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <vector>

#include "ZULMRSBSPStageCounters.h"

namespace
{
constexpr std::array<const char*, ZULMRSBSPStageStatistics::NbPredicates> PredicateNames = {
    "SignOf2x2Determinant",  "SignOf2x2DiffDeterminant", "SignOf2x2DotProduct",
    "SignOf3DimDotProduct",  "SignOf3x3Determinant",     "SignOf3PlanesDeterminant",
    "IsPointInFrontOfPlane", "ArePlanesParallel",        "ArePlanesCoincident",
    "CoincidentOrientation", "ArePointsEqual",           "LexicographicOrder",
    "IsPointValid",          "SignOfTripleProduct",      "GetSignOfNormalSignAngleDiff",
    "IsCrossingOBB"};

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
    for (std::size_t row = 0; row < NbRows; ++row) {
        for (std::size_t stage = 0; stage < NbStages; ++stage) {
            sums[row][stage] += m_Counts[row][stage].load(std::memory_order_relaxed);
        }
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
    ZULMRSBSPStageStatistics sum;
    for (const auto& [shortcut, filter, interval, exact] : ZULMRSBSPStageCounters::SumOverThreads()) {
        sum.m_Shortcut += shortcut;
        sum.m_Filter += filter;
        sum.m_Interval += interval;
        sum.m_Exact += exact;
    }
    return sum;
}

ZULMRSBSPStageStatistics ZULMRSBSPStageStatistics::Get(ZULMRSBSPPredicate predicate)
{
    const auto row = static_cast<std::size_t>(predicate);
    if (row >= NbPredicates) {
        return {};
    }
    const auto [shortcut, filter, interval, exact] = ZULMRSBSPStageCounters::SumOverThreads()[row];
    return {shortcut, filter, interval, exact};
}

const char* ZULMRSBSPStageStatistics::GetName(ZULMRSBSPPredicate predicate)
{
    const auto row = static_cast<std::size_t>(predicate);
    return row < NbPredicates ? PredicateNames[row] : "";
}
