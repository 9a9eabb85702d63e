#ifndef ZULTestNumbers_h
#define ZULTestNumbers_h

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ZULExpDynamic.h"
#include "ZULExpFloatRingExtensionTS.h"
#include "ZULExpInterval.h"
#include "ZULTestGeometry.h"

/// The library's numbers held against rational ones.
namespace ZULTest
{
/// Exactly the number.
inline Rational ToRational(const ZULExpFloatRingExtensionTS& number)
{
    constexpr std::size_t chunkBits = 32;
    const bool isNegative = number.Sign() < 0;
    ZULExpBigIntegerTS rest = isNegative ? -number.GetInteger() : number.GetInteger();
    Rational result;
    for (std::size_t shift = 0; !rest.IsZero(); shift += chunkBits) {
        const ZULExpBigIntegerTS higher = rest.ShiftedRight(chunkBits);
        double mantissa = 0.0;
        std::int64_t exponent = 0;
        (rest - higher.ShiftedLeft(chunkBits)).ConvertToDouble(mantissa, exponent);
        Rational chunk = ToRational(std::ldexp(mantissa, static_cast<int>(exponent)));
        mpq_mul_2exp(chunk.get_mpq_t(), chunk.get_mpq_t(), shift);
        result += chunk;
        rest = higher;
    }
    const std::int64_t exponent = number.GetExponent();
    if (exponent >= 0) {
        mpq_mul_2exp(result.get_mpq_t(), result.get_mpq_t(), static_cast<mp_bitcnt_t>(exponent));
    } else {
        mpq_div_2exp(result.get_mpq_t(), result.get_mpq_t(), static_cast<mp_bitcnt_t>(-exponent));
    }
    return isNegative ? Rational(-result) : result;
}

/// Whether the interval encloses the number.
inline bool Contains(const ZULExpInterval& interval, const Rational& number)
{
    const double lower = interval.LowerBound();
    const double upper = interval.UpperBound();
    return (std::isinf(lower) || ToRational(lower) <= number) &&
           (std::isinf(upper) || ToRational(upper) >= number);
}

/// Whether the error of a filtered number is within its own bound.
inline bool IsWithinBound(const ZULExpDynamic& filtered, const Rational& number)
{
    const Rational error = abs(ToRational(filtered.GetValue()) - number);
    const Rational bound =
        ToRational(filtered.GetMagnitude()) * ToRational(0x1p-53) * Rational(filtered.GetCount() + 2U);
    return error <= bound;
}

/// The same bits: zeros are told apart, a NaN equals itself.
inline bool AreSameBits(double x, double y)
{
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
}
template <std::size_t Size>
bool AreSameBits(const std::array<double, Size>& x, const std::array<double, Size>& y)
{
    for (std::size_t i = 0; i < Size; ++i) {
        if (!AreSameBits(x[i], y[i])) {
            return false;
        }
    }
    return true;
}
inline bool AreSameBits(const ZULExpDynamic& x, const ZULExpDynamic& y)
{
    return AreSameBits(x.GetValue(), y.GetValue()) && AreSameBits(x.GetMagnitude(), y.GetMagnitude()) &&
           x.GetCount() == y.GetCount();
}
inline bool AreSameBits(const std::array<ZULExpDynamic, 4>& x, const std::array<ZULExpDynamic, 4>& y)
{
    return AreSameBits(x[0], y[0]) && AreSameBits(x[1], y[1]) && AreSameBits(x[2], y[2]) &&
           AreSameBits(x[3], y[3]);
}
}  // namespace ZULTest

#endif
