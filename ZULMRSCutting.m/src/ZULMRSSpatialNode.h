#ifndef ZULMRSSpatialNode_h
#define ZULMRSSpatialNode_h

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZULMRSCell.h"
#include "ZULMRSLeafBox.h"

/// A node of the binary tree that divides the stock by axis-parallel walls. A leaf holds a reference on each
/// of the cells inside its box, and gives it up only by hand.
struct ZULMRSSpatialNode {
    ZULMRSLeafBox m_Box;
    std::unique_ptr<std::array<ZULMRSSpatialNode, 2>> m_Children;  // null: a leaf
    std::vector<ZULMRSCell*> m_Cells;                              // of a leaf

    /// Scratch of ZULMRSCutPlan.
    static constexpr std::uint32_t NoTask = 0xFFFFFFFFU;
    std::uint32_t m_Task = NoTask;
    std::uint32_t m_LastTask = NoTask;
    std::uint64_t m_Colours = 0;

    bool IsLeaf() const { return m_Children == nullptr; }
    double LongestSide() const { return m_Box.Length(m_Box.LongestAxis()); }

    /// Calls visit(leaf) for every leaf, the lower child first.
    template <class Visit>
    void ForEachLeaf(const Visit& visit) const
    {
        if (IsLeaf()) {
            visit(*this);
            return;
        }
        for (const ZULMRSSpatialNode& child : *m_Children) {
            child.ForEachLeaf(visit);
        }
    }
};

#endif
