#include "ZULMRSVertexTable.h"

#include <cmath>
#include <limits>

#include "ZULMRSBSPPredicates.h"

int ZULMRSVertexTable::Equation::SideOf(const ZULMRSPlace& place) const
{
    const auto& [a, b, c, d] = m_Values;
    const auto& [x, y, z] = place.m_At;
    const double height = a * x + b * y + (c * z + d);
    // Six roundings of terms bounded by the magnitude, each by an epsilon in the worst mode, and room for the
    // bound's own roundings; the smallest normal number covers underflow. A bound that is not a number
    // decides nothing.
    const double magnitude = std::fabs(a * x) + std::fabs(b * y) + (std::fabs(c * z) + std::fabs(d));
    const double bound = 1.001 * m_Steepness * place.m_Error +
                         8.0 * std::numeric_limits<double>::epsilon() * magnitude +
                         16.0 * std::numeric_limits<double>::min();
    return static_cast<int>(height > bound) - static_cast<int>(height < -bound);
}

void ZULMRSVertexTable::Turn(const ZULMRSBSPPlane& plane)
{
    if (m_Plane == &plane) {
        return;
    }
    m_Plane = &plane;
    ++m_Turns;
    m_Equation.m_Values = plane.GetCoords();
    const auto& values = m_Equation.m_Values;
    m_Equation.m_Steepness = std::fabs(values[0]) + std::fabs(values[1]) + std::fabs(values[2]);
}

int ZULMRSVertexTable::Decide(Entry& entry)
{
    const ZULMRSBSPPoint& point = *entry.m_Point;
    const bool isOn = point.GetP1() == m_Plane || point.GetP2() == m_Plane || point.GetP3() == m_Plane;
    Keep(entry, isOn ? 0 : ZULMRSBSPPredicates::IsPointInFrontOfPlane(*m_Plane, point));
    return entry.m_Side;
}

ZULMRSVertexTable::Index ZULMRSVertexTable::Add(ZULMRSBSPPoint* point)
{
    const auto index = static_cast<Index>(m_Entries.size());
    if (2 * (m_Entries.size() + 1) > m_Slots.size()) {
        Grow();
    }
    m_Slots[Find(point)] = {point, m_Generation, index};
    m_Entries.emplace_back().m_Point = point;
    return index;
}

void ZULMRSVertexTable::Grow()
{
    std::vector<Slot> old(2 * m_Slots.size());
    old.swap(m_Slots);
    m_Mask = m_Slots.size() - 1;
    for (const Slot& slot : old) {
        if (slot.m_Generation == m_Generation) {
            m_Slots[Find(slot.m_Point)] = slot;
        }
    }
}
