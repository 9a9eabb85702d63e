#ifndef ZULMRSBSPPointRelations_h
#define ZULMRSBSPPointRelations_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>

#include "ZULMRSBSPCoordinateRecord.h"
#include "ZULMRSBSPEquation.h"
#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPMeetingIntegers.h"
#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPlaneRelations.h"
#include "ZULMRSBSPPlaneRows.h"
#include "ZULMRSBSPSign.h"
#include "ZULMRSBSPSignKernels.h"
#include "ZULMRSBSPStages.h"
#include "ZULMathPoint.h"

/// How points relate to one another, and to planes that are not asked for a side. Everything here stands
/// inside a ZULExpFloatScope.
namespace ZULMRSBSPPointRelations
{
inline bool IsCartesian(const ZULMRSBSPPoint& point)
{
    return !ZULMRSBSPDirectReads::Is3PlanesPoint(point) && point.GetType() == ZULMRSBSPPointType_Cartesian;
}

/// The coordinates of a point known to be Cartesian.
inline std::array<double, 3> Coordinates(const ZULMRSBSPPoint& point)
{
    const std::array<double, 3>* p = ZULMRSBSPDirectReads::Coordinates(point);
    return p != nullptr ? *p : point.GetApproximatedXYZ();
}

//---------------------------------------------------------------- the sign of W

/// A filtered representation computes with the sign of its W only where that is certain, and tells nothing
/// otherwise.
inline ZULMRSBSPSign SignOfW(const std::array<ZULExpDynamic, 4>& representation)
{
    return ZULMRSBSPFilter::IsUsable(representation) ? ZULMRSBSPSign::Positive() : ZULMRSBSPSign::Undecided();
}
template <class Number>
ZULMRSBSPSign SignOfW(const std::array<Number, 4>& representation)
{
    return ZULMRSBSPStages::SignOf(representation[3]);
}

//---------------------------------------------------------------- equality

inline bool HaveSamePlanes(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    std::array<ZULMRSBSPPlane*, 3> planes = p.GetPlanes();
    std::array<ZULMRSBSPPlane*, 3> others = q.GetPlanes();
    std::sort(planes.begin(), planes.end(), std::less<>());
    std::sort(others.begin(), others.end(), std::less<>());
    return planes == others;
}

/// Whether a place lies on the three planes of a point, side(plane) telling on which side: zero when it does,
/// positive when not, undecided when that cannot be told. A missing plane holds nothing.
template <class Side>
ZULMRSBSPSign DistanceFromPlanesOf(const ZULMRSBSPPoint& point, const Side& side)
{
    for (const ZULMRSBSPPlane* plane : point.GetPlanes()) {
        const ZULMRSBSPSign sign = plane != nullptr ? side(*plane) : ZULMRSBSPSign::Positive();
        if (!sign.IsZero()) {
            return sign.IsDecided() ? ZULMRSBSPSign::Positive() : sign;
        }
    }
    return ZULMRSBSPSign::Zero();
}

/// Zero when two different objects are one place, else positive. sideOfPoint(plane, point) and
/// sideOfCoordinates(plane, coordinates) tell sides.
template <class SideOfPoint, class SideOfCoordinates>
ZULMRSBSPSign Distance(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, const SideOfPoint& sideOfPoint,
                       const SideOfCoordinates& sideOfCoordinates)
{
    if (HaveSamePlanes(p, q)) {
        return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Shortcut, ZULMRSBSPSign::Zero());
    }
    const bool isPCartesian = IsCartesian(p);
    const bool isQCartesian = IsCartesian(q);
    if (isPCartesian && isQCartesian) {
        const bool areEqual = ZULMRSBSPCoordinates::AreEqual(Coordinates(p), Coordinates(q));
        return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Shortcut,
                                        areEqual ? ZULMRSBSPSign::Zero() : ZULMRSBSPSign::Positive());
    }
    if (!isPCartesian && !isQCartesian) {
        return DistanceFromPlanesOf(p, [&](const ZULMRSBSPPlane& plane) { return sideOfPoint(plane, q); });
    }
    const std::array<double, 3> coordinates = Coordinates(isPCartesian ? p : q);
    const ZULMathPoint place(coordinates[0], coordinates[1], coordinates[2]);
    return DistanceFromPlanesOf(isPCartesian ? q : p,
                                [&](const ZULMRSBSPPlane& plane) { return sideOfCoordinates(plane, place); });
}

