#ifndef MillDecisions_h
#define MillDecisions_h

#include <cstdint>

/// How many exact decisions each stage of the predicates has made.
struct MillDecisions {
    /// By a short cut, without arithmetic.
    std::uint64_t m_Shortcut = 0;
    std::uint64_t m_Filter = 0;
    std::uint64_t m_Interval = 0;
    std::uint64_t m_Exact = 0;
};

/// The counts of the process so far.
MillDecisions CollectDecisions();

#endif
