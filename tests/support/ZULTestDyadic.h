#ifndef ZULTestDyadic_h
#define ZULTestDyadic_h

#include <gmpxx.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

/// Rational numbers whose denominator is a power of two: enough for every polynomial in doubles, and much
/// faster than general rationals. The formulas below are written as sums over permutations, independently of
/// the library's.
namespace ZULTest
{
class Dyadic
{
public:
    Dyadic() = default;
    /// Exactly the double, which must be finite.
    explicit Dyadic(double value)
    {
        int exponent = 0;
        m_Mantissa = std::ldexp(std::frexp(value, &exponent), 53);
        m_Exponent = exponent - 53;
    }

    int Sign() const { return sgn(m_Mantissa); }

    friend Dyadic operator*(const Dyadic& x, const Dyadic& y)
    {
        return Dyadic(x.m_Mantissa * y.m_Mantissa, x.m_Exponent + y.m_Exponent);
    }
    friend Dyadic operator-(const Dyadic& x) { return Dyadic(-x.m_Mantissa, x.m_Exponent); }
    friend Dyadic operator+(const Dyadic& x, const Dyadic& y)
    {
        if (x.Sign() == 0 || y.Sign() == 0) {
            return x.Sign() == 0 ? y : x;
        }
        if (x.m_Exponent < y.m_Exponent) {
            return y + x;
        }
        mpz_class aligned;
        mpz_mul_2exp(aligned.get_mpz_t(), x.m_Mantissa.get_mpz_t(),
                     static_cast<mp_bitcnt_t>(x.m_Exponent - y.m_Exponent));
        return Dyadic(aligned + y.m_Mantissa, y.m_Exponent);
    }
    friend Dyadic operator-(const Dyadic& x, const Dyadic& y) { return x + -y; }

private:
    Dyadic(mpz_class mantissa, long exponent) : m_Mantissa(std::move(mantissa)), m_Exponent(exponent) {}

    mpz_class m_Mantissa;
    long m_Exponent = 0;
};

using DyadicPoint = std::array<Dyadic, 3>;
using DyadicPlane = std::array<Dyadic, 4>;

template <std::size_t Size>
std::array<Dyadic, Size> ToDyadic(const std::array<double, Size>& values)
{
    std::array<Dyadic, Size> result;
    for (std::size_t i = 0; i < Size; ++i) {
        result[i] = Dyadic(values[i]);
    }
    return result;
}

/// A product whose factors are looked at first: zeros are frequent and cost nothing.
inline Dyadic ProductOf(const Dyadic& x, const Dyadic& y, const Dyadic& z)
{
    return x.Sign() == 0 || y.Sign() == 0 || z.Sign() == 0 ? Dyadic() : x * y * z;
}

/// Determinant of three columns of three rows: the sum over the six permutations.
template <class Row>
Dyadic DyadicDeterminant(const std::array<Row, 3>& rows, std::size_t i, std::size_t j, std::size_t k)
{
    return ProductOf(rows[0][i], rows[1][j], rows[2][k]) + ProductOf(rows[0][j], rows[1][k], rows[2][i]) +
           ProductOf(rows[0][k], rows[1][i], rows[2][j]) -
           (ProductOf(rows[0][k], rows[1][j], rows[2][i]) + ProductOf(rows[0][j], rows[1][i], rows[2][k]) +
            ProductOf(rows[0][i], rows[1][k], rows[2][j]));
}

/// The plane through three points, by cofactors of their coordinates (not by differences).
inline DyadicPlane DyadicThroughPoints(const std::array<std::array<double, 3>, 3>& points)
{
    const std::array<DyadicPoint, 3> m = {ToDyadic(points[0]), ToDyadic(points[1]), ToDyadic(points[2])};
    const auto area = [&m](std::size_t u, std::size_t v) {
        return m[0][u] * m[1][v] - m[0][v] * m[1][u] + m[1][u] * m[2][v] - m[1][v] * m[2][u] +
               m[2][u] * m[0][v] - m[2][v] * m[0][u];
    };
    return {area(1, 2), area(2, 0), area(0, 1), -DyadicDeterminant(m, 0, 1, 2)};
}

/// The meeting point (X, Y, Z, W) of three planes; W is the determinant of the normals.
inline DyadicPlane DyadicMeetingPoint(const std::array<DyadicPlane, 3>& planes)
{
    return {-DyadicDeterminant(planes, 3, 1, 2), -DyadicDeterminant(planes, 0, 3, 2),
            -DyadicDeterminant(planes, 0, 1, 3), DyadicDeterminant(planes, 0, 1, 2)};
}

/// The same point with W positive, or zero.
inline DyadicPlane DyadicWithPositiveW(const DyadicPlane& point)
{
    return point[3].Sign() < 0 ? DyadicPlane{-point[0], -point[1], -point[2], -point[3]} : point;
}
/// Sign of a coordinate of the first point minus that of the second; both W are positive.
inline int DyadicCompare(const DyadicPlane& p, const DyadicPlane& q, std::size_t axis)
{
    return (p[axis] * q[3] - q[axis] * p[3]).Sign();
}
/// The same of the first axis in which the points differ; zero for equal points.
inline int DyadicOrder(const DyadicPlane& p, const DyadicPlane& q)
{
    int sign = 0;
    for (std::size_t axis = 0; axis < 3 && sign == 0; ++axis) {
        sign = DyadicCompare(p, q, axis);
    }
    return sign;
}
/// The direction from one homogeneous point to another, times the W of both.
inline DyadicPoint DyadicDirection(const DyadicPlane& from, const DyadicPlane& to)
{
    return {to[0] * from[3] - from[0] * to[3], to[1] * from[3] - from[1] * to[3],
            to[2] * from[3] - from[2] * to[3]};
}
inline DyadicPoint DyadicNormal(const DyadicPlane& plane)
{
    return {plane[0], plane[1], plane[2]};
}

/// Sign of a plane's equation at a homogeneous point; zero where W is.
inline int DyadicSide(const DyadicPlane& plane, const DyadicPlane& point)
{
    return point[3].Sign() == 0 ? 0
                                : point[3].Sign() * (plane[0] * point[0] + plane[1] * point[1] +
                                                     plane[2] * point[2] + plane[3] * point[3])
                                                        .Sign();
}
inline int DyadicSide(const DyadicPlane& plane, const std::array<double, 3>& point)
{
    return DyadicSide(plane, {Dyadic(point[0]), Dyadic(point[1]), Dyadic(point[2]), Dyadic(1.0)});
}
}  // namespace ZULTest

#endif
