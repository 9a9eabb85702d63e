#ifndef ZULMRSBSPFormulas_h
#define ZULMRSBSPFormulas_h

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// The polynomials of the library, each written once, over any number type with +, - and *. "Degree" counts
/// the input numbers multiplied in each monomial. The order of the operations is part of the meaning for
/// rounded numbers: it fixes the value, and the count of a filtered number. Where a product may be of another
/// type than its factors (integers that grow with the degree), results are deduced.
namespace ZULMRSBSPFormulas
{
template <class Number>
using Triple = std::array<Number, 3>;
template <class Number>
using Quadruple = std::array<Number, 4>;

/// Doubles as numbers of another arithmetic.
template <class Number>
Triple<Number> Convert(const Triple<double>& values)
{
    return {Number(values[0]), Number(values[1]), Number(values[2])};
}
template <class Number>
Quadruple<Number> Convert(const Quadruple<double>& values)
{
    return {Number(values[0]), Number(values[1]), Number(values[2]), Number(values[3])};
}

template <class Number>
Triple<Number> Difference(const Triple<Number>& p, const Triple<Number>& q)
{
    return {p[0] - q[0], p[1] - q[1], p[2] - q[2]};
}

/// a d - b c. Degree 2.
template <class Number>
auto Determinant2x2(const Number& a, const Number& b, const Number& c, const Number& d)
{
    return a * d - b * c;
}

/// u x v. Degree 2.
template <class Number>
auto CrossProduct(const Triple<Number>& u, const Triple<Number>& v)
{
    return std::array{Determinant2x2(u[1], u[2], v[1], v[2]), Determinant2x2(u[2], u[0], v[2], v[0]),
                      Determinant2x2(u[0], u[1], v[0], v[1])};
}

/// A row times the minors of the two rows below it, ((m0 p0 + m1 p1) + m2 p2): their determinant when
/// m = q x r.
template <class Number, class Minor>
auto ExpandFirstRow(const Number& p0, const Number& p1, const Number& p2, const Minor& m0, const Minor& m1,
                    const Minor& m2)
{
    return m0 * p0 + m1 * p1 + m2 * p2;
}

/// Determinant of the rows p, q, r, expanded along the first. Degree 3.
template <class Number>
auto Determinant3x3(const Triple<Number>& p, const Triple<Number>& q, const Triple<Number>& r)
{
    const auto minors = CrossProduct(q, r);
    return ExpandFirstRow(p[0], p[1], p[2], minors[0], minors[1], minors[2]);
}

/// Minus the linear part of a plane at a point, -((b y + a x) + c z): the fourth coefficient of the plane
/// through that point. Degree 2.
template <class Normal, class Coordinate>
auto OffsetThrough(const Triple<Normal>& normal, const Triple<Coordinate>& point)
{
    return -((normal[1] * point[1] + normal[0] * point[0]) + normal[2] * point[2]);
}

/// The plane through a point with a given normal. Degree 2 in its last coefficient.
template <class Number>
Quadruple<Number> PlaneAtPoint(const Triple<Number>& normal, const Triple<Number>& point)
{
    return {normal[0], normal[1], normal[2], OffsetThrough(normal, point)};
}

/// The plane through three points, normal (p2 - p1) x (p3 - p1). Degree 2, and 3 in its last coefficient.
template <class Number>
Quadruple<Number> PlaneThroughPoints(const Triple<Number>& p1, const Triple<Number>& p2,
                                     const Triple<Number>& p3)
{
    return PlaneAtPoint(CrossProduct(Difference(p2, p1), Difference(p3, p1)), p1);
}

/// The minors of two planes' equations (a, b, c, e = -d) in the columns bc, ca, ab, ae, be, ce. Degree 2.
template <class Number>
auto MeetingMinors(const Quadruple<Number>& q, const Quadruple<Number>& r)
{
    const Number qe = -q[3];
    const Number re = -r[3];
    return std::array{Determinant2x2(q[1], q[2], r[1], r[2]), Determinant2x2(q[2], q[0], r[2], r[0]),
                      Determinant2x2(q[0], q[1], r[0], r[1]), Determinant2x2(q[0], qe, r[0], re),
                      Determinant2x2(q[1], qe, r[1], re),     Determinant2x2(q[2], qe, r[2], re)};
}

/// The meeting point of a plane and the two planes that the minors belong to. Degree 1 in each.
template <class Number, class Minor>
auto MeetingPointOfMinors(const Quadruple<Number>& p, const std::array<Minor, 6>& minors)
{
    const auto& [bc, ca, ab, ae, be, ce] = minors;
    const Number pe = -p[3];
    return std::array{bc * pe + ce * p[1] - be * p[2], ca * pe - ce * p[0] + ae * p[2],
                      be * p[0] - ae * p[1] + ab * pe, ExpandFirstRow(p[0], p[1], p[2], bc, ca, ab)};
}

/// The meeting point (X, Y, Z, W) of the planes p, q, r by Cramer's rule: W is the determinant of the
/// normals, X, Y, Z the same with the column of a, b, c replaced by that of e = -d. Each determinant is
/// expanded along its first row, from six minors of the two rows below it. Degree 3.
template <class Number>
auto MeetingPoint(const Quadruple<Number>& p, const Quadruple<Number>& q, const Quadruple<Number>& r)
{
    return MeetingPointOfMinors(p, MeetingMinors(q, r));
}

/// The determinant of B - A and D - C of the plane points A to D = (x0, x1) to (x6, x7). Degree 2.
template <class Number>
Number DifferenceDeterminant(const std::array<Number, 8>& x)
{
    return (x[7] - x[5]) * (x[2] - x[0]) - (x[6] - x[4]) * (x[3] - x[1]);
}

/// The dot product of B - A and D - C, points as above. Degree 2.
template <class Number>
Number DifferenceDotProduct(const std::array<Number, 8>& x)
{
    return (x[7] - x[5]) * (x[3] - x[1]) + (x[6] - x[4]) * (x[2] - x[0]);
}

/// u . v. Degree 2.
template <class Number>
Number DotProduct(const Triple<Number>& u, const Triple<Number>& v)
{
    return u[2] * v[2] + (u[1] * v[1] + u[0] * v[0]);
}

/// A plane's equation at a point. Degree 2.
template <class Number>
Number EquationAt(const Quadruple<Number>& plane, const Triple<Number>& point)
{
    return point[0] * plane[0] + point[1] * plane[1] + (point[2] * plane[2] + plane[3]);
}

/// A plane's equation at a homogeneous point, times W. With the meeting point of p, q and r it is the
/// determinant of the rows p, q, r, plane. Degree 2 in its arguments.
template <class Number, class Coordinate>
auto EquationAtHomogeneous(const Quadruple<Number>& plane, const Quadruple<Coordinate>& point)
{
    return plane[0] * point[0] + plane[1] * point[1] + plane[2] * point[2] + plane[3] * point[3];
}

/// Which of two homogeneous points has the greater coordinate, X(P) W(Q) - W(P) X(Q), times the W of both.
/// Degree 2.
template <class Number>
Number CoordinateDifference(const Quadruple<Number>& p, const Quadruple<Number>& q, std::size_t axis)
{
    return Determinant2x2(p[axis], p[3], q[axis], q[3]);
}

/// The direction from homogeneous point p to q, times the W of both. Degree 2.
template <class Number>
Triple<Number> DirectionBetween(const Quadruple<Number>& p, const Quadruple<Number>& q)
{
    return {p[3] * q[0] - q[3] * p[0], p[3] * q[1] - q[3] * p[1], p[3] * q[2] - q[3] * p[2]};
}

/// With n the normal (b - a) x (c - a) of a triangle: nz^2 - s^2 (nx^2 + ny^2 + nz^2), positive where the
/// angle between n and the z axis, whichever way n points, has a cosine above |s|. Degree 6.
template <class Number>
Number NormalAngleDifference(const Triple<Number>& a, const Triple<Number>& b, const Triple<Number>& c,
                             const Number& s)
{
    const auto n = CrossProduct(Difference(b, a), Difference(c, a));
    const Number x2 = n[0] * n[0];
    const Number y2 = n[1] * n[1];
    const Number z2 = n[2] * n[2];
    return z2 - (x2 + y2 + z2) * (s * s);
}

/// The bits of a double without its sign. Tests on them hold where the host treats denormals as zero.
inline std::uint64_t MagnitudeBits(double value)
{
    return std::bit_cast<std::uint64_t>(value) & 0x7FFFFFFFFFFFFFFFU;
}
inline bool IsExactlyZero(double value)
{
    return MagnitudeBits(value) == 0;
}
/// Plus or minus one.
inline bool IsExactlyUnit(double value)
{
    return MagnitudeBits(value) == MagnitudeBits(1.0);
}
}  // namespace ZULMRSBSPFormulas

#endif
