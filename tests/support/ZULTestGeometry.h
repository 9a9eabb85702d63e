#ifndef ZULTestGeometry_h
#define ZULTestGeometry_h

#include <gmpxx.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>

/// Random planes and points for the tests, and what they are in rational arithmetic. The same seed gives the
/// same objects everywhere: no standard distribution is used. The rational side is written independently of
/// the library's own formulas.
namespace ZULTest
{
/// What makes an input hard.
enum class Regime {
    Easy,            ///< ordinary numbers, general position
    NearDegenerate,  ///< a few rounding units away from a degenerate position
    Degenerate,      ///< exactly degenerate
    Tiny,            ///< about 1e-300: products underflow
    Denormal,        ///< denormal numbers
    Huge,            ///< about 1e300: products overflow
    Mixed            ///< all exponents, zeros, ones and integers together
};
constexpr std::array<Regime, 7> AllRegimes = {Regime::Easy, Regime::NearDegenerate, Regime::Degenerate,
                                              Regime::Tiny, Regime::Denormal,       Regime::Huge,
                                              Regime::Mixed};

inline const char* NameOf(Regime regime)
{
    constexpr std::array<const char*, 7> names = {
        "easy", "near-degenerate", "degenerate", "tiny", "denormal", "huge", "mixed"};
    return names[static_cast<std::size_t>(regime)];
}

using Point3 = std::array<double, 3>;
using Plane4 = std::array<double, 4>;

/// A fixed sequence of random objects.
class Random
{
public:
    explicit Random(std::uint64_t seed) : m_Engine(seed) {}

    std::uint64_t Bits() { return m_Engine(); }
    /// From lowest to highest, both included.
    int Integer(int lowest, int highest)
    {
        const auto count = static_cast<std::uint64_t>(highest - lowest) + 1U;
        return lowest + static_cast<int>(Bits() % count);
    }
    bool OneIn(int count) { return Integer(1, count) == 1; }
    double Sign() { return OneIn(2) ? -1.0 : 1.0; }
    /// 53 random bits in [0, 1).
    double Unit() { return std::ldexp(static_cast<double>(Bits() >> 11), -53); }
    double Between(double lowest, double highest) { return lowest + (highest - lowest) * Unit(); }
    /// A full mantissa times 2^exponent, the exponent in the given range, either sign.
    double Scaled(int lowestExponent, int highestExponent)
    {
        const int exponent = Integer(lowestExponent, highestExponent);
        const double mantissa = 1.0 + Unit();
        return Sign() * std::ldexp(mantissa, exponent);
    }
    /// The value moved by some rounding units, at most the given number, either way.
    double Nudged(double value, int mostSteps)
    {
        const int steps = Integer(-mostSteps, mostSteps);
        const double target = std::copysign(std::numeric_limits<double>::infinity(), steps);
        for (int i = 0; i < std::abs(steps); ++i) {
            value = std::nextafter(value, target);
        }
        return value;
    }

    /// One number of the regime.
    double Number(Regime regime)
    {
        switch (regime) {
            case Regime::Easy:
            case Regime::NearDegenerate:
                return Between(-100.0, 100.0);
            case Regime::Degenerate:
                return Integer(-1000, 1000);
            case Regime::Tiny:
                return Scaled(-1010, -990);
            case Regime::Denormal:
                return DenormalNumber();
            case Regime::Huge:
                return Scaled(985, 1005);
            case Regime::Mixed:
                return MixedNumber();
        }
        return 0.0;
    }

    /// A plane whose normal is not zero.
    Plane4 Plane(Regime regime)
    {
        Plane4 plane{};
        do {
            for (double& coefficient : plane) {
                coefficient = Number(regime);
            }
        } while (plane[0] == 0.0 && plane[1] == 0.0 && plane[2] == 0.0);
        return plane;
    }

    Point3 Point(Regime regime) { return {Number(regime), Number(regime), Number(regime)}; }

