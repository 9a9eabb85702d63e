#include "ZULMRSLeafCutter.h"

#include <algorithm>

namespace
{
constexpr double LeastLeafPerLeafSize = 1.0 / 16.0;
}  // namespace

bool ZULMRSLeafCutter::Apply(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation)
{
    const bool hasChanged = Visit(node, bounds, operation);
    m_Splitter.Finish();
    return hasChanged;
}

std::size_t ZULMRSLeafCutter::Split(ZULMRSSpatialNode& node, const Bound& bound)
{
    const std::size_t count = SplitIn(node, bound);
    m_Splitter.Finish();
    return count;
}

void ZULMRSLeafCutter::Prepare(ZULMRSSpatialNode& node, const Bounds& bounds, double size)
{
    Bounds active;
    if (!FindActive(node, bounds, active) || active.empty()) {
        return;
    }
    if (node.IsLeaf() && (node.m_Cells.empty() || node.LongestSide() <= size || !Refine(node))) {
        return;
    }
    for (ZULMRSSpatialNode& child : *node.m_Children) {
        Prepare(child, active, size);
    }
}

bool ZULMRSLeafCutter::FindActive(const ZULMRSSpatialNode& node, const Bounds& bounds, Bounds& active)
{
    active.clear();
    for (const Bound& bound : bounds) {
        switch (node.m_Box.Locate(bound.m_Outward)) {
            case ZULMRSLeafBox::Position::InFront:
                return false;
            case ZULMRSLeafBox::Position::Unknown:
                active.push_back(bound);
                break;
            case ZULMRSLeafBox::Position::Behind:
                break;
        }
    }
    return true;
}

bool ZULMRSLeafCutter::Visit(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation)
{
    Bounds active;
    if (!FindActive(node, bounds, active)) {
        return operation == Operation::KeepInside && RemoveAll(node);
    }
    if (active.empty()) {
        return operation == Operation::Subtract && RemoveAll(node);
    }
    if (!node.IsLeaf()) {
        return VisitChildren(node, active, operation);
    }
    if (node.m_Cells.empty()) {
        return false;
    }
    if (node.LongestSide() > m_Options.m_LeafSize && Refine(node)) {
        return VisitChildren(node, active, operation);
    }
    const bool hasChanged = CutLeaf(node, active, operation);
    RefineCrowded(node);
    return hasChanged;
}

bool ZULMRSLeafCutter::VisitChildren(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation)
{
    bool hasChanged = false;
    for (ZULMRSSpatialNode& child : *node.m_Children) {
        hasChanged = Visit(child, bounds, operation) || hasChanged;
    }
    return hasChanged;
}

bool ZULMRSLeafCutter::RemoveAll(ZULMRSSpatialNode& node)
{
    bool hasChanged = false;
    if (!node.IsLeaf()) {
        for (ZULMRSSpatialNode& child : *node.m_Children) {
            hasChanged = RemoveAll(child) || hasChanged;
        }
        return hasChanged;
    }
    hasChanged = !node.m_Cells.empty();
    for (ZULMRSCell* cell : node.m_Cells) {
        m_Splitter.Remove(cell);
    }
    node.m_Cells.clear();
    node.m_Cells.shrink_to_fit();
    return hasChanged;
}

bool ZULMRSLeafCutter::CutLeaf(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation)
{
    m_Remaining.clear();
    bool hasChanged = false;
    for (ZULMRSCell* cell : node.m_Cells) {
        hasChanged = CutCell(cell, bounds, operation) || hasChanged;
    }
    node.m_Cells.assign(m_Remaining.begin(), m_Remaining.end());
    return hasChanged;
}

/// Puts a part with the remaining cells or removes it; true when it was removed.
bool ZULMRSLeafCutter::Settle(ZULMRSCell* part, bool isKept)
{
    if (isKept) {
        m_Remaining.push_back(part);
    } else {
        m_Splitter.Remove(part);
    }
    return !isKept;
}

/// Applies the tool to one cell; what is left of it joins the remaining cells. True when anything was
/// removed.
bool ZULMRSLeafCutter::CutCell(ZULMRSCell* cell, const Bounds& bounds, Operation operation)
{
    using Position = ZULMRSCellSplitter::Position;
    const bool isSubtract = operation == Operation::Subtract;
    m_Crossing.clear();
    for (const Bound& bound : bounds) {
        switch (Locate(*cell, bound)) {
            case Position::InFront:
                return Settle(cell, isSubtract);
            case Position::Crossing:
                m_Crossing.push_back(bound);
                break;
            case Position::Behind:
                break;
        }
    }
    if (m_Crossing.size() > 1) {
        m_Probe.Sort(*cell, m_Crossing);
    }
    bool hasChanged = false;
    for (const Bound& bound : m_Crossing) {
        const Position position = Locate(*cell, bound);
        if (position == Position::InFront) {
            return Settle(cell, isSubtract) || hasChanged;
        }
        if (position == Position::Crossing) {
            ZULMRSCell* front = m_Splitter.Split(*cell, bound.m_Plane);
            ZULMRSCell* outside = bound.m_Sign > 0 ? front : cell;
            cell = bound.m_Sign > 0 ? cell : front;
            hasChanged = Settle(outside, isSubtract) || hasChanged;
        }
    }
    return Settle(cell, !isSubtract) || hasChanged;
}

