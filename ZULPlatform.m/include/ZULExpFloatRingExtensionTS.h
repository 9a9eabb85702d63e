#ifndef ZULExpFloatRingExtensionTS_h
#define ZULExpFloatRingExtensionTS_h

#include <cstdint>
#include <cstring>
#include <utility>

#include "ZULExpBigIntegerTS.h"
#include "ZULExpFloatStatus.h"
#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// An exact number: an integer times a power of two. Sums, differences and products are exact, signs always
/// certain. Any finite double converts exactly, denormals included, and raises no floating-point flag. A
/// value that is not finite counts as zero and raises the overflow flag (_statusfp). Exponents have 64 bits:
/// a number beyond that throws std::overflow_error, one that does not fit into memory std::bad_alloc. A value
/// type; distinct objects may be used from distinct threads.
class ZULPlatform_API ZULExpFloatRingExtensionTS
{
public:
    ZULExpFloatRingExtensionTS() noexcept = default;
    // By bits alone: arithmetic would depend on the caller's control word and raise flags.
    ZULExpFloatRingExtensionTS(double value) noexcept  // NOLINT(google-explicit-constructor): one formula
    {                                                  // for all numbers
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        const auto biasedExponent = static_cast<int>((bits >> 52) & 0x7FFU);
        std::uint64_t mantissa = bits & ((std::uint64_t{1} << 52) - 1);
        int exponent = SmallestExponent;
        if (biasedExponent != 0) {
            mantissa |= std::uint64_t{1} << 52;
            exponent += biasedExponent - 1;
        }
        if (biasedExponent == 0x7FF) {
            ZULExpProcessor::RaiseOverflow();
        } else if (mantissa != 0) {
            const int zeros = __builtin_ctzll(mantissa);
            m_Integer.SetMagnitude(mantissa >> zeros, (bits >> 63) != 0);
            m_Exponent = exponent + zeros;
        }
    }

    /// integer * 2^exponent.
    ZULExpFloatRingExtensionTS(ZULExpBigIntegerTS integer, std::int64_t exponent)
        : m_Integer(std::move(integer)), m_Exponent(exponent)
    {
        Normalize();
    }

    ZULExpSign_t Sign() const noexcept { return m_Integer.Sign(); }
    bool IsZero() const noexcept { return m_Integer.IsZero(); }
    /// True for a number greater than zero.
    bool IsPositive() const noexcept { return m_Integer.Sign() > 0; }

    /// The nearest double (ties to even; infinite when too large; gradual underflow). In any rounding mode;
    /// raises no flag.
    double Estimate() const noexcept;

    /// The number is GetInteger() * 2^GetExponent(). The exponent of a zero says nothing.
    const ZULExpBigIntegerTS& GetInteger() const noexcept { return m_Integer; }
    std::int64_t GetExponent() const noexcept { return m_Exponent; }

    /// Exact, as all arithmetic here.
    ZULExpFloatRingExtensionTS operator-() const;
    ZULExpFloatRingExtensionTS& operator+=(const ZULExpFloatRingExtensionTS& other)
    {
        return *this = *this + other;
    }
    ZULExpFloatRingExtensionTS& operator-=(const ZULExpFloatRingExtensionTS& other)
    {
        return *this = *this - other;
    }
    ZULExpFloatRingExtensionTS& operator*=(const ZULExpFloatRingExtensionTS& other)
    {
        return *this = *this * other;
    }
    /// Exact.
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator+(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);
    /// Exact.
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator-(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);
    /// Exact.
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator*(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);

private:
    void SetSum(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& y, bool isYNegated);
    void SetProduct(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& y);
    // Drops low zero limbs, so that numbers stay short.
    void Normalize()
    {
        if (m_Integer.Limbs()[0] == 0 && !m_Integer.IsZero()) {
            DropLowZeroLimbs();
        }
    }
    void DropLowZeroLimbs();

    static constexpr int SmallestExponent = -1074;  // of the unit of denormals

    ZULExpBigIntegerTS m_Integer;
    std::int64_t m_Exponent = 0;
};

#endif
