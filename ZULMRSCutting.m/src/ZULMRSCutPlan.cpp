#include "ZULMRSCutPlan.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "ZULExpFloatStatus.h"

void ZULMRSCutPlan::Collect(ZULMRSSpatialNode& node, std::uint32_t tool,
                            const ZULMRSBoundStack::Range& bounds)
{
    ZULMRSBoundStack::Range active;
    if ((node.IsLeaf() && node.m_Cells.empty()) || !m_Stack.Push(bounds, node.m_Box, active)) {
        return;
    }
    if (IsPart(node)) {
        AddTask(node, tool);
    } else {
        for (ZULMRSSpatialNode& child : *node.m_Children) {
            Collect(child, tool, active);
        }
    }
    m_Stack.Pop(active);
}

void ZULMRSCutPlan::AddTask(ZULMRSSpatialNode& node, std::uint32_t tool)
{
    if (node.m_Task == ZULMRSSpatialNode::NoTask) {
        node.m_Task = static_cast<std::uint32_t>(m_Tasks.size());
        m_Tasks.push_back({&node, {}});
    }
    m_Tasks[node.m_Task].m_Tools.push_back(tool);
}

std::size_t ZULMRSCutPlan::GetNbCuts() const
{
    std::size_t count = 0;
    for (const Task& task : m_Tasks) {
        count += task.m_Tools.size();
    }
    return count;
}

/// The parts that touch a box.
void ZULMRSCutPlan::FindTouching(ZULMRSSpatialNode& node, const ZULMRSLeafBox& box, Nodes& touching) const
{
    if (!node.m_Box.Touches(box)) {
        return;
    }
    if (IsPart(node)) {
        touching.push_back(&node);
        return;
    }
    for (ZULMRSSpatialNode& child : *node.m_Children) {
        FindTouching(child, box, touching);
    }
}

/// Gives tasks that are far from each other the same colour and puts the tasks in the order of the colours,
/// so that many can go on at once.
ZULMRSTaskGraph ZULMRSCutPlan::Order()
{
    const ZULExpFloatScope scope;
    constexpr int lastColour = 63;
    struct Entry {
        int m_Colour;
        Task m_Task;
        Nodes m_Touching;
    };
    std::vector<Entry> entries;
    for (Task& task : m_Tasks) {
        task.m_Node->m_Task = ZULMRSSpatialNode::NoTask;
        Entry entry{0, std::move(task), {}};
        FindTouching(m_Root, entry.m_Task.m_Node->m_Box, entry.m_Touching);
        std::uint64_t taken = 0;
        for (const ZULMRSSpatialNode* node : entry.m_Touching) {
            taken |= node->m_Colours;
        }
        entry.m_Colour = std::min(std::countr_one(taken), lastColour);
        for (ZULMRSSpatialNode* node : entry.m_Touching) {
            node->m_Colours |= std::uint64_t{1} << entry.m_Colour;
        }
        entries.push_back(std::move(entry));
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.m_Colour < b.m_Colour; });

    ZULMRSTaskGraph graph;
    m_Tasks.clear();
    for (Entry& entry : entries) {
        const std::uint32_t task = graph.Add(static_cast<double>(entry.m_Task.m_Tools.size()));
        for (ZULMRSSpatialNode* node : entry.m_Touching) {
            if (node->m_LastTask != ZULMRSSpatialNode::NoTask) {
                graph.Wait(task, node->m_LastTask);
            }
            node->m_LastTask = task;
        }
        m_Tasks.push_back(std::move(entry.m_Task));
    }
    for (const Entry& entry : entries) {
        for (ZULMRSSpatialNode* node : entry.m_Touching) {
            node->m_Colours = 0;
            node->m_LastTask = ZULMRSSpatialNode::NoTask;
        }
    }
    return graph;
}
