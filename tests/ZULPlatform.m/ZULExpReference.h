#ifndef ZULExpReference_h
#define ZULExpReference_h

#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

// What the arithmetic is tested against: exact numbers over mpz, and doubles of every kind.
namespace ZULExpReference
{
using Random = std::mt19937_64;

/// Fewer under sanitizers, which slow the reference down much more than what is tested.
#if defined(ZUL_TEST_SANITIZED)
constexpr int NbCases = 100000;
#else
constexpr int NbCases = 1000000;
#endif

/// mantissa * 2^exponent, exactly.
struct Exact {
    mpz_class m_Mantissa;
    std::int64_t m_Exponent = 0;

    Exact() = default;
    Exact(mpz_class mantissa, std::int64_t exponent) : m_Mantissa(std::move(mantissa)), m_Exponent(exponent)
    {
    }
    explicit Exact(double value)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        const std::uint64_t biased = (bits >> 52) & 0x7FFU;
        const std::uint64_t fraction = bits & 0xFFFFFFFFFFFFFU;
        m_Mantissa = static_cast<unsigned long>(biased == 0 ? fraction : fraction | (std::uint64_t{1} << 52));
        m_Exponent = static_cast<std::int64_t>(biased == 0 ? 1 : biased) - 1075;
        if ((bits >> 63) != 0) {
            m_Mantissa = -m_Mantissa;
        }
    }
    int Sign() const { return sgn(m_Mantissa); }
};

inline mpz_class Scaled(const Exact& x, std::int64_t exponent)
{
    return x.m_Mantissa << static_cast<mp_bitcnt_t>(x.m_Exponent - exponent);
}
inline Exact operator-(const Exact& x)
{
    return {-x.m_Mantissa, x.m_Exponent};
}
inline Exact operator+(const Exact& x, const Exact& y)
{
    if (x.Sign() == 0 || y.Sign() == 0) {
        return x.Sign() == 0 ? y : x;
    }
    const std::int64_t exponent = std::min(x.m_Exponent, y.m_Exponent);
    return {Scaled(x, exponent) + Scaled(y, exponent), exponent};
}
inline Exact operator-(const Exact& x, const Exact& y)
{
    return x + -y;
}
inline Exact operator*(const Exact& x, const Exact& y)
{
    return {x.m_Mantissa * y.m_Mantissa, x.m_Exponent + y.m_Exponent};
}
/// The sign of x - y.
inline int Compare(const Exact& x, const Exact& y)
{
    if (x.Sign() != y.Sign() || x.Sign() == 0) {
        return x.Sign() - y.Sign();
    }
    static thread_local mpz_class shifted;  // kept: allocations are what these comparisons cost
    int order = 0;
    if (x.m_Exponent >= y.m_Exponent) {
        shifted = x.m_Mantissa << static_cast<mp_bitcnt_t>(x.m_Exponent - y.m_Exponent);
        order = cmp(shifted, y.m_Mantissa);
    } else {
        shifted = y.m_Mantissa << static_cast<mp_bitcnt_t>(y.m_Exponent - x.m_Exponent);
        order = cmp(x.m_Mantissa, shifted);
    }
    return (order > 0 ? 1 : 0) - (order < 0 ? 1 : 0);
}
/// Compares with a double that may be infinite.
inline int Compare(double x, const Exact& y)
{
    if (std::isinf(x)) {
        return x > 0.0 ? 1 : -1;
    }
    return Compare(Exact(x), y);
}

inline double FromBits(std::uint64_t bits)
{
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

enum Scale { Easy, NearDegenerate, Tiny, Denormal, Huge, Mixed, NbScales };

/// A finite double with a random mantissa whose exponent lies in the given range.
inline double RandomDouble(Random& random, int lowest, int highest)
{
    const auto range = static_cast<std::uint64_t>(highest - lowest + 1);
    const auto exponent = static_cast<std::uint64_t>(lowest + 1023) + random() % range;
    const std::uint64_t sign = random() << 63;
    std::uint64_t mantissa = random() >> 12;
    if (random() % 4 == 0) {
        mantissa &= ~std::uint64_t{0} << (random() % 52);  // a short one
    }
    return FromBits(sign | (exponent << 52) | mantissa);
}

inline double RandomDouble(Random& random, Scale scale)
{
    switch (scale) {
        case Easy:
            return RandomDouble(random, -10, 10);
        case NearDegenerate: {
            const double integer = static_cast<double>(random() % 17) - 8.0;
            const std::uint64_t kind = random() % 4;
            return kind < 2 ? integer : std::nextafter(integer, kind == 2 ? 100.0 : -100.0);
        }
        case Tiny:
            return RandomDouble(random, -1000, -990);
        case Denormal:
            return FromBits((random() << 63) | (random() >> (12 + random() % 52)));
        case Huge:
            return RandomDouble(random, 990, 1023);
        default:
            return random() % 16 == 0 ? 0.0 : RandomDouble(random, -1022, 1023);
    }
}

inline double RandomDouble(Random& random)
{
    return RandomDouble(random, static_cast<Scale>(random() % NbScales));
}
}  // namespace ZULExpReference

#endif
