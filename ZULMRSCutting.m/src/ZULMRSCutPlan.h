#ifndef ZULMRSCutPlan_h
#define ZULMRSCutPlan_h

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULMRSLeafCutter.h"
#include "ZULMRSSpatialNode.h"
#include "ZULMRSTaskGraph.h"

/// Divides the work of a batch of tools into tasks, one for each part of the spatial division: there, the
/// tools cut one after the other. What a task does reaches the parts that touch its own, so two tasks wait
/// for each other when some part touches those of both. Which of the two goes first follows from the path
/// alone: the cells that come out do not depend on the number of threads.
class ZULMRSCutPlan
{
public:
    struct Task {
        ZULMRSSpatialNode* m_Node;
        std::vector<std::uint32_t> m_Tools;  // positions in the batch, ascending
    };

    /// Parts are the leaves, and nodes that are not longer than the part size.
    ZULMRSCutPlan(ZULMRSSpatialNode& root, double partSize) : m_Root(root), m_PartSize(partSize) {}

    /// The tool cuts after those added before.
    void AddTool(std::uint32_t tool, const ZULMRSLeafCutter::Bounds& bounds)
    {
        Collect(m_Root, tool, m_Stack.Start(bounds));
    }
    /// Tools, each counted in every part that it cuts in.
    std::size_t GetNbCuts() const;
    /// Carries out body(task, worker) for every task; see ZULMRSTaskGraph.
    template <class Body>
    void Run(std::size_t nbThreads, const Body& body)
    {
        ZULMRSTaskGraph graph = Order();
        graph.Run(nbThreads, [&](std::uint32_t task, std::size_t worker) { body(m_Tasks[task], worker); });
    }

private:
    using Nodes = std::vector<ZULMRSSpatialNode*>;

    bool IsPart(const ZULMRSSpatialNode& node) const
    {
        return node.IsLeaf() || node.LongestSide() <= m_PartSize;
    }
    void Collect(ZULMRSSpatialNode& node, std::uint32_t tool, const ZULMRSBoundStack::Range& bounds);
    void AddTask(ZULMRSSpatialNode& node, std::uint32_t tool);
    void FindTouching(ZULMRSSpatialNode& node, const ZULMRSLeafBox& box, Nodes& touching) const;
    ZULMRSTaskGraph Order();

    ZULMRSSpatialNode& m_Root;
    const double m_PartSize;
    ZULMRSBoundStack m_Stack;
    std::vector<Task> m_Tasks;
};

#endif
