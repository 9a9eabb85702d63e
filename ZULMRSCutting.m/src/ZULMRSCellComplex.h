#ifndef ZULMRSCellComplex_h
#define ZULMRSCellComplex_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSEdgePoints.h"
#include "ZULMRSPointSides.h"
#include "ZULMathOBB.h"

/// Convex cells that conform: a polygon between two cells is one object held by both with opposite
/// orientations, and an edge has the same vertices in every polygon round it. Splitting a cell splits its
/// faces for the neighbours too. A polygon's attribute index is its place in the table of faces.
class ZULMRSCellComplex
{
public:
    using CellId = std::uint32_t;
    static constexpr CellId NoCell = 0xFFFFFFFFU;

    /// Where a cell lies with respect to a plane. Touching counts to the side on which the inside is.
    enum class Position { InFront, Behind, Crossing };

    explicit ZULMRSCellComplex(ZULMRSBSPObjectFactory& factory);
    ~ZULMRSCellComplex();
    ZULMRSCellComplex(const ZULMRSCellComplex&) = delete;
    ZULMRSCellComplex& operator=(const ZULMRSCellComplex&) = delete;

    /// A new cell of planes and corners from the given factory, or NoCell when the box is refused.
    CellId AddBox(const ZULMathOBB& box, ZULMRSBSPObjectFactory& factory);

    Position Locate(CellId cell, const ZULMRSBSPPlane& plane);

    /// Splits a cell that the plane crosses: the cell becomes the part behind, the new cell returned is the
    /// part in front.
    CellId Split(CellId cell, ZULMRSBSPPlane* plane);

    void Remove(CellId cell);

    const ZULMRSBSPPolyhedron& GetCell(CellId cell) const { return *m_Cells[cell]; }
    std::vector<ZULMRSBSPPolyhedron*> GetCells() const;
    std::size_t GetNbCells() const { return m_NbCells; }
    std::size_t GetNbSurfaceFaces() const;

    /// True when enough has been created since the last Compact() to make another worth its cost.
    bool IsCompactDue() const { return m_EdgePoints.IsCompactDue(); }
    /// Drops every shared object that the cells no longer use.
    void Compact()
    {
        m_Sides.Clear();
        m_EdgePoints.Compact();
    }
    /// To be called before a plane that Locate() or Split() was given is released.
    void ForgetPlanes() { m_Sides.Clear(); }

private:
    using Face = ZULMRSBSPPolyhedron::Face;
    /// The cells that hold a polygon: with orientation 1 and with -1.
    using Holders = std::array<CellId, 2>;

    struct CrossingEdge {
        ZULMRSBSPPoint* m_Start;
        ZULMRSBSPPoint* m_End;
        std::array<ZULMRSBSPPolygon*, 2> m_Polygons;  // the two faces of the cell that meet in it
        ZULMRSBSPPlane* m_Edge;                       // with the first face's plane, what carries the edge
    };

    /// Faces on each side of a plane while a cell is being split, and the edges on the plane: the loop of the
    /// wall.
    struct SplitFaces {
        std::vector<Face> m_Front;
        std::vector<Face> m_Behind;
    };

    static std::size_t HolderSlot(char orientation) { return orientation > 0 ? 0 : 1; }
    Holders& HoldersOf(const ZULMRSBSPPolygon& polygon);
    CellId OtherHolder(const ZULMRSBSPPolygon& polygon, CellId cell);
    void RegisterFace(ZULMRSBSPPolygon& polygon, const Holders& holders);
    void UnregisterFace(const ZULMRSBSPPolygon& polygon);
    CellId NewCell(ZULMRSBSPPolyhedron* polyhedron);

    void CollectCrossingEdges(const ZULMRSBSPPolyhedron& cell);
    void InsertCutVertices(CellId cell, ZULMRSBSPPlane* plane);
    bool InsertRound(CellId cell, ZULMRSBSPPolygon* first, const CrossingEdge& edge, ZULMRSBSPPoint* vertex);
    int SideOfFace(const ZULMRSBSPPolygon& polygon, bool& isCrossing);
    void SplitFace(CellId cell, const Face& face, ZULMRSBSPPlane* plane, SplitFaces& faces);
    ZULMRSBSPPolygon* MakeWall(const std::vector<Face>& frontFaces, ZULMRSBSPPlane* plane);
    ZULMRSBSPPolyhedron* MakeCell(CellId id, const std::vector<Face>& faces, ZULMRSBSPPolygon* wall,
                                  char orientation);

    ZULMRSEdgePoints m_EdgePoints;
    std::vector<ZULMRSBSPPolyhedron*> m_Cells;  // null where free
    std::vector<CellId> m_FreeCells;
    std::size_t m_NbCells = 0;
    std::vector<Holders> m_Faces;
    std::vector<std::uint32_t> m_FreeFaces;
    ZULMRSPointSides m_Sides;
    std::vector<CrossingEdge> m_CrossingEdges;  // scratch
};

#endif
