#ifndef ZULMRSBSPStageCounters_h
#define ZULMRSBSPStageCounters_h

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPStageStatistics.h"

/// The stages of a decision, in the order in which they are tried.
enum class ZULMRSBSPStage : std::size_t { Shortcut, Filter, Interval, Exact };

/// One thread's counters: written by it alone, read by anybody.
class ZULMRSBSPStageCounters
{
public:
    static constexpr std::size_t NbStages = 4;
    /// The counts of each predicate; the last row is for decisions outside of any.
    static constexpr std::size_t NbRows = ZULMRSBSPStageStatistics::NbPredicates + 1;
    using Sums = std::array<std::array<std::uint64_t, NbStages>, NbRows>;

    /// Counts a decision of the calling thread; nothing in a library that does not count.
    static void Count([[maybe_unused]] ZULMRSBSPStage stage)
    {
#if defined(ZULMRS_STATISTICS)
        ZULMRSBSPStageCounters& counters = OfThisThread();
        std::atomic<std::uint64_t>& counter =
            counters.m_Counts[counters.m_Row][static_cast<std::size_t>(stage)];
        counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
#endif
    }
    static Sums SumOverThreads();

    ~ZULMRSBSPStageCounters();

private:
    friend class ZULMRSBSPCountedPredicate;

    ZULMRSBSPStageCounters();
    static ZULMRSBSPStageCounters& OfThisThread();
    void AddTo(Sums& sums) const;

    std::array<std::array<std::atomic<std::uint64_t>, NbStages>, NbRows> m_Counts{};
    [[maybe_unused]] std::size_t m_Row = NbRows - 1;
};

/// While alive, decisions of the calling thread count for a predicate, unless they do for another already.
class ZULMRSBSPCountedPredicate
{
public:
#if defined(ZULMRS_STATISTICS)
    explicit ZULMRSBSPCountedPredicate(ZULMRSBSPPredicate predicate)
        : m_Counters(ZULMRSBSPStageCounters::OfThisThread()), m_RowBefore(m_Counters.m_Row)
    {
        if (m_RowBefore == ZULMRSBSPStageCounters::NbRows - 1) {
            m_Counters.m_Row = static_cast<std::size_t>(predicate);
        }
    }
    ~ZULMRSBSPCountedPredicate()
    {
        m_Counters.m_Row = m_RowBefore;
    }
    ZULMRSBSPCountedPredicate(const ZULMRSBSPCountedPredicate&) = delete;
    ZULMRSBSPCountedPredicate& operator=(const ZULMRSBSPCountedPredicate&) = delete;

private:
    ZULMRSBSPStageCounters& m_Counters;
    std::size_t m_RowBefore;
#else
    explicit ZULMRSBSPCountedPredicate(ZULMRSBSPPredicate /*predicate*/) {}
#endif
};

#endif
