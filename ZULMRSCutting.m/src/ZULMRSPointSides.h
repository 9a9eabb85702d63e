#ifndef ZULMRSPointSides_h
#define ZULMRSPointSides_h

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPPredicates.h"

/// The side of one plane on which points lie, each decided once. A scratch table that is emptied in constant
/// time.
class ZULMRSPointSides
{
public:
    ZULMRSPointSides() : m_Slots(256) {}

    /// Turns to a plane, forgetting everything about another one. The points asked about must live until
    /// Clear().
    void Begin(const ZULMRSBSPPlane& plane)
    {
        if (m_Plane == &plane) {
            return;
        }
        m_Plane = &plane;
        m_Size = 0;
        ++m_Generation;
    }

    /// To be called before points or the plane may be freed.
    void Clear()
    {
        m_Plane = nullptr;
        m_Size = 0;
        ++m_Generation;
    }

    /// 1 in front, -1 behind, 0 on the plane.
    int Of(const ZULMRSBSPPoint* point)
    {
        Slot& slot = Locate(point);
        if (slot.m_Generation != m_Generation) {
            Fill(slot, point, ZULMRSBSPPredicates::IsPointInFrontOfPlane(*m_Plane, *point));
        }
        return slot.m_Side;
    }

    /// Records a point that is on the plane by construction.
    void SetOn(const ZULMRSBSPPoint* point)
    {
        Slot& slot = Locate(point);
        if (slot.m_Generation != m_Generation) {
            Fill(slot, point, 0);
        }
    }

private:
    struct Slot {
        const ZULMRSBSPPoint* m_Point = nullptr;
        std::uint64_t m_Generation = 0;
        int m_Side = 0;
    };

    Slot& Locate(const ZULMRSBSPPoint* point)
    {
        if (2 * (m_Size + 1) > m_Slots.size()) {
            Grow();
        }
        const std::size_t mask = m_Slots.size() - 1;
        std::size_t position = Hash(point) & mask;
        while (m_Slots[position].m_Generation == m_Generation && m_Slots[position].m_Point != point) {
            position = (position + 1) & mask;
        }
        return m_Slots[position];
    }

    // Kept apart from Locate(): deciding a side never moves the table.
    void Fill(Slot& slot, const ZULMRSBSPPoint* point, int side)
    {
        slot.m_Point = point;
        slot.m_Generation = m_Generation;
        slot.m_Side = side;
        ++m_Size;
    }

    void Grow()
    {
        std::vector<Slot> old(2 * m_Slots.size());
        old.swap(m_Slots);
        const std::size_t mask = m_Slots.size() - 1;
        for (const Slot& slot : old) {
            if (slot.m_Generation == m_Generation) {
                std::size_t position = Hash(slot.m_Point) & mask;
                while (m_Slots[position].m_Generation == m_Generation) {
                    position = (position + 1) & mask;
                }
                m_Slots[position] = slot;
            }
        }
    }

    static std::size_t Hash(const ZULMRSBSPPoint* point)
    {
        const auto bits = reinterpret_cast<std::uintptr_t>(point);
        return static_cast<std::size_t>((bits >> 4) * 0x9E3779B97F4A7C15ULL >> 40);
    }

    std::vector<Slot> m_Slots;
    std::size_t m_Size = 0;
    std::uint64_t m_Generation = 1;
    const ZULMRSBSPPlane* m_Plane = nullptr;
};

#endif
