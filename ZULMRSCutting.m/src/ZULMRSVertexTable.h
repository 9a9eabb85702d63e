#ifndef ZULMRSVertexTable_h
#define ZULMRSVertexTable_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSBSPPoint.h"
#include "ZULMRSPlace.h"

/// What one thread knows about the vertices that it meets: where each lies, and on which side of the plane at
/// hand, decided once. Holds its points until Clear(): none of them dies and leaves its address to another.
class ZULMRSVertexTable
{
public:
    using Index = std::uint32_t;

    ZULMRSVertexTable() : m_Slots(LeastSlots) {}
    ~ZULMRSVertexTable() { Clear(); }
    ZULMRSVertexTable(const ZULMRSVertexTable&) = delete;
    ZULMRSVertexTable& operator=(const ZULMRSVertexTable&) = delete;

    void Clear()
    {
        for (const Entry& entry : m_Entries) {
            entry.m_Point->Release();
        }
        m_Entries.clear();
        ++m_Generation;
        m_Plane = nullptr;
    }

    /// The number of a point, a new one when it has none yet.
    Index IndexOf(ZULMRSBSPPoint* point)
    {
        const Slot& slot = m_Slots[Find(point)];
        return slot.m_Generation == m_Generation ? slot.m_Index : Add(point);
    }
    ZULMRSBSPPoint* PointOf(Index index) const { return m_Entries[index].m_Point; }
    const ZULMRSPlace& PlaceOf(Index index)
    {
        Entry& entry = m_Entries[index];
        if (!entry.m_HasPlace) {
            entry.m_Place = ZULMRSPlace::Of(*entry.m_Point);
            entry.m_HasPlace = true;
        }
        return entry.m_Place;
    }

    /// A number that a vertex carries for the cell at hand.
    void SetLocal(Index index, Index local) { m_Entries[index].m_Local = local; }
    Index LocalOf(Index index) const { return m_Entries[index].m_Local; }

    /// Turns to a plane, which must live until another or Clear().
    void Turn(const ZULMRSBSPPlane& plane);
    /// The side of it on which a point lies as far as its place tells: 1 in front, -1 behind, 0 not known.
    int GuessSideOf(Index index)
    {
        Entry& entry = m_Entries[index];
        if (entry.m_SideStamp == m_Turns) {
            return entry.m_Side;
        }
        const int side = m_HeightAt.SideOf(PlaceOf(index));
        if (side != 0) {
            Keep(entry, side);
        }
        return side;
    }
    /// 1 in front, -1 behind, 0 on the plane.
    int SideOf(Index index)
    {
        const int side = GuessSideOf(index);
        return side != 0 || m_Entries[index].m_SideStamp == m_Turns ? side : Decide(m_Entries[index]);
    }
    /// Records a point that is on the plane by construction.
    void SetOn(Index index) { Keep(m_Entries[index], 0); }

private:
    static constexpr std::size_t LeastSlots = 1024;

    struct Slot {
        const ZULMRSBSPPoint* m_Point = nullptr;
        std::uint32_t m_Generation = 0;
        Index m_Index = 0;
    };
    struct Entry {
        ZULMRSBSPPoint* m_Point = nullptr;
        ZULMRSPlace m_Place;
        std::uint64_t m_SideStamp = 0;
        Index m_Local = 0;
        signed char m_Side = 0;
        bool m_HasPlace = false;
    };
    void Keep(Entry& entry, int side)
    {
        entry.m_Side = static_cast<signed char>(side);
        entry.m_SideStamp = m_Turns;
    }
    int Decide(Entry& entry);
    Index Add(ZULMRSBSPPoint* point);
    std::size_t Find(const ZULMRSBSPPoint* point) const
    {
        const Slot* const slots = m_Slots.data();
        std::size_t position = (reinterpret_cast<std::uintptr_t>(point) >> 4) * 0x9E3779B97F4A7C15ULL >> 40;
        while (true) {
            position &= m_Mask;
            if (slots[position].m_Point == point || slots[position].m_Generation != m_Generation) {
                return position;
            }
            ++position;
        }
    }
    void Grow();

    std::vector<Slot> m_Slots;
    std::size_t m_Mask = LeastSlots - 1;
    std::vector<Entry> m_Entries;
    std::uint32_t m_Generation = 1;
    const ZULMRSBSPPlane* m_Plane = nullptr;
    ZULMRSHeightFunction m_HeightAt{{}};
    std::uint64_t m_Turns = 0;
};

#endif
