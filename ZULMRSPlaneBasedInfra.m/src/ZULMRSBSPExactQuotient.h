#ifndef ZULMRSBSPExactQuotient_h
#define ZULMRSBSPExactQuotient_h

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ZULExpFloatRingExtensionTS.h"

/// The quotient of two exact numbers as a double.
namespace ZULMRSBSPExactQuotient
{
/// |number| = m_Mantissa 2^m_Exponent, the mantissa in [0.5, 1) and rounded to nearest.
struct Scaled {
    explicit Scaled(const ZULExpFloatRingExtensionTS& number)
    {
        number.GetInteger().ConvertToDouble(m_Mantissa, m_Exponent);
        m_Exponent += number.GetExponent();
    }

    double m_Mantissa = 0.0;
    std::int64_t m_Exponent = 0;
};

/// |number| 2^-exponent.
inline ZULExpFloatRingExtensionTS ScaledMagnitude(const ZULExpFloatRingExtensionTS& number,
                                                  std::int64_t exponent)
{
    return {number.IsPositive() ? number.GetInteger() : -number.GetInteger(),
            number.GetExponent() - exponent};
}

/// The quotient of the mantissas, corrected by what the rounding of each has left over.
inline double QuotientOfMantissas(const ZULExpFloatRingExtensionTS& n, const Scaled& top,
                                  const ZULExpFloatRingExtensionTS& m, const Scaled& bottom)
{
    const double quotient = top.m_Mantissa / bottom.m_Mantissa;
    const ZULExpFloatRingExtensionTS remainder =
        ScaledMagnitude(n, top.m_Exponent) -
        ZULExpFloatRingExtensionTS(quotient) * ScaledMagnitude(m, bottom.m_Exponent);
    return quotient + remainder.Estimate() / bottom.m_Mantissa;
}

/// n / m, m not zero: within one unit in the last place, infinite beyond the range of doubles. Inside a
/// ZULExpFloatScope. An exponent that no int holds is as good as one that no double holds.
inline double Of(const ZULExpFloatRingExtensionTS& n, const ZULExpFloatRingExtensionTS& m)
{
    if (n.IsZero()) {
        return 0.0;
    }
    constexpr std::int64_t beyondDoubles = 4096;
    const Scaled top(n);
    const Scaled bottom(m);
    const std::int64_t exponent =
        std::clamp(top.m_Exponent - bottom.m_Exponent, -beyondDoubles, beyondDoubles);
    const double magnitude = std::ldexp(QuotientOfMantissas(n, top, m, bottom), static_cast<int>(exponent));
    return n.IsPositive() == m.IsPositive() ? magnitude : -magnitude;
}
}  // namespace ZULMRSBSPExactQuotient

#endif
