#ifndef ZULExpBigIntegerTS_h
#define ZULExpBigIntegerTS_h

#include <cstddef>
#include <cstdint>

#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// A signed integer of any size. Small ones live inside the object; only beyond InlineLimbs limbs is the heap
/// used (std::bad_alloc when it is exhausted). A value type; distinct objects may be used from distinct
/// threads.
class ZULPlatform_API ZULExpBigIntegerTS
{
public:
    /// Inline room, in 64-bit limbs: enough for the exact stage of a side-of-plane test on ordinary doubles.
    static constexpr std::size_t InlineLimbs = 8;

    ZULExpBigIntegerTS() noexcept;
    explicit ZULExpBigIntegerTS(std::int64_t value) noexcept;
    ZULExpBigIntegerTS(const ZULExpBigIntegerTS& other);
    ZULExpBigIntegerTS(ZULExpBigIntegerTS&& other) noexcept;
    ZULExpBigIntegerTS& operator=(const ZULExpBigIntegerTS& other);
    ZULExpBigIntegerTS& operator=(ZULExpBigIntegerTS&& other) noexcept;
    ~ZULExpBigIntegerTS();

    /// -1, 0 or 1; always certain.
    ZULExpSign_t Sign() const noexcept;
    bool IsZero() const noexcept { return Sign() == 0; }

    /// Number of bits of the magnitude; 0 for zero.
    std::size_t GetBitLength() const noexcept;
    /// Number of zero bits below the lowest set bit; 0 for zero.
    std::size_t GetTrailingZeros() const noexcept;

    ZULExpBigIntegerTS operator-() const;
    friend ZULPlatform_API ZULExpBigIntegerTS operator+(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    friend ZULPlatform_API ZULExpBigIntegerTS operator-(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    friend ZULPlatform_API ZULExpBigIntegerTS operator*(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    /// Times 2^bits.
    ZULExpBigIntegerTS ShiftedLeft(std::size_t bits) const;
    /// Divided by 2^bits, towards zero.
    ZULExpBigIntegerTS ShiftedRight(std::size_t bits) const;
    /// -1, 0, 1 as x is less than, equal to, greater than y.
    friend ZULPlatform_API int Compare(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y) noexcept;

    /// The magnitude as mantissa x 2^exponent with the mantissa in [0.5, 1), rounded to nearest even (exact
    /// up to 53 bits); zero gives 0 and exponent 0. The sign is not part of it.
    void ConvertToDouble(double& mantissa, std::int64_t& exponent) const noexcept;

private:
    friend class ZULExpFloatRingExtensionTS;

    std::uint64_t m_Inline[InlineLimbs];
    std::uint64_t* m_Limbs;  // m_Inline or the heap, least significant limb first
    std::uint32_t m_Capacity;
    std::int32_t m_SignedSize;  // limbs in use, negative for a negative number
};

#endif
