#ifndef ZULMRSCellMerger_h
#define ZULMRSCellMerger_h

#include <cstddef>
#include <vector>

#include "ZULMRSCell.h"
#include "ZULMRSVertexTable.h"

/// Joins neighbours whose union is convex: what tools leave of a cell that an earlier tool had cut up. What
/// holds for ZULMRSCellSplitter about several threads holds here, too.
class ZULMRSCellMerger
{
public:
    /// The table is borrowed.
    explicit ZULMRSCellMerger(ZULMRSVertexTable& table) : m_Table(table) {}

    /// Joins a cell with neighbours in the same leaf as long as there is one to join. Those that it has taken
    /// in are left empty, without polygons and vertices, and are added to the list.
    void Merge(ZULMRSCell& cell, std::vector<ZULMRSCell*>& emptied);

private:
    /// The faces of the two cells that meet in an edge of the wall between them.
    struct Seam {
        ZULMRSFace* m_Face;
        ZULMRSFace* m_Other;
        bool m_IsFlat;
    };
    /// The common edges of two flat neighbours: so many, from an edge of the first on; the vertex where the
    /// first arrives at them in the other.
    struct Overlap {
        std::size_t m_FirstEdge;
        std::size_t m_NbEdges;
        std::size_t m_StartInOther;
    };
    struct Corner {
        ZULMRSFace* m_Face;
        std::size_t m_Position;
    };

    bool IsUnionConvex(const ZULMRSCell& cell, const ZULMRSCell& other, const ZULMRSFace& wall);
    bool IsBehind(const ZULMRSFace& other, const ZULMRSFace& face, char orientation);
    void Join(ZULMRSCell& cell, ZULMRSCell& other, ZULMRSFace& wall);
    void JoinSeams(ZULMRSCell& cell, ZULMRSCell& other);
    bool FindOverlap(ZULMRSFace& face, ZULMRSFace& other, Overlap& overlap);
    bool IsConvexWhere(ZULMRSFace& face, std::size_t edge, ZULMRSBSPPoint* next);
    void JoinFaces(ZULMRSFace& face, ZULMRSFace& other, const Overlap& overlap, ZULMRSCell* neighbour);
    void TakeOver(ZULMRSCell& cell, ZULMRSCell& other, ZULMRSFace& wall);
    void DropVertex(ZULMRSCell& cell, ZULMRSBSPPoint* vertex);
    void DropIfStraight(ZULMRSCell& cell, ZULMRSBSPPoint* vertex);
    bool FindCorners(const ZULMRSCell& cell, const ZULMRSBSPPoint* vertex, Corner (&corners)[2]) const;
    bool WalkRound(ZULMRSCell* from, const Corner& start, const ZULMRSFace* last, bool& isClosed);
    void RemoveCorner(const Corner& corner);
    bool MayVanish(const ZULMRSFace& face, const Overlap& overlap, ZULMRSCell& cell,
                   const ZULMRSCell* neighbour);
    std::size_t CountOwners(ZULMRSBSPPoint* vertex);
    bool IsTouched(ZULMRSCell& cell, ZULMRSBSPPoint* vertex);

    ZULMRSVertexTable& m_Table;
    // Scratch.
    std::vector<Seam> m_Seams;
    std::vector<ZULMRSFace*> m_Joined;
    std::vector<ZULMRSBSPPoint*> m_WallPoints;
    std::vector<Corner> m_Corners;
    std::vector<ZULMRSCell*> m_Cells;
    std::vector<ZULMRSBSPPlane*> m_LoopEdges;
    std::vector<ZULMRSBSPPoint*> m_LoopPoints;
    std::vector<char> m_LoopOrientations;
};

#endif
