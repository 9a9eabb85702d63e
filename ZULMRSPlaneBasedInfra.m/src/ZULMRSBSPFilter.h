#ifndef ZULMRSBSPFilter_h
#define ZULMRSBSPFilter_h

#include <array>
#include <cmath>
#include <limits>

#include "ZULExpDynamic.h"
#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPSign.h"

/// A double and the magnitude of what entered it: the same expression with every input replaced by its
/// absolute value and every difference by a sum. The rounding units of a formula are known beforehand (its
/// constant K); ZULExpDynamic counts them instead.
struct ZULMRSBSPFilteredDouble {
    double m_Value = 0.0;
    double m_Magnitude = 0.0;

    ZULMRSBSPFilteredDouble() = default;
    explicit ZULMRSBSPFilteredDouble(double value) : m_Value(value), m_Magnitude(std::fabs(value)) {}
    ZULMRSBSPFilteredDouble(double value, double magnitude) : m_Value(value), m_Magnitude(magnitude) {}

    friend ZULMRSBSPFilteredDouble operator+(const ZULMRSBSPFilteredDouble& x,
                                             const ZULMRSBSPFilteredDouble& y)
    {
        return {x.m_Value + y.m_Value, x.m_Magnitude + y.m_Magnitude};
    }
    friend ZULMRSBSPFilteredDouble operator-(const ZULMRSBSPFilteredDouble& x,
                                             const ZULMRSBSPFilteredDouble& y)
    {
        return {x.m_Value - y.m_Value, x.m_Magnitude + y.m_Magnitude};
    }
    friend ZULMRSBSPFilteredDouble operator*(const ZULMRSBSPFilteredDouble& x,
                                             const ZULMRSBSPFilteredDouble& y)
    {
        return {x.m_Value * y.m_Value, x.m_Magnitude * y.m_Magnitude};
    }
};

/// Decisions of the floating stage, in the default floating-point environment. Proofs: docs/arithmetic.md.
namespace ZULMRSBSPFilter
{
constexpr double Epsilon = 2.220446049250313e-16;  // 2^-52
/// Above this magnitude no underflow can reach a bound: it adds at most some 2^-1070, a bound is above
/// 2^-952.
constexpr double SafeMagnitude = 0x1p-900;

/// K rounding units of a magnitude.
inline double Bound(double units, double magnitude)
{
    return units * Epsilon * magnitude * 0.5;
}

inline ZULMRSBSPSign Compare(double value, double bound)
{
    if (value > bound) {
        return ZULMRSBSPSign::Positive();
    }
    if (value < -bound) {
        return ZULMRSBSPSign::Negative();
    }
    return bound == 0.0 ? ZULMRSBSPSign::Zero() : ZULMRSBSPSign::Undecided();
}

/// True when a sum of products of this magnitude has met no overflow, and no underflow that matters.
inline bool IsSafe(double magnitude)
{
    return magnitude > SafeMagnitude && magnitude <= std::numeric_limits<double>::max();
}

/// Decides only when no underflow, overflow or denormal operand was met since the status was last cleared.
/// The bound is part of what is checked.
inline ZULMRSBSPSign DecideByStatus(double value, double magnitude, double units)
{
    double bound = Bound(units, magnitude);
    ZULExpProcessor::Pin(value);
    ZULExpProcessor::Pin(bound);
    return (_statusfp() & ZULExpFloatFault) != 0 ? ZULMRSBSPSign::Undecided() : Compare(value, bound);
}

/// The same for a sum of products of sums of inputs (nothing is multiplied after the last products): the
/// magnitude's range tells what the status would, and costs nothing.
inline ZULMRSBSPSign Decide(double value, double magnitude, double units)
{
    if (IsSafe(magnitude)) [[likely]] {
        return Compare(value, Bound(units, magnitude));
    }
    return DecideByStatus(value, magnitude, units);
}
inline ZULMRSBSPSign Decide(const ZULMRSBSPFilteredDouble& x, int units)
{
    return Decide(x.m_Value, x.m_Magnitude, units);
}
/// The same where such sums are multiplied once more, by numbers of at most the given size: an underflow may
/// have grown by that factor.
inline ZULMRSBSPSign DecideMultiplied(const ZULMRSBSPFilteredDouble& x, double largestFactor, int units)
{
    if (IsSafe(x.m_Magnitude) && x.m_Magnitude > largestFactor * SafeMagnitude) [[likely]] {
        return Compare(x.m_Value, Bound(units, x.m_Magnitude));
    }
    return DecideByStatus(x.m_Value, x.m_Magnitude, units);
}

/// The units of a number that counts its rounding steps.
inline double UnitsOf(const ZULExpDynamic& x)
{
    return static_cast<double>(x.GetCount() + 2U);
}

/// Sign of a kept number, as a factor. Its making met no underflow, so magnitude 0 means exactly zero, and a
/// normal magnitude leaves a bound among the denormals enough of its slack. The signs of factors cannot be
/// foreseen: no branch on them.
inline ZULMRSBSPSign FactorSign(const ZULExpDynamic& x)
{
    const double magnitude = x.GetMagnitude();
    const double bound = Bound(UnitsOf(x), magnitude);
    const int sign = static_cast<int>(x.GetValue() > bound) - static_cast<int>(x.GetValue() < -bound);
    const bool isKept = (magnitude >= std::numeric_limits<double>::min() &&
                         magnitude <= std::numeric_limits<double>::max()) ||
                        magnitude == 0.0;
    const bool isDecided = isKept & ((sign != 0) | (bound == 0.0));
    return ZULMRSBSPSign::FromNumber(isDecided ? sign : ZULExpSignUncertain);
}

/// The filtered representation tells nothing when it still holds the placeholders, or its W is not certainly
/// positive: an undecided filter may have left the kept numbers with the sign of another order of the triple.
inline bool IsUsable(const std::array<ZULExpDynamic, 4>& representation)
{
    return !representation[3].IsPlaceholder() && FactorSign(representation[3]).IsPositive();
}
}  // namespace ZULMRSBSPFilter

#endif
