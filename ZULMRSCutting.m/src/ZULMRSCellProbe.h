#ifndef ZULMRSCellProbe_h
#define ZULMRSCellProbe_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSCell.h"
#include "ZULMRSCellOutline.h"
#include "ZULMRSToolBound.h"
#include "ZULMRSVertexTable.h"

/// Guesses, in plain doubles, which of a tool's planes will bound what it has in common with a cell, by
/// clipping a sketch of the cell. Cutting by these first leaves the fewest pieces. Only the order rests on
/// the guess, never a decision.
class ZULMRSCellProbe
{
public:
    /// Moves the planes that seem to bound the common part to the front, each group in its given order.
    void Sort(const ZULMRSCell& cell, const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
              std::vector<const ZULMRSToolBound*>& bounds);

private:
    using Index = std::uint32_t;
    static constexpr std::size_t NoBound = static_cast<std::size_t>(-1);

    struct Loop {
        std::size_t m_Bound = NoBound;  // which of the tool's planes it lies on, if any
        std::vector<Index> m_Corners;
    };
    struct Edge {
        Index m_Start;
        Index m_End;
    };
    struct CutVertex {
        Edge m_Edge;
        Index m_Vertex;
    };

    void Sketch(const ZULMRSCell& cell, const ZULMRSCellOutline& outline, ZULMRSVertexTable& table);
    bool Clip(const ZULMRSToolBound& bound, std::size_t position);
    bool LocateVertices(const std::array<double, 4>& equation, bool& isCut);
    void DropVerticesInFront();
    bool ClipLoop(Loop& loop);
    void CutLoop(Loop& loop);
    Index Cut(Index start, Index end);
    void CloseWithWall(std::size_t position);
    Loop& NextLoop(std::size_t bound);

    std::vector<std::array<double, 3>> m_Vertices;
    std::vector<Index> m_Live;         // the vertices that no plane has cut off
    std::array<double, 3> m_Farthest;  // from 0 along each axis, of the cell
    std::vector<double> m_Heights;     // of live vertices above the plane at hand; 0 on it
    std::vector<CutVertex> m_CutVertices;
    std::vector<Edge> m_WallEdges;
    // Loops beyond the number in use keep their memory for the next cell.
    std::vector<Loop> m_Loops;
    std::size_t m_NbLoops = 0;
    std::vector<Index> m_Corners;
    std::vector<char> m_IsBounding;
    std::vector<const ZULMRSToolBound*> m_Sorted;
};

#endif
