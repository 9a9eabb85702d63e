#ifndef ZULExpInterval_h
#define ZULExpInterval_h

#include <cstdint>
#include <cstring>
#include <limits>

#include "ZULExpFloatStatus.h"
#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// A closed interval of doubles (bounds may be infinite). Every operation encloses the exact result, provided
/// that a ZULExpRounding guard is alive on the thread; without one the result is not an enclosure.
/// Construction, negation, Sign, LowerBound, UpperBound and Estimate need no guard. Where a bound has no
/// value (infinity times zero, infinity minus infinity, a NaN) the result is the whole line. A plain value.
class ZULPlatform_API ZULExpInterval
{
public:
    /// The point 0.
    ZULExpInterval() : m_Bounds(ZULExpProcessor::MakePair(0.0, 0.0)) {}
    /// The point interval [value, value]; a NaN gives the whole line.
    ZULExpInterval(double value)  // NOLINT(google-explicit-constructor): one formula for all number types
        : m_Bounds(ZULExpProcessor::MakePair(-value, value))
    {
    }
    /// [lower, upper]; bounds out of order or NaN give the whole line.
    ZULExpInterval(double lower, double upper)
        : m_Bounds(AreInOrder(lower, upper) ? ZULExpProcessor::MakePair(-lower, upper) : WholeLine())
    {
    }

    double LowerBound() const
    {
        const double negated = ZULExpProcessor::First(m_Bounds);
        return IsNaN(negated) ? -std::numeric_limits<double>::infinity() : -negated;
    }
    double UpperBound() const
    {
        const double upper = ZULExpProcessor::Second(m_Bounds);
        return IsNaN(upper) ? std::numeric_limits<double>::infinity() : upper;
    }

    /// A double inside the interval, near its middle; for a point interval that point exactly. With one
    /// infinite bound the finite one, for the whole line 0. In any rounding mode; raises no flag.
    double Estimate() const;

    /// 1, -1 when the interval lies on one side of zero, 0 for the point 0, ZULExpSignUncertain otherwise.
    ZULExpSign_t Sign() const
    {
        const std::uint64_t negatedLower = Bits(ZULExpProcessor::First(m_Bounds));
        const std::uint64_t upper = Bits(ZULExpProcessor::Second(m_Bounds));
        if (IsBelowZero(negatedLower)) {
            return ZULExpSignPositive;
        }
        if (IsBelowZero(upper)) {
            return ZULExpSignNegative;
        }
        return ((negatedLower | upper) << 1) == 0 ? ZULExpSignZero : ZULExpSignUncertain;
    }

    ZULExpInterval operator-() const { return ZULExpInterval(ZULExpProcessor::Exchanged(m_Bounds)); }

    ZULExpInterval& operator+=(const ZULExpInterval& other)
    {
        m_Bounds = PinnedSum(m_Bounds, other.m_Bounds);
        return *this;
    }
    ZULExpInterval& operator-=(const ZULExpInterval& other)
    {
        m_Bounds = PinnedSum(m_Bounds, ZULExpProcessor::Exchanged(other.m_Bounds));
        return *this;
    }
    ZULExpInterval& operator*=(const ZULExpInterval& other)
    {
        m_Bounds = PinnedProduct(m_Bounds, other.m_Bounds);
        return *this;
    }
    /// Division by an interval that contains zero gives the whole line.
    ZULExpInterval& operator/=(const ZULExpInterval& other)
    {
        m_Bounds = PinnedQuotient(m_Bounds, other.m_Bounds);
        return *this;
    }

    friend ZULExpInterval operator+(ZULExpInterval x, const ZULExpInterval& y) { return x += y; }
    friend ZULExpInterval operator-(ZULExpInterval x, const ZULExpInterval& y) { return x -= y; }
    friend ZULExpInterval operator*(ZULExpInterval x, const ZULExpInterval& y) { return x *= y; }
    friend ZULExpInterval operator/(ZULExpInterval x, const ZULExpInterval& y) { return x /= y; }

private:
    using Pair = ZULExpProcessor::DoublePair;

