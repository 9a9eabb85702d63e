#ifndef ZULMRSBSPStageStatistics_h
#define ZULMRSBSPStageStatistics_h

#include <cstdint>

#include "ZULMRSPlaneBasedInfraExport.h"

/// How many signs each stage of the predicates has decided. Counted only in a library built with the CMake
/// option ZUL_STATISTICS; otherwise everything stays 0. A plain value.
struct ZULMRSPlaneBasedInfra_API ZULMRSBSPStageStatistics {
    std::uint64_t m_Shortcut = 0;  ///< by identity or by the signs of the factors alone
    std::uint64_t m_Filter = 0;    ///< in doubles with an error bound
    std::uint64_t m_Interval = 0;  ///< in intervals
    std::uint64_t m_Exact = 0;     ///< in exact numbers

    /// Whether the library counts.
    static bool IsCounting();
    /// The sums over all threads, those that have ended included. Safe from any thread.
    static ZULMRSBSPStageStatistics Get();
};

#endif
