#ifndef ZULMRSBSPCoordinateRecord_h
#define ZULMRSBSPCoordinateRecord_h

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPFormulas.h"

/// A point that three-points planes share, one for each distinct point of the process. Two counts decide its
/// end: the last holder drops m_References without the table's lock, so another plane may take the record
/// again before it is looked at; m_TableCount, one for each rise of m_References from zero, tells.
struct ZULMRSBSPCoordinateRecord {
    std::array<double, 3> m_Coordinates;
    std::atomic<std::int32_t> m_References{0};
    std::int32_t m_TableCount = 0;  ///< guarded by the table's lock
};

namespace ZULMRSBSPCoordinates
{
/// The hash of a point: both zeros hash alike.
inline std::size_t Hash(const std::array<double, 3>& point) noexcept
{
    constexpr std::uint64_t Multiplier = 0xc6a4a7935bd1e995U;
    std::uint64_t hash = 0;
    for (const double coordinate : point) {
        std::uint64_t k =
            ZULMRSBSPFormulas::IsExactlyZero(coordinate) ? 0U : std::bit_cast<std::uint64_t>(coordinate);
        k *= Multiplier;
        k ^= k >> 47;
        k *= Multiplier;
        hash ^= k;
        hash *= Multiplier;
        hash += 0xe6546b64U;
    }
    return static_cast<std::size_t>(hash);
}

/// Exact equality; a NaN equals nothing. Both zeros are equal, two denormals never by the host's mode.
inline bool AreEqual(double x, double y) noexcept
{
    constexpr std::uint64_t InfinityBits = 0x7FF0000000000000U;
    const bool isNumber = ZULMRSBSPFormulas::MagnitudeBits(x) <= InfinityBits;
    return (isNumber && std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y)) ||
           (ZULMRSBSPFormulas::IsExactlyZero(x) && ZULMRSBSPFormulas::IsExactlyZero(y));
}
inline bool AreEqual(const std::array<double, 3>& p, const std::array<double, 3>& q) noexcept
{
    return AreEqual(p[0], q[0]) && AreEqual(p[1], q[1]) && AreEqual(p[2], q[2]);
}
}  // namespace ZULMRSBSPCoordinates

#endif
