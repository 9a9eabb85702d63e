#include "ZULMRSMathUtilities.h"

#include <algorithm>
#include <cmath>

namespace
{
/// v times the power of two that brings its largest component into [0.5, 1): exact, and no square of it can
/// overflow or vanish.
ZULMathVector ScaledToUnity(const ZULMathVector& v)
{
    int exponent = 0;
    std::frexp(std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)}), &exponent);
    return {std::ldexp(v.x, -exponent), std::ldexp(v.y, -exponent), std::ldexp(v.z, -exponent)};
}

/// The coordinate axis along which v is smallest, the one farthest from parallel to it.
ZULMathVector LeastAlignedAxis(const ZULMathVector& v)
{
    const double x = std::fabs(v.x);
    const double y = std::fabs(v.y);
    const double z = std::fabs(v.z);
    if (x <= y && x <= z) {
        return {1.0, 0.0, 0.0};
    }
    return y <= z ? ZULMathVector(0.0, 1.0, 0.0) : ZULMathVector(0.0, 0.0, 1.0);
}
}  // namespace

int ZULMRSMathUtilities::CompleteOrthogonalBasis(const ZULMathVector& v, ZULMathVector& u1, ZULMathVector& u2)
{
    const bool isFinite = std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
    if (!isFinite || (v.x == 0.0 && v.y == 0.0 && v.z == 0.0)) {
        u1 = ZULMathVector(1.0, 0.0, 0.0);
        u2 = ZULMathVector(0.0, 1.0, 0.0);
        return -1;
    }
    ZULMathVector direction = ScaledToUnity(v);
    direction.Normalize();
    ZULMathVector first = direction ^ LeastAlignedAxis(direction);
    first.Normalize();
    ZULMathVector second = direction ^ first;
    second.Normalize();
    u1 = first;
    u2 = second;
    return 0;
}
