#ifndef ZULBenchHomogeneousPeer_h
#define ZULBenchHomogeneousPeer_h

#include <array>
#include <type_traits>
#include <utility>

#include "Workloads.h"

namespace ZULBench
{
/// A peer that is nothing but a number type: planes are four coefficients, points four homogeneous
/// coordinates with W > 0. An Arithmetic has Number, ToRow(array of doubles), which may multiply the row by a
/// positive power of two, and Sign(Number).
template <class Arithmetic>
struct HomogeneousPeer : PeerBase {
    using Number = typename Arithmetic::Number;
    using Plane = std::array<Number, 4>;
    using Point = std::array<Number, 4>;
    using Vertex = Point;
    using Matrix = std::array<std::array<Number, 3>, 3>;

    static Plane MakePlane(const Equation& equation) { return Arithmetic::ToRow(equation); }
    static Plane MakePlane(const ThreePoints& points)
    {
        const Point p = MakeVertex(points[0]);
        const Point q = MakeVertex(points[1]);
        const Point r = MakeVertex(points[2]);
        // The minors of the rows (x, y, z, 1).
        return Plane{Minor(p, q, r, 1, 2, 3), Minor(p, r, q, 0, 2, 3), Minor(p, q, r, 0, 1, 3),
                     Minor(p, r, q, 0, 1, 2)};
    }
    static Point MakePoint(const Plane& p, const Plane& q, const Plane& r)
    {
        // Cramer's rule, the minors of two rows shared.
        const Number m01 = Minor(q, r, 0, 1);
        const Number m02 = Minor(q, r, 0, 2);
        const Number m12 = Minor(q, r, 1, 2);
        const Number w = p[0] * m12 - p[1] * m02 + p[2] * m01;
        const int sign = Arithmetic::Sign(w);
        if (sign == Undecided) {
            return Point{w, w, w, w};  // decides nothing
        }
        const Number m03 = Minor(q, r, 0, 3);
        const Number m13 = Minor(q, r, 1, 3);
        const Number m23 = Minor(q, r, 2, 3);
        return Point{Signed(p[2] * m13 - p[1] * m23 - p[3] * m12, sign),
                     Signed(p[0] * m23 - p[2] * m03 + p[3] * m02, sign),
                     Signed(p[1] * m03 - p[0] * m13 - p[3] * m01, sign), Signed(w, sign)};
    }
    static int Side(const Plane& plane, const Point& point)
    {
        return Arithmetic::Sign(plane[0] * point[0] + plane[1] * point[1] + plane[2] * point[2] +
                                plane[3] * point[3]);
    }

    static Vertex MakeVertex(const Triple& vertex)
    {
        return Arithmetic::ToRow(Equation{vertex[0], vertex[1], vertex[2], 1.0});
    }
    static int SideOfVertex(const Plane& plane, const Vertex& vertex) { return Side(plane, vertex); }

    static Matrix MakeMatrix(const MatrixCase& rows)
    {
        return {Arithmetic::ToRow(rows[0]), Arithmetic::ToRow(rows[1]), Arithmetic::ToRow(rows[2])};
    }
    static int Determinant(const Matrix& rows)
    {
        return Arithmetic::Sign(Minor(rows[0], rows[1], rows[2], 0, 1, 2));
    }

    static int Parallel(const Plane& p, const Plane& q)
    {
        return AllZero({{0, 1}, {1, 2}, {2, 0}}, [&](int i, int j) { return Minor(p, q, i, j); });
    }
    static int Coincident(const Plane& p, const Plane& q)
    {
        return AllZero({{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}},
                       [&](int i, int j) { return Minor(p, q, i, j); });
    }
    static int IsAfter(const Point& p, const Point& q)
    {
        for (int i = 0; i < 3; ++i) {
            const int sign = Arithmetic::Sign(Minor(p, q, i, 3));
            if (sign != 0) {
                return sign == -1 ? 0 : sign;
            }
        }
        return 0;
    }
    static int Equal(const Point& p, const Point& q)
    {
        return AllZero({{0, 3}, {1, 3}, {2, 3}}, [&](int i, int j) { return Minor(p, q, i, j); });
    }

private:
    static Number Signed(Number number, int sign)
    {
        if constexpr (std::is_arithmetic_v<Number>) {
            return number * sign;  // no branch to guess
        } else {
            return sign < 0 ? Number(-std::move(number)) : Number(std::move(number));
        }
    }
    /// The determinant of columns i and j of two rows.
    static Number Minor(const auto& p, const auto& q, int i, int j) { return p[i] * q[j] - p[j] * q[i]; }
    /// The determinant of columns i, j and k of three rows.
    static Number Minor(const auto& p, const auto& q, const auto& r, int i, int j, int k)
    {
        return p[i] * Minor(q, r, j, k) - p[j] * Minor(q, r, i, k) + p[k] * Minor(q, r, i, j);
    }
    template <std::size_t N>
    static int AllZero(const int (&columns)[N][2], auto minor)
    {
        int answer = 1;
        for (const auto& [i, j] : columns) {
            const int sign = Arithmetic::Sign(minor(i, j));
            if (sign == Undecided) {
                answer = Undecided;
            } else if (sign != 0) {
                return 0;
            }
        }
        return answer;
    }
};
}  // namespace ZULBench

#endif