    /// Three planes; in the degenerate regimes the third normal depends, or nearly depends, on the others.
    std::array<Plane4, 3> PlaneTriple(Regime regime)
    {
        std::array<Plane4, 3> planes = {Plane(regime), Plane(regime), Plane(regime)};
        if (regime == Regime::Degenerate || regime == Regime::NearDegenerate) {
            Combine(planes[0], planes[1], planes[2], 3);
            Blur(regime, planes[2]);
            Rotate(planes);
        }
        return planes;
    }

    /// Four planes; in the degenerate regimes they meet, or nearly meet, in one point.
    std::array<Plane4, 4> PlanesThroughOnePoint(Regime regime)
    {
        std::array<Plane4, 4> planes = {Plane(regime), Plane(regime), Plane(regime), Plane(regime)};
        if (regime == Regime::Degenerate || regime == Regime::NearDegenerate) {
            // Integers as long as nothing is blurred, so every product and sum here is exact.
            const Point3 point = Point(Regime::Degenerate);
            for (Plane4& plane : planes) {
                plane = Plane(Regime::Degenerate);
                plane[3] = -(plane[0] * point[0] + plane[1] * point[1] + plane[2] * point[2]);
            }
            Blur(regime, planes[3]);
        }
        return planes;
    }

    /// Three points; in the degenerate regimes they are, or nearly are, on one line.
    std::array<Point3, 3> PointTriple(Regime regime)
    {
        std::array<Point3, 3> points = {Point(regime), Point(regime), Point(regime)};
        if (regime == Regime::Degenerate || regime == Regime::NearDegenerate) {
            const double factor = Integer(-8, 8);
            for (std::size_t i = 0; i < 3; ++i) {
                points[2][i] = points[0][i] + factor * (points[1][i] - points[0][i]);
            }
            Blur(regime, points[2]);
            Rotate(points);
        }
        return points;
    }

    /// A point on the plane through three points (nearly on it, in the near-degenerate regime), or any point
    /// in the other regimes.
    Point3 PointNear(Regime regime, const std::array<Point3, 3>& points)
    {
        Point3 point = Point(regime);
        if (regime == Regime::Degenerate || regime == Regime::NearDegenerate) {
            const double s = Integer(-4, 4);
            const double t = Integer(-4, 4);
            for (std::size_t i = 0; i < 3; ++i) {
                point[i] =
                    points[0][i] + s * (points[1][i] - points[0][i]) + t * (points[2][i] - points[0][i]);
            }
            Blur(regime, point);
        }
        return point;
    }

    /// A random scale that keeps degenerate input degenerate: a power of two.
    template <std::size_t Size>
    void ScaleByPowerOfTwo(std::array<double, Size>& numbers, int lowestExponent, int highestExponent)
    {
        const int exponent = Integer(lowestExponent, highestExponent);
        for (double& number : numbers) {
            number = std::ldexp(number, exponent);
        }
    }

private:
    // One random draw a statement: the order of evaluation within an expression is the compiler's.
    double DenormalNumber()
    {
        const auto steps = static_cast<double>(Bits() % 0xFFFFFFFFFFFFFU + 1U);
        return Sign() * (steps * std::numeric_limits<double>::denorm_min());
    }

    double MixedNumber()
    {
        switch (Integer(0, 9)) {
            case 0:
                return 0.0;
            case 1:
                return Sign();
            case 2:
            case 3:
                return Integer(-1000, 1000);
            case 4:
            case 5:
                return Between(-1.0, 1.0);
            case 6:
                return Number(Regime::Denormal);
            default:
                return Scaled(-1022, 1005);
        }
    }

    /// target = s p + t q in the first `count` elements, with small integers s and t.
    template <std::size_t Size>
    void Combine(const std::array<double, Size>& p, const std::array<double, Size>& q,
                 std::array<double, Size>& target, std::size_t count)
    {
        const double s = OneIn(2) ? 3.0 : -5.0;
        const double t = Integer(-8, 8);
        for (std::size_t i = 0; i < count; ++i) {
            target[i] = s * p[i] + t * q[i];
        }
    }

