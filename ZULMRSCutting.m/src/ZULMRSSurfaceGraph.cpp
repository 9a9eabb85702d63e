#include "ZULMRSSurfaceGraph.h"

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSNumbering.h"
#include "ZULMRSPolygonLoop.h"

namespace
{
struct HeldPolygon {
    const ZULMRSBSPPolygon* m_Polygon;
    signed char m_Orientation;
    std::uint32_t m_NbHolders;
};

std::vector<HeldPolygon> CollectPolygons(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    std::size_t nbFaces = 0;
    for (const ZULMRSBSPPolyhedron* cell : cells) {
        nbFaces += cell != nullptr ? cell->GetNbPolygons() : 0;
    }
    ZULMRSNumbering<ZULMRSBSPPolygon> numbers(nbFaces);
    std::vector<HeldPolygon> held;
    held.reserve(nbFaces);
    for (const ZULMRSBSPPolyhedron* cell : cells) {
        if (cell == nullptr) {
            continue;
        }
        ZULMRSForEachFace(*cell, [&](const ZULMRSBSPPolygon& polygon, signed char orientation) {
            const std::uint32_t number = numbers.GetNumber(&polygon);
            if (number == held.size()) {
                held.push_back({&polygon, orientation, 0});
            }
            ++held[number].m_NbHolders;
        });
    }
    return held;
}

// Edge i of a polygon runs from vertex i-1 to vertex i. Seen from outside, the loop of a face whose plane
// faces inwards runs backwards.
void AddFace(const ZULMRSBSPPolygon& polygon, signed char orientation,
             ZULMRSNumbering<ZULMRSBSPPoint>& numbers, ZULMRSSurfaceGraph& graph)
{
    const auto& points = polygon.GetPoints();
    const auto& edges = polygon.GetAllEdges();
    const auto count = static_cast<std::uint32_t>(points.size());
    const auto start = static_cast<std::uint32_t>(graph.m_HalfEdges.size());
    const auto face = static_cast<std::uint32_t>(graph.m_Faces.size());
    const bool isForward = orientation > 0;
    graph.m_Faces.push_back({polygon.GetSupportingPlane(), orientation, face});
    for (std::uint32_t k = 0; k < count; ++k) {
        const std::uint32_t vertex = isForward ? k : count - 1 - k;
        const std::uint32_t edge = isForward ? (vertex + 1) % count : vertex;
        graph.m_HalfEdges.push_back({numbers.GetNumber(points[vertex]), start + (k + 1) % count,
                                     start + (k + count - 1) % count, ZULMRSSurfaceGraph::None, face,
                                     edges[edge]});
    }
}

void FindTwins(ZULMRSSurfaceGraph& graph)
{
    std::vector<ZULMRSEdgeGroups::Edge> edges;
    edges.reserve(graph.m_HalfEdges.size());
    for (std::uint32_t i = 0; i < graph.m_HalfEdges.size(); ++i) {
        edges.push_back({graph.m_HalfEdges[i].m_Origin, graph.GetEnd(i)});
    }
    const std::vector<std::uint32_t> partners = ZULMRSEdgeGroups(edges, graph.m_Points.size()).FindPartners();
    for (std::size_t i = 0; i < partners.size(); ++i) {
        graph.m_HalfEdges[i].m_Twin = partners[i];
    }
}

// What the loops through a vertex agree on.
struct Passage {
    std::uint32_t m_Incoming = ZULMRSSurfaceGraph::None;  // of the first loop met
    std::uint32_t m_A = ZULMRSSurfaceGraph::None;
    std::uint32_t m_B = ZULMRSSurfaceGraph::None;
    bool m_IsAgreed = true;
};

std::vector<Passage> FindPassages(const ZULMRSSurfaceGraph& graph)
{
    std::vector<Passage> passages(graph.m_Points.size());
    for (std::uint32_t i = 0; i < graph.m_HalfEdges.size(); ++i) {
        const auto& halfEdge = graph.m_HalfEdges[i];
        if (halfEdge.m_Next == ZULMRSSurfaceGraph::None) {
            continue;
        }
        Passage& passage = passages[halfEdge.m_Origin];
        const std::uint32_t before = graph.m_HalfEdges[halfEdge.m_Previous].m_Origin;
        const std::uint32_t after = graph.GetEnd(i);
        if (passage.m_Incoming == ZULMRSSurfaceGraph::None) {
            passage = {halfEdge.m_Previous, before, after, true};
        } else if (!(before == passage.m_A && after == passage.m_B) &&
                   !(before == passage.m_B && after == passage.m_A)) {
            passage.m_IsAgreed = false;
        }
    }
    return passages;
}
}  // namespace

std::vector<ZULMRSSurfacePolygon> ZULMRSFindSurface(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    std::vector<ZULMRSSurfacePolygon> surface;
    for (const HeldPolygon& held : CollectPolygons(cells)) {
        if (held.m_NbHolders == 1) {
            surface.push_back({held.m_Polygon, held.m_Orientation});
        }
    }
    return surface;
}

ZULMRSSurfaceGraph ZULMRSBuildSurfaceGraph(const std::vector<ZULMRSSurfacePolygon>& polygons)
{
    std::size_t nbHalfEdges = 0;
    for (const ZULMRSSurfacePolygon& surface : polygons) {
        nbHalfEdges += surface.m_Polygon->GetNbEdges();
    }
    ZULMRSSurfaceGraph graph;
    graph.m_HalfEdges.reserve(nbHalfEdges);
    ZULMRSNumbering<ZULMRSBSPPoint> numbers(nbHalfEdges / 3);
    for (const ZULMRSSurfacePolygon& surface : polygons) {
        if (ZULMRSHasCompleteLoop(*surface.m_Polygon)) {
            AddFace(*surface.m_Polygon, surface.m_Orientation, numbers, graph);
        }
    }
    graph.m_Points = numbers.GetObjects();
    FindTwins(graph);
    return graph;
}

bool ZULMRSIsStraight(const ZULMRSSurfaceGraph& graph, std::uint32_t incoming)
{
    const auto& in = graph.m_HalfEdges[incoming];
    const auto& out = graph.m_HalfEdges[in.m_Next];
    return in.m_Plane == out.m_Plane ||
           ZULMRSBSPPredicates::IsPointInFrontOfPlane(
               *in.m_Plane, *graph.m_Points[graph.GetEnd(in.m_Next)]) == ZULMRSExtendedUndetermined;
}

void ZULMRSRemoveStraightVertices(ZULMRSSurfaceGraph& graph)
{
    std::vector<Passage> passages = FindPassages(graph);
    for (Passage& passage : passages) {
        passage.m_IsAgreed = passage.m_IsAgreed && passage.m_Incoming != ZULMRSSurfaceGraph::None &&
                             ZULMRSIsStraight(graph, passage.m_Incoming);
    }
    for (auto& halfEdge : graph.m_HalfEdges) {
        if (halfEdge.m_Next == ZULMRSSurfaceGraph::None || !passages[halfEdge.m_Origin].m_IsAgreed) {
            continue;
        }
        graph.Link(halfEdge.m_Previous, halfEdge.m_Next);
        halfEdge.m_Next = ZULMRSSurfaceGraph::None;
    }
}
