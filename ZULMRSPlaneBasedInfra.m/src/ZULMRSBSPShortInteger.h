#ifndef ZULMRSBSPShortInteger_h
#define ZULMRSBSPShortInteger_h

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPSign.h"

/// A signed integer of 64 Limbs bits, in two's complement. Its length is the degree of the polynomial that it
/// is a value of: inputs (one limb) are below 2^62, a product is as long as its factors together, and the
/// sums of the formulas fit, since each degree leaves two bits unused. Nothing is ever rounded or allocated.
/// Bounds: docs/arithmetic.md.
template <std::size_t Limbs>
class ZULMRSBSPShortInteger
{
public:
    ZULMRSBSPShortInteger() = default;
    explicit ZULMRSBSPShortInteger(const std::array<std::uint64_t, Limbs>& limbs) : m_Limbs(limbs) {}

    ZULMRSBSPSign Sign() const
    {
        if (static_cast<std::int64_t>(m_Limbs[Limbs - 1]) < 0) {
            return ZULMRSBSPSign::Negative();
        }
        std::uint64_t bits = 0;
        for (const std::uint64_t limb : m_Limbs) {
            bits |= limb;
        }
        return bits == 0 ? ZULMRSBSPSign::Zero() : ZULMRSBSPSign::Positive();
    }

    friend ZULMRSBSPShortInteger operator+(const ZULMRSBSPShortInteger& x, const ZULMRSBSPShortInteger& y)
    {
        return Sum(x, y, 0);
    }
    friend ZULMRSBSPShortInteger operator-(const ZULMRSBSPShortInteger& x, const ZULMRSBSPShortInteger& y)
    {
        return Sum(x, y, ~std::uint64_t{0});
    }
    friend ZULMRSBSPShortInteger operator-(const ZULMRSBSPShortInteger& x)
    {
        return ZULMRSBSPShortInteger() - x;
    }
    friend ZULMRSBSPShortInteger<Limbs + 1> operator*(const ZULMRSBSPShortInteger& x,
                                                      const ZULMRSBSPShortInteger<1>& y)
    {
        return Product(x, static_cast<std::int64_t>(y.GetLimb(0)));
    }
    friend ZULMRSBSPShortInteger<Limbs + 1> operator*(const ZULMRSBSPShortInteger<1>& x,
                                                      const ZULMRSBSPShortInteger& y) requires(Limbs > 1)
    {
        return y * x;
    }

    std::uint64_t GetLimb(std::size_t index) const { return m_Limbs[index]; }
    /// As the compiler's integer of the same length.
    __extension__ __int128 Value() const requires(Limbs == 2)
    {
        return static_cast<__int128>((UnsignedWide{m_Limbs[1]} << 64) | m_Limbs[0]);
    }

    /// |this| |other|, least significant limb first.
    std::array<std::uint64_t, 2 * Limbs> ProductOfMagnitudes(const ZULMRSBSPShortInteger& other) const
    {
        const std::array<std::uint64_t, Limbs> x = Magnitude();
        const std::array<std::uint64_t, Limbs> y = other.Magnitude();
        std::array<std::uint64_t, 2 * Limbs> product{};
        for (std::size_t i = 0; i < Limbs; ++i) {
            UnsignedWide carry = 0;
            for (std::size_t j = 0; j < Limbs; ++j) {
                carry += UnsignedWide{x[i]} * y[j] + product[i + j];
                product[i + j] = static_cast<std::uint64_t>(carry);
                carry >>= 64;
            }
            product[i + Limbs] = static_cast<std::uint64_t>(carry);
        }
        return product;
    }

private:
    __extension__ using Wide = __int128;
    __extension__ using UnsignedWide = unsigned __int128;

    std::array<std::uint64_t, Limbs> Magnitude() const
    {
        return Sign().IsNegative() ? (-*this).m_Limbs : m_Limbs;
    }

    /// x + y, or with all bits in the mask x - y. The mask is a constant where this is called.
    static ZULMRSBSPShortInteger Sum(const ZULMRSBSPShortInteger& x, const ZULMRSBSPShortInteger& y,
                                     std::uint64_t mask)
    {
        ZULMRSBSPShortInteger result;
        if constexpr (Limbs == 2) {
            const UnsignedWide a = x.Low();
            const UnsignedWide b = y.Low();
            result.SetLow(mask != 0 ? a - b : a + b);
            return result;
        }
        std::uint64_t carry = mask & 1U;
        for (std::size_t i = 0; i < Limbs; ++i) {
            std::uint64_t sum = 0;
            const bool first = __builtin_add_overflow(x.m_Limbs[i], y.m_Limbs[i] ^ mask, &sum);
            const bool second = __builtin_add_overflow(sum, carry, &result.m_Limbs[i]);
            carry = static_cast<std::uint64_t>(first | second);
        }
        return result;
    }