    template <std::size_t Size>
    void Blur(Regime regime, std::array<double, Size>& numbers)
    {
        if (regime == Regime::NearDegenerate) {
            for (double& number : numbers) {
                number = Nudged(number, 2);
            }
        }
    }

    template <class Object>
    void Rotate(std::array<Object, 3>& objects)
    {
        std::swap(objects[2], objects[static_cast<std::size_t>(Integer(0, 2))]);
    }

    std::mt19937_64 m_Engine;
};

using Rational = mpq_class;
using RationalPlane = std::array<Rational, 4>;
using RationalPoint = std::array<Rational, 4>;  ///< homogeneous: X, Y, Z, W

/// Exactly the double, which must be finite.
inline Rational ToRational(double value)
{
    int exponent = 0;
    const double mantissa = std::ldexp(std::frexp(value, &exponent), 53);
    exponent -= 53;
    Rational result(mpz_class(static_cast<long>(mantissa)));
    if (exponent >= 0) {
        mpq_mul_2exp(result.get_mpq_t(), result.get_mpq_t(), static_cast<mp_bitcnt_t>(exponent));
    } else {
        mpq_div_2exp(result.get_mpq_t(), result.get_mpq_t(), static_cast<mp_bitcnt_t>(-exponent));
    }
    return result;
}

inline RationalPlane ToRational(const Plane4& plane)
{
    return {ToRational(plane[0]), ToRational(plane[1]), ToRational(plane[2]), ToRational(plane[3])};
}

/// The plane through three points, by cofactors of their coordinates (not by differences).
inline RationalPlane ThroughPoints(const std::array<Point3, 3>& points)
{
    std::array<std::array<Rational, 3>, 3> m;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            m[i][j] = ToRational(points[i][j]);
        }
    }
    const auto area = [&m](std::size_t u, std::size_t v) -> Rational {
        return m[0][u] * m[1][v] - m[0][v] * m[1][u] + m[1][u] * m[2][v] - m[1][v] * m[2][u] +
               m[2][u] * m[0][v] - m[2][v] * m[0][u];
    };
    const Rational volume = m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0] +
                            m[0][2] * m[1][0] * m[2][1] - m[0][2] * m[1][1] * m[2][0] -
                            m[0][1] * m[1][0] * m[2][2] - m[0][0] * m[1][2] * m[2][1];
    return {area(1, 2), area(2, 0), area(0, 1), -volume};
}

/// Determinant of three columns of three planes, by the rule of Sarrus.
inline Rational Determinant(const std::array<RationalPlane, 3>& rows, std::size_t i, std::size_t j,
                            std::size_t k)
{
    return rows[0][i] * rows[1][j] * rows[2][k] + rows[0][j] * rows[1][k] * rows[2][i] +
           rows[0][k] * rows[1][i] * rows[2][j] - rows[0][k] * rows[1][j] * rows[2][i] -
           rows[0][j] * rows[1][i] * rows[2][k] - rows[0][i] * rows[1][k] * rows[2][j];
}

/// The meeting point of three planes by Cramer's rule; W is the determinant of the normals.
inline RationalPoint MeetingPoint(const std::array<RationalPlane, 3>& planes)
{
    return {-Determinant(planes, 3, 1, 2), -Determinant(planes, 0, 3, 2), -Determinant(planes, 0, 1, 3),
            Determinant(planes, 0, 1, 2)};
}

/// Sign of the plane's equation at a point whose W is not zero.
inline int SideOf(const RationalPlane& plane, const RationalPoint& point)
{
    const Rational sum =
        plane[0] * point[0] + plane[1] * point[1] + plane[2] * point[2] + plane[3] * point[3];
    return sgn(sum) * sgn(point[3]);
}
inline int SideOf(const RationalPlane& plane, const Point3& point)
{
    return SideOf(plane, {ToRational(point[0]), ToRational(point[1]), ToRational(point[2]), Rational(1)});
}
}  // namespace ZULTest

#endif
