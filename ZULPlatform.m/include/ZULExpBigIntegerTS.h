#ifndef ZULExpBigIntegerTS_h
#define ZULExpBigIntegerTS_h

#include <cstddef>
#include <cstdint>

#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// A signed integer of any size. Small ones live inside the object; only beyond InlineLimbs limbs is the heap
/// used (std::bad_alloc when it is exhausted). A value type; distinct objects may be used from distinct
/// threads. An object that was moved from is zero.
class ZULPlatform_API ZULExpBigIntegerTS
{
public:
    /// Inline room, in 64-bit limbs: enough for the exact stage of a side-of-plane test whose planes are
    /// given by ordinary coordinates, three points each (some 11 limbs), and for its products in the making.
    static constexpr std::size_t InlineLimbs = 14;

    ZULExpBigIntegerTS() noexcept : m_Capacity(InlineLimbs), m_SignedSize(0) { ClearPadding(); }
    explicit ZULExpBigIntegerTS(std::int64_t value) noexcept;
    ZULExpBigIntegerTS(const ZULExpBigIntegerTS& other);
    ZULExpBigIntegerTS(ZULExpBigIntegerTS&& other) noexcept { TakeFrom(other); }
    ZULExpBigIntegerTS& operator=(const ZULExpBigIntegerTS& other);
    ZULExpBigIntegerTS& operator=(ZULExpBigIntegerTS&& other) noexcept
    {
        if (this != &other) {
            FreeHeap();
            TakeFrom(other);
        }
        return *this;
    }
    ~ZULExpBigIntegerTS() { FreeHeap(); }

    /// The number whose magnitude has these limbs, least significant first; zero limbs at the top may be
    /// among them.
    static ZULExpBigIntegerTS FromLimbs(const std::uint64_t* limbs, std::size_t nbLimbs, bool isNegative);

    /// -1, 0 or 1; always certain.
    ZULExpSign_t Sign() const noexcept { return (m_SignedSize > 0 ? 1 : 0) - (m_SignedSize < 0 ? 1 : 0); }
    bool IsZero() const noexcept { return m_SignedSize == 0; }

    /// Number of 64-bit limbs of the magnitude; 0 for zero.
    std::size_t GetNbLimbs() const noexcept { return Size(); }
    /// The limbs of the magnitude, least significant first, the last one not 0. They belong to the number and
    /// stay valid until it is changed, moved or destroyed.
    const std::uint64_t* GetLimbs() const noexcept { return Limbs(); }
    /// Number of bits of the magnitude; 0 for zero.
    std::size_t GetBitLength() const noexcept;
    /// Number of zero bits below the lowest set bit; 0 for zero.
    std::size_t GetTrailingZeros() const noexcept;

