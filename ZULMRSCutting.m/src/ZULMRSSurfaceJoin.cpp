#include "ZULMRSBSPPredicates.h"
#include "ZULMRSDisjointSets.h"
#include "ZULMRSNumbering.h"
#include "ZULMRSSurfaceGraph.h"

namespace
{
// Every pass but the last joins something; what a later pass could still join is left to the removal of flat
// vertices.
constexpr int MaxPasses = 8;

int SideOf(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPPredicates::IsPointInFrontOfPlane(plane, point);
}

// Classes of planes that are the same point set and have the same side outside.
class OutwardPlanes
{
public:
    explicit OutwardPlanes(const ZULMRSSurfaceGraph& graph)
        : m_Faces(graph.m_Faces), m_Numbers(graph.m_Faces.size()), m_Classes(2 * graph.m_Faces.size())
    {
        m_NumberOfFace.reserve(m_Faces.size());
        for (const auto& face : m_Faces) {
            m_NumberOfFace.push_back(2 * m_Numbers.GetNumber(face.m_Plane) +
                                     (face.m_Orientation > 0 ? 1 : 0));
        }
    }

    bool IsSame(std::uint32_t faceA, std::uint32_t faceB)
    {
        const std::uint32_t a = m_Classes.Find(m_NumberOfFace[faceA]);
        const std::uint32_t b = m_Classes.Find(m_NumberOfFace[faceB]);
        if (a == b) {
            return true;
        }
        const auto& first = m_Faces[faceA];
        const auto& second = m_Faces[faceB];
        if (first.m_Plane == second.m_Plane ||
            ZULMRSBSPPredicates::ArePlanesCoincident(*first.m_Plane, *second.m_Plane) != ZULMRSExtendedTrue) {
            return false;
        }
        const bool isSameWay =
            ZULMRSBSPPredicates::CoincidentOrientation(*first.m_Plane, *second.m_Plane) == ZULMRSExtendedTrue;
        if (isSameWay != ((first.m_Orientation > 0) == (second.m_Orientation > 0))) {
            return false;
        }
        m_Classes.Unite(a, b);
        return true;
    }

private:
    const std::vector<ZULMRSSurfaceGraph::Face>& m_Faces;
    ZULMRSNumbering<ZULMRSBSPPlane> m_Numbers;
    ZULMRSDisjointSets m_Classes;
    std::vector<std::uint32_t> m_NumberOfFace;
};

class FaceJoiner
{
public:
    explicit FaceJoiner(ZULMRSSurfaceGraph& graph) : m_Graph(graph), m_Joined(graph.m_Faces.size()) {}

    void Run()
    {
        FindRegions();
        bool isChanged = true;
        for (int pass = 0; pass < MaxPasses && isChanged; ++pass) {
            isChanged = false;
            std::size_t nbLeft = 0;
            for (const std::uint32_t candidate : m_Candidates) {
                if (IsGone(candidate)) {
                    continue;
                }
                isChanged = Join(candidate) || isChanged;
                m_Candidates[nbLeft++] = candidate;
            }
            m_Candidates.resize(nbLeft);
        }
    }

private:
    static constexpr std::uint32_t None = ZULMRSSurfaceGraph::None;

    // The straight chain of edges that two faces share, as seen from either.
    struct Chain {
        std::uint32_t m_First;      // along one face
        std::uint32_t m_Last;       // along the same face
        std::uint32_t m_TwinFirst;  // twin of m_First, the last along the other face
        std::uint32_t m_TwinLast;
    };

    ZULMRSSurfaceGraph::HalfEdge& At(std::uint32_t halfEdge) { return m_Graph.m_HalfEdges[halfEdge]; }
    bool IsGone(std::uint32_t halfEdge) { return At(halfEdge).m_Next == None; }
    const ZULMRSBSPPoint& PointAt(std::uint32_t number) { return *m_Graph.m_Points[number]; }

    void FindRegions()
    {
        OutwardPlanes planes(m_Graph);
        ZULMRSDisjointSets regions(m_Graph.m_Faces.size());
        for (std::uint32_t i = 0; i < m_Graph.m_HalfEdges.size(); ++i) {
            const std::uint32_t twin = At(i).m_Twin;
            if (twin == None || twin < i || !planes.IsSame(At(i).m_Face, At(twin).m_Face)) {
                continue;
            }
            regions.Unite(At(i).m_Face, At(twin).m_Face);
            m_Candidates.push_back(i);
        }
        for (std::uint32_t face = 0; face < m_Graph.m_Faces.size(); ++face) {
            m_Graph.m_Faces[face].m_Region = regions.Find(face);
        }
    }

