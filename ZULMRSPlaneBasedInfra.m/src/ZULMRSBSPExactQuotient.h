#ifndef ZULMRSBSPExactQuotient_h
#define ZULMRSBSPExactQuotient_h

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ZULExpFloatRingExtensionTS.h"

/// The quotient of two exact numbers as a double.
namespace ZULMRSBSPExactQuotient
{
/// The integer part of a number: its magnitude is m_Mantissa 2^m_Exponent, the mantissa in [0.5, 1) and
/// rounded to nearest.
struct Scaled {
    explicit Scaled(const ZULExpFloatRingExtensionTS& number)
    {
        number.GetInteger().ConvertToDouble(m_Mantissa, m_Exponent);
    }

    double m_Mantissa = 0.0;
    std::int64_t m_Exponent = 0;
};

/// The mantissa as it is before rounding.
inline ZULExpFloatRingExtensionTS ExactMantissa(const ZULExpFloatRingExtensionTS& number,
                                                const Scaled& scaled)
{
    return {number.IsPositive() ? number.GetInteger() : -number.GetInteger(), -scaled.m_Exponent};
}

/// The quotient of the mantissas, corrected by what the rounding of each has left over.
inline double QuotientOfMantissas(const ZULExpFloatRingExtensionTS& n, const Scaled& top,
                                  const ZULExpFloatRingExtensionTS& m, const Scaled& bottom)
{
    const double quotient = top.m_Mantissa / bottom.m_Mantissa;
    const ZULExpFloatRingExtensionTS remainder =
        ExactMantissa(n, top) - ZULExpFloatRingExtensionTS(quotient) * ExactMantissa(m, bottom);
    return quotient + remainder.Estimate() / bottom.m_Mantissa;
}

/// n / m, m not zero: within one unit in the last place, infinite beyond the range of doubles. Inside a
/// ZULExpFloatScope.
inline double Of(const ZULExpFloatRingExtensionTS& n, const ZULExpFloatRingExtensionTS& m)
{
    // The difference of two exponents need not have 64 bits; of what no double holds, one is as good as
    // another.
    __extension__ using Wide = __int128;
    constexpr Wide beyondDoubles = 4096;

    if (n.IsZero()) {
        return 0.0;
    }
    const Scaled top(n);
    const Scaled bottom(m);
    const Wide exponent = Wide{n.GetExponent()} - m.GetExponent() + (top.m_Exponent - bottom.m_Exponent);
    const double magnitude =
        std::ldexp(QuotientOfMantissas(n, top, m, bottom),
                   static_cast<int>(std::clamp(exponent, -beyondDoubles, beyondDoubles)));
    return n.IsPositive() == m.IsPositive() ? magnitude : -magnitude;
}
}  // namespace ZULMRSBSPExactQuotient

#endif
