#ifndef ZULExpQuietDouble_h
#define ZULExpQuietDouble_h

#include <cmath>
#include <cstdint>
#include <cstring>

#include "ZULExpFloatStatus.h"

/// A double whose arithmetic leaves no trace: rounded to nearest whatever the caller's rounding mode, no flag
/// raised, no trap. Only where ZULExpProcessor::HasQuietArithmetic(). Denormal operands and results may count
/// as zero, as the caller's control word has it, so an error bound needs a range test on the operands.
/// Compared by bits: comparing doubles raises flags. A plain value.
class ZULExpQuietDouble
{
public:
    ZULExpQuietDouble() = default;
    explicit ZULExpQuietDouble(double value) : m_Value(value) {}

    double GetValue() const { return m_Value; }
    /// The bits of the value without its sign: ordered as the absolute values are, infinity and NaN above.
    std::uint64_t GetMagnitudeBits() const { return GetBits() & ~SignBit; }
    bool HasSignBit() const { return (GetBits() & SignBit) != 0; }

    friend ZULExpQuietDouble operator+(ZULExpQuietDouble x, ZULExpQuietDouble y)
    {
        return ZULExpQuietDouble(ZULExpProcessor::QuietSum(x.m_Value, y.m_Value));
    }
    friend ZULExpQuietDouble operator-(ZULExpQuietDouble x, ZULExpQuietDouble y)
    {
        return ZULExpQuietDouble(ZULExpProcessor::QuietDifference(x.m_Value, y.m_Value));
    }
    friend ZULExpQuietDouble operator*(ZULExpQuietDouble x, ZULExpQuietDouble y)
    {
        return ZULExpQuietDouble(ZULExpProcessor::QuietProduct(x.m_Value, y.m_Value));
    }

    friend ZULExpQuietDouble Abs(ZULExpQuietDouble x) { return ZULExpQuietDouble(std::fabs(x.m_Value)); }
    /// The greater one; the second one where either is NaN.
    friend ZULExpQuietDouble Maximum(ZULExpQuietDouble x, ZULExpQuietDouble y)
    {
        return ZULExpQuietDouble(ZULExpProcessor::QuietMaximum(x.m_Value, y.m_Value));
    }

private:
    static constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;

    std::uint64_t GetBits() const
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &m_Value, sizeof bits);
        return bits;
    }

    double m_Value = 0.0;
};

#endif