    UnsignedWide Low() const requires(Limbs > 1) { return (UnsignedWide{m_Limbs[1]} << 64) | m_Limbs[0]; }
    void SetLow(UnsignedWide value) requires(Limbs > 1)
    {
        m_Limbs[0] = static_cast<std::uint64_t>(value);
        m_Limbs[1] = static_cast<std::uint64_t>(value >> 64);
    }

    // With the factor below 2^62 no partial product leaves the range of the wide integer.
    static ZULMRSBSPShortInteger<Limbs + 1> Product(const ZULMRSBSPShortInteger& x, std::int64_t factor)
    {
        std::array<std::uint64_t, Limbs + 1> limbs;
        Wide carry = 0;
        for (std::size_t i = 0; i + 1 < Limbs; ++i) {
            carry += static_cast<Wide>(x.m_Limbs[i]) * factor;
            limbs[i] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        carry += static_cast<Wide>(static_cast<std::int64_t>(x.m_Limbs[Limbs - 1])) * factor;
        limbs[Limbs - 1] = static_cast<std::uint64_t>(carry);
        limbs[Limbs] = static_cast<std::uint64_t>(carry >> 64);
        return ZULMRSBSPShortInteger<Limbs + 1>(limbs);
    }

    std::array<std::uint64_t, Limbs> m_Limbs{};
};

/// The product of two integers of more than one limb each.
template <std::size_t Limbs, std::size_t Others>
ZULMRSBSPShortInteger<Limbs + Others> operator*(const ZULMRSBSPShortInteger<Limbs>& x,
                                                const ZULMRSBSPShortInteger<Others>& y) requires(Limbs > 1 &&
                                                                                                 Others > 1)
{
    // As if without signs; a negative factor then counts for 2^64 to its length too much, times the other
    // one.
    __extension__ using UnsignedWide = unsigned __int128;
    std::array<std::uint64_t, Limbs + Others> product{};
    for (std::size_t i = 0; i < Limbs; ++i) {
        UnsignedWide carry = 0;
        for (std::size_t j = 0; j < Others; ++j) {
            carry += UnsignedWide{x.GetLimb(i)} * y.GetLimb(j) + product[i + j];
            product[i + j] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        product[i + Others] = static_cast<std::uint64_t>(carry);
    }
    std::array<std::uint64_t, Limbs + Others> tooMuch{};
    const std::uint64_t signOfX = 0 - (x.GetLimb(Limbs - 1) >> 63);
    const std::uint64_t signOfY = 0 - (y.GetLimb(Others - 1) >> 63);
    UnsignedWide carry = 0;
    for (std::size_t i = 0; i < Limbs + Others; ++i) {
        carry += i >= Limbs ? y.GetLimb(i - Limbs) & signOfX : 0;
        carry += i >= Others ? x.GetLimb(i - Others) & signOfY : 0;
        tooMuch[i] = static_cast<std::uint64_t>(carry);
        carry >>= 64;
    }
    return ZULMRSBSPShortInteger<Limbs + Others>(product) - ZULMRSBSPShortInteger<Limbs + Others>(tooMuch);
}

/// The sign of a b - c d.
template <std::size_t Limbs>
ZULMRSBSPSign SignOfDifferenceOfProducts(const ZULMRSBSPShortInteger<Limbs>& a,
                                         const ZULMRSBSPShortInteger<Limbs>& b,
                                         const ZULMRSBSPShortInteger<Limbs>& c,
                                         const ZULMRSBSPShortInteger<Limbs>& d)
{
    const ZULMRSBSPSign ab = a.Sign() * b.Sign();
    const ZULMRSBSPSign cd = c.Sign() * d.Sign();
    if (ab != cd || ab.IsZero()) {
        return ZULMRSBSPSign::FromNumber(std::clamp(ab.ToKernelResult() - cd.ToKernelResult(), -1, 1));
    }
    const auto first = a.ProductOfMagnitudes(b);
    const auto second = c.ProductOfMagnitudes(d);
    const int order = static_cast<int>(std::lexicographical_compare(second.rbegin(), second.rend(),
                                                                    first.rbegin(), first.rend())) -
                      static_cast<int>(std::lexicographical_compare(first.rbegin(), first.rend(),
                                                                    second.rbegin(), second.rend()));
    return ab * ZULMRSBSPSign::FromNumber(order);
}

/// Doubles as integers times common powers of two. Scaling a row, or the last column, of a determinant by a
/// power of two does not change its sign.
namespace ZULMRSBSPShortIntegers
{
using Input = ZULMRSBSPShortInteger<1>;
constexpr int InputBits = 62;

// Signs and exponents of input cannot be foreseen, so nothing here branches on them.

/// A double taken apart: mantissa times 2^(exponent - Offset).
struct Parts {
    static constexpr int Offset = 1023 + 52;

    std::uint64_t m_Mantissa;
    std::uint64_t m_SignMask;  ///< all bits for a negative number, else none
    int m_Exponent;
};

/// By bits alone. False for what is not finite.
inline bool TakeApart(double value, Parts& parts)
{
    constexpr int infinite = 0x7FF;
    constexpr std::uint64_t hiddenBit = std::uint64_t{1} << 52;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto exponent = static_cast<int>((bits >> 52) & infinite);
    parts.m_Mantissa = (bits & (hiddenBit - 1)) | (exponent != 0 ? hiddenBit : 0);
    parts.m_SignMask = 0 - (bits >> 63);
    parts.m_Exponent = std::max(exponent, 1);
    return exponent != infinite;
}

/// The exponents of the lowest bit in use and of the place above the highest, over some numbers. Empty for
/// zeros alone.
struct Range {
    static constexpr int Nowhere = 1 << 20;

    int m_Low = Nowhere;
    int m_High = -Nowhere;

    void Include(const Parts& parts)
    {
        constexpr std::uint64_t stop = std::uint64_t{1} << 53;
        const int low = parts.m_Exponent + std::countr_zero(parts.m_Mantissa | stop);
        const int high = parts.m_Exponent + 53;
        const bool isZero = parts.m_Mantissa == 0;
        m_Low = std::min(m_Low, isZero ? Nowhere : low);
        m_High = std::max(m_High, isZero ? -Nowhere : high);
    }
};

/// Numbers as integers of one scale, cut off where they do not fit.
template <std::size_t Size>
struct Row {
    std::array<std::int64_t, Size> m_Values;
    bool m_IsFinite;
    bool m_IsExact;  ///< finite, and nothing was cut off

    const std::int64_t& operator[](std::size_t i) const { return m_Values[i]; }
};

/// The last number is multiplied by 2^shiftOfLast.
template <std::size_t Size>
Row<Size> Cut(const std::array<double, Size>& numbers, int shiftOfLast = 0)
{
    constexpr unsigned int room = InputBits - 53;
    std::array<Parts, Size> parts;
    bool isFinite = true;
    int top = std::min(shiftOfLast, 0);  // no number has a lower exponent
    for (std::size_t i = 0; i < Size; ++i) {
        isFinite &= TakeApart(numbers[i], parts[i]);
        parts[i].m_Exponent += i == Size - 1 ? shiftOfLast : 0;
        top = std::max(top, parts[i].m_Exponent);
    }
    Row<Size> row;
    std::uint64_t lost = 0;
    for (std::size_t i = 0; i < Size; ++i) {
        const auto places = static_cast<unsigned int>(std::min(top - parts[i].m_Exponent, 63));
        const std::uint64_t mantissa = parts[i].m_Mantissa << room;
        const std::uint64_t magnitude = mantissa >> places;
        lost |= (magnitude << places) ^ mantissa;
        row.m_Values[i] = static_cast<std::int64_t>((magnitude ^ parts[i].m_SignMask) - parts[i].m_SignMask);
    }
    row.m_IsFinite = isFinite;
    row.m_IsExact = isFinite && lost == 0;
    return row;
}

__extension__ using Wide = __int128;

inline ZULMRSBSPSign SignOf(Wide value)
{
    return ZULMRSBSPSign::FromNumber(static_cast<int>(value > 0) - static_cast<int>(value < 0));
}

/// As the inputs of a polynomial.
template <std::size_t Size>
std::array<Input, Size> ToInputs(const std::array<std::int64_t, Size>& values)
{
    std::array<Input, Size> inputs;
    for (std::size_t i = 0; i < Size; ++i) {
        inputs[i] = Input({static_cast<std::uint64_t>(values[i])});
    }
    return inputs;
}
}  // namespace ZULMRSBSPShortIntegers

#endif