inline ZULMRSBSPSign OwnPlaneOr(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point,
                                ZULMRSBSPSign (*side)(const ZULMRSBSPPlane&, const ZULMRSBSPPoint&))
{
    return ZULMRSBSPOrientation::IsOwnPlane(plane, point)
               ? ZULMRSBSPStages::Counted(ZULMRSBSPStage::Shortcut, ZULMRSBSPSign::Zero())
               : side(plane, point);
}

/// Whether a coordinate of two three-planes points certainly differs, which their planes cannot contradict.
inline bool DifferByIntegers(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    if (!ZULMRSBSPDirectReads::Is3PlanesPoint(p) || !ZULMRSBSPDirectReads::Is3PlanesPoint(q)) {
        return false;
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const ZULMRSBSPSign sign = ZULMRSBSPPlaneRelations::MinorByIntegers(
            *ZULMRSBSPDirectReads::Integers(p), *ZULMRSBSPDirectReads::Integers(q), axis, 3);
        if (sign.IsPositive() || sign.IsNegative()) {
            return true;
        }
    }
    return false;
}

/// From the integers that planes and points keep. Needs no floating-point scope.
inline ZULMRSBSPSign DistanceByIntegers(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    if (ZULMRSBSPDirectReads::Integers(p) == nullptr || ZULMRSBSPDirectReads::Integers(q) == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    if (DifferByIntegers(p, q)) {
        return ZULMRSBSPSign::Positive();
    }
    return Distance(
        p, q,
        [](const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point) {
            return OwnPlaneOr(plane, point, ZULMRSBSPOrientation::SideByKeptIntegers);
        },
        ZULMRSBSPOrientation::AtCoordinatesByIntegers);
}

/// What no stage can tell counts as lying on the plane: another plane may still tell the points apart.
inline ZULMRSBSPSign DistanceInStages(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    const auto orOnIt = [](ZULMRSBSPSign side) { return side.IsDecided() ? side : ZULMRSBSPSign::Zero(); };
    return Distance(
        p, q,
        [&orOnIt](const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point) {
            return orOnIt(OwnPlaneOr(plane, point, ZULMRSBSPOrientation::AtPoint));
        },
        [&orOnIt](const ZULMRSBSPPlane& plane, const ZULMathPoint& point) {
            return orOnIt(ZULMRSBSPOrientation::AtCoordinates(plane, point));
        });
}

//---------------------------------------------------------------- order

/// Of two coordinates, where neither W is zero.
inline ZULMRSBSPSign ExactOrderByIntegers(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    if (!ZULMRSBSPDirectReads::Is3PlanesPoint(p) || !ZULMRSBSPDirectReads::Is3PlanesPoint(q)) {
        return ZULMRSBSPSign::Undecided();
    }
    const ZULMRSBSPMeetingIntegers::Planes planesOfP(p);
    const ZULMRSBSPMeetingIntegers::Planes planesOfQ(q);
    if (!planesOfP || !planesOfQ) {
        return ZULMRSBSPSign::Undecided();
    }
    const auto a = planesOfP.MeetingPoint();
    const auto b = planesOfQ.MeetingPoint();
    return a[3].Sign() * b[3].Sign() * SignOfDifferenceOfProducts(a[axis], b[3], a[3], b[axis]);
}

/// Positive where p comes after q. Needs no floating-point scope.
inline ZULMRSBSPSign OrderByIntegers(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    const ZULMRSBSPIntegerForm* a = ZULMRSBSPDirectReads::Integers(p);
    const ZULMRSBSPIntegerForm* b = ZULMRSBSPDirectReads::Integers(q);
    if (a == nullptr || b == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        ZULMRSBSPSign sign = ZULMRSBSPPlaneRelations::MinorByIntegers(*a, *b, axis, 3);
        if (!sign.IsDecided()) {
            sign = ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact, ExactOrderByIntegers(p, q, axis));
        }
        if (!sign.IsZero()) {
            return sign;
        }
    }
    return ZULMRSBSPSign::Zero();
}

