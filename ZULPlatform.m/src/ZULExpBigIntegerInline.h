#ifndef ZULExpBigIntegerInline_h
#define ZULExpBigIntegerInline_h

#include "ZULExpBigIntegerTS.h"
#include "ZULExpLimbs.h"

// The sums and products of short numbers, which are nearly all of them.

[[gnu::always_inline]] inline void ZULExpBigIntegerTS::SetShiftedSum(const ZULExpBigIntegerTS& x,
                                                                     std::uint64_t shift,
                                                                     const ZULExpBigIntegerTS& y,
                                                                     bool isYNegated)
{
    if (shift >= ZULExpLimbs::LimbBits || x.Size() > PaddedLimbs || y.Size() > PaddedLimbs) {
        SetLongShiftedSum(x, shift, y, isYNegated);
        return;
    }
    const bool isXNegative = x.m_SignedSize < 0;
    const bool isDifference = isXNegative != ((y.m_SignedSize < 0) != isYNegated);
    const std::uint64_t isFlipped = ZULExpLimbs::ShortShiftedSum(
        m_Inline, x.Limbs(), static_cast<unsigned int>(shift), y.Limbs(), isDifference);
    const std::size_t size = m_Inline[4] != 0 ? 5U : ZULExpLimbs::ShortSize(m_Inline);
    const auto signedSize = static_cast<std::int32_t>(size);
    m_SignedSize = isXNegative != (isFlipped != 0) ? -signedSize : signedSize;
}

[[gnu::always_inline]] inline void ZULExpBigIntegerTS::SetProduct(const ZULExpBigIntegerTS& x,
                                                                  const ZULExpBigIntegerTS& y)
{
    const std::size_t xSize = x.Size();
    const std::size_t ySize = y.Size();
    if (xSize <= 3 && ySize <= 1) {
        ZULExpLimbs::ShortProduct3x1(m_Inline, x.Limbs(), y.Limbs()[0]);
    } else if (xSize <= 1 && ySize <= 3) {
        ZULExpLimbs::ShortProduct3x1(m_Inline, y.Limbs(), x.Limbs()[0]);
    } else if (xSize <= 2 && ySize <= 2) {
        ZULExpLimbs::ShortProduct2x2(m_Inline, x.Limbs(), y.Limbs());
    } else {
        SetLongProduct(x, y);
        return;
    }
    const auto signedSize = static_cast<std::int32_t>(ZULExpLimbs::ShortSize(m_Inline));
    m_SignedSize = (x.m_SignedSize < 0) != (y.m_SignedSize < 0) ? -signedSize : signedSize;
}

#endif
