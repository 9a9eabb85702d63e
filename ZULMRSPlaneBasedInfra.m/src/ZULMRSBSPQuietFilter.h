#ifndef ZULMRSBSPQuietFilter_h
#define ZULMRSBSPQuietFilter_h

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ZULExpQuietDouble.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPSign.h"

/// A filter on plain doubles that needs no floating-point scope: reading the control word alone costs three
/// determinants. Its bound is the product of the rows' largest numbers, whose range also tells that nothing
/// denormal or overflowing matters. Proofs: docs/arithmetic.md.
namespace ZULMRSBSPQuietFilter
{
using Quiet = ZULExpQuietDouble;
using Row = std::array<Quiet, 3>;

/// The largest number of a row lies between these, so that products of three are far from both ends.
constexpr double LeastLargest = 0x1p-300;
constexpr double GreatestLargest = 0x1p300;

/// Rounding units of the product of the rows' largest numbers: six products of three, each with at most 5
/// units of it, and one third more for what is rounded in the bound and for denormal numbers taken as zero.
constexpr double DeterminantUnits = 40;

/// Numbers of so many bits leave a product of three, and the sum of two such, without rounding.
constexpr int ShortBits = 17;

inline Row MakeRow(double x, double y, double z)
{
    return {Quiet(x), Quiet(y), Quiet(z)};
}

inline Quiet LargestOf(const Row& row)
{
    return Maximum(Maximum(Abs(row[0]), Abs(row[1])), Abs(row[2]));
}

inline bool IsInRange(Quiet largest)
{
    constexpr auto low = std::bit_cast<std::uint64_t>(LeastLargest);
    constexpr auto high = std::bit_cast<std::uint64_t>(GreatestLargest);
    return largest.GetMagnitudeBits() - low <= high - low;
}

inline ZULMRSBSPSign SignOf(Quiet value)
{
    return value.HasSignBit() ? ZULMRSBSPSign::Negative() : ZULMRSBSPSign::Positive();
}

/// No bit where the numbers of the row, whose largest is in range, are multiples of one unit of which that
/// counts less than 2^ShortBits.
inline std::uint64_t BitsBeyondShort(const Row& row, Quiet largest)
{
    // Adding and subtracting a number whose last place is the unit rounds to multiples of it.
    constexpr std::uint64_t oneExponent = std::uint64_t{1} << 52;
    constexpr std::uint64_t half = oneExponent >> 1;
    const std::uint64_t exponent = largest.GetMagnitudeBits() & ~(oneExponent - 1);
    const Quiet rounder(std::bit_cast<double>(exponent + (53 - ShortBits) * oneExponent + half));
    std::uint64_t beyond = 0;
    for (const Quiet x : row) {
        beyond |= ((x + rounder) - rounder).GetMagnitudeBits() ^ x.GetMagnitudeBits();
    }
    return beyond;
}

/// The sign of the determinant of three rows, where the numbers' sizes decide it or they are short.
inline ZULMRSBSPSign SignOfDeterminant(const Row& p, const Row& q, const Row& r)
{
    const Quiet value = ZULMRSBSPFormulas::Determinant3x3(p, q, r);
    const Quiet largestP = LargestOf(p);
    const Quiet largestQ = LargestOf(q);
    const Quiet largestR = LargestOf(r);
    const Quiet bound = largestP * largestQ * largestR * Quiet(DeterminantUnits * 0x1p-53);
    constexpr auto greatestValue = std::bit_cast<std::uint64_t>(0x1p1000);
    if (!(IsInRange(largestP) && IsInRange(largestQ) && IsInRange(largestR)) ||
        value.GetMagnitudeBits() > greatestValue) {
        return ZULMRSBSPSign::Undecided();  // among others, what is not finite
    }
    if (value.GetMagnitudeBits() > bound.GetMagnitudeBits()) [[likely]] {
        return SignOf(value);
    }
    if ((BitsBeyondShort(p, largestP) | BitsBeyondShort(q, largestQ) | BitsBeyondShort(r, largestR)) != 0) {
        return ZULMRSBSPSign::Undecided();
    }
    return value.GetMagnitudeBits() == 0 ? ZULMRSBSPSign::Zero() : SignOf(value);
}
}  // namespace ZULMRSBSPQuietFilter

#endif
