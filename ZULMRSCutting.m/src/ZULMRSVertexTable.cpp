#include "ZULMRSVertexTable.h"

#include "ZULMRSBSPPredicates.h"

void ZULMRSVertexTable::Turn(const ZULMRSBSPPlane& plane)
{
    if (m_Plane == &plane) {
        return;
    }
    m_Plane = &plane;
    ++m_Turns;
    m_HeightAt = ZULMRSHeightFunction(plane.GetCoords());
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
    point->AddRef();
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