inline ZULMRSBSPSign EvaluateCoordinates(const std::array<ZULExpDynamic, 4>& p,
                                         const std::array<ZULExpDynamic, 4>& q, std::size_t axis)
{
    using ZULMRSBSPFilter::FactorSign;
    const ZULMRSBSPSign byFactors = ZULMRSBSPShortcut::SignOfOpenSum(
        FactorSign(p[axis]) * FactorSign(q[3]), -(FactorSign(p[3]) * FactorSign(q[axis])));
    return byFactors.IsDecided()
               ? byFactors
               : ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::CoordinateDifference(p, q, axis));
}
template <class Number>
ZULMRSBSPSign EvaluateCoordinates(const std::array<Number, 4>& p, const std::array<Number, 4>& q,
                                  std::size_t axis)
{
    return ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::CoordinateDifference(p, q, axis));
}

/// One arithmetic's view of two points: the sign of the first one's coordinate minus the second one's. Points
/// that exist nowhere (W of zero) have no order.
template <class Number>
ZULMRSBSPSign CompareIn(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    const ZULMRSBSPRepresentation<Number> a(p);
    const ZULMRSBSPRepresentation<Number> b(q);
    if (!a || !b) {
        return ZULMRSBSPSign::Undecided();
    }
    const ZULMRSBSPSign orientation = SignOfW(*a) * SignOfW(*b);
    return orientation.IsDecided() ? orientation * EvaluateCoordinates(*a, *b, axis)
                                   : ZULMRSBSPSign::Undecided();
}

/// Coordinates that are known compare as they are; a NaN comes neither before nor after anything.
inline ZULMRSBSPSign CompareKnown(double x, double y)
{
    return ZULMRSBSPStages::Counted(
        ZULMRSBSPStage::Shortcut,
        ZULMRSBSPSign::FromNumber(static_cast<int>(x > y) - static_cast<int>(x < y)));
}

/// Of two three-planes points, from the numbers of all planes.
inline ZULMRSBSPSign OrderByRows(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    return ZULMRSBSPDirectReads::Is3PlanesPoint(p) && ZULMRSBSPDirectReads::Is3PlanesPoint(q)
               ? ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact,
                                          ZULMRSBSPPlaneRows::Order(p.GetPlanes(), q.GetPlanes(), axis))
               : ZULMRSBSPSign::Undecided();
}

inline ZULMRSBSPSign CompareCoordinate(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    const std::array<double, 3>* a = ZULMRSBSPDirectReads::Coordinates(p);
    const std::array<double, 3>* b = ZULMRSBSPDirectReads::Coordinates(q);
    if (a != nullptr && b != nullptr) {
        return CompareKnown((*a)[axis], (*b)[axis]);
    }
    return ZULMRSBSPStages::FirstDecided(
        [&] {
            return ZULMRSBSPStages::Run<ZULExpDynamic>([&] { return CompareIn<ZULExpDynamic>(p, q, axis); });
        },
        [&] { return OrderByRows(p, q, axis); },
        [&] {
            return ZULMRSBSPStages::RunChecked<ZULExpInterval>(
                [&] { return CompareIn<ZULExpInterval>(p, q, axis); });
        },
        [&] {
            return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(
                [&] { return CompareIn<ZULExpFloatRingExtensionTS>(p, q, axis); });
        });
}

/// Whether p comes after q: in x, then y, then z.
inline bool ComesAfter(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const ZULMRSBSPSign sign = CompareCoordinate(p, q, axis);
        if (sign.IsPositive() || sign.IsNegative()) {
            return sign.IsPositive();
        }
    }
    return false;
}

//---------------------------------------------------------------- validity

/// Whether the three planes, none missing, are different objects that meet in one point.
inline bool HaveMeetingPoint(const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPPlane* p1 = point.GetP1();
    const ZULMRSBSPPlane* p2 = point.GetP2();
    const ZULMRSBSPPlane* p3 = point.GetP3();
    if (p1 == p2 || p2 == p3 || p3 == p1) {
        return false;
    }
    return !ZULMRSBSPPlaneRelations::DeterminantOfNormals(*p1, *p2, *p3).IsZero();
}

