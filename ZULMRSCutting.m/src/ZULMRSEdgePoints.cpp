#include "ZULMRSEdgePoints.h"

#include <algorithm>
#include <unordered_map>

namespace
{
/// What is known of a point while deciding which entries can go.
struct PointUse {
    static constexpr std::size_t NoEntry = static_cast<std::size_t>(-1);

    std::size_t m_References = 0;   // held by entries, as point or as end
    std::size_t m_Entry = NoEntry;  // the entry that made it
};
}  // namespace

ZULMRSEdgePoints::~ZULMRSEdgePoints()
{
    for (const Entry& entry : m_Entries) {
        entry.m_Point->Release();
    }
    // The factory still holds its entries; clearing it before the end points go keeps the rule to the last.
    m_Factory.Tass();
    for (const Entry& entry : m_Entries) {
        entry.m_Start->Release();
        entry.m_End->Release();
    }
    m_Factory.Tass();
}

ZULMRSBSPPoint* ZULMRSEdgePoints::Create(ZULMRSBSPPlane* supporting, ZULMRSBSPPlane* edge,
                                         ZULMRSBSPPlane* cut, ZULMRSBSPPoint* start, ZULMRSBSPPoint* end)
{
    ZULMRSBSPPoint* point = m_Factory.CreatePointOnEdge({supporting, edge, cut}, start, end, cut);
    if (point == nullptr) {
        return nullptr;
    }
    // Owners of a new point: the factory and this call. Any more and its entry is already kept here.
    if (point->GetRefCount() > 1) {
        point->Release();
        return point;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the entry kept here owns it too
    }
    start->AddRef();
    end->AddRef();
    m_Entries.push_back({point, start, end});
    return point;
}

void ZULMRSEdgePoints::Compact()
{
    std::unordered_map<ZULMRSBSPPoint*, PointUse> uses;
    uses.reserve(2 * m_Entries.size());
    for (std::size_t index = 0; index < m_Entries.size(); ++index) {
        PointUse& use = uses[m_Entries[index].m_Point];
        use.m_Entry = index;
        ++use.m_References;
        ++uses[m_Entries[index].m_Start].m_References;
        ++uses[m_Entries[index].m_End].m_References;
    }

    // An entry can go when its point is held by the factory and its own entry alone: then nobody can ask for
    // its edge with a live polygon, and its ends may become free in turn.
    const auto isFree = [&](const Entry& entry) {
        return uses[entry.m_Point].m_References == 1 && entry.m_Point->GetRefCount() == 1;
    };
    std::vector<std::size_t> work;
    for (std::size_t index = 0; index < m_Entries.size(); ++index) {
        if (isFree(m_Entries[index])) {
            work.push_back(index);
        }
    }
    std::vector<bool> isGone(m_Entries.size(), false);
    while (!work.empty()) {
        const std::size_t index = work.back();
        work.pop_back();
        if (isGone[index]) {
            continue;
        }
        isGone[index] = true;
        const Entry entry = m_Entries[index];
        for (ZULMRSBSPPoint* end : {entry.m_Start, entry.m_End}) {
            PointUse& use = uses[end];
            --use.m_References;
            end->Release();
            if (use.m_Entry != PointUse::NoEntry && isFree(m_Entries[use.m_Entry])) {
                work.push_back(use.m_Entry);
            }
        }
    }

    std::vector<Entry> kept;
    for (std::size_t index = 0; index < m_Entries.size(); ++index) {
        if (isGone[index]) {
            m_Entries[index].m_Point->Release();
        } else {
            kept.push_back(m_Entries[index]);
        }
    }
    m_Entries.swap(kept);
    // Nothing is created between the releases above and the clearing here, so no recycled address can meet an
    // old entry.
    m_Factory.Tass();
    m_CompactAt = std::max(FirstCompactAt, 2 * m_Entries.size());
}
