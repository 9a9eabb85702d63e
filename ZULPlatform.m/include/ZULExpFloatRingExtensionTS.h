#ifndef ZULExpFloatRingExtensionTS_h
#define ZULExpFloatRingExtensionTS_h

#include <cstdint>

#include "ZULExpBigIntegerTS.h"
#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// An exact number: an integer times a power of two. Sums, differences and products are exact, signs always
/// certain. Any finite double converts exactly, denormals included, and raises no floating-point flag. A
/// value that is not finite counts as zero and raises the overflow flag (_statusfp). A value type; distinct
/// objects may be used from distinct threads.
class ZULPlatform_API ZULExpFloatRingExtensionTS
{
public:
    ZULExpFloatRingExtensionTS() noexcept = default;
    ZULExpFloatRingExtensionTS(
        double value) noexcept;  // NOLINT(google-explicit-constructor): one formula for all numbers

    ZULExpSign_t Sign() const noexcept { return m_Integer.Sign(); }
    bool IsZero() const noexcept { return m_Integer.Sign() == 0; }
    /// True for a number greater than zero.
    bool IsPositive() const noexcept { return m_Integer.Sign() > 0; }

    /// The nearest double (ties to even; infinite when too large; gradual underflow). Any rounding mode.
    double Estimate() const noexcept;

    const ZULExpBigIntegerTS& GetInteger() const noexcept { return m_Integer; }
    std::int64_t GetExponent() const noexcept { return m_Exponent; }

    ZULExpFloatRingExtensionTS operator-() const;
    ZULExpFloatRingExtensionTS& operator+=(const ZULExpFloatRingExtensionTS& other);
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator+(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator-(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);
    friend ZULPlatform_API ZULExpFloatRingExtensionTS operator*(const ZULExpFloatRingExtensionTS& x,
                                                                const ZULExpFloatRingExtensionTS& y);

private:
    ZULExpBigIntegerTS m_Integer;
    std::int64_t m_Exponent = 0;
};

#endif
