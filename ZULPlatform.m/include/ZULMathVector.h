#ifndef ZULMathVector_h
#define ZULMathVector_h

#include <cmath>

/// A vector of three doubles. A plain value; no operation reports an error.
struct ZULMathVector {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr ZULMathVector() = default;
    constexpr ZULMathVector(double ix, double iy, double iz) : x(ix), y(iy), z(iz) {}

    constexpr double GetX() const { return x; }
    constexpr double GetY() const { return y; }
    constexpr double GetZ() const { return z; }

    double Norm() const { return std::sqrt((x * x + y * y) + z * z); }

    /// Divides the three components by the length. A vector of length zero stays as it is.
    void Normalize()
    {
        const double norm = Norm();
        if (norm != 0.0) {
            x /= norm;
            y /= norm;
            z /= norm;
        }
    }

    friend constexpr ZULMathVector operator+(const ZULMathVector& u, const ZULMathVector& v)
    {
        return {u.x + v.x, u.y + v.y, u.z + v.z};
    }
    friend constexpr ZULMathVector operator-(const ZULMathVector& u, const ZULMathVector& v)
    {
        return {u.x - v.x, u.y - v.y, u.z - v.z};
    }
    friend constexpr ZULMathVector operator-(const ZULMathVector& u) { return {-u.x, -u.y, -u.z}; }
    friend constexpr ZULMathVector operator*(double s, const ZULMathVector& u)
    {
        return {s * u.x, s * u.y, s * u.z};
    }

    /// Dot product.
    friend constexpr double operator*(const ZULMathVector& u, const ZULMathVector& v)
    {
        return (u.x * v.x + u.y * v.y) + u.z * v.z;
    }

    /// Cross product.
    friend constexpr ZULMathVector operator^(const ZULMathVector& u, const ZULMathVector& v)
    {
        return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
    }
};

#endif
