#ifndef ZULMRSBSPOrientation_h
#define ZULMRSBSPOrientation_h

#include <algorithm>
#include <array>

#include "ZULMRSBSPEquation.h"
#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPMeetingIntegers.h"
#include "ZULMRSBSPPlaneRows.h"
#include "ZULMRSBSPShortInteger.h"
#include "ZULMRSBSPSign.h"
#include "ZULMRSBSPSignKernels.h"
#include "ZULMRSBSPStages.h"
#include "ZULMathPoint.h"

/// On which side of a plane a point lies, as the sign of the plane's equation there. Everything here stands
/// inside a ZULExpFloatScope.
namespace ZULMRSBSPOrientation
{
//---------------------------------------------------------------- from the integers that both keep

// These need no floating-point scope.

inline ZULMRSBSPSign SideByIntegers(const ZULMRSBSPIntegerForm& plane, const ZULMRSBSPIntegerForm& point)
{
    return ZULMRSBSPStages::Counted(ZULMRSBSPStages::StageOfIntegers(plane.IsExact() && point.IsExact()),
                                    ZULMRSBSPIntegerForms::SideOf(plane, point));
}

inline ZULMRSBSPSign ByIntegers(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPIntegerForm* p = ZULMRSBSPDirectReads::Integers(plane);
    const ZULMRSBSPIntegerForm* q = ZULMRSBSPDirectReads::Integers(point);
    return p != nullptr && q != nullptr ? SideByIntegers(*p, *q) : ZULMRSBSPSign::Undecided();
}

/// Exact from the planes of the point, where all keep exact integers.
inline ZULMRSBSPSign ExactByIntegers(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (!ZULMRSBSPDirectReads::Is3PlanesPoint(point)) {
        return ZULMRSBSPSign::Undecided();
    }
    const ZULMRSBSPMeetingIntegers::Planes planes(point);
    const ZULMRSBSPIntegerForm* tested = ZULMRSBSPDirectReads::ExactIntegers(&plane);
    if (!planes || tested == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    const auto meeting = planes.MeetingPoint();
    const auto value =
        ZULMRSBSPFormulas::EquationAtHomogeneous(ZULMRSBSPIntegerForms::ToInputs(*tested), meeting);
    return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact, meeting[3].Sign() * value.Sign());
}

/// Exact from the numbers of all planes, of both kinds, which become integers for this question.
[[gnu::noinline]] inline ZULMRSBSPSign ExactByRows(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPDirectReads::Is3PlanesPoint(point)
               ? ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact,
                                          ZULMRSBSPPlaneRows::SideOfMeetingPoint(plane, point.GetPlanes()))
               : ZULMRSBSPSign::Undecided();
}

/// The one, then the other.
inline ZULMRSBSPSign SideByKeptIntegers(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPSign sign = ByIntegers(plane, point);
    return sign.IsDecided() ? sign : ExactByIntegers(plane, point);
}

[[gnu::noinline]] inline ZULMRSBSPSign ExactAtCoordinatesByRows(const ZULMRSBSPPlane& plane,
                                                                const ZULMathPoint& point)
{
    return ZULMRSBSPStages::Counted(
        ZULMRSBSPStage::Exact, ZULMRSBSPPlaneRows::SideOfCoordinates(plane, {point.x, point.y, point.z}));
}

inline ZULMRSBSPSign AtCoordinatesByIntegers(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const ZULMRSBSPIntegerForm* p = ZULMRSBSPDirectReads::Integers(plane);
    if (p == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    const ZULMRSBSPSign sign =
        SideByIntegers(*p, ZULMRSBSPIntegerForms::OfCoordinates({point.x, point.y, point.z}));
    return sign.IsDecided() ? sign : ExactAtCoordinatesByRows(plane, point);
}

//---------------------------------------------------------------- a point given by coordinates

inline bool IsDefiningPoint(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const auto points = ZULMRSBSPDefiningPoints(plane);
    return points && std::any_of(points->begin(), points->end(), [&point](const std::array<double, 3>& p) {
               return p[0] == point.x && p[1] == point.y && p[2] == point.z;
           });
}

template <class Number>
ZULMRSBSPSign EvaluateAtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const ZULMRSBSPEquation<Number> equation(plane);
    if (!equation) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::EquationAt<Number>(
        *equation, {Number(point.x), Number(point.y), Number(point.z)}));
}

/// The three stages for a plane whose coefficients are themselves computed.
inline ZULMRSBSPSign FilterAtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    return ZULMRSBSPStages::Run<ZULExpDynamic>(
        [&] { return EvaluateAtCoordinates<ZULExpDynamic>(plane, point); });
}
inline ZULMRSBSPSign IntervalAtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    return ZULMRSBSPStages::RunChecked<ZULExpInterval>(
        [&] { return EvaluateAtCoordinates<ZULExpInterval>(plane, point); });
}
inline ZULMRSBSPSign ExactAtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(
        [&] { return EvaluateAtCoordinates<ZULExpFloatRingExtensionTS>(plane, point); });
}

