#ifndef ZULMRSBSPScaledNorm_h
#define ZULMRSBSPScaledNorm_h

#include <algorithm>
#include <cmath>
#include <limits>

/// The length sqrt((a a + b b) + c c) of three doubles as m_Value x 2^m_Exponent. The exponent is 0, and the
/// value the plain formula bit for bit, except where the squares overflow or lose digits to underflow: there
/// the three are first scaled by a power of two, which is exact. Not finite when one of the three is not.
struct ZULMRSBSPScaledNorm {
    double m_Value;
    int m_Exponent = 0;

    ZULMRSBSPScaledNorm(double a, double b, double c) : m_Value(Plain(a, b, c))
    {
        // Below 2^-450 a square that matters may have lost digits.
        constexpr double smallest = 0x1p-450;
        if (m_Value >= smallest && m_Value <= std::numeric_limits<double>::max()) {
            return;
        }
        const double largest = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
        if (largest == 0.0 || !(std::isfinite(a) && std::isfinite(b) && std::isfinite(c))) {
            return;
        }
        std::frexp(largest, &m_Exponent);
        m_Value = Plain(Scaled(a), Scaled(b), Scaled(c));
    }

    /// A number in the scale of m_Value.
    double Scaled(double x) const { return m_Exponent == 0 ? x : std::ldexp(x, -m_Exponent); }
    /// x divided by the length.
    double Divide(double x) const { return Scaled(x) / m_Value; }
    /// The length as one double, infinite where it does not fit.
    double Length() const { return m_Exponent == 0 ? m_Value : std::ldexp(m_Value, m_Exponent); }

private:
    static double Plain(double a, double b, double c) { return std::sqrt((a * a + b * b) + c * c); }
};

#endif
