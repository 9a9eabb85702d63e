#ifndef ZULMRSNumbering_h
#define ZULMRSNumbering_h

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// Numbers objects (none of them null) in the order in which they are first met, so that nothing made from
/// the numbers depends on addresses. Holds no references.
template <class Object>
class ZULMRSNumbering
{
public:
    explicit ZULMRSNumbering(std::size_t expectedCount)
    {
        m_Objects.reserve(expectedCount);
        SetCapacity(std::bit_ceil(2 * expectedCount + 16));
    }

    std::uint32_t GetNumber(const Object* object)
    {
        Slot& slot = m_Slots[FindSlot(object)];
        if (slot.first != nullptr) {
            return slot.second;
        }
        const auto number = static_cast<std::uint32_t>(m_Objects.size());
        slot = {object, number};
        m_Objects.push_back(object);
        if (2 * m_Objects.size() > m_Slots.size()) {
            SetCapacity(2 * m_Slots.size());
        }
        return number;
    }

    const std::vector<const Object*>& GetObjects() const { return m_Objects; }

private:
    using Slot = std::pair<const Object*, std::uint32_t>;

    // Open addressing: one cache line a look-up, where a standard map needs three.
    std::size_t FindSlot(const Object* object) const
    {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15U;
        const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object));
        std::size_t slot = static_cast<std::size_t>((address * goldenRatio) >> m_Shift);
        while (m_Slots[slot].first != nullptr && m_Slots[slot].first != object) {
            slot = (slot + 1) & (m_Slots.size() - 1);
        }
        return slot;
    }

    void SetCapacity(std::size_t capacity)
    {
        m_Slots.assign(capacity, {nullptr, 0U});
        m_Shift = 64 - std::countr_zero(capacity);
        for (std::size_t i = 0; i < m_Objects.size(); ++i) {
            m_Slots[FindSlot(m_Objects[i])] = {m_Objects[i], static_cast<std::uint32_t>(i)};
        }
    }

    std::vector<Slot> m_Slots;
    int m_Shift = 0;
    std::vector<const Object*> m_Objects;
};

#endif