inline ZULMRSBSPSign AtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    if (ZULMRSBSPIsCartesian(plane)) [[likely]] {
        const std::array<double, 4> e = ZULMRSBSPCoords(plane);
        return ZULMRSBSPKernel<ZULMRSBSPEquationKernel>::Decide(
            {e[0], e[1], e[2], e[3], point.x, point.y, point.z});
    }
    if (IsDefiningPoint(plane, point)) {
        return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Shortcut, ZULMRSBSPSign::Zero());
    }
    return ZULMRSBSPStages::FirstDecided([&] { return FilterAtCoordinates(plane, point); },
                                         [&] { return IntervalAtCoordinates(plane, point); },
                                         [&] { return ExactAtCoordinates(plane, point); });
}

//---------------------------------------------------------------- a point given by its planes

/// What a stage on the point's representation found: whether the representation tells anything at all, and
/// the sign.
struct RepresentationVerdict {
    bool m_IsUsable = false;
    ZULMRSBSPSign m_Sign;
};

/// From the signs of the four terms alone.
inline ZULMRSBSPSign ShortcutByRepresentation(const std::array<ZULExpDynamic, 4>& equation,
                                              const std::array<ZULExpDynamic, 4>& representation)
{
    using ZULMRSBSPFilter::FactorSign;
    return ZULMRSBSPShortcut::SignOfOpenSum(FactorSign(equation[0]) * FactorSign(representation[0]),
                                            FactorSign(equation[1]) * FactorSign(representation[1]),
                                            FactorSign(equation[2]) * FactorSign(representation[2]),
                                            FactorSign(equation[3]) * FactorSign(representation[3]));
}

/// The value decides nearly always and costs less than the signs of the terms, which decide some more.
inline ZULMRSBSPSign FilterEquation(const std::array<ZULExpDynamic, 4>& equation,
                                    const std::array<ZULExpDynamic, 4>& representation)
{
    const ZULMRSBSPSign sign =
        ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::EquationAtHomogeneous(equation, representation));
    return ZULMRSBSPStages::Counted(
        ZULMRSBSPStage::Filter, sign.IsDecided() ? sign : ShortcutByRepresentation(equation, representation));
}

inline RepresentationVerdict FilterKept(const ZULMRSBSPPlane& plane,
                                        const std::array<ZULExpDynamic, 4>* representation)
{
    if (representation == nullptr || !ZULMRSBSPFilter::IsUsable(*representation)) {
        return {};
    }
    if (const std::array<double, 4>* coords = ZULMRSBSPDirectReads::Coords(plane)) [[likely]] {
        return {true, FilterEquation(ZULMRSBSPFormulas::Convert<ZULExpDynamic>(*coords), *representation)};
    }
    const ZULMRSBSPEquation<ZULExpDynamic> equation(plane);
    return {true, equation ? FilterEquation(*equation, *representation) : ZULMRSBSPSign::Undecided()};
}

inline RepresentationVerdict FilterByRepresentation(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPEnvironment<ZULExpDynamic> environment;
    if (ZULMRSBSPDirectReads::Is3PlanesPoint(point)) [[likely]] {
        return FilterKept(
            plane, ZULMRSBSPDirectReads::Representation(static_cast<const ZULMRSBSP3PlanesPoint&>(point)));
    }
    const ZULMRSBSPQuadrupleHolder<ZULExpDynamic> representation(
        point.GetCartesianRepresentation_ExpDynamic());
    return FilterKept(plane, representation ? &*representation : nullptr);
}

inline RepresentationVerdict IntervalByRepresentation(const ZULMRSBSPPlane& plane,
                                                      const ZULMRSBSPPoint& point)
{
    RepresentationVerdict verdict;
    verdict.m_Sign = ZULMRSBSPStages::RunChecked<ZULExpInterval>([&] {
        const ZULMRSBSPRepresentation<ZULExpInterval> representation(point);
        const ZULMRSBSPEquation<ZULExpInterval> equation(plane);
        verdict.m_IsUsable = static_cast<bool>(representation);
        if (!verdict.m_IsUsable || !equation) {
            return ZULMRSBSPSign::Undecided();
        }
        const ZULMRSBSPSign w = ZULMRSBSPStages::SignOf(representation[3]);
        if (!w.IsDecided() || w.IsZero()) {
            return ZULMRSBSPSign::Undecided();
        }
        return w *
               ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::EquationAtHomogeneous(*equation, *representation));
    });
    return verdict;
}

