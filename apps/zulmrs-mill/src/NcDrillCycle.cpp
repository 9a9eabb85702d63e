#include "NcDrillCycle.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace
{

constexpr int kChipBreaking = 73;
constexpr int kDeepHole = 83;
/// Millimetres that a peck starts above the last one, and that G73 draws back.
constexpr double kClearance = 0.25;
constexpr double kMaxStrokes = 100'000.0;
/// Of a peck: a remainder this small is rounding.
constexpr double kPeckRounding = 1e-9;

bool IsPecking(int iCode)
{
    return iCode == kChipBreaking || iCode == kDeepHole;
}

}  // namespace

void NcDrillCycle::Begin(const NcDrillWords& iWords, const NcMotion& iMotion)
{
    const int axis = NcAxesOf(iWords.m_plane).m_w;
    if (m_isActive && axis == m_axis) {
        return;
    }
    m_isActive = true;
    m_axis = axis;
    m_initial = iMotion.Position().Value(axis);
    m_initialState = iMotion.Position().State(axis);
    m_initialLostOnLine = iMotion.Position().m_lostOnLine[static_cast<std::size_t>(axis)];
    m_bottomWord.reset();
    m_retractWord.reset();
    m_peck.reset();
}

void NcDrillCycle::TakeWords(const NcDrillWords& iWords)
{
    if (iWords.m_isIncremental && iWords.m_retract && m_initialState == NcAxisState::Unknown) {
        throw NcFault{
            "drill cycle from an unknown place",
            fmt::format("R counts from a place along {} that was lost by the move in machine coordinates on "
                        "line {}",
                        "XYZ"[m_axis], m_initialLostOnLine)};
    }
    if (iWords.m_retract) {
        m_retractWord = *iWords.m_retract + (iWords.m_isIncremental ? m_initial - iWords.m_offset : 0.0);
    }
    if (iWords.m_peck) {
        m_peck = iWords.m_peck;
    }
    if (!m_retractWord) {
        throw NcFault{"drill cycle without R", "the height where drilling starts is needed"};
    }
    if (iWords.m_bottom) {
        m_bottomWord = *iWords.m_bottom + (iWords.m_isIncremental ? *m_retractWord : 0.0);
    }
    if (!m_bottomWord) {
        throw NcFault{fmt::format("drill cycle without {}", "XYZ"[m_axis]),
                      "the depth of the hole is needed"};
    }
    m_retract = *m_retractWord + iWords.m_offset;
    m_bottom = *m_bottomWord + iWords.m_offset;
}

void NcDrillCycle::CheckWords(const NcDrillWords& iWords) const
{
    if (m_bottom > m_retract) {
        throw NcFault{"drill cycle with R below the bottom",
                      fmt::format("R is at {:.6g} mm and the bottom at {:.6g} mm", m_retract, m_bottom)};
    }
    double strokes = iWords.m_repeats;
    if (IsPecking(iWords.m_code)) {
        if (!m_peck) {
            throw NcFault{"drill cycle without Q",
                          fmt::format("G{} needs the depth of a peck", iWords.m_code)};
        }
        if (!(*m_peck > 0.0)) {
            throw NcFault{"drill cycle with a bad Q", "the depth of a peck must be positive"};
        }
        strokes *= std::max(1.0, (m_retract - m_bottom) / *m_peck);
    }
    if (!(strokes <= kMaxStrokes)) {
        throw NcFault{"drill cycle with too many strokes",
                      fmt::format("one block may make {:.0f}", kMaxStrokes)};
    }
}

void NcDrillCycle::Run(const NcDrillWords& iWords, NcMotion& ioMotion, int& ioHoleCount)
{
    Begin(iWords, ioMotion);
    TakeWords(iWords);
    CheckWords(iWords);
    const NcPlaneAxes axes = NcAxesOf(iWords.m_plane);
    const NcPosition first = ioMotion.Position();
    NcPosition target = iWords.m_target;
    for (int i = 0; i < iWords.m_repeats; ++i) {
        if (i > 0 && iWords.m_isIncremental) {
            for (const int axis : {axes.m_u, axes.m_v}) {
                const double step = iWords.m_target.Value(axis) - first.Value(axis);
                target.Set(axis, target.Value(axis) + step, target.State(axis));
            }
        }
        DrillHole(iWords, target, ioMotion);
        ++ioHoleCount;
    }
}

void NcDrillCycle::DrillHole(const NcDrillWords& iWords, const NcPosition& iTarget, NcMotion& ioMotion) const
{
    const NcPlaneAxes axes = NcAxesOf(iWords.m_plane);
    NcMotion::RequirePlace(iTarget, axes.m_u, "drill cycle");
    NcMotion::RequirePlace(iTarget, axes.m_v, "drill cycle");
    NcPosition place = ioMotion.Position();
    if (place.IsKnown(m_axis) && place.Value(m_axis) < m_retract) {
        place.Set(m_axis, m_retract);
        ioMotion.Rapid(place, true);
    }
    NcPosition across = ioMotion.Position();
    // An axis without a word yet is zero here as it is for a line.
    across.Set(axes.m_u, iTarget.Value(axes.m_u));
    across.Set(axes.m_v, iTarget.Value(axes.m_v));
    const NcPosition& now = ioMotion.Position();
    if (across.Point() != now.Point() || across.KnownAxes() != now.KnownAxes()) {
        ioMotion.Rapid(across, true);
    }
    if (!across.IsKnown(m_axis) || across.Value(m_axis) != m_retract) {
        across.Set(m_axis, m_retract);
        ioMotion.Rapid(across, true);
    }
    Strokes(iWords, ioMotion);
    Retract(iWords, ioMotion);
}

void NcDrillCycle::Strokes(const NcDrillWords& iWords, NcMotion& ioMotion) const
{
    NcPosition place = ioMotion.Position();
    const auto feedTo = [&](double iHeight) {
        place.Set(m_axis, iHeight);
        ioMotion.Line(place, true);
    };
    const auto rapidTo = [&](double iHeight) {
        place.Set(m_axis, iHeight);
        ioMotion.Rapid(place, true);
    };
    if (IsPecking(iWords.m_code)) {
        const double clearance = std::min(kClearance, 0.5 * *m_peck);
        const double exact = (m_retract - m_bottom) / *m_peck;
        const int count = std::max(1, static_cast<int>(std::ceil(exact - kPeckRounding)));
        for (int i = 1; i < count; ++i) {
            const double depth = m_retract - i * *m_peck;
            feedTo(depth);
            if (iWords.m_code == kDeepHole) {
                rapidTo(m_retract);
            }
            rapidTo(depth + clearance);
        }
    }
    feedTo(m_bottom);
}

void NcDrillCycle::Retract(const NcDrillWords& iWords, NcMotion& ioMotion) const
{
    NcPosition place = ioMotion.Position();
    if (iWords.m_retractsToR || (m_initialState == NcAxisState::Known && m_initial <= m_retract)) {
        place.Set(m_axis, m_retract);
    } else {
        place.Set(m_axis, m_initialState == NcAxisState::Known ? m_initial : std::max(m_initial, m_retract),
                  m_initialState);
    }
    place.m_lostOnLine[static_cast<std::size_t>(m_axis)] = m_initialLostOnLine;
    ioMotion.Rapid(place, true);
}
