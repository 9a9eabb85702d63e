#ifndef ZULMRSCellProbe_h
#define ZULMRSCellProbe_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"

/// A half-space of a tool: the shared plane, the side of it that the tool leaves alone (1 in front, -1
/// behind), and the equation turned so that the tool lies behind.
struct ZULMRSToolBound {
    ZULMRSBSPPlane* m_Plane;
    int m_Sign;
    std::array<double, 4> m_Outward;
};

/// Guesses, in plain doubles, which of a tool's planes will bound what it has in common with a cell, by
/// clipping a sketch of the cell. Cutting by these first leaves the fewest pieces. Only the order rests on
/// the guess, never a decision.
class ZULMRSCellProbe
{
public:
    /// Moves the planes that seem to bound the common part to the front, each group in its given order.
    void Sort(const ZULMRSBSPPolyhedron& cell, std::vector<ZULMRSToolBound>& bounds);

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

    void Sketch(const ZULMRSBSPPolyhedron& cell);
    Index VertexOf(const ZULMRSBSPPoint* point);
    bool Clip(const ZULMRSToolBound& bound, std::size_t position);
    bool LocateVertices(const std::array<double, 4>& equation, bool& isCut);
    void ClipLoop(const Loop& loop);
    Index Cut(Index start, Index end);
    void CloseWithWall(std::size_t position);
    Loop& NextLoop(std::size_t bound);

    struct Slot {
        const ZULMRSBSPPoint* m_Point = nullptr;
        std::uint64_t m_Generation = 0;
        Index m_Vertex = 0;
    };

    std::vector<Slot> m_Slots;  // the vertex of each of the cell's points: a table of twice the room needed
    std::uint64_t m_Generation = 0;
    std::vector<std::array<double, 3>> m_Vertices;
    std::vector<double> m_Heights;  // of the vertices above the plane at hand; 0 on it
    std::vector<CutVertex> m_CutVertices;
    std::vector<Edge> m_WallEdges;
    // Loops beyond the number in use keep their memory for the next cell.
    std::vector<Loop> m_Loops;
    std::vector<Loop> m_Clipped;
    std::size_t m_NbLoops = 0;
    std::size_t m_NbClipped = 0;
};

#endif