//---------------------------------------------------------------- triple products

template <class Number>
std::array<Number, 3> NormalOf(const ZULMRSBSPEquation<Number>& equation)
{
    return {equation[0], equation[1], equation[2]};
}

/// n1 . (d x n2), d leading from q1 to q2.
struct DirectionBetweenNormals {
    const ZULMRSBSPPlane& m_P1;
    const ZULMRSBSPPlane& m_P2;
    const ZULMRSBSPPoint& m_Q1;
    const ZULMRSBSPPoint& m_Q2;

    template <class Number>
    ZULMRSBSPSign Evaluate() const
    {
        const ZULMRSBSPEquation<Number> n1(m_P1);
        const ZULMRSBSPEquation<Number> n2(m_P2);
        const ZULMRSBSPRepresentation<Number> q1(m_Q1);
        const ZULMRSBSPRepresentation<Number> q2(m_Q2);
        if (!n1 || !n2 || !q1 || !q2) {
            return ZULMRSBSPSign::Undecided();
        }
        const ZULMRSBSPSign orientation = SignOfW(*q1) * SignOfW(*q2);
        return orientation * ZULMRSBSPStages::SignOfDeep(ZULMRSBSPFormulas::Determinant3x3(
                                 NormalOf(n1), ZULMRSBSPFormulas::DirectionBetween(*q1, *q2), NormalOf(n2)));
    }
};

/// (d1 x d2) . n, d1 leading from q1 to q2 and d2 from q2 to q3.
struct NormalOfPath {
    const ZULMRSBSPPlane& m_P;
    const ZULMRSBSPPoint& m_Q1;
    const ZULMRSBSPPoint& m_Q2;
    const ZULMRSBSPPoint& m_Q3;

    template <class Number>
    ZULMRSBSPSign Evaluate() const
    {
        const ZULMRSBSPEquation<Number> n(m_P);
        const ZULMRSBSPRepresentation<Number> q1(m_Q1);
        const ZULMRSBSPRepresentation<Number> q2(m_Q2);
        const ZULMRSBSPRepresentation<Number> q3(m_Q3);
        if (!n || !q1 || !q2 || !q3) {
            return ZULMRSBSPSign::Undecided();
        }
        // The W of the middle point scales both directions.
        const ZULMRSBSPSign w2 = SignOfW(*q2);
        return SignOfW(*q1) * w2 * w2 * SignOfW(*q3) *
               ZULMRSBSPStages::SignOfDeep(ZULMRSBSPFormulas::Determinant3x3(
                   ZULMRSBSPFormulas::DirectionBetween(*q1, *q2),
                   ZULMRSBSPFormulas::DirectionBetween(*q2, *q3), NormalOf(n)));
    }
};

template <class Product>
ZULMRSBSPSign SignOfProduct(const Product& product)
{
    using ZULMRSBSPStages::Run;
    using ZULMRSBSPStages::RunChecked;
    return ZULMRSBSPStages::FirstDecided(
        [&] { return Run<ZULExpDynamic>([&] { return product.template Evaluate<ZULExpDynamic>(); }); },
        [&] {
            return RunChecked<ZULExpInterval>([&] { return product.template Evaluate<ZULExpInterval>(); });
        },
        [&] {
            return RunChecked<ZULExpFloatRingExtensionTS>(
                [&] { return product.template Evaluate<ZULExpFloatRingExtensionTS>(); });
        });
}

//---------------------------------------------------------------- a plane and a box

/// The side of the plane on which the corners lie: zero when some lie in front and some behind, undecided
/// when none has a side.
template <class Corners>
ZULMRSBSPSign CommonSide(const ZULMRSBSPPlane& plane, const Corners& corners, int nbCorners)
{
    ZULMRSBSPSign common;
    for (int k = 1; k <= nbCorners; ++k) {
        const ZULMRSBSPSign side = ZULMRSBSPOrientation::AtCoordinates(plane, corners[k]);
        if (!side.IsPositive() && !side.IsNegative()) {
            continue;
        }
        if (common.IsDecided() && common != side) {
            return ZULMRSBSPSign::Zero();
        }
        common = side;
    }
    return common;
}
}  // namespace ZULMRSBSPPointRelations

#endif
