// The containers by themselves, with the library's keys, hashes and objects: what sharing costs at least.
#include <bit>
#include <functional>
#include <mutex>
#include <tuple>
#include <unordered_set>

#include <tbb/concurrent_unordered_map.h>
#include <tbb/tbb_allocator.h>

#include "Workloads.h"
#include "ZULBenchMain.h"
#include "ZULMRSBSPPointOnEdgeFactory.h"

namespace
{
/// FNV-1a over eight bytes.
std::uint64_t HashOfWord(std::uint64_t word)
{
    std::uint64_t hash = 14695981039346656037U;
    for (unsigned int shift = 0; shift < 64U; shift += 8U) {
        hash = (hash ^ ((word >> shift) & 0xFFU)) * 1099511628211U;
    }
    return hash;
}

/// The exclusive or of the members' hashes.
struct TripleHash {
    std::size_t operator()(const ZULBench::PlaneTriple& planes) const
    {
        std::size_t hash = 0;
        for (const ZULMRSBSPPlane* plane : planes) {
            hash ^= HashOfWord(reinterpret_cast<std::uintptr_t>(plane));
        }
        return hash;
    }
};
struct EquationHash {
    using is_transparent = void;
    std::size_t operator()(const ZULBench::Equation& equation) const
    {
        std::size_t hash = 0;
        for (const double coefficient : equation) {
            hash ^= HashOfWord(std::bit_cast<std::uint64_t>(coefficient == 0.0 ? 0.0 : coefficient));
        }
        return hash;
    }
    std::size_t operator()(const ZULMRSBSPPlane* plane) const { return (*this)(plane->GetCoords()); }
};
struct EquationEqual {
    using is_transparent = void;
    static const ZULBench::Equation& Of(const ZULBench::Equation& equation) { return equation; }
    static ZULBench::Equation Of(const ZULMRSBSPPlane* plane) { return plane->GetCoords(); }
    bool operator()(const auto& p, const auto& q) const { return Of(p) == Of(q); }
};

/// A table of points; a thread that comes while a point is being made waits for it.
template <class Map>
struct PointTable {
    ~PointTable()
    {
        for (const auto& entry : m_Map) {
            entry.second->Release();
        }
    }
    ZULMRSBSPPoint* FindOrMake(const typename Map::key_type& key, const ZULBench::PlaneTriple& planes)
    {
        const auto [entry, isNew] = m_Map.insert({key, nullptr});
        const std::atomic_ref<ZULMRSBSPPoint*> value(entry->second);
        ZULMRSBSPPoint* point = nullptr;
        if (isNew) {
            bool isValid = false;
            point = ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], isValid, true);
            value.store(point, std::memory_order_release);
        } else {
            do {
                point = value.load(std::memory_order_acquire);
            } while (point == nullptr);
        }
        point->AddRef();
        return point;
    }

    Map m_Map;
};

using PointMap = tbb::concurrent_unordered_map<
    ZULBench::PlaneTriple, ZULMRSBSPPoint*, TripleHash, std::equal_to<>,
    tbb::tbb_allocator<std::pair<const ZULBench::PlaneTriple, ZULMRSBSPPoint*>>>;

struct Peer {
    struct Points : PointTable<PointMap> {
        ZULMRSBSPPoint* Request(const ZULBench::PlaneTriple& planes) { return FindOrMake(planes, planes); }
    };
    struct Edges : PointTable<ZULMRSBSPPointOnEdgeFactory::Table> {
        ZULMRSBSPPoint* Request(const ZULBench::EdgeRequest& edge)
        {
            const auto [low, high] = std::minmax(edge.m_Start, edge.m_End, std::less<>());
            return FindOrMake({low, high, edge.m_Planes[2]}, edge.m_Planes);
        }
    };
    struct Planes {
        ~Planes() { std::for_each(m_Set.begin(), m_Set.end(), ZULBench::Releaser()); }
        ZULMRSBSPPlane* Request(const ZULBench::Equation& equation)
        {
            const std::lock_guard guard(m_Lock);
            const auto found = m_Set.find(equation);
            ZULMRSBSPPlane* const plane =
                found != m_Set.end() ? *found
                                     : *m_Set.insert(ZULMRSBSPPlaneNS::CreateCartesianPlane(equation)).first;
            plane->AddRef();
            return plane;
        }

        std::mutex m_Lock;
        std::unordered_set<ZULMRSBSPPlane*, EquationHash, EquationEqual> m_Set;
    };
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterTables<Peer>();
}
