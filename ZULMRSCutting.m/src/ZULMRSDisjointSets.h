#ifndef ZULMRSDisjointSets_h
#define ZULMRSDisjointSets_h

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

/// Sets of numbers that only ever grow together. The lowest number of a set stands for it.
class ZULMRSDisjointSets
{
public:
    explicit ZULMRSDisjointSets(std::size_t count) : m_Parents(count)
    {
        std::iota(m_Parents.begin(), m_Parents.end(), 0U);
    }

    std::uint32_t Find(std::uint32_t number)
    {
        while (m_Parents[number] != number) {
            m_Parents[number] = m_Parents[m_Parents[number]];
            number = m_Parents[number];
        }
        return number;
    }

    void Unite(std::uint32_t a, std::uint32_t b)
    {
        a = Find(a);
        b = Find(b);
        m_Parents[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<std::uint32_t> m_Parents;
};

#endif
