#include "ZULMRSSeparation.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr double Infinity = std::numeric_limits<double>::infinity();
}  // namespace

bool ZULMRSSeparation::Misses(const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
                              const std::vector<const ZULMRSToolBound*>& bounds)
{
    Measure(outline, table, bounds);
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const Height* first = m_Heights.data() + i * m_NbVertices;
            const Height* second = m_Heights.data() + j * m_NbVertices;
            const double factor = FindFactor(first, second);
            if (factor > 0.0 && factor < Infinity && IsProof(first, second, factor) &&
                (m_Doubtful.empty() || (IsNowhereBehind(*bounds[i], outline, table) &&
                                        IsNowhereBehind(*bounds[j], outline, table)))) {
                return true;
            }
        }
    }
    return false;
}

void ZULMRSSeparation::Measure(const ZULMRSCellOutline& outline, ZULMRSVertexTable& table,
                               const std::vector<const ZULMRSToolBound*>& bounds)
{
    m_NbVertices = outline.GetNbVertices();
    m_Heights.clear();
    for (const ZULMRSToolBound* bound : bounds) {
        const ZULMRSHeightFunction heightAt(bound->m_Outward);
        for (const Index vertex : outline.GetVertices()) {
            const auto [height, error] = heightAt(table.PlaceOf(vertex));
            m_Heights.push_back({height - error, height});
        }
    }
}

/// A factor of the second plane with which the sum of both has no vertex behind it, where heights were what
/// they seem to be; 0 when there is none.
double ZULMRSSeparation::FindFactor(const Height* first, const Height* second) const
{
    double least = 0.0;
    double most = Infinity;
    for (std::size_t vertex = 0; vertex < m_NbVertices; ++vertex) {
        const double quotient = -first[vertex].m_Value / second[vertex].m_Value;
        if (second[vertex].m_Value > 0.0) {
            least = std::max(least, quotient);
        } else if (second[vertex].m_Value < 0.0) {
            most = std::min(most, quotient);
        }
    }
    // With room for what is zero but for rounding; the proof is exact.
    if (!(least <= most * (1.0 + 1e-9)) || most <= 0.0) {
        return 0.0;
    }
    return std::isfinite(most) ? 0.5 * (least + most) : 2.0 * least + 1.0;
}

bool ZULMRSSeparation::IsSumPositive(double first, double second, double factor)
{
    return first + factor * second > 0.0;
}

/// Whether the sum is certainly positive at every vertex, except at doubtful ones. Sums of lower bounds are
/// lower bounds.
bool ZULMRSSeparation::IsProof(const Height* first, const Height* second, double factor)
{
    m_Doubtful.clear();
    for (std::size_t vertex = 0; vertex < m_NbVertices; ++vertex) {
        if (!IsSumPositive(first[vertex].m_Least, second[vertex].m_Least, factor)) {
            m_Doubtful.push_back(vertex);
        }
    }
    return m_Doubtful.size() < m_NbVertices;
}

/// Whether a plane has none of the doubtful vertices behind it.
bool ZULMRSSeparation::IsNowhereBehind(const ZULMRSToolBound& bound, const ZULMRSCellOutline& outline,
                                       ZULMRSVertexTable& table) const
{
    table.Turn(*bound.m_Plane);
    return std::all_of(m_Doubtful.begin(), m_Doubtful.end(), [&](std::size_t vertex) {
        return table.SideOf(outline.GetVertices()[vertex]) * bound.m_Sign >= 0;
    });
}
