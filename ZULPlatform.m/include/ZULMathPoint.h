#ifndef ZULMathPoint_h
#define ZULMathPoint_h

#include "ZULMathVector.h"

/// A point of three doubles (millimetres in the simulation). A plain value.
struct ZULMathPoint {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr ZULMathPoint() = default;
    constexpr ZULMathPoint(double ix, double iy, double iz) : x(ix), y(iy), z(iz) {}

    constexpr double GetX() const { return x; }
    constexpr double GetY() const { return y; }
    constexpr double GetZ() const { return z; }

    friend constexpr ZULMathVector operator-(const ZULMathPoint& p, const ZULMathPoint& q)
    {
        return {p.x - q.x, p.y - q.y, p.z - q.z};
    }
    friend constexpr ZULMathPoint operator+(const ZULMathPoint& p, const ZULMathVector& u)
    {
        return {p.x + u.x, p.y + u.y, p.z + u.z};
    }
    friend constexpr bool operator==(const ZULMathPoint& p, const ZULMathPoint& q)
    {
        return p.x == q.x && p.y == q.y && p.z == q.z;
    }
    friend constexpr bool operator!=(const ZULMathPoint& p, const ZULMathPoint& q) { return !(p == q); }
};

#endif
