#ifndef MillTool_h
#define MillTool_h

#include <cstddef>
#include <vector>

#include "MillLattice.h"
#include "MillToolProfile.h"

/// A cutter as a convex body with flat sides, in nanometres, its tip at the origin and its axis along Z. It
/// has no upper end: the shank is as thick as the cutter and clears all that is above. A plain value.
class MillTool
{
public:
    /// A plane side: normal . x <= height. Normals point out, are without common factor, and never point up.
    struct Facet {
        MillNormal m_Normal;
        MillWide m_Height = 0;
    };
    /// Where two facets meet. Left's normal times right's normal points along the direction.
    struct Edge {
        MillVector m_Direction;
        MillVector m_Point;
        std::size_t m_Left = 0;
        std::size_t m_Right = 0;
    };

    explicit MillTool(const MillToolProfile& profile);

    const std::vector<Facet>& GetFacets() const { return m_Facets; }
    const std::vector<Edge>& GetEdges() const { return m_Edges; }
    const std::vector<MillVector>& GetVertices() const { return m_Vertices; }
    /// The largest distance of a vertex from the axis, measured along X or Y.
    std::int64_t GetReach() const { return m_Reach; }

private:
    void AddVertices(const MillToolProfile& profile);
    void AddFacets(const MillToolProfile& profile);
    void AddEdges(const MillToolProfile& profile);

    std::vector<MillVector> m_Vertices;
    std::vector<Facet> m_Facets;
    std::vector<Edge> m_Edges;
    std::int64_t m_Reach = 0;
};

#endif