/// The sign of the plane's equation at the meeting point of three planes, whatever the order of these: that
/// of the determinant of the four equations times that of the three normals. Planes that do not meet in one
/// point give zero.
template <class Number>
ZULMRSBSPSign EvaluateAtMeetingPoint(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    using ZULMRSBSPStages::SignOfDeep;
    const ZULMRSBSPEquation<Number> p1(*point.GetP1());
    const ZULMRSBSPEquation<Number> p2(*point.GetP2());
    const ZULMRSBSPEquation<Number> p3(*point.GetP3());
    const ZULMRSBSPEquation<Number> equation(plane);
    if (!p1 || !p2 || !p3 || !equation) {
        return ZULMRSBSPSign::Undecided();
    }
    const std::array<Number, 4> meeting = ZULMRSBSPFormulas::MeetingPoint(*p1, *p2, *p3);
    return SignOfDeep(meeting[3]) * SignOfDeep(ZULMRSBSPFormulas::EquationAtHomogeneous(*equation, meeting));
}

inline ZULMRSBSPSign FilterByPlanes(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPStages::Run<ZULExpDynamic>(
        [&] { return EvaluateAtMeetingPoint<ZULExpDynamic>(plane, point); });
}
inline ZULMRSBSPSign IntervalByPlanes(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPStages::RunChecked<ZULExpInterval>(
        [&] { return EvaluateAtMeetingPoint<ZULExpInterval>(plane, point); });
}
inline ZULMRSBSPSign ExactByPlanes(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(
        [&] { return EvaluateAtMeetingPoint<ZULExpFloatRingExtensionTS>(plane, point); });
}

/// The stages after the filtered representation. A cheap stage on the planes sees nothing that the same stage
/// on a usable representation has not seen, so it runs only where there was none.
[[gnu::noinline]] inline ZULMRSBSPSign DecideCarefully(const ZULMRSBSPPlane& plane,
                                                       const ZULMRSBSPPoint& point, bool hasFiltered)
{
    if (point.GetP1() == nullptr || point.GetP2() == nullptr || point.GetP3() == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    const ZULMRSBSPSign byRows = ExactByRows(plane, point);
    if (byRows.IsDecided()) {
        return byRows;
    }
    const RepresentationVerdict interval = IntervalByRepresentation(plane, point);
    if (interval.m_Sign.IsDecided()) {
        return interval.m_Sign;
    }
    const auto skip = [] { return ZULMRSBSPSign::Undecided(); };
    return ZULMRSBSPStages::FirstDecided(
        [&] { return hasFiltered ? skip() : FilterByPlanes(plane, point); },
        [&] { return interval.m_IsUsable ? skip() : IntervalByPlanes(plane, point); },
        [&] { return ExactByPlanes(plane, point); });
}

inline bool IsOwnPlane(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return point.GetP1() == &plane || point.GetP2() == &plane || point.GetP3() == &plane;
}

/// A point that is not defined by one of its own planes; see IsOwnPlane.
inline ZULMRSBSPSign AtPoint(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (!ZULMRSBSPDirectReads::Is3PlanesPoint(point) && point.GetType() == ZULMRSBSPPointType_Cartesian) {
        const std::array<double, 3>* p = ZULMRSBSPDirectReads::Coordinates(point);
        return AtCoordinates(
            plane, p != nullptr ? ZULMathPoint((*p)[0], (*p)[1], (*p)[2]) : point.GetApproximatedPoint());
    }
    const RepresentationVerdict filtered = FilterByRepresentation(plane, point);
    return filtered.m_Sign.IsDecided() ? filtered.m_Sign : DecideCarefully(plane, point, filtered.m_IsUsable);
}

//---------------------------------------------------------------- in doubles only

/// 1, 0, -1 as the value is positive, exactly zero, anything else (a NaN included).
inline int PlainSign(double value)
{
    return value > 0.0 ? 1 : (value == 0.0 ? 0 : -1);
}

inline int FastAtCoordinates(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const double linear =
        plane.GetDouble(0) * point.x + plane.GetDouble(1) * point.y + plane.GetDouble(2) * point.z;
    return PlainSign(linear + plane.GetDouble(3));
}

/// The determinant of the four equations, the point's planes first, along the row of its first plane: that
/// row's cofactors are minus the meeting point of the three other planes.
inline int FastAtPoint(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    using ZULMRSBSPShortcut::FactorSign;
    const std::array<double, 4> row = point.GetP1()->GetCoords();
    const std::array<double, 4> others = ZULMRSBSPFormulas::MeetingPoint(
        point.GetP2()->GetCoords(), point.GetP3()->GetCoords(), plane.GetCoords());
    const double value = -ZULMRSBSPFormulas::EquationAtHomogeneous(row, others);
    const ZULMRSBSPSign byTerms = ZULMRSBSPShortcut::SignOfSum(
        -FactorSign(row[0]) * FactorSign(others[0]), -FactorSign(row[1]) * FactorSign(others[1]),
        -FactorSign(row[2]) * FactorSign(others[2]), -FactorSign(row[3]) * FactorSign(others[3]));
    const bool isNumber = value == value;
    return isNumber && byTerms.IsDecided() ? byTerms.ToKernelResult() : PlainSign(value);
}
}  // namespace ZULMRSBSPOrientation

#endif
