#include "NcMotion.h"

#include <fmt/format.h>

namespace
{

constexpr unsigned kAllAxes = 7U;
/// A few hostile lines of repeated drill cycles must not fill the memory. All other moves need text of their
/// own.
constexpr int kMaxCycleStrokes = 1'000'000;

}  // namespace

void NcMotion::AssumeOrigin(int iAxis, double iOffset)
{
    if (m_position.State(iAxis) == NcAxisState::Assumed) {
        m_position.Set(iAxis, iOffset, NcAxisState::Assumed);
    }
}

NcMove NcMotion::NewMove(NcMoveKind iKind, const NcPosition& iTarget) const
{
    NcMove move;
    move.m_kind = iKind;
    move.m_line = m_line;
    move.m_tool = m_tool;
    move.m_start = m_position.Point();
    move.m_end = iTarget.Point();
    move.m_knownAxes = iTarget.KnownAxes();
    return move;
}

void NcMotion::Append(const NcMove& iMove, const NcPosition& iTarget)
{
    if (iMove.m_isCycleStroke && ++m_cycleStrokes > kMaxCycleStrokes) {
        throw NcFault{"too many strokes of drill cycles",
                      fmt::format("a program may make {}", kMaxCycleStrokes)};
    }
    m_program.m_moves.push_back(iMove);
    m_position = iTarget;
}

void NcMotion::RequirePlace(const NcPosition& iPosition, int iAxis, const char* iMotion)
{
    if (iPosition.State(iAxis) == NcAxisState::Unknown) {
        throw NcFault{fmt::format("{} from an unknown place", iMotion),
                      fmt::format("the place along {} was lost by the move in machine coordinates on line {}",
                                  "XYZ"[iAxis], iPosition.m_lostOnLine[static_cast<std::size_t>(iAxis)])};
    }
}

void NcMotion::RequireWay(const NcPosition& iTarget, const char* iMotion) const
{
    for (int axis = 0; axis < 3; ++axis) {
        RequirePlace(m_position, axis, iMotion);
        RequirePlace(iTarget, axis, iMotion);
    }
}

void NcMotion::Rapid(const NcPosition& iTarget, bool iIsCycleStroke)
{
    NcMove move = NewMove(NcMoveKind::Rapid, iTarget);
    move.m_isCycleStroke = iIsCycleStroke;
    if (m_position.KnownAxes() != kAllAxes) {
        move.m_start = move.m_end;
    }
    move.m_mayCut = move.m_knownAxes == kAllAxes;
    Append(move, iTarget);
}

void NcMotion::Line(const NcPosition& iTarget, bool iIsCycleStroke)
{
    RequireWay(iTarget, "cutting move");
    NcPosition target = iTarget;
    for (int axis = 0; axis < 3; ++axis) {
        target.Set(axis, target.Value(axis));
    }
    NcMove move = NewMove(NcMoveKind::Line, target);
    move.m_isCycleStroke = iIsCycleStroke;
    Append(move, target);
}

void NcMotion::Arc(NcArcWords& ioWords, const NcPosition& iTarget)
{
    RequireWay(iTarget, "arc");
    NcPosition target = iTarget;
    for (int axis = 0; axis < 3; ++axis) {
        target.Set(axis, target.Value(axis));
    }
    NcMove move = NewMove(NcMoveKind::Arc, target);
    ioWords.m_start = move.m_start;
    ioWords.m_end = move.m_end;
    NcSetArc(ioWords, move);
    Append(move, target);
}

void NcMotion::Machine(unsigned iAxes)
{
    NcPosition target = m_position;
    for (int axis = 0; axis < 3; ++axis) {
        if ((iAxes >> axis & 1U) != 0) {
            target.Lose(axis, m_line);
        }
    }
    NcMove move = NewMove(NcMoveKind::Rapid, target);
    move.m_mayCut = false;
    move.m_isMachineMove = true;
    Append(move, target);
}
