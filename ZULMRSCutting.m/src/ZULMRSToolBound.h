#ifndef ZULMRSToolBound_h
#define ZULMRSToolBound_h

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSLeafBox.h"

/// A half-space of a tool: the shared plane, the side of it that the tool leaves alone (1 in front, -1
/// behind), and the equation turned so that the tool lies behind.
struct ZULMRSToolBound {
    ZULMRSBSPPlane* m_Plane;
    int m_Sign;
    std::array<double, 4> m_Outward;
};

/// The bounds of one tool that matter in a box, for every box on the way down the spatial division. Bounds
/// are borrowed.
class ZULMRSBoundStack
{
public:
    /// Some of the bounds, in their given order.
    struct Range {
        std::size_t m_First = 0;
        std::size_t m_Count = 0;
    };

    /// All bounds of a tool, alone.
    Range Start(const std::vector<ZULMRSToolBound>& bounds)
    {
        m_Bounds.clear();
        for (const ZULMRSToolBound& bound : bounds) {
            m_Bounds.push_back(&bound);
        }
        return {0, m_Bounds.size()};
    }

    /// Adds those of a range that neither contain a box nor miss it. False, and nothing added, when one
    /// misses the box, so that the tool does.
    bool Push(const Range& range, const ZULMRSLeafBox& box, Range& active)
    {
        active.m_First = m_Bounds.size();
        for (std::size_t index = range.m_First; index < range.m_First + range.m_Count; ++index) {
            const ZULMRSToolBound* bound = m_Bounds[index];
            const ZULMRSLeafBox::Position position = box.Locate(bound->m_Outward);
            if (position == ZULMRSLeafBox::Position::Unknown) {
                m_Bounds.push_back(bound);
            } else if (position == ZULMRSLeafBox::Position::InFront) {
                Pop(active);
                return false;
            }
        }
        active.m_Count = m_Bounds.size() - active.m_First;
        return true;
    }

    /// Takes away the range that was added last.
    void Pop(const Range& range) { m_Bounds.resize(range.m_First); }

    const ZULMRSToolBound* At(std::size_t index) const { return m_Bounds[index]; }

private:
    std::vector<const ZULMRSToolBound*> m_Bounds;
};

#endif
