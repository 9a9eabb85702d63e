#ifndef NcMotion_h
#define NcMotion_h

#include "NcArc.h"
#include "NcPosition.h"
#include "NcProgram.h"

/// The place of the tool, and the moves made from it. Each call appends one move to the program and takes the
/// tool to its end. A helper of the interpreter; keeps a reference to the program.
class NcMotion
{
public:
    explicit NcMotion(NcProgram& ioProgram) : m_program(ioProgram) {}

    const NcPosition& Position() const { return m_position; }
    /// Takes the assumed place of axes that have had no word yet to the origin of the work offset in force.
    void AssumeOrigin(int iAxis, double iOffset);
    void SetLine(int iLine) { m_line = iLine; }
    void SetTool(int iTool) { m_tool = iTool; }
    int Tool() const { return m_tool; }

    /// The target may lie at an unknown place.
    void Rapid(const NcPosition& iTarget, bool iIsCycleStroke = false);
    /// Throws NcFault where the start or the target lies at an unknown place.
    void Line(const NcPosition& iTarget, bool iIsCycleStroke = false);
    /// ioWords lacks only the two ends. Throws NcFault as Line and as NcSetArc.
    void Arc(NcArcWords& ioWords, const NcPosition& iTarget);
    /// Moves the axes (bit 0 for X, 1 for Y, 2 for Z) to a place in machine coordinates, so that they get
    /// lost.
    void Machine(unsigned iAxes);

    /// Throws NcFault if the place along an axis is lost.
    static void RequirePlace(const NcPosition& iPosition, int iAxis, const char* iMotion);

private:
    NcMove NewMove(NcMoveKind iKind, const NcPosition& iTarget) const;
    void RequireWay(const NcPosition& iTarget, const char* iMotion) const;
    void Append(const NcMove& iMove, const NcPosition& iTarget);

    NcProgram& m_program;
    NcPosition m_position;
    int m_line = 0;
    int m_tool = kNcNoTool;
    int m_cycleStrokes = 0;
};

#endif
