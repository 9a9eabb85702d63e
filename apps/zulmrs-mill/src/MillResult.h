#ifndef MillResult_h
#define MillResult_h

#include <cstddef>
#include <string>
#include <vector>

#include "MillDecisions.h"
#include "MillLattice.h"
#include "MillShape.h"
#include "NcProgram.h"
#include "ZULMRSSurfaceMesh.h"

/// A tool of the run and the number that the program gives it (kNcNoTool: none).
struct MillToolUse {
    int m_Number;
    MillShape m_Shape;
};

/// Time spent, in seconds.
struct MillSeconds {
    double m_Read = 0.0;
    double m_Cut = 0.0;
    double m_Surface = 0.0;
    double m_Write = 0.0;

    double GetTotal() const { return m_Read + m_Cut + m_Surface + m_Write; }
};

/// What a run has done. Lengths and volumes in millimetres.
struct MillResult {
    std::string m_Program;
    std::size_t m_Moves = 0;
    std::size_t m_CuttingMoves = 0;
    std::size_t m_RapidMoves = 0;
    /// Straight ways, arcs cut into chords, and those of them that come near the stock.
    std::size_t m_Segments = 0;
    std::size_t m_SweptSegments = 0;
    std::vector<MillToolUse> m_Tools;
    MillBox m_Stock;
    double m_StockVolume = 0.0;
    double m_RemovedVolume = 0.0;
    double m_RemainingVolume = 0.0;
    std::size_t m_Cells = 0;
    std::size_t m_Faces = 0;
    bool m_IsClosed = false;
    /// In millimetres.
    ZULMRSSurfaceMesh m_Mesh;
    /// Those of the program, then those of the run.
    std::vector<NcWarning> m_Warnings;
    /// Lines of rapid moves that took material away, in the order of the program.
    std::vector<int> m_RapidTouchLines;
    MillSeconds m_Seconds;
    MillDecisions m_Decisions;
};

#endif
