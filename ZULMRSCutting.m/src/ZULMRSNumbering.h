#ifndef ZULMRSNumbering_h
#define ZULMRSNumbering_h

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

/// Numbers objects in the order in which they are first met, so that nothing made from the numbers depends on
/// addresses. Holds no references.
template <class Object>
class ZULMRSNumbering
{
public:
    explicit ZULMRSNumbering(std::size_t expectedCount) { m_Numbers.reserve(expectedCount); }

    std::uint32_t GetNumber(const Object* object)
    {
        const auto [place, isNew] =
            m_Numbers.try_emplace(object, static_cast<std::uint32_t>(m_Objects.size()));
        if (isNew) {
            m_Objects.push_back(object);
        }
        return place->second;
    }

    const std::vector<const Object*>& GetObjects() const { return m_Objects; }

private:
    std::unordered_map<const Object*, std::uint32_t> m_Numbers;
    std::vector<const Object*> m_Objects;
};

#endif
