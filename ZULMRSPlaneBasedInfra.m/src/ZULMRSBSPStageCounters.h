#ifndef ZULMRSBSPStageCounters_h
#define ZULMRSBSPStageCounters_h

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

/// The stages of a decision, in the order in which they are tried.
enum class ZULMRSBSPStage : std::size_t { Shortcut, Filter, Interval, Exact };

/// One thread's counters: written by it alone, read by anybody.
class ZULMRSBSPStageCounters
{
public:
    static constexpr std::size_t NbStages = 4;
    using Sums = std::array<std::uint64_t, NbStages>;

    /// Counts a decision of the calling thread; nothing in a library that does not count.
    static void Count([[maybe_unused]] ZULMRSBSPStage stage)
    {
#if defined(ZULMRS_STATISTICS)
        std::atomic<std::uint64_t>& counter = OfThisThread().m_Counts[static_cast<std::size_t>(stage)];
        counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
#endif
    }
    static Sums SumOverThreads();

    ~ZULMRSBSPStageCounters();

private:
    ZULMRSBSPStageCounters();
    static ZULMRSBSPStageCounters& OfThisThread();
    void AddTo(Sums& sums) const;

    std::array<std::atomic<std::uint64_t>, NbStages> m_Counts{};
};

#endif
