#ifndef ZULMRSBSPSign_h
#define ZULMRSBSPSign_h

#include "ZULExpSign.h"
#include "ZULMRSExtendedBool.h"

/// What one stage knows of a sign: the true sign, or nothing. A decided zero is exactly zero.
class ZULMRSBSPSign
{
public:
    /// Undecided.
    constexpr ZULMRSBSPSign() = default;

    static constexpr ZULMRSBSPSign Undecided() { return {}; }
    static constexpr ZULMRSBSPSign Negative() { return ZULMRSBSPSign(-1); }
    static constexpr ZULMRSBSPSign Zero() { return ZULMRSBSPSign(0); }
    static constexpr ZULMRSBSPSign Positive() { return ZULMRSBSPSign(1); }
    /// From a number's own sign; everything but -1, 0 and 1 is undecided.
    static constexpr ZULMRSBSPSign FromNumber(ZULExpSign_t sign)
    {
        return sign >= ZULExpSignNegative && sign <= ZULExpSignPositive ? ZULMRSBSPSign(sign) : Undecided();
    }

    constexpr bool IsDecided() const { return m_Result != UndecidedResult; }
    constexpr bool IsNegative() const { return m_Result == -1; }
    constexpr bool IsZero() const { return m_Result == 0; }
    constexpr bool IsPositive() const { return m_Result == 1; }

    /// -1, 0, 1; 2 where undecided.
    constexpr int ToKernelResult() const { return m_Result; }
    /// The side that the sign of an equation tells; undetermined where undecided.
    constexpr ZULMRSExtendedBool ToAnswer() const
    {
        return static_cast<ZULMRSExtendedBool>(IsDecided() ? m_Result : 0);
    }

    friend constexpr bool operator==(const ZULMRSBSPSign&, const ZULMRSBSPSign&) = default;
    /// Sign of a product; an undecided factor leaves it undecided.
    friend constexpr ZULMRSBSPSign operator*(ZULMRSBSPSign s, ZULMRSBSPSign t)
    {
        return s.IsDecided() && t.IsDecided() ? ZULMRSBSPSign(s.m_Result * t.m_Result) : Undecided();
    }
    friend constexpr ZULMRSBSPSign operator-(ZULMRSBSPSign s)
    {
        return s.IsDecided() ? ZULMRSBSPSign(-s.m_Result) : s;
    }

private:
    static constexpr int UndecidedResult = 2;

    explicit constexpr ZULMRSBSPSign(int sign) : m_Result(sign) {}

    int m_Result = UndecidedResult;
};

/// The shortcut: what the signs of factors alone tell about a sum of products.
namespace ZULMRSBSPShortcut
{
/// -1, 0 or 1; a NaN counts as negative, so that it never passes for zero.
inline int FactorSign(double factor)
{
    return static_cast<int>(factor > 0.0) - static_cast<int>(!(factor >= 0.0));
}

/// Sign of a sum from the signs (-1, 0, 1) of its terms: decided unless terms of both signs occur.
template <class... Terms>
constexpr ZULMRSBSPSign SignOfSum(Terms... terms)
{
    const bool someNegative = (... | terms) < 0;
    const bool somePositive = (... | (-terms)) < 0;
    if (someNegative && somePositive) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPSign::FromNumber(static_cast<int>(somePositive) - static_cast<int>(someNegative));
}

/// The same where signs of terms may be undecided; one such term leaves the sum undecided.
template <class... Signs>
constexpr ZULMRSBSPSign SignOfOpenSum(Signs... terms)
{
    return (... && terms.IsDecided()) ? SignOfSum(terms.ToKernelResult()...) : ZULMRSBSPSign::Undecided();
}
}  // namespace ZULMRSBSPShortcut

#endif
