#ifndef MillPath_h
#define MillPath_h

#include <cstddef>
#include <vector>

#include "MillConfig.h"
#include "MillLattice.h"
#include "MillTool.h"
#include "NcProgram.h"

/// A tool of the run.
struct MillPathTool {
    /// As in the program; kNcNoTool before any T word.
    int m_Number = kNcNoTool;
    MillShape m_Shape;
    MillTool m_Tool;
};

/// One straight way of a tool's tip.
struct MillPathSegment {
    MillVector m_Start;
    MillVector m_End;
    /// Line of the program.
    int m_Line = 0;
    /// Index into the tools of the path.
    std::size_t m_Tool = 0;
    bool m_IsRapid = false;
};

/// The way that the tools go, in nanometres, arcs cut into chords.
struct MillPath {
    std::vector<MillPathTool> m_Tools;
    std::vector<MillPathSegment> m_Segments;
    std::size_t m_CuttingMoves = 0;
    std::size_t m_RapidMoves = 0;

    /// The largest reach of all tools.
    std::int64_t GetLargestReach() const;
};

/// Makes the path of a program. Rapid moves before a tool with a shape is in force are left out, and so are
/// moves of which the program does not tell where they pass. Throws NcError for a cutting move without a tool
/// and for a place that is too far out, MillError for a chord tolerance that asks for too many chords.
MillPath MillMakePath(const NcProgram& program, const MillConfig& config);

/// The stock: the given box, or one from the program's lines and arcs. Of the latter every side is the margin
/// away from what a tool reaches at its full width, and the bottom is the margin below the lowest place of a
/// tip. The top is Z0, where programs have it that cut below zero; one that never does has zero at the table,
/// and its top is the highest place of a cutting move. Throws MillError.
MillBox MillMakeStock(const NcProgram& program, const MillConfig& config);

#endif