    // Joins the two faces of an edge over the whole chain that they share; false when the union is not convex
    // or the edge lies inside the chain, whose ends try as well.
    bool Join(std::uint32_t halfEdge)
    {
        if (m_Joined.Find(At(halfEdge).m_Face) == m_Joined.Find(At(At(halfEdge).m_Twin).m_Face)) {
            return false;
        }
        if (!IsChainStart(halfEdge)) {
            halfEdge = At(halfEdge).m_Twin;
            if (!IsChainStart(halfEdge)) {
                return false;
            }
        }
        const Chain chain = Follow(halfEdge);
        const bool isConvex = IsConvex(At(chain.m_First).m_Previous, At(chain.m_TwinFirst).m_Next, chain) &&
                              IsConvex(At(chain.m_TwinLast).m_Previous, At(chain.m_Last).m_Next, chain);
        if (isConvex) {
            Splice(chain);
        }
        return isConvex;
    }

    bool IsChainStart(std::uint32_t halfEdge)
    {
        return At(At(halfEdge).m_Previous).m_Twin != At(At(halfEdge).m_Twin).m_Next;
    }

    Chain Follow(std::uint32_t first)
    {
        Chain chain{first, first, At(first).m_Twin, At(first).m_Twin};
        while (At(At(chain.m_Last).m_Next).m_Twin == At(chain.m_TwinLast).m_Previous) {
            chain.m_Last = At(chain.m_Last).m_Next;
            chain.m_TwinLast = At(chain.m_TwinLast).m_Previous;
        }
        return chain;
    }

    // Whether the corner between a half-edge of one face and the next one of the other is not reflex. Both
    // faces could be straight there only with a slit between them, which must stay.
    bool IsConvex(std::uint32_t incoming, std::uint32_t outgoing, const Chain& chain)
    {
        const ZULMRSBSPPlane& plane = *At(incoming).m_Plane;
        const int side =
            &plane == At(outgoing).m_Plane ? 0 : SideOf(plane, PointAt(m_Graph.GetEnd(outgoing)));
        if (side != 0) {
            return side == GetSide(incoming);
        }
        return SideOf(plane, PointAt(At(chain.m_First).m_Origin)) != 0 ||
               SideOf(plane, PointAt(At(chain.m_TwinLast).m_Origin)) != 0;
    }

    // The loop is convex, so any vertex off the plane tells.
    int GetSide(std::uint32_t halfEdge)
    {
        auto& edge = At(halfEdge);
        for (std::uint32_t i = At(edge.m_Next).m_Next; edge.m_Side == 0 && i != halfEdge; i = At(i).m_Next) {
            edge.m_Side = static_cast<signed char>(SideOf(*edge.m_Plane, PointAt(At(i).m_Origin)));
        }
        return edge.m_Side;
    }

    void Splice(const Chain& chain)
    {
        m_Joined.Unite(At(chain.m_First).m_Face, At(chain.m_TwinFirst).m_Face);
        const std::uint32_t after = At(chain.m_Last).m_Next;
        const std::uint32_t twinAfter = At(chain.m_TwinFirst).m_Next;
        const std::uint32_t before = At(chain.m_First).m_Previous;
        const std::uint32_t twinBefore = At(chain.m_TwinLast).m_Previous;
        Discard(chain.m_First, chain.m_Last);
        Discard(chain.m_TwinLast, chain.m_TwinFirst);
        m_Graph.Link(before, twinAfter);
        m_Graph.Link(twinBefore, after);
    }

    void Discard(std::uint32_t first, std::uint32_t last)
    {
        while (first != last) {
            const std::uint32_t next = At(first).m_Next;
            At(first).m_Next = None;
            first = next;
        }
        At(last).m_Next = None;
    }

    ZULMRSSurfaceGraph& m_Graph;
    ZULMRSDisjointSets m_Joined;
    std::vector<std::uint32_t> m_Candidates;
};
}  // namespace

void ZULMRSJoinCoplanarFaces(ZULMRSSurfaceGraph& graph)
{
    FaceJoiner(graph).Run();
}
