#ifndef ZULBenchZulmrsCell_h
#define ZULBenchZulmrsCell_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPolyhedron.h"

namespace ZULBench
{
/// A convex cell under cutting, by public calls of the library alone: planes and points come from an object
/// factory, which must outlive the cell and keep the points of its edges; every side is decided exactly.
/// Between the cuts the cell knows its half-edges (counter-clockwise seen from outside), so that a cut costs
/// by what it changes. A vertex through which planes pass is one vertex, whatever their number.
class ZulmrsCell
{
public:
    /// The box [-1, 1]^3.
    explicit ZulmrsCell(ZULMRSBSPObjectFactory& factory);
    ~ZulmrsCell();
    ZulmrsCell(const ZulmrsCell&) = delete;
    ZulmrsCell& operator=(const ZulmrsCell&) = delete;

    /// Removes what lies in front of the plane a x + b y + c z + d = 0.
    void Cut(const std::array<double, 4>& equation);
    /// The cell as a polyhedron, whose first owner is the caller. An empty one has no polygons.
    ZULMRSBSPPolyhedron* MakePolyhedron() const;

    std::size_t GetNbVertices() const { return m_Vertices.size() - m_FreeVertices.size(); }
    std::size_t GetNbFaces() const { return m_Faces.size() - m_FreeFaces.size(); }
    std::size_t GetNbEdges() const { return (m_HalfEdges.size() - m_FreeHalfEdges.size()) / 2; }
    /// Whether links, incidences and Euler's formula hold and no vertex is in front of a face.
    bool IsSound() const;

private:
    using Index = std::uint32_t;
    static constexpr Index None = ~Index{0};
    // Of sizes that are powers of two, for short addresses.
    struct alignas(64) Vertex {
        ZULMRSBSPPoint* m_Point;       ///< null: free
        std::array<double, 3> m_Hint;  ///< roughly where it is, for the walk
        Index m_HalfEdge;              ///< one that starts here
        int m_Cut;                     ///< the cut for which m_Side holds
        int m_Side;
    };
    struct alignas(32) HalfEdge {
        Index m_Start;
        Index m_Twin;
        Index m_Next;
        Index m_Previous;
        Index m_Face;
    };
    struct Face {
        ZULMRSBSPPlane* m_Plane;  ///< null: free
        Index m_HalfEdge;
    };
    /// A face that the cut shortens: the half-edges by which its loop enters and leaves what is removed.
    struct Crossing {
        Index m_Entering;
        Index m_Leaving;
    };

    Index End(Index halfEdge) const { return m_HalfEdges[m_HalfEdges[halfEdge].m_Twin].m_Start; }
    Index Around(Index halfEdge) const { return m_HalfEdges[m_HalfEdges[halfEdge].m_Twin].m_Next; }
    int SideOf(Index vertex);
    /// Roughly how far a vertex is along the normal of the plane that cuts.
    double HeightOf(Index vertex) const;

    Index FindInFront();
    bool FloodFront(Index seed);
    void CollectCrossings();
    Index CrossingVertex(Index leaving, Index entering);
    Index MakeWallEdge(const Crossing& crossing, Index start, Index end, Index wall);
    void CloseWall();
    void FreeRemoved();
    void Clear();

    template <class Item>
    static Index Take(std::vector<Item>& items, std::vector<Index>& free);
    void Link(Index first, Index second);
    Index AddFace(ZULMRSBSPPlane* plane);
    void FreeFace(Index face);

    ZULMRSBSPObjectFactory& m_Factory;
    std::vector<Vertex> m_Vertices;
    std::vector<HalfEdge> m_HalfEdges;
    std::vector<Face> m_Faces;
    std::vector<Index> m_FreeVertices;
    std::vector<Index> m_FreeHalfEdges;
    std::vector<Index> m_FreeFaces;

    int m_Cut = 0;
    ZULMRSBSPPlane* m_Plane = nullptr;   ///< the one that cuts
    std::array<double, 4> m_Equation{};  ///< of that
    Index m_Last = 0;                    ///< where the next walk starts
    std::vector<Index> m_Front;          ///< vertices that this cut removes
    std::vector<Index> m_Dead;           ///< half-edges that it removes
    std::vector<Crossing> m_Crossings;
    std::vector<Index> m_Ends;  ///< for each crossing, the vertex where its face leaves the plane
    Index m_FirstLeaving = None;
};
}  // namespace ZULBench

#endif
