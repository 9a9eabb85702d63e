#ifndef NcMove_h
#define NcMove_h

#include <vector>

#include "ZULMathPoint.h"

enum class NcMoveKind { Rapid, Line, Arc };

/// The plane of an arc, named by its two axes in the order in which angles grow.
enum class NcPlane {
    /// G17, axis Z.
    XY,
    /// G18, axis Y.
    ZX,
    /// G19, axis X.
    YZ
};

/// Tool number of moves before any T word.
constexpr int kNcNoTool = -1;

/// One motion of the tool tip, in millimetres and stock coordinates: program coordinates plus the work offset
/// in force. A plain value.
struct NcMove {
    NcMoveKind m_kind = NcMoveKind::Rapid;
    /// False: where the tool passes is not known, and the move is not to be swept; see NcProgram. Always true
    /// for lines and arcs.
    bool m_mayCut = true;
    /// G53, G28, G30: a move to a place given in machine coordinates. m_mayCut is false then.
    bool m_isMachineMove = false;
    /// A stroke of a drill cycle.
    bool m_isCycleStroke = false;
    /// The axes of m_end (bit 0 for X, 1 for Y, 2 for Z) that the program has given a place.
    unsigned m_knownAxes = 7U;
    /// 1-based line of the program.
    int m_line = 0;
    /// The T number in force, or kNcNoTool.
    int m_tool = kNcNoTool;
    ZULMathPoint m_start;
    /// Exactly the programmed place.
    ZULMathPoint m_end;

    // Arcs only. An arc whose end lies along the axis from its start is a helix.
    NcPlane m_plane = NcPlane::XY;
    /// The sense, seen against the axis of the plane (G3: counterclockwise).
    bool m_isCounterclockwise = false;
    /// The centre was found from a radius (R) word.
    bool m_isRadiusForm = false;
    /// On the axis, at the height of the start.
    ZULMathPoint m_centre;
    /// The angle passed through, whole turns included; radians, positive.
    double m_sweep = 0.0;
};

/// The indices (0 to 2) of the axes of a plane: first, second and the one across.
struct NcPlaneAxes {
    int m_u;
    int m_v;
    int m_w;
};
NcPlaneAxes NcAxesOf(NcPlane iPlane);

/// Coordinate iAxis (0 to 2) of a point.
double NcCoordinate(const ZULMathPoint& iPoint, int iAxis);
void NcSetCoordinate(ZULMathPoint& ioPoint, int iAxis, double iValue);

/// The height that a helix gains along its axis; 0 for a plane arc.
double NcHelixRise(const NcMove& iArc);
/// The distance of the start from the centre in the plane of the arc.
double NcArcRadius(const NcMove& iArc);

/// The point of an arc after the fraction iT (0 to 1) of its sweep. Where the end is not quite as far from
/// the centre as the start, the radius changes evenly on the way.
ZULMathPoint NcPointOnArc(const NcMove& iArc, double iT);

/// The chords of a move: its start, the points between, its end, both exact. The chords of an arc leave it by
/// at most iChordTolerance (millimetres) in its plane and span at most a quarter turn each. A line gives its
/// two ends. At most kNcMaxChords chords: with a tolerance too small for that, or one that is not a positive
/// number, the result is empty.
std::vector<ZULMathPoint> FlattenArc(const NcMove& iMove, double iChordTolerance);
constexpr int kNcMaxChords = 4'000'000;

/// An axis-parallel box that grows round points; axis by axis, so that some axes may still be empty.
class NcExtents
{
public:
    NcExtents();

    void AddPoint(const ZULMathPoint& iPoint, unsigned iAxes = 7U);
    /// Both ends and, for an arc, its bulge.
    void AddMove(const NcMove& iMove);

    /// Whether some axis has seen no point.
    bool IsEmpty() const;
    /// Lowest and highest corner; +infinity and -infinity on an axis that has seen no point.
    const ZULMathPoint& Min() const { return m_min; }
    const ZULMathPoint& Max() const { return m_max; }

private:
    void AddBulge(const NcMove& iArc);

    ZULMathPoint m_min;
    ZULMathPoint m_max;
};

#endif
