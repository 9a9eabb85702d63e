#ifndef ZULMRSBSPHeldPlanes_h
#define ZULMRSBSPHeldPlanes_h

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "ZULMRSBSPCartesianPlane.h"

/// The planes that a factory holds, found by keys: a key gives a hash and says whether a plane is the same.
/// While one thread at a time adds planes, any number may look for some: entries are published one by one and
/// never changed, and a table that has become too small stays, complete as it was, until planes are removed.
/// Removing needs the table alone.
class ZULMRSBSPHeldPlanes
{
    struct Table;

public:
    /// Where a search has ended: at a plane, or at the slot where there would be one.
    struct Place {
        ZULMRSBSPCartesianPlane* m_Plane = nullptr;

    private:
        Table* m_Table = nullptr;
        std::size_t m_Index = 0;
        friend class ZULMRSBSPHeldPlanes;
    };

    ZULMRSBSPHeldPlanes() = default;
    /// Does not release the planes.
    ~ZULMRSBSPHeldPlanes() { delete m_Table.load(std::memory_order_relaxed); }
    ZULMRSBSPHeldPlanes(const ZULMRSBSPHeldPlanes&) = delete;
    ZULMRSBSPHeldPlanes& operator=(const ZULMRSBSPHeldPlanes&) = delete;

    std::size_t GetSize() const { return m_Size; }

    /// Any thread, at any time.
    template <class Key>
    Place Find(const Key& key) const
    {
        Place place;
        Start(key.GetHash(), place);
        Walk(key, place);
        return place;
    }
    /// Looks at what has been added since the place was found. For the thread that may add.
    template <class Key>
    void FindSince(const Key& key, Place& place) const
    {
        if (place.m_Plane != nullptr) {
            return;
        }
        if (place.m_Table != m_Table.load(std::memory_order_relaxed)) {
            Start(key.GetHash(), place);
        }
        Walk(key, place);
    }

    /// Room for one plane more; false when memory is exhausted.
    bool Reserve()
    {
        const Table* table = m_Table.load(std::memory_order_relaxed);
        return (table != nullptr && m_Size < table->Limit()) || Grow();
    }
    /// Adds a plane that has room, at the place where it was looked for in vain.
    void Add(ZULMRSBSPCartesianPlane* plane, std::size_t hash, Place& place)
    {
        Table* const table = m_Table.load(std::memory_order_relaxed);
        if (place.m_Table != table) {
            place.m_Index = table->EmptySlot(hash);
        }
        table->m_Slots[place.m_Index].Set(plane, hash);
        ++m_Size;
    }

    /// Calls the operation with each plane.
    template <class Operation>
    void ForEach(const Operation& operation) const
    {
        const Table* table = m_Table.load(std::memory_order_relaxed);
        for (std::size_t i = 0; table != nullptr && i <= table->m_Mask; ++i) {
            if (ZULMRSBSPCartesianPlane* const plane = table->m_Slots[i].GetPlane()) {
                operation(plane);
            }
        }
    }
    /// Removes the planes that the operation asks for, each before the other operation gets it.
    template <class Condition, class Operation>
    void RemoveIf(const Condition& condition, const Operation& operation)
    {
        Table* const table = m_Table.load(std::memory_order_relaxed);
        if (table == nullptr) {
            return;
        }
        table->m_Older.reset();
        for (std::size_t i = 0; i <= table->m_Mask;) {
            ZULMRSBSPCartesianPlane* const plane = table->m_Slots[i].GetPlane();
            if (plane == nullptr || !condition(*plane)) {
                ++i;
                continue;
            }
            table->Erase(i);
            --m_Size;
            operation(plane);
        }
    }

private:
    struct Slot {
        std::atomic<ZULMRSBSPCartesianPlane*> m_Plane;
        /// Valid for who has seen the plane.
        std::size_t m_Hash;

