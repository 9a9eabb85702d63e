#ifndef ZULMRSCellSplitter_h
#define ZULMRSCellSplitter_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSCell.h"
#include "ZULMRSCellMerger.h"
#include "ZULMRSCellOutline.h"
#include "ZULMRSVertexTable.h"
#include "ZULMathOBB.h"

/// A new cell of planes and corners from the given factory, owned by the caller; null when the box is
/// refused.
ZULMRSCell* ZULMRSMakeBoxCell(const ZULMathOBB& box, ZULMRSBSPObjectFactory& factory);

/// Splits and removes convex cells that conform: a polygon between two cells is one object held by both with
/// opposite orientations, and an edge has the same vertices in every polygon round it. Splitting a cell
/// splits its faces for the neighbours too. The scratch memory of one thread: several threads work on cells
/// at once, each with a splitter of its own, as long as no cell is a neighbour, in a face, an edge or a
/// vertex, of the cells of two of them.
class ZULMRSCellSplitter
{
public:
    /// Where a cell lies with respect to a plane. Touching counts to the side on which the inside is.
    enum class Position { InFront, Behind, Crossing };

    ZULMRSCellSplitter() = default;
    ~ZULMRSCellSplitter() { Finish(); }
    ZULMRSCellSplitter(const ZULMRSCellSplitter&) = delete;
    ZULMRSCellSplitter& operator=(const ZULMRSCellSplitter&) = delete;

    Position Locate(const ZULMRSCell& cell, const ZULMRSBSPPlane& plane);

    /// Splits a cell that the plane crosses: the cell becomes the part behind, the new cell returned, which
    /// the caller owns, is the part in front. Both keep the box of the whole until Fit().
    ZULMRSCell* Split(ZULMRSCell& cell, ZULMRSBSPPlane* plane);

    /// Gives a cell the least box known to contain it, and memory that it does not use back.
    void Fit(ZULMRSCell& cell);

    /// Joins a cell with neighbours in the same leaf as long as the union is convex. The neighbours are left
    /// without vertices, and die at Finish().
    void Merge(ZULMRSCell& cell);

    /// Takes a cell away from its neighbours, and the caller's reference on it.
    void Remove(ZULMRSCell* cell);

    /// A cell like another, without neighbours, owned by the caller: to try out what splitting would give.
    static ZULMRSCell* CopyAlone(const ZULMRSCell& cell);

    /// To be called before a plane that Locate() or Split() was given is released.
    void Finish();

    /// The cell's outline with its loops, and the table that it points into; true until the next Split().
    const ZULMRSCellOutline& GetOutline(const ZULMRSCell& cell)
    {
        m_Outline.OpenLoops(cell, m_Table);
        return m_Outline;
    }
    ZULMRSVertexTable& GetTable() { return m_Table; }

private:
    using Index = ZULMRSVertexTable::Index;
    static constexpr Index NoEdge = static_cast<Index>(-1);

    enum class FaceSide : signed char { Behind, InFront, Crossing };

    /// An edge of the cell that the plane crosses between its ends.
    struct CrossingEdge {
        Index m_Start;  // positions among the vertices
        Index m_End;
        std::array<std::size_t, 2> m_Faces;  // the two faces of the cell that meet in it
        std::size_t m_Position;              // in the first
        ZULMRSBSPPoint* m_Vertex;            // where the plane crosses it
    };
    /// Where a loop passes the plane: at a corner, or on the edge that ends there.
    struct Pass {
        std::size_t m_Position;
        Index m_Vertex;  // among the vertices
        Index m_Edge;    // among the crossing edges, or none
    };
    struct FaceState {
        FaceSide m_Side;
        std::size_t m_NbPasses;  // more than the array holds only where an edge is on the plane
        std::array<Pass, 2> m_Passes;
    };
    struct WallEdge {
        Index m_Start;
        Index m_End;
        ZULMRSBSPPlane* m_Plane;
        char m_Orientation;
    };
    /// A polygon's loop with the vertices on the plane put in; owns what it adds.
    struct Loop {
        std::vector<ZULMRSBSPPlane*> m_Edges;
        std::vector<ZULMRSBSPPoint*> m_Points;
        std::vector<char> m_Orientations;

        void Clear();
        void Add(ZULMRSBSPPlane* edge, ZULMRSBSPPoint* point, char orientation);
    };

    void FindSides();
    void FindPasses(const ZULMRSCell& cell);
    FaceState FindPasses(std::size_t face);
    Index AddCrossing(std::size_t face, std::size_t position, Index start, Index end);
    void MakeVertices(const ZULMRSCell& cell, ZULMRSBSPPlane* plane);
    void PartFaces(ZULMRSCell& cell, ZULMRSCell& front, ZULMRSBSPPlane* plane);
    ZULMRSFace* SplitFace(ZULMRSCell& cell, ZULMRSFace& face, std::size_t index, ZULMRSBSPPlane* plane);
    void ReadLoop(ZULMRSFace& face, std::size_t index);
    bool IsFirstPartInFront(std::size_t face) const;
    void AddWallEdges(ZULMRSBSPPlane* supportingPlane, std::size_t index, char orientation);
    void AddWallEdge(Index start, Index end, ZULMRSBSPPlane* supportingPlane, char orientation);
    ZULMRSFace* MakeWall(ZULMRSBSPPlane* plane);
    void PartVertices(ZULMRSCell& cell, ZULMRSCell& front);

    ZULMRSVertexTable m_Table;
    ZULMRSCellOutline m_Outline;
    ZULMRSCellMerger m_Merger{m_Table};
    std::vector<ZULMRSCell*> m_Emptied;
    // Scratch. Vertices are counted as in the outline, those that are made after them.
    std::vector<ZULMRSBSPPoint*> m_Vertices;
    std::vector<signed char> m_Sides;
    std::vector<FaceState> m_States;
    std::vector<CrossingEdge> m_CrossingEdges;
    std::vector<WallEdge> m_WallEdges;
    Loop m_Loop;
};

#endif
