#ifndef ZULExpDynamic_h
#define ZULExpDynamic_h

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ZULExpSign.h"

/// A double with what is needed to bound its rounding error: an upper bound of the absolute values that
/// entered the computation, and the number of rounding steps. Its sign is certain when |value| exceeds (count
/// + 2) rounding units of the magnitude, provided that round to nearest was in force and nothing under- or
/// overflowed. A plain value.
class ZULExpDynamic
{
public:
    ZULExpDynamic() = default;
    /// A number that is exactly known: magnitude |value|, count 1.
    explicit ZULExpDynamic(double value) : m_Value(value), m_Magnitude(std::fabs(value)), m_Count(1) {}
    constexpr ZULExpDynamic(double value, double magnitude, std::uint32_t count)
        : m_Value(value), m_Magnitude(magnitude), m_Count(count)
    {
    }

    /// What a cache holds before it is first computed. No computed number has this count.
    static constexpr ZULExpDynamic Placeholder() { return {666.0, 666.0, 666}; }
    constexpr bool IsPlaceholder() const { return m_Count == 666; }

    constexpr double GetValue() const { return m_Value; }
    constexpr double GetMagnitude() const { return m_Magnitude; }
    constexpr std::uint32_t GetCount() const { return m_Count; }

    /// -1, +1 when certain, 0 when the bound is exactly 0, ZULExpSignUncertain otherwise (a NaN bound
    /// included).
    ZULExpSign_t Sign() const
    {
        const double bound = static_cast<double>(m_Count + 2U) * 2.220446049250313e-16 * m_Magnitude * 0.5;
        if (m_Value > bound) {
            return ZULExpSignPositive;
        }
        if (m_Value < -bound) {
            return ZULExpSignNegative;
        }
        return bound == 0.0 ? ZULExpSignZero : ZULExpSignUncertain;
    }

    friend ZULExpDynamic operator-(const ZULExpDynamic& x) { return {-x.m_Value, x.m_Magnitude, x.m_Count}; }
    friend ZULExpDynamic operator+(const ZULExpDynamic& x, const ZULExpDynamic& y)
    {
        return {x.m_Value + y.m_Value, x.m_Magnitude + y.m_Magnitude, std::max(x.m_Count, y.m_Count) + 1U};
    }
    friend ZULExpDynamic operator-(const ZULExpDynamic& x, const ZULExpDynamic& y)
    {
        return {x.m_Value - y.m_Value, x.m_Magnitude + y.m_Magnitude, std::max(x.m_Count, y.m_Count) + 1U};
    }
    friend ZULExpDynamic operator*(const ZULExpDynamic& x, const ZULExpDynamic& y)
    {
        return {x.m_Value * y.m_Value, x.m_Magnitude * y.m_Magnitude, x.m_Count + y.m_Count + 1U};
    }

private:
    double m_Value = 0.0;
    double m_Magnitude = 0.0;
    std::uint32_t m_Count = 0;
};

#endif
