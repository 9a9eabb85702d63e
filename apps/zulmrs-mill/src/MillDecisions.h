#ifndef MillDecisions_h
#define MillDecisions_h

#include <cstdint>
#include <map>
#include <string>

/// How many exact decisions each stage has made.
struct MillStageCounts {
    /// By a short cut, without arithmetic.
    std::uint64_t m_Shortcut = 0;
    std::uint64_t m_Filter = 0;
    std::uint64_t m_Interval = 0;
    std::uint64_t m_Exact = 0;
};

/// Of all predicates, and of each that has decided anything, by name.
struct MillDecisions {
    MillStageCounts m_All;
    std::map<std::string, MillStageCounts> m_ByPredicate;
};

/// The counts of the process so far.
MillDecisions CollectDecisions();

#endif
