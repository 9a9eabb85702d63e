#ifndef ZULMRSCellSplitter_h
#define ZULMRSCellSplitter_h

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSCell.h"
#include "ZULMRSPointSides.h"
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
    /// the caller owns, is the part in front.
    ZULMRSCell* Split(ZULMRSCell& cell, ZULMRSBSPPlane* plane);

    /// Takes a cell away from its neighbours, and the caller's reference on it. It dies at Finish(): until
    /// then no point takes the address of another.
    void Remove(ZULMRSCell* cell);

    /// To be called before a plane that Locate() or Split() was given is released.
    void Finish();

private:
    struct CrossingEdge {
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
        std::array<ZULMRSFace*, 2> m_Faces;  // the two faces of the cell that meet in it
        ZULMRSBSPPlane* m_Edge;              // with the first face's plane, what carries the edge
    };
    struct WallEdge {
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
        ZULMRSBSPPlane* m_Plane;
        char m_Orientation;
    };

    enum class FaceSide : signed char { Behind, InFront, Crossing };

    void CollectCrossingEdges(const ZULMRSCell& cell);
    void InsertCutVertices(ZULMRSCell& cell, ZULMRSBSPPlane* plane);
    void FindSides(const std::vector<ZULMRSBSPPolygon*>& faces);
    void PartFaces(ZULMRSCell& cell, ZULMRSCell& front, ZULMRSBSPPlane* plane);
    std::array<ZULMRSFace*, 2> SplitFace(ZULMRSCell& cell, ZULMRSFace& face, char orientation,
                                         ZULMRSBSPPlane* plane);
    void CollectWallEdges(const ZULMRSCell& front);
    ZULMRSFace* MakeWall(ZULMRSBSPPlane* plane);
    void PartVertices(ZULMRSCell& cell, ZULMRSCell& front);

    ZULMRSPointSides m_Sides;
    std::vector<ZULMRSCell*> m_Removed;
    // Scratch.
    std::vector<CrossingEdge> m_CrossingEdges;
    std::vector<WallEdge> m_WallEdges;
    std::vector<FaceSide> m_FaceSides;
    std::vector<ZULMRSBSPPoint*> m_FrontVertices;
    std::vector<ZULMRSBSPPoint*> m_BehindVertices;
};

#endif
