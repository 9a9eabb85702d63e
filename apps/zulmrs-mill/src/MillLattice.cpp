#include "MillLattice.h"

#include <cmath>

namespace
{

template <class Whole>
Whole GreatestCommonFactor(Whole a, Whole b)
{
    a = a < 0 ? -a : a;
    b = b < 0 ? -b : b;
    while (b != 0) {
        const Whole rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

template <class Vector>
Vector Reduced(const Vector& v)
{
    const auto factor = GreatestCommonFactor(GreatestCommonFactor(v.m_X, v.m_Y), v.m_Z);
    if (factor == 0) {
        return v;
    }
    return {v.m_X / factor, v.m_Y / factor, v.m_Z / factor};
}

}  // namespace

double MillBox::GetVolumeMm3() const
{
    const MillVector size = m_Max - m_Min;
    return MillToMm(size.m_X) * MillToMm(size.m_Y) * MillToMm(size.m_Z);
}

MillWide MillDot(const MillNormal& n, const MillVector& v)
{
    return n.m_X * v.m_X + n.m_Y * v.m_Y + n.m_Z * v.m_Z;
}

MillNormal MillCross(const MillVector& u, const MillVector& v)
{
    const auto minor = [](std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) {
        return static_cast<MillWide>(a) * d - static_cast<MillWide>(b) * c;
    };
    return {minor(u.m_Y, u.m_Z, v.m_Y, v.m_Z), minor(u.m_Z, u.m_X, v.m_Z, v.m_X),
            minor(u.m_X, u.m_Y, v.m_X, v.m_Y)};
}

MillNormal MillPrimitive(const MillNormal& n)
{
    return Reduced(n);
}

MillVector MillPrimitive(const MillVector& v)
{
    return Reduced(v);
}

bool MillSnap(double mm, std::int64_t& nanometres)
{
    const double scaled = std::round(mm * kMillNanometresPerMm);
    // Written so that what is not a number fails too.
    if (!(std::fabs(scaled) <= static_cast<double>(kMillFarthestPlace))) {
        return false;
    }
    nanometres = static_cast<std::int64_t>(scaled);
    return true;
}

bool MillSnap(const ZULMathPoint& mm, MillVector& place)
{
    return MillSnap(mm.x, place.m_X) && MillSnap(mm.y, place.m_Y) && MillSnap(mm.z, place.m_Z);
}
