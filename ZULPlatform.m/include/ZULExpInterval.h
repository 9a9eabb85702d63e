#ifndef ZULExpInterval_h
#define ZULExpInterval_h

#include "ZULExpFloatStatus.h"
#include "ZULExpSign.h"
#include "ZULPlatformExport.h"

/// A closed interval of doubles (bounds may be infinite). Every operation encloses the exact result, provided
/// that a ZULExpRounding guard is alive on the thread; without one the result is not an enclosure.
/// Construction, negation, Sign, LowerBound and UpperBound need no guard. A plain value.
class ZULPlatform_API ZULExpInterval
{
public:
    /// The point 0.
    ZULExpInterval();
    /// The point interval [value, value]; a NaN gives the whole line.
    ZULExpInterval(
        double value);  // NOLINT(google-explicit-constructor): formulas are written once for all number types
    /// [lower, upper]; bounds out of order or NaN give the whole line.
    ZULExpInterval(double lower, double upper);

    double LowerBound() const;
    double UpperBound() const;

    /// A double inside the interval, near its middle; for a point interval that point exactly. Any rounding
    /// mode.
    double Estimate() const;

    /// 1, -1 when the interval lies on one side of zero, 0 for the point 0, ZULExpSignUncertain otherwise.
    ZULExpSign_t Sign() const;

    ZULExpInterval operator-() const;
    ZULExpInterval& operator+=(const ZULExpInterval& other);
    ZULExpInterval& operator-=(const ZULExpInterval& other);
    ZULExpInterval& operator*=(const ZULExpInterval& other);
    /// Division by an interval that contains zero gives the whole line.
    ZULExpInterval& operator/=(const ZULExpInterval& other);

    friend ZULExpInterval operator+(ZULExpInterval x, const ZULExpInterval& y) { return x += y; }
    friend ZULExpInterval operator-(ZULExpInterval x, const ZULExpInterval& y) { return x -= y; }
    friend ZULExpInterval operator*(ZULExpInterval x, const ZULExpInterval& y) { return x *= y; }
    friend ZULExpInterval operator/(ZULExpInterval x, const ZULExpInterval& y) { return x /= y; }

private:
    double m_NegatedLower = 0.0;
    double m_Upper = 0.0;
};

#endif
