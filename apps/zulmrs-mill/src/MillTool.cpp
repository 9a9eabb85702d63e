#include "MillTool.h"

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr MillVector kUp{0, 0, 1};

/// A profile read by ring and corner. Level k lies between rings k and k + 1; the last level is the shank.
struct RingStack {
    const MillToolProfile& m_Profile;

    std::size_t GetSides() const { return m_Profile.m_Polygon.size(); }
    std::size_t GetLevels() const { return m_Profile.m_Rings.size(); }
    bool HasBottom() const { return m_Profile.m_Rings.front().m_Factor > 0; }

    MillVector Corner(std::size_t ring, std::size_t j) const
    {
        const MillVector& base = m_Profile.m_Polygon[j % GetSides()];
        const MillToolProfile::Ring& at = m_Profile.m_Rings[ring];
        return {base.m_X * at.m_Factor, base.m_Y * at.m_Factor, at.m_Z};
    }
    MillVector Along(std::size_t j) const
    {
        return MillPrimitive(m_Profile.m_Polygon[(j + 1) % GetSides()] - m_Profile.m_Polygon[j]);
    }
    MillVector Up(std::size_t level, std::size_t j) const
    {
        return level + 1 == GetLevels() ? kUp : MillPrimitive(Corner(level + 1, j) - Corner(level, j));
    }
    /// Facets are kept bottom first, then level by level.
    std::size_t FacetIndex(std::size_t level, std::size_t j) const
    {
        return (HasBottom() ? 1 : 0) + level * GetSides() + j % GetSides();
    }
};

}  // namespace

MillTool::MillTool(const MillToolProfile& profile)
{
    AddVertices(profile);
    AddFacets(profile);
    AddEdges(profile);
}

void MillTool::AddVertices(const MillToolProfile& profile)
{
    const RingStack stack{profile};
    for (std::size_t ring = 0; ring < stack.GetLevels(); ++ring) {
        const bool isTip = profile.m_Rings[ring].m_Factor == 0;
        for (std::size_t j = 0; j < (isTip ? 1 : stack.GetSides()); ++j) {
            m_Vertices.push_back(stack.Corner(ring, j));
        }
    }
    for (const MillVector& v : m_Vertices) {
        m_Reach = std::max({m_Reach, std::abs(v.m_X), std::abs(v.m_Y)});
    }
}

void MillTool::AddFacets(const MillToolProfile& profile)
{
    const RingStack stack{profile};
    if (stack.HasBottom()) {
        m_Facets.push_back({{0, 0, -1}, 0});
    }
    for (std::size_t level = 0; level < stack.GetLevels(); ++level) {
        for (std::size_t j = 0; j < stack.GetSides(); ++j) {
            const MillNormal normal = MillPrimitive(MillCross(stack.Along(j), stack.Up(level, j)));
            m_Facets.push_back({normal, MillDot(normal, stack.Corner(level, j))});
        }
    }
}

void MillTool::AddEdges(const MillToolProfile& profile)
{
    const RingStack stack{profile};
    const std::size_t sides = stack.GetSides();
    for (std::size_t level = 0; level < stack.GetLevels(); ++level) {
        for (std::size_t j = 0; j < sides; ++j) {
            const MillVector corner = stack.Corner(level, j);
            const std::size_t here = stack.FacetIndex(level, j);
            const std::size_t before = stack.FacetIndex(level, j + sides - 1);
            m_Edges.push_back({stack.Up(level, j), corner, before, here});
            if (level > 0 || stack.HasBottom()) {
                const std::size_t below = level > 0 ? stack.FacetIndex(level - 1, j) : 0;
                m_Edges.push_back({stack.Along(j), corner, here, below});
            }
        }
    }
}
