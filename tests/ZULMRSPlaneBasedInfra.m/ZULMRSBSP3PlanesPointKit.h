#ifndef ZULMRSBSP3PlanesPointKit_h
#define ZULMRSBSP3PlanesPointKit_h

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULTestNumbers.h"
#include "ZULTestSupport.h"

/// What the tests of the point of three planes share.
namespace ThreePlanesPointKit
{
using ZULTest::Plane4;
using Triple = std::array<ZULMRSBSPPlane*, 3>;
using Equations = std::array<Plane4, 3>;
using PlaneOwner = ZULTest::Owner<ZULMRSBSPPlane>;
using PointOwner = ZULTest::Owner<ZULMRSBSP3PlanesPoint>;
using Calls = std::vector<int>;

/// Three planes held by the test, and the point on them.
struct Fixture {
    explicit Fixture(const Equations& equations)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            m_Planes[i] = PlaneOwner(new ZULMRSBSPCartesianPlane(equations[i]));
        }
        Make();
    }
    Fixture(PlaneOwner p1, PlaneOwner p2, PlaneOwner p3)
        : m_Planes{std::move(p1), std::move(p2), std::move(p3)}
    {
        Make();
    }

    void Make() { m_Point = PointOwner(new ZULMRSBSP3PlanesPoint(GetTriple(), m_IsValid)); }
    Triple GetTriple() const { return {m_Planes[0].get(), m_Planes[1].get(), m_Planes[2].get()}; }
    Triple GetExchanged() const { return {m_Planes[0].get(), m_Planes[2].get(), m_Planes[1].get()}; }

    std::array<PlaneOwner, 3> m_Planes;
    bool m_IsValid = false;
    PointOwner m_Point;
};

inline PlaneOwner Cartesian(const Plane4& equation)
{
    return PlaneOwner(new ZULMRSBSPCartesianPlane(equation));
}
inline PlaneOwner Through(const std::array<std::array<double, 3>, 3>& points)
{
    return PlaneOwner(new ZULMRSBSP3PointsPlane(points));
}
/// A three-points plane (z = 0) whose equation overflows as a filtered number and as an interval.
inline PlaneOwner Overflowing()
{
    return Through({{{0, 0, 0}, {1e200, 0, 0}, {0, 1e200, 0}}});
}

inline const std::array<ZULExpDynamic, 4>* CacheOf(const ZULMRSBSP3PlanesPoint& point)
{
    return std::get<0>(point.GetCartesianRepresentation_ExpDynamic());
}

using Row = std::array<double, 3>;

/// The filtered determinant of three rows of doubles, written out.
inline ZULExpDynamic FilteredDeterminant(const Row& p, const Row& q, const Row& r)
{
    const auto absolute = [](double x) { return std::fabs(x); };
    const double value = (r[2] * q[1] - r[1] * q[2]) * p[0] + (r[0] * q[2] - r[2] * q[0]) * p[1] +
                         (r[1] * q[0] - r[0] * q[1]) * p[2];
    const double magnitude =
        (absolute(q[2]) * absolute(r[0]) + absolute(q[0]) * absolute(r[2])) * absolute(p[1]) +
        (absolute(r[1]) * absolute(q[2]) + absolute(q[1]) * absolute(r[2])) * absolute(p[0]) +
        (absolute(r[1]) * absolute(q[0]) + absolute(q[1]) * absolute(r[0])) * absolute(p[2]);
    return {value, magnitude, 8};
}

inline std::array<ZULExpDynamic, 4> FilteredPoint(const Equations& planes)
{
    const auto rows = [&planes](int column) {
        std::array<Row, 3> result;
        for (std::size_t i = 0; i < 3; ++i) {
            result[i] = {planes[i][0], planes[i][1], planes[i][2]};
            if (column < 3) {
                result[i][static_cast<std::size_t>(column)] = -planes[i][3];
            }
        }
        return FilteredDeterminant(result[0], result[1], result[2]);
    };
    return {rows(0), rows(1), rows(2), rows(3)};
}

inline std::array<ZULExpDynamic, 4> Negated(const std::array<ZULExpDynamic, 4>& numbers)
{
    return {-numbers[0], -numbers[1], -numbers[2], -numbers[3]};
}

inline ZULTest::RationalPoint ExactPoint(const Equations& planes)
{
    return ZULTest::MeetingPoint(
        {ZULTest::ToRational(planes[0]), ZULTest::ToRational(planes[1]), ZULTest::ToRational(planes[2])});
}
inline const Equations Corner = {Plane4{1, 0, 0, -1}, Plane4{0, 1, 0, -2}, Plane4{0, 0, 1, -3}};
/// Undecided by the filter; the exact determinant is -3 units in the last place of nine.
inline const Equations NearlyDependent = {Plane4{1, 2, 3, 1}, Plane4{4, 5, 6, 2},
                                          Plane4{7, 8, 9.0 + 0x1p-49, 4}};
inline const Equations Huge = {Plane4{1e200, 0, 0, -1e200}, Plane4{0, 1e200, 0, -2e200},
                               Plane4{0, 0, 1e200, -3e200}};
}  // namespace ThreePlanesPointKit

#endif
