#include "NcMove.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace
{

constexpr double kQuarterTurn = std::numbers::pi / 2.0;

/// An arc in the coordinates of its plane.
struct PlaneArc {
    NcPlaneAxes m_axes;
    double m_centreU;
    double m_centreV;
    double m_startAngle;
    double m_startRadius;
    double m_endRadius;
    /// 1 or -1.
    double m_sense;

    explicit PlaneArc(const NcMove& iArc)
        : m_axes(NcAxesOf(iArc.m_plane)),
          m_centreU(NcCoordinate(iArc.m_centre, m_axes.m_u)),
          m_centreV(NcCoordinate(iArc.m_centre, m_axes.m_v)),
          m_sense(iArc.m_isCounterclockwise ? 1.0 : -1.0)
    {
        const double startU = NcCoordinate(iArc.m_start, m_axes.m_u) - m_centreU;
        const double startV = NcCoordinate(iArc.m_start, m_axes.m_v) - m_centreV;
        m_startAngle = std::atan2(startV, startU);
        m_startRadius = std::hypot(startU, startV);
        m_endRadius = std::hypot(NcCoordinate(iArc.m_end, m_axes.m_u) - m_centreU,
                                 NcCoordinate(iArc.m_end, m_axes.m_v) - m_centreV);
    }

    double RadiusAt(double iT) const { return m_startRadius + (m_endRadius - m_startRadius) * iT; }
};

/// The number of chords that keeps within the tolerance, or 0 if that is out of reach.
int ChordCount(const NcMove& iArc, double iTolerance)
{
    const PlaneArc arc(iArc);
    // A chord over the angle 2a leaves a circle by r (1 - cos a) = 2 r sin(a/2)^2. The change of the radius
    // adds less than its amount to both.
    const double radius =
        std::max(arc.m_startRadius, arc.m_endRadius) + std::fabs(arc.m_endRadius - arc.m_startRadius);
    const double ratio = std::min(1.0, std::sqrt(iTolerance / (2.0 * radius)));
    const double step = std::min(4.0 * std::asin(ratio), kQuarterTurn);
    const double count = std::ceil(iArc.m_sweep / step);
    // Written so that a count that is not a number fails too.
    if (!(count <= kNcMaxChords)) {
        return 0;
    }
    return std::max(1, static_cast<int>(count));
}

}  // namespace

NcPlaneAxes NcAxesOf(NcPlane iPlane)
{
    switch (iPlane) {
        case NcPlane::ZX:
            return {2, 0, 1};
        case NcPlane::YZ:
            return {1, 2, 0};
        case NcPlane::XY:
            break;
    }
    return {0, 1, 2};
}

double NcCoordinate(const ZULMathPoint& iPoint, int iAxis)
{
    return iAxis == 0 ? iPoint.x : iAxis == 1 ? iPoint.y : iPoint.z;
}

void NcSetCoordinate(ZULMathPoint& ioPoint, int iAxis, double iValue)
{
    (iAxis == 0 ? ioPoint.x : iAxis == 1 ? ioPoint.y : ioPoint.z) = iValue;
}

double NcHelixRise(const NcMove& iArc)
{
    const int across = NcAxesOf(iArc.m_plane).m_w;
    return NcCoordinate(iArc.m_end, across) - NcCoordinate(iArc.m_start, across);
}

double NcArcRadius(const NcMove& iArc)
{
    return PlaneArc(iArc).m_startRadius;
}

ZULMathPoint NcPointOnArc(const NcMove& iArc, double iT)
{
    const PlaneArc arc(iArc);
    const double angle = arc.m_startAngle + arc.m_sense * iArc.m_sweep * iT;
    const double radius = arc.RadiusAt(iT);
    ZULMathPoint point = iArc.m_start;
    NcSetCoordinate(point, arc.m_axes.m_u, arc.m_centreU + radius * std::cos(angle));
    NcSetCoordinate(point, arc.m_axes.m_v, arc.m_centreV + radius * std::sin(angle));
    NcSetCoordinate(point, arc.m_axes.m_w,
                    NcCoordinate(iArc.m_start, arc.m_axes.m_w) + NcHelixRise(iArc) * iT);
    return point;
}

std::vector<ZULMathPoint> FlattenArc(const NcMove& iMove, double iChordTolerance)
{
    if (!(iChordTolerance > 0.0)) {
        return {};
    }
    if (iMove.m_kind != NcMoveKind::Arc) {
        return {iMove.m_start, iMove.m_end};
    }
    const int count = ChordCount(iMove, iChordTolerance);
    if (count == 0) {
        return {};
    }
    std::vector<ZULMathPoint> points;
    points.reserve(static_cast<std::size_t>(count) + 1);
    points.push_back(iMove.m_start);
    for (int i = 1; i < count; ++i) {
        points.push_back(NcPointOnArc(iMove, static_cast<double>(i) / count));
    }
    points.push_back(iMove.m_end);
    return points;
}

NcExtents::NcExtents()
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    m_min = {kInfinity, kInfinity, kInfinity};
    m_max = {-kInfinity, -kInfinity, -kInfinity};
}

void NcExtents::AddPoint(const ZULMathPoint& iPoint, unsigned iAxes)
{
    for (int axis = 0; axis < 3; ++axis) {
        if ((iAxes >> axis & 1U) == 0) {
            continue;
        }
        const double value = NcCoordinate(iPoint, axis);
        NcSetCoordinate(m_min, axis, std::min(NcCoordinate(m_min, axis), value));
        NcSetCoordinate(m_max, axis, std::max(NcCoordinate(m_max, axis), value));
    }
}

void NcExtents::AddMove(const NcMove& iMove)
{
    AddPoint(iMove.m_start);
    AddPoint(iMove.m_end);
    if (iMove.m_kind == NcMoveKind::Arc) {
        AddBulge(iMove);
    }
}

void NcExtents::AddBulge(const NcMove& iArc)
{
    const PlaneArc arc(iArc);
    // A clockwise arc is looked at in the mirror, where it is counterclockwise.
    const double first = arc.m_sense * arc.m_startAngle;
    const double last = first + iArc.m_sweep;
    for (double quarter = std::ceil(first / kQuarterTurn); quarter * kQuarterTurn < last; quarter += 1.0) {
        const double radius = arc.RadiusAt((quarter * kQuarterTurn - first) / iArc.m_sweep);
        const int side = static_cast<int>(arc.m_sense * quarter) & 3;
        const double u = side == 0 ? radius : side == 2 ? -radius : 0.0;
        const double v = side == 1 ? radius : side == 3 ? -radius : 0.0;
        ZULMathPoint point = iArc.m_start;
        NcSetCoordinate(point, arc.m_axes.m_u, arc.m_centreU + u);
        NcSetCoordinate(point, arc.m_axes.m_v, arc.m_centreV + v);
        AddPoint(point);
    }
}

bool NcExtents::IsEmpty() const
{
    return !(m_min.x <= m_max.x && m_min.y <= m_max.y && m_min.z <= m_max.z);
}
