#include "MillSweep.h"

#include <algorithm>
#include <array>

namespace
{

int SignOf(MillWide value)
{
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

bool FitsDouble(MillWide value)
{
    constexpr MillWide kLimit = MillWide{1} << 53;
    return -kLimit <= value && value <= kLimit;
}

class Sweeper
{
public:
    Sweeper(const MillTool& tool, const MillVector& start, const MillVector& end)
        : m_Tool(tool), m_Start(start), m_End(end), m_Direction(MillPrimitive(end - start))
    {
    }

    ZULMRSConvexTool Sweep()
    {
        for (const MillTool::Facet& facet : m_Tool.GetFacets()) {
            AddFacet(facet);
        }
        for (const MillTool::Edge& edge : m_Tool.GetEdges()) {
            AddSilhouette(edge);
        }
        return std::move(m_Solid);
    }

private:
    int Side(std::size_t facet) const
    {
        return SignOf(MillDot(m_Tool.GetFacets()[facet].m_Normal, m_Direction));
    }

    void AddFacet(const MillTool::Facet& facet)
    {
        const MillVector& farther = SignOf(MillDot(facet.m_Normal, m_Direction)) > 0 ? m_End : m_Start;
        Add(facet.m_Normal, facet.m_Height + MillDot(facet.m_Normal, farther));
    }

    /// Going round the edge from the left to the right facet, the normal passes the one that is square to the
    /// way where the facets look to different ends of it.
    void AddSilhouette(const MillTool::Edge& edge)
    {
        const int left = Side(edge.m_Left);
        if (left * Side(edge.m_Right) >= 0) {
            return;
        }
        MillNormal normal = MillPrimitive(MillCross(edge.m_Direction, m_Direction));
        if (left < 0) {
            normal = {-normal.m_X, -normal.m_Y, -normal.m_Z};
        }
        Add(normal, MillDot(normal, edge.m_Point) + MillDot(normal, m_Start));
    }

    void Add(const MillNormal& normal, MillWide height)
    {
        const std::array<double, 3> n{static_cast<double>(normal.m_X), static_cast<double>(normal.m_Y),
                                      static_cast<double>(normal.m_Z)};
        if (!FitsDouble(normal.m_X) || !FitsDouble(normal.m_Y) || !FitsDouble(normal.m_Z)) {
            height = GetSupport(
                {static_cast<MillWide>(n[0]), static_cast<MillWide>(n[1]), static_cast<MillWide>(n[2])});
        }
        // Not the negated double of the height: that could be a negative zero.
        m_Solid.m_HalfSpaces.push_back({n[0], n[1], n[2], static_cast<double>(-height)});
    }

    MillWide GetSupport(const MillNormal& normal) const
    {
        MillWide support = MillDot(normal, m_Tool.GetVertices().front());
        for (const MillVector& v : m_Tool.GetVertices()) {
            support = std::max(support, MillDot(normal, v));
        }
        return support + std::max(MillDot(normal, m_Start), MillDot(normal, m_End));
    }

    const MillTool& m_Tool;
    const MillVector m_Start;
    const MillVector m_End;
    const MillVector m_Direction;
    ZULMRSConvexTool m_Solid;
};

}  // namespace

ZULMRSConvexTool MillSweep(const MillTool& tool, const MillVector& start, const MillVector& end)
{
    return Sweeper(tool, start, end).Sweep();
}