    static constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;
    static constexpr std::uint64_t InfinityBits = std::uint64_t{0x7FF} << 52;

    explicit ZULExpInterval(Pair bounds) : m_Bounds(bounds) {}

    // By bits, so that a caller who treats denormals as zero gets the same answer, and no flag is raised.
    static std::uint64_t Bits(double value)
    {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    static bool IsInfinite(double value) { return (Bits(value) << 1) == (InfinityBits << 1); }
    static bool IsNaN(double value) { return (Bits(value) << 1) > (InfinityBits << 1); }
    static bool IsBelowZero(std::uint64_t bits)
    {
        return bits - (SignBit + 1) <= InfinityBits - 1;  // from the smallest denormal to minus infinity
    }
    static bool AreInOrder(double lower, double upper)
    {
        return !IsNaN(lower) && !IsNaN(upper) && OrderKey(Bits(lower)) <= OrderKey(Bits(upper));
    }
    static std::int64_t OrderKey(std::uint64_t bits)
    {
        const auto magnitude = static_cast<std::int64_t>(bits & ~SignBit);
        return (bits & SignBit) != 0 ? -magnitude : magnitude;
    }

    static Pair WholeLine()
    {
        return ZULExpProcessor::MakePair(std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::infinity());
    }

    // Each operation pins its operands, whatever it negates itself, and the result. So no compiler moves it
    // out of the guard's reach, computes it beforehand in another rounding mode, or takes a minus sign out
    // of a product, which would round it the other way.
    static Pair PinnedSum(Pair x, Pair y)
    {
        ZULExpProcessor::Pin(x);
        ZULExpProcessor::Pin(y);
        Pair sum = ZULExpProcessor::Sum(x, y);
        ZULExpProcessor::Pin(sum);
        return sum;
    }

    // The four products of bounds, each formed so that rounding up is rounding outwards.
    static Pair PinnedProduct(Pair x, Pair y)
    {
        using namespace ZULExpProcessor;
        Pin(x);
        Pin(y);
        const Pair exchanged = Exchanged(x);
        const Pair negatedLower = BothFirst(y);
        const Pair upper = BothSecond(y);
        Pair lower = Negated(negatedLower);
        Pair negatedUpper = Negated(upper);
        Pin(lower);
        Pin(negatedUpper);
        const Pair p1 = Product(x, upper);
        const Pair p2 = Product(x, lower);
        const Pair p3 = Product(exchanged, negatedLower);
        const Pair p4 = Product(exchanged, negatedUpper);
        int hasNaN = HasNaN(p1, p2, p3, p4);
        Pair product = Maximum(Maximum(p1, p2), Maximum(p3, p4));
        Pin(hasNaN);
        Pin(product);
        return hasNaN != 0 ? WholeLine() : product;
    }

    // For a positive divisor: a bound is divided by the divisor's near end where it is >= 0, by its far end
    // where it is < 0. A negative divisor is that of the fraction with both signs changed.
    static Pair PinnedQuotient(Pair x, Pair y)
    {
        using namespace ZULExpProcessor;
        Pin(x);
        Pin(y);
        const bool isNegative = IsBelowZero(Bits(Second(y)));
        if (!isNegative && !IsBelowZero(Bits(First(y)))) {
            return WholeLine();
        }
        if (isNegative) {
            x = Exchanged(x);
            y = Exchanged(y);
        }
        Pair divisor = ChooseBySign(x, Negated(BothFirst(y)), BothSecond(y));
        Pin(divisor);
        Pair quotient = Quotient(x, divisor);
        int hasNaN = HasNaN(quotient);
        Pin(hasNaN);
        Pin(quotient);
        return hasNaN != 0 ? WholeLine() : quotient;
    }

    // Minus the lower bound, and the upper bound: rounding up then widens both. A bound that is NaN counts as
    // infinite; where one is, the other is never finite.
    Pair m_Bounds;
};

#endif
