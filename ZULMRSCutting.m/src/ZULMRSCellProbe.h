#ifndef ZULMRSCellProbe_h
#define ZULMRSCellProbe_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "ZULMRSCell.h"
#include "ZULMRSCellOutline.h"
#include "ZULMRSToolBound.h"
#include "ZULMRSVertexTable.h"

/// Guesses, in plain doubles, how much each of a tool's planes will bound of what it has in common with a
/// cell, by clipping a sketch of the cell. Cutting by the greatest faces first leaves the fewest pieces, now
/// and for the tools to come. Only the order rests on the guess, never a decision.
class ZULMRSCellProbe
{
public:
    /// Puts the planes in the order of the faces that they seem to contribute to the common part, the
    /// greatest first; those that seem to contribute none stay last, in their given order. False, and the
    /// order as it was, when the tool and the cell seem to have nothing in common.
    bool Sort(const ZULMRSCell& cell, const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
              std::vector<const ZULMRSToolBound*>& bounds);

private:
    using Index = std::uint32_t;
    static constexpr std::size_t NoBound = static_cast<std::size_t>(-1);

    /// Where a vertex lies with respect to the plane at hand.
    enum Mark : unsigned char { IsBehind = 1, IsInFront = 2, IsOn = 4 };

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
    double AreaOf(const Loop& loop) const;
    Loop& NextLoop(std::size_t bound);

    std::vector<std::array<double, 3>> m_Vertices;
    std::vector<Index> m_Live;         // the vertices that no plane has cut off
    std::array<double, 3> m_Farthest;  // from 0 along each axis, of the cell
    std::vector<double> m_Heights;     // of live vertices above the plane at hand; 0 on it
    std::vector<unsigned char> m_Marks;
    std::vector<CutVertex> m_CutVertices;
    std::vector<Edge> m_WallEdges;
    // Loops beyond the number in use keep their memory for the next cell.
    std::vector<Loop> m_Loops;
    std::size_t m_NbLoops = 0;
    std::vector<Index> m_Corners;
    std::vector<double> m_Areas;  // of what each bound contributes to the common part
    std::vector<std::pair<double, const ZULMRSToolBound*>> m_Sorted;
};

#endif