    /// Exact, as all arithmetic here.
    ZULExpBigIntegerTS operator-() const;
    /// Exact.
    friend ZULPlatform_API ZULExpBigIntegerTS operator+(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    /// Exact.
    friend ZULPlatform_API ZULExpBigIntegerTS operator-(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    /// Exact.
    friend ZULPlatform_API ZULExpBigIntegerTS operator*(const ZULExpBigIntegerTS& x,
                                                        const ZULExpBigIntegerTS& y);
    /// Times 2^bits.
    ZULExpBigIntegerTS ShiftedLeft(std::size_t bits) const;
    /// Divided by 2^bits, towards zero.
    ZULExpBigIntegerTS ShiftedRight(std::size_t bits) const;
    /// -1, 0, 1 as x is less than, equal to, greater than y.
    friend ZULPlatform_API int Compare(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y) noexcept;

    /// The magnitude as mantissa x 2^exponent with the mantissa in [0.5, 1), rounded to nearest even (exact
    /// up to 53 bits); zero gives 0 and exponent 0. The sign is not part of it. In any rounding mode; raises
    /// no flag.
    void ConvertToDouble(double& mantissa, std::int64_t& exponent) const noexcept;

private:
    friend class ZULExpFloatRingExtensionTS;

    std::size_t Size() const noexcept
    {
        return static_cast<std::size_t>(m_SignedSize < 0 ? -m_SignedSize : m_SignedSize);
    }
    const std::uint64_t* Limbs() const noexcept { return m_Capacity > InlineLimbs ? m_Heap : m_Inline; }
    std::uint64_t* Limbs() noexcept { return m_Capacity > InlineLimbs ? m_Heap : m_Inline; }

    // Room for that many limbs; what was in the number is lost.
    std::uint64_t* MakeRoom(std::size_t limbs);
    // Sets the size, without the zero limbs at the top, and pads.
    void SetSize(std::size_t size, bool isNegative) noexcept;
    void Pad() noexcept;
    // For a magnitude of one limb, in a number without heap block.
    void SetMagnitude(std::uint64_t magnitude, bool isNegative) noexcept
    {
        m_Inline[0] = magnitude;
        m_SignedSize = magnitude == 0 ? 0 : (isNegative ? -1 : 1);
    }
    // Into a number that is zero, has no heap block and is neither x nor y: x * 2^shift + y, or - y. These
    // two are inline functions of the sources; the long forms are for numbers of any size.
    void SetShiftedSum(const ZULExpBigIntegerTS& x, std::uint64_t shift, const ZULExpBigIntegerTS& y,
                       bool isYNegated);
    void SetProduct(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y);
    void SetLongShiftedSum(const ZULExpBigIntegerTS& x, std::uint64_t shift, const ZULExpBigIntegerTS& y,
                           bool isYNegated);
    void SetLongProduct(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y);
    void SetShiftedLeft(const ZULExpBigIntegerTS& x, std::uint64_t shift);
    // Takes the zero limbs off the low end; returns how many.
    std::size_t DropLowZeroLimbs() noexcept;
    // The highest bits of the magnitude, as many as asked for (at most 63), rounded to nearest even; the
    // whole magnitude if it is shorter. May be 2^bits.
    std::uint64_t RoundedTop(std::size_t bits) const noexcept;

    void FreeHeap() noexcept
    {
        if (m_Capacity > InlineLimbs) {
            delete[] m_Heap;
        }
    }
    // Limb by limb: a loop or memset would be carried out even where the limbs are written next.
    void ClearPadding() noexcept
    {
        static_assert(PaddedLimbs == 4, "the limbs listed here");
        m_Inline[0] = 0;
        m_Inline[1] = 0;
        m_Inline[2] = 0;
        m_Inline[3] = 0;
    }
    // Leaves other zero; the own heap block must have been freed.
    void TakeFrom(ZULExpBigIntegerTS& other) noexcept
    {
        m_Capacity = other.m_Capacity;
        m_SignedSize = other.m_SignedSize;
        if (m_Capacity > InlineLimbs) {
            m_Heap = other.m_Heap;
        } else {
            m_Inline[0] = other.m_Inline[0];
            m_Inline[1] = other.m_Inline[1];
            m_Inline[2] = other.m_Inline[2];
            m_Inline[3] = other.m_Inline[3];
            for (std::size_t i = PaddedLimbs, size = Size(); i < size; ++i) {
                m_Inline[i] = other.m_Inline[i];
            }
        }
        other.ClearPadding();
        other.m_Capacity = InlineLimbs;
        other.m_SignedSize = 0;
    }

    // Limbs that are zero when they are not in use, so that short numbers are computed without loops.
    static constexpr std::size_t PaddedLimbs = 4;

    // Least significant limb first, no zero limb at the top.
    union {
        std::uint64_t m_Inline[InlineLimbs];
        std::uint64_t* m_Heap;  // when m_Capacity > InlineLimbs
    };
    std::uint32_t m_Capacity;
    std::int32_t m_SignedSize;  // limbs in use, negative for a negative number
};

#endif
