#ifndef ZULMRSEdgeGroups_h
#define ZULMRSEdgeGroups_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Directed edges (pairs of vertex numbers) gathered by the undirected edge that they run along. Linear in
/// edges and vertices.
class ZULMRSEdgeGroups
{
public:
    using Edge = std::array<std::uint32_t, 2>;

    /// Every vertex number must be below nbVertices. The edges must outlive the groups.
    ZULMRSEdgeGroups(const std::vector<Edge>& edges, std::size_t nbVertices) : m_Edges(edges)
    {
        m_Order.resize(edges.size());
        for (std::size_t i = 0; i < edges.size(); ++i) {
            m_Order[i] = static_cast<std::uint32_t>(i);
        }
        SortBy([&](std::uint32_t i) { return std::max(edges[i][0], edges[i][1]); }, nbVertices);
        SortBy([&](std::uint32_t i) { return std::min(edges[i][0], edges[i][1]); }, nbVertices);
    }

    /// Calls visit(std::span<const std::uint32_t>) with the positions of the edges of each group, ascending.
    template <class Visit>
    void ForEach(Visit visit) const
    {
        for (std::size_t first = 0, last = 0; first < m_Order.size(); first = last) {
            while (last < m_Order.size() && IsSameEdge(m_Order[first], m_Order[last])) {
                ++last;
            }
            visit(std::span<const std::uint32_t>(m_Order).subspan(first, last - first));
        }
    }

    /// For each edge the one edge that runs against it; NoPartner where not exactly two edges meet, one in
    /// each direction.
    std::vector<std::uint32_t> FindPartners() const
    {
        std::vector<std::uint32_t> partners(m_Edges.size(), NoPartner);
        ForEach([&](std::span<const std::uint32_t> group) {
            if (group.size() == 2 && m_Edges[group[0]][0] != m_Edges[group[1]][0]) {
                partners[group[0]] = group[1];
                partners[group[1]] = group[0];
            }
        });
        return partners;
    }

    /// How much more often a group runs from its lower to its higher vertex number than back.
    int GetImbalance(std::span<const std::uint32_t> group) const
    {
        int imbalance = 0;
        for (const std::uint32_t edge : group) {
            imbalance += m_Edges[edge][0] < m_Edges[edge][1] ? 1 : 0;
            imbalance -= m_Edges[edge][0] > m_Edges[edge][1] ? 1 : 0;
        }
        return imbalance;
    }

    static constexpr std::uint32_t NoPartner = 0xFFFFFFFFU;

private:
    bool IsSameEdge(std::uint32_t i, std::uint32_t j) const
    {
        return std::minmax(m_Edges[i][0], m_Edges[i][1]) == std::minmax(m_Edges[j][0], m_Edges[j][1]);
    }

    // A stable counting sort.
    template <class Key>
    void SortBy(Key key, std::size_t nbKeys)
    {
        std::vector<std::uint32_t> starts(nbKeys + 1, 0);
        for (const std::uint32_t i : m_Order) {
            ++starts[key(i) + 1];
        }
        for (std::size_t k = 0; k < nbKeys; ++k) {
            starts[k + 1] += starts[k];
        }
        std::vector<std::uint32_t> sorted(m_Order.size());
        for (const std::uint32_t i : m_Order) {
            sorted[starts[key(i)]++] = i;
        }
        m_Order.swap(sorted);
    }

    const std::vector<Edge>& m_Edges;
    std::vector<std::uint32_t> m_Order;
};

#endif
