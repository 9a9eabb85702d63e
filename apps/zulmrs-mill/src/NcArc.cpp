#include "NcArc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <fmt/format.h>

#include "NcError.h"

namespace
{

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr double kInch = 25.4;
constexpr double kToleranceMm = 0.01;
constexpr double kToleranceInch = 0.002 * kInch;
constexpr double kToleranceRelative = 1e-4;
constexpr double kToleranceLimit = 0.25;
constexpr const char* kOffsetLetters = "IJK";

struct PlanePoint {
    double u;
    double v;
};

PlanePoint Project(const ZULMathPoint& iPoint, NcPlaneAxes iAxes)
{
    return {NcCoordinate(iPoint, iAxes.m_u), NcCoordinate(iPoint, iAxes.m_v)};
}

PlanePoint CentreFromOffsets(const NcArcWords& iWords, NcPlaneAxes iAxes, PlanePoint iStart)
{
    const auto& offsets = iWords.m_centreOffsets;
    const auto at = [&](int iAxis) { return offsets[static_cast<std::size_t>(iAxis)]; };
    if (at(iAxes.m_w).value_or(0.0) != 0.0) {
        throw NcFault{fmt::format("'{}' in an arc", kOffsetLetters[iAxes.m_w]),
                      "the centre cannot be moved along the axis of the plane"};
    }
    if (!at(iAxes.m_u) && !at(iAxes.m_v)) {
        throw NcFault{"arc without a centre", fmt::format("G2 and G3 need {} and {}, or R",
                                                          kOffsetLetters[std::min(iAxes.m_u, iAxes.m_v)],
                                                          kOffsetLetters[std::max(iAxes.m_u, iAxes.m_v)])};
    }
    return {iStart.u + at(iAxes.m_u).value_or(0.0), iStart.v + at(iAxes.m_v).value_or(0.0)};
}

PlanePoint CentreFromRadius(const NcArcWords& iWords, PlanePoint iStart, PlanePoint iEnd)
{
    const double radius = std::fabs(*iWords.m_radius);
    const double du = iEnd.u - iStart.u;
    const double dv = iEnd.v - iStart.v;
    const double half = 0.5 * std::hypot(du, dv);
    if (half < 0.5 * kNcSamePoint) {
        throw NcFault{"arc with R back to its start", "a full circle needs its centre (I, J, K)"};
    }
    if (half > radius + NcArcTolerance(radius, iWords.m_isInch)) {
        throw NcFault{"arc does not close",
                      fmt::format("its ends are {:.6g} mm apart, more than twice its radius {:.6g} mm",
                                  2.0 * half, radius)};
    }
    // A radius rounded down a little below half the distance means half a turn.
    const double height = radius > half ? std::sqrt((radius - half) * (radius + half)) : 0.0;
    // The centre of a short counterclockwise arc lies to the left of the way from start to end.
    const bool isLeft = iWords.m_isCounterclockwise == (*iWords.m_radius > 0.0);
    const double side = (isLeft ? height : -height) / (2.0 * half);
    return {iStart.u + 0.5 * du - side * dv, iStart.v + 0.5 * dv + side * du};
}

void CheckRadii(const NcArcWords& iWords, double iStartRadius, double iEndRadius)
{
    if (iStartRadius < kNcSamePoint || iEndRadius < kNcSamePoint) {
        throw NcFault{"arc without a radius", "its centre lies on its start or end"};
    }
    const double tolerance = NcArcTolerance(std::max(iStartRadius, iEndRadius), iWords.m_isInch);
    const double mismatch = std::fabs(iStartRadius - iEndRadius);
    if (!(mismatch <= tolerance)) {
        throw NcFault{
            "arc does not close",
            fmt::format("its end is {:.6g} mm from the centre and its start {:.6g} mm, {:.6g} mm is allowed "
                        "between them",
                        iEndRadius, iStartRadius, tolerance)};
    }
}

/// The angle from start to end in the sense of the arc, in (0, one turn].
double BaseSweep(PlanePoint iStart, PlanePoint iEnd, PlanePoint iCentre, bool iCounterclockwise)
{
    if (std::hypot(iEnd.u - iStart.u, iEnd.v - iStart.v) < kNcSamePoint) {
        return kTurn;
    }
    const double su = iStart.u - iCentre.u;
    const double sv = iStart.v - iCentre.v;
    const double eu = iEnd.u - iCentre.u;
    const double ev = iEnd.v - iCentre.v;
    // From the cross and the dot product rather than from two angles, so that short arcs keep their digits.
    const double angle = std::atan2(su * ev - sv * eu, su * eu + sv * ev);
    const double sweep = iCounterclockwise ? angle : -angle;
    return sweep > 0.0 ? sweep : sweep + kTurn;
}

}  // namespace

double NcArcTolerance(double iRadius, bool iIsInch)
{
    const double fixed = iIsInch ? kToleranceInch : kToleranceMm;
    return std::min(std::max(fixed, kToleranceRelative * iRadius), kToleranceLimit);
}

void NcSetArc(const NcArcWords& iWords, NcMove& ioMove)
{
    const NcPlaneAxes axes = NcAxesOf(iWords.m_plane);
    const PlanePoint start = Project(iWords.m_start, axes);
    const PlanePoint end = Project(iWords.m_end, axes);
    const auto& offsets = iWords.m_centreOffsets;
    const bool hasOffsets =
        std::any_of(offsets.begin(), offsets.end(), [](const auto& o) { return o.has_value(); });
    if (iWords.m_radius && hasOffsets) {
        throw NcFault{"arc with a centre and R", "only one of the two can be given"};
    }

    const PlanePoint centre =
        iWords.m_radius ? CentreFromRadius(iWords, start, end) : CentreFromOffsets(iWords, axes, start);
    CheckRadii(iWords, std::hypot(start.u - centre.u, start.v - centre.v),
               std::hypot(end.u - centre.u, end.v - centre.v));

    ioMove.m_kind = NcMoveKind::Arc;
    ioMove.m_start = iWords.m_start;
    ioMove.m_end = iWords.m_end;
    ioMove.m_plane = iWords.m_plane;
    ioMove.m_isCounterclockwise = iWords.m_isCounterclockwise;
    ioMove.m_isRadiusForm = iWords.m_radius.has_value();
    ioMove.m_centre = iWords.m_start;
    NcSetCoordinate(ioMove.m_centre, axes.m_u, centre.u);
    NcSetCoordinate(ioMove.m_centre, axes.m_v, centre.v);
    ioMove.m_sweep =
        BaseSweep(start, end, centre, iWords.m_isCounterclockwise) + kTurn * (iWords.m_turns - 1);
}