        ZULMRSBSPCartesianPlane* GetPlane() const { return m_Plane.load(std::memory_order_acquire); }
        void Set(ZULMRSBSPCartesianPlane* plane, std::size_t hash)
        {
            m_Hash = hash;
            m_Plane.store(plane, std::memory_order_release);
        }
    };

    /// Entries stand in the first slot that was free at or after that of their hash.
    struct Table {
        static constexpr unsigned int FewestBits = 4;

        std::unique_ptr<Slot[]> m_Slots;  // NOLINT(*-avoid-c-arrays): a length known at run time
        std::size_t m_Mask;
        unsigned int m_Shift;
        /// The smaller ones, which threads may still be looking through.
        std::unique_ptr<Table> m_Older;

        explicit Table(unsigned int bits)
            : m_Slots(new (std::nothrow) Slot[std::size_t{1} << bits]()),
              m_Mask((std::size_t{1} << bits) - 1),
              m_Shift(64U - bits)
        {
        }

        /// So many planes are few enough for short searches.
        std::size_t Limit() const { return (m_Mask + 1) / 8 * 5; }
        /// Some hashes differ in their high bits alone, some in the low ones.
        std::size_t Home(std::size_t hash) const { return (hash * 0x9E3779B97F4A7C15U) >> m_Shift; }
        std::size_t Next(std::size_t index) const { return (index + 1) & m_Mask; }
        std::size_t EmptySlot(std::size_t hash) const
        {
            std::size_t index = Home(hash);
            while (m_Slots[index].GetPlane() != nullptr) {
                index = Next(index);
            }
            return index;
        }
        /// Moves back what stands behind only because the slot was taken.
        void Erase(std::size_t hole)
        {
            for (std::size_t i = Next(hole); m_Slots[i].GetPlane() != nullptr; i = Next(i)) {
                const std::size_t way = (i - Home(m_Slots[i].m_Hash)) & m_Mask;
                if (way >= ((i - hole) & m_Mask)) {
                    m_Slots[hole].Set(m_Slots[i].GetPlane(), m_Slots[i].m_Hash);
                    hole = i;
                }
            }
            m_Slots[hole].Set(nullptr, 0);
        }
    };

    void Start(std::size_t hash, Place& place) const
    {
        place.m_Table = m_Table.load(std::memory_order_acquire);
        place.m_Index = place.m_Table != nullptr ? place.m_Table->Home(hash) : 0;
    }
    template <class Key>
    static void Walk(const Key& key, Place& place)
    {
        const Table* const table = place.m_Table;
        if (table == nullptr) {
            return;
        }
        for (;; place.m_Index = table->Next(place.m_Index)) {
            const Slot& slot = table->m_Slots[place.m_Index];
            ZULMRSBSPCartesianPlane* const plane = slot.GetPlane();
            if (plane == nullptr) {
                return;
            }
            if (slot.m_Hash == key.GetHash() && key.IsSame(*plane)) {
                place.m_Plane = plane;
                return;
            }
        }
    }

    bool Grow()
    {
        Table* const old = m_Table.load(std::memory_order_relaxed);
        const unsigned int bits =
            old != nullptr ? static_cast<unsigned int>(std::bit_width(old->m_Mask)) + 1 : Table::FewestBits;
        std::unique_ptr<Table> table(new (std::nothrow) Table(bits));
        if (table == nullptr || table->m_Slots == nullptr) {
            return false;
        }
        for (std::size_t i = 0; old != nullptr && i <= old->m_Mask; ++i) {
            const Slot& slot = old->m_Slots[i];
            if (ZULMRSBSPCartesianPlane* const plane = slot.GetPlane()) {
                table->m_Slots[table->EmptySlot(slot.m_Hash)].Set(plane, slot.m_Hash);
            }
        }
        table->m_Older.reset(old);
        m_Table.store(table.release(), std::memory_order_release);
        return true;
    }

    std::atomic<Table*> m_Table{nullptr};
    /// Who adds shall not take the table's line of memory away from those who look.
    std::array<std::byte, 64> m_Apart{};
    std::size_t m_Size = 0;
};

#endif
