#ifndef NcArc_h
#define NcArc_h

#include <array>
#include <optional>

#include "NcMove.h"

/// The words of an arc block, in millimetres, and the ends of the arc in stock coordinates.
struct NcArcWords {
    NcPlane m_plane = NcPlane::XY;
    bool m_isCounterclockwise = false;
    ZULMathPoint m_start;
    ZULMathPoint m_end;
    /// I, J, K: from the start to the centre.
    std::array<std::optional<double>, 3> m_centreOffsets;
    /// R.
    std::optional<double> m_radius;
    /// P: the number of turns begun, as in "G2 I5 P3"; 1 is an arc of at most one turn.
    int m_turns = 1;
    bool m_isInch = false;
};

/// How far the radius at the end of an arc may be from the radius at its start, in millimetres. Programs give
/// ends and centres with three or four decimals, so the two seldom agree: real millimetre programs are off by
/// up to 0.004 mm, and inch programs with three decimals by a multiple of 0.0005 inch. Taken is the larger of
/// 0.01 mm (0.002 inch in an inch program) and a ten-thousandth of the radius, which lets single-precision
/// posts draw large arcs, but never more than 0.25 mm.
double NcArcTolerance(double iRadius, bool iIsInch);

/// Ends nearer than this (millimetres) are one point: an arc between them is a full circle.
constexpr double kNcSamePoint = 1e-6;
/// The largest number of turns (P) of one arc.
constexpr int kNcMaxTurns = 1000;

/// Sets the kind, the ends and the geometry of ioMove. Throws NcFault where the words give no arc: no centre,
/// both forms at once, an offset along the axis, a radius too small for the distance, ends that the centre
/// does not serve within NcArcTolerance.
///
/// With I, J, K the end of a full circle may equal the start or be left out. With R the arc turns by at most
/// half a turn for a positive R and by at least half a turn for a negative one; a full circle cannot be
/// given.
void NcSetArc(const NcArcWords& iWords, NcMove& ioMove);

#endif
