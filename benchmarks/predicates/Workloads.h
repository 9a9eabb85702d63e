#ifndef ZULBenchPredicatesWorkloads_h
#define ZULBenchPredicatesWorkloads_h

#include <utility>
#include <vector>

#include "ZULBenchData.h"
#include "ZULBenchHarness.h"

/// The workloads of the predicates. A peer is a struct of types and static functions, derived from PeerBase.
/// It takes part in the workloads for which it has the types:
///   Plane    MakePlane(Equation), Parallel(Plane, Plane), Coincident(Plane, Plane)
///   Point    of three planes: MakePoint(Plane, Plane, Plane), Side(Plane, Point), IsAfter(Point, Point),
///            Equal(Point, Point); MakePlane(ThreePoints)
///   Vertex   of coordinates: MakeVertex(Triple), SideOfVertex(Plane, Vertex)
///   Matrix   MakeMatrix(MatrixCase), Determinant(Matrix)
/// Signs are -1, 0, 1, truths 0 and 1, and ZULBench::Undecided where the peer cannot tell.
namespace ZULBench
{
struct PeerBase {
    /// Alive while items are prepared and answers given.
    struct Scope {
        Scope() {}  // not trivial, so that an unused one draws no warning
    };
    static bool Handles(const Kind&) { return true; }
    /// Whether the first answer of a point may cost another price than the next ones.
    static constexpr bool KeepsMore = false;
};

/// The items of the cases of a kind.
template <class Cases, class MakeItem>
auto MakeItems(const Cases& cases, MakeItem makeItem)
{
    std::vector<decltype(makeItem(cases.front()))> items;
    items.reserve(cases.size());
    for (const auto& one : cases) {
        items.push_back(makeItem(one));
    }
    return items;
}

template <class Peer>
struct Workloads {
    using Scope = typename Peer::Scope;

    template <class Definition>
    static auto MakePoint(const std::array<Definition, 3>& definition)
    {
        return Peer::MakePoint(Peer::MakePlane(definition[0]), Peer::MakePlane(definition[1]),
                               Peer::MakePlane(definition[2]));
    }
    /// Pairs of a plane to test and a kept point.
    template <class Cases>
    static auto MakeSideItems(const Cases& cases)
    {
        return MakeItems(cases, [](const auto& one) {
            return std::pair(Peer::MakePlane(one.m_Plane), MakePoint(one.m_Point));
        });
    }

    static void RegisterSide(const Kind& kind)
    {
        const auto answer = [](const auto& item) { return Peer::Side(item.first, item.second); };
        const auto prepare = [cases = MakeSideCases(kind)] { return MakeSideItems(cases); };
        RegisterKept<Scope>("side_kept", kind, prepare, answer);
        if constexpr (Peer::KeepsMore) {
            RegisterFresh<Scope>("side_first", kind, prepare, answer);
        }
        const auto preparePoints = [cases = MakePointsSideCases(kind)] { return MakeSideItems(cases); };
        RegisterKept<Scope>("side_kept_3points", kind, preparePoints, answer);
    }

    static void RegisterBuilt(const Kind& kind)
    {
        const auto prepare = [cases = MakeSideCases(kind)] {
            return MakeItems(cases, [](const SideCase& one) {
                return std::array<typename Peer::Plane, 4>{
                    Peer::MakePlane(one.m_Plane), Peer::MakePlane(one.m_Point[0]),
                    Peer::MakePlane(one.m_Point[1]), Peer::MakePlane(one.m_Point[2])};
            });
        };
        RegisterKept<Scope>("side_built", kind, prepare, [](const auto& planes) {
            return Peer::Side(planes[0], Peer::MakePoint(planes[1], planes[2], planes[3]));
        });
    }

    static void RegisterVertex(const Kind& kind)
    {
        const auto prepare = [cases = MakeVertexCases(kind)] {
            return MakeItems(cases, [](const VertexCase& one) {
                return std::pair(Peer::MakePlane(one.m_Plane), Peer::MakeVertex(one.m_Vertex));
            });
        };
        RegisterKept<Scope>("side_vertex", kind, prepare,
                            [](const auto& item) { return Peer::SideOfVertex(item.first, item.second); });
    }

    static void RegisterDeterminant(const Kind& kind)
    {
        const auto prepare = [cases = MakeMatrixCases(kind)] { return MakeItems(cases, Peer::MakeMatrix); };
        RegisterKept<Scope>("determinant", kind, prepare, Peer::Determinant);
    }

    static void RegisterPlanePairs(const Kind& kind)
    {
        const auto makePair = [](const PlanePair& one) {
            return std::pair(Peer::MakePlane(one.m_P), Peer::MakePlane(one.m_Q));
        };
        RegisterKept<Scope>(
            "parallel", kind,
            [makePair, cases = MakeParallelCases(kind)] { return MakeItems(cases, makePair); },
            [](const auto& item) { return Peer::Parallel(item.first, item.second); });
        RegisterKept<Scope>(
            "coincident", kind,
            [makePair, cases = MakeCoincidentCases(kind)] { return MakeItems(cases, makePair); },
            [](const auto& item) { return Peer::Coincident(item.first, item.second); });
    }

    static void RegisterPointPairs(const Kind& kind)
    {
        const auto prepare = [cases = MakePointPairs(kind)] {
            return MakeItems(cases, [](const PointPair& one) {
                return std::pair(MakePoint(one.m_P), MakePoint(one.m_Q));
            });
        };
        const auto isAfter = [](const auto& item) { return Peer::IsAfter(item.first, item.second); };
        const auto equal = [](const auto& item) { return Peer::Equal(item.first, item.second); };
        RegisterKept<Scope>("points_order", kind, prepare, isAfter);
        RegisterKept<Scope>("points_equal", kind, prepare, equal);
        if constexpr (Peer::KeepsMore) {
            RegisterFresh<Scope>("points_order_first", kind, prepare, isAfter);
            RegisterFresh<Scope>("points_equal_first", kind, prepare, equal);
        }
    }

    static void Register(const Kind& kind)
    {
        if constexpr (requires { typename Peer::Point; }) {
            RegisterSide(kind);
            RegisterBuilt(kind);
            RegisterPointPairs(kind);
        }
        if constexpr (requires { typename Peer::Vertex; }) {
            RegisterVertex(kind);
        }
        if constexpr (requires { typename Peer::Matrix; }) {
            RegisterDeterminant(kind);
        }
        if constexpr (requires { typename Peer::Plane; }) {
            RegisterPlanePairs(kind);
        }
    }
};

/// Registers every workload that the peer takes part in, for all kinds that it handles.
template <class Peer>
void RegisterPredicates()
{
    for (const Kind& kind : Kinds) {
        if (Peer::Handles(kind)) {
            Workloads<Peer>::Register(kind);
        }
    }
}
}  // namespace ZULBench

#endif
