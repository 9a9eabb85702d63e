#ifndef ZULListValZULMathPoint_h
#define ZULListValZULMathPoint_h

#include <vector>

#include "ZULMathPoint.h"

/// A list of points held by value. Positions start at 1.
class ZULListValZULMathPoint
{
public:
    int Size() const { return static_cast<int>(m_Points.size()); }
    void Append(const ZULMathPoint& point) { m_Points.push_back(point); }
    void RemoveAll() { m_Points.clear(); }

    /// The point at a position from 1 to Size(); any other position is undefined.
    const ZULMathPoint& operator[](int position) const
    {
        return m_Points[static_cast<std::size_t>(position - 1)];
    }
    ZULMathPoint& operator[](int position) { return m_Points[static_cast<std::size_t>(position - 1)]; }

private:
    std::vector<ZULMathPoint> m_Points;
};

#endif
