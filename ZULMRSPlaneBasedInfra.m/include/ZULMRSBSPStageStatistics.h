#ifndef ZULMRSBSPStageStatistics_h
#define ZULMRSBSPStageStatistics_h

#include <cstddef>
#include <cstdint>

#include "ZULMRSPlaneBasedInfraExport.h"

/// The predicates whose decisions are counted, each with its overloads.
enum class ZULMRSBSPPredicate : unsigned int {
    SignOf2x2Determinant,
    SignOf2x2DiffDeterminant,
    SignOf2x2DotProduct,
    SignOf3DimDotProduct,
    SignOf3x3Determinant,
    SignOf3PlanesDeterminant,
    IsPointInFrontOfPlane,
    ArePlanesParallel,
    ArePlanesCoincident,
    CoincidentOrientation,
    ArePointsEqual,
    LexicographicOrder,
    IsPointValid,
    SignOfTripleProduct,
    GetSignOfNormalSignAngleDiff,
    IsCrossingOBB
};

/// How many signs each stage of the predicates has decided. Counted only in a library built with the CMake
/// option ZUL_STATISTICS; otherwise everything stays 0. A plain value.
struct ZULMRSPlaneBasedInfra_API ZULMRSBSPStageStatistics {
    /// How many predicates are counted; the first is 0.
    static constexpr std::size_t NbPredicates = 16;

    std::uint64_t m_Shortcut = 0;  ///< by identity or by the signs of the factors alone
    std::uint64_t m_Filter = 0;    ///< in doubles or cut integers, with an error bound
    std::uint64_t m_Interval = 0;  ///< in intervals
    std::uint64_t m_Exact = 0;     ///< in exact numbers, integers of fixed length among them

    /// Whether the library counts.
    static bool IsCounting();
    /// The sums over all predicates and threads, those that have ended included. Safe from any thread.
    static ZULMRSBSPStageStatistics Get();
    /// The same for one predicate: a sign that another predicate needs counts for that one.
    static ZULMRSBSPStageStatistics Get(ZULMRSBSPPredicate predicate);
    /// The predicate's name in ZULMRSBSPPredicates.
    static const char* GetName(ZULMRSBSPPredicate predicate);
};

#endif