/// Where a cell lies with respect to a tool's plane, front being the side that the tool leaves alone.
ZULMRSCellSplitter::Position ZULMRSLeafCutter::Locate(const ZULMRSCell& cell, const Bound& bound)
{
    using Position = ZULMRSCellSplitter::Position;
    switch (cell.m_Box.Locate(bound.m_Outward)) {
        case ZULMRSLeafBox::Position::InFront:
            return Position::InFront;
        case ZULMRSLeafBox::Position::Behind:
            return Position::Behind;
        case ZULMRSLeafBox::Position::Unknown:
            break;
    }
    const Position position = m_Splitter.Locate(cell, *bound.m_Plane);
    if (bound.m_Sign > 0 || position == Position::Crossing) {
        return position;
    }
    return position == Position::InFront ? Position::Behind : Position::InFront;
}

std::size_t ZULMRSLeafCutter::SplitIn(ZULMRSSpatialNode& node, const Bound& bound)
{
    if (node.m_Box.Locate(bound.m_Outward) != ZULMRSLeafBox::Position::Unknown) {
        return 0;
    }
    if (node.IsLeaf()) {
        return SplitLeaf(node, bound.m_Plane);
    }
    std::size_t count = 0;
    for (ZULMRSSpatialNode& child : *node.m_Children) {
        count += SplitIn(child, bound);
    }
    return count;
}

std::size_t ZULMRSLeafCutter::SplitLeaf(ZULMRSSpatialNode& node, ZULMRSBSPPlane* plane)
{
    std::vector<ZULMRSCell*>& cells = node.m_Cells;
    const std::size_t before = cells.size();
    for (std::size_t index = 0; index < before; ++index) {
        if (m_Splitter.Locate(*cells[index], *plane) == ZULMRSCellSplitter::Position::Crossing) {
            cells.push_back(m_Splitter.Split(*cells[index], plane));
        }
    }
    return cells.size() - before;
}

/// Divides a leaf by a wall across its longest side; false when there is no place for one.
bool ZULMRSLeafCutter::Refine(ZULMRSSpatialNode& node)
{
    const ZULMRSLeafBox& box = node.m_Box;
    const std::size_t axis = box.LongestAxis();
    const double middle = box.Middle(axis);
    if (!(middle > box.m_Low[axis] && middle < box.m_High[axis])) {
        return false;
    }
    std::array<double, 4> equation{0.0, 0.0, 0.0, 0.0 - middle};
    equation[axis] = 1.0;
    bool isOpposite = false;
    ZULMRSBSPPlane* wall = m_Factory.CreatePlane(equation, isOpposite, ZULMRSBSPCreatePlane_AcceptOpposite);
    SplitLeaf(node, wall);

    node.m_Children = std::make_unique<std::array<ZULMRSSpatialNode, 2>>();
    ZULMRSSpatialNode& low = (*node.m_Children)[0];
    ZULMRSSpatialNode& high = (*node.m_Children)[1];
    low.m_Box = high.m_Box = box;
    low.m_Box.m_High[axis] = middle;
    high.m_Box.m_Low[axis] = middle;
    for (ZULMRSCell* cell : node.m_Cells) {
        const bool isInFront = m_Splitter.Locate(*cell, *wall) == ZULMRSCellSplitter::Position::InFront;
        (isInFront != isOpposite ? high : low).m_Cells.push_back(cell);
    }
    m_Splitter.Finish();
    wall->Release();
    node.m_Cells.clear();
    node.m_Cells.shrink_to_fit();
    return true;
}

void ZULMRSLeafCutter::RefineCrowded(ZULMRSSpatialNode& node)
{
    const bool isCrowded = node.m_Cells.size() > m_Options.m_MaxCellsPerLeaf &&
                           node.LongestSide() > m_Options.m_LeafSize * LeastLeafPerLeafSize;
    if (isCrowded && Refine(node)) {
        for (ZULMRSSpatialNode& child : *node.m_Children) {
            RefineCrowded(child);
        }
    }
}
