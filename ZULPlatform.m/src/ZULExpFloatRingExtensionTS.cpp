#include "ZULExpFloatRingExtensionTS.h"

#include <bit>
#include <limits>
#include <stdexcept>

#include "ZULExpBigIntegerInline.h"

namespace
{
constexpr std::uint64_t InfinityBits = std::uint64_t{0x7FF} << 52;
constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;

std::int64_t AddExponents(std::int64_t x, std::int64_t y)
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(x, y, &sum)) {
        throw std::overflow_error("ZULExpFloatRingExtensionTS: exponent beyond 64 bits");
    }
    return sum;
}
}  // namespace

double ZULExpFloatRingExtensionTS::Estimate() const noexcept
{
    if (m_Integer.IsZero()) {
        return 0.0;
    }
    const std::uint64_t sign = m_Integer.Sign() < 0 ? SignBit : 0;
    const auto length = static_cast<std::int64_t>(m_Integer.GetBitLength());
    // The magnitude lies in [2^(top - 1), 2^top).
    std::int64_t top = 0;
    if (__builtin_add_overflow(m_Exponent, length, &top) || top > std::numeric_limits<double>::max_exponent) {
        return std::bit_cast<double>(sign | InfinityBits);
    }
    if (top < SmallestExponent) {
        return std::bit_cast<double>(sign);
    }
    const bool isNormal = top >= std::numeric_limits<double>::min_exponent;
    const std::int64_t kept = isNormal ? std::numeric_limits<double>::digits : top - SmallestExponent;
    std::uint64_t mantissa = m_Integer.RoundedTop(static_cast<std::size_t>(kept));
    if (length < kept) {
        mantissa <<= kept - length;
    }
    // Added, not joined: the leading bit counts one exponent up, and so does a carry of the rounding, up to
    // infinity.
    const std::int64_t exponent = isNormal ? top - std::numeric_limits<double>::min_exponent : 0;
    return std::bit_cast<double>(sign | ((static_cast<std::uint64_t>(exponent) << 52) + mantissa));
}

void ZULExpFloatRingExtensionTS::DropLowZeroLimbs()
{
    const auto dropped = static_cast<std::int64_t>(m_Integer.DropLowZeroLimbs());
    m_Exponent = AddExponents(m_Exponent, 64 * dropped);
}

inline void ZULExpFloatRingExtensionTS::SetSum(const ZULExpFloatRingExtensionTS& x,
                                               const ZULExpFloatRingExtensionTS& y, bool isYNegated)
{
    if (y.IsZero()) {
        *this = x;
        return;
    }
    if (x.IsZero()) {
        *this = y;
        m_Integer.m_SignedSize = isYNegated ? -m_Integer.m_SignedSize : m_Integer.m_SignedSize;
        return;
    }
    const auto xExponent = static_cast<std::uint64_t>(x.m_Exponent);
    const auto yExponent = static_cast<std::uint64_t>(y.m_Exponent);
    if (x.m_Exponent >= y.m_Exponent) {
        m_Integer.SetShiftedSum(x.m_Integer, xExponent - yExponent, y.m_Integer, isYNegated);
        m_Exponent = y.m_Exponent;
    } else {
        // x - y = -(y - x)
        m_Integer.SetShiftedSum(y.m_Integer, yExponent - xExponent, x.m_Integer, isYNegated);
        m_Integer.m_SignedSize = isYNegated ? -m_Integer.m_SignedSize : m_Integer.m_SignedSize;
        m_Exponent = x.m_Exponent;
    }
    Normalize();
}

inline void ZULExpFloatRingExtensionTS::SetProduct(const ZULExpFloatRingExtensionTS& x,
                                                   const ZULExpFloatRingExtensionTS& y)
{
    m_Integer.SetProduct(x.m_Integer, y.m_Integer);
    if (!IsZero()) {
        m_Exponent = AddExponents(x.m_Exponent, y.m_Exponent);
        Normalize();
    }
}

ZULExpFloatRingExtensionTS ZULExpFloatRingExtensionTS::operator-() const
{
    ZULExpFloatRingExtensionTS result(*this);
    result.m_Integer.m_SignedSize = -result.m_Integer.m_SignedSize;
    return result;
}

ZULExpFloatRingExtensionTS operator+(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& y)
{
    ZULExpFloatRingExtensionTS sum;
    sum.SetSum(x, y, false);
    return sum;
}

ZULExpFloatRingExtensionTS operator-(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& y)
{
    ZULExpFloatRingExtensionTS difference;
    difference.SetSum(x, y, true);
    return difference;
}

ZULExpFloatRingExtensionTS operator*(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& y)
{
    ZULExpFloatRingExtensionTS product;
    product.SetProduct(x, y);
    return product;
}
