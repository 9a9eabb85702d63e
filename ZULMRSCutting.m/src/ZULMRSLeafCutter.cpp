#include "ZULMRSLeafCutter.h"

#include <algorithm>

namespace
{
constexpr double LeastLeafPerLeafSize = 1.0 / 16.0;
}  // namespace

bool ZULMRSLeafCutter::Apply(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation)
{
    const bool hasChanged = Visit(node, m_Stack.Start(bounds), operation);
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
    PrepareBelow(node, m_Stack.Start(bounds), size);
}

void ZULMRSLeafCutter::PrepareBelow(ZULMRSSpatialNode& node, const Range& bounds, double size)
{
    Range active;
    if (!m_Stack.Push(bounds, node.m_Box, active)) {
        return;
    }
    const bool isDone =
        active.m_Count == 0 ||
        (node.IsLeaf() && (node.m_Cells.empty() || node.LongestSide() <= size || !Refine(node)));
    if (!isDone) {
        for (ZULMRSSpatialNode& child : *node.m_Children) {
            PrepareBelow(child, active, size);
        }
    }
    m_Stack.Pop(active);
}

bool ZULMRSLeafCutter::Visit(ZULMRSSpatialNode& node, const Range& bounds, Operation operation)
{
    Range active;
    if (!m_Stack.Push(bounds, node.m_Box, active)) {
        return operation == Operation::KeepInside && RemoveAll(node);
    }
    const bool hasChanged = active.m_Count == 0 ? operation == Operation::Subtract && RemoveAll(node)
                                                : VisitCrossed(node, active, operation);
    m_Stack.Pop(active);
    return hasChanged;
}

/// Visits a node that none of the bounds contains or misses.
bool ZULMRSLeafCutter::VisitCrossed(ZULMRSSpatialNode& node, const Range& bounds, Operation operation)
{
    const bool isLeaf = node.IsLeaf();
    if (isLeaf && node.m_Cells.empty()) {
        return false;
    }
    if (!isLeaf || (node.LongestSide() > m_Options.m_LeafSize && Refine(node))) {
        bool hasChanged = false;
        for (ZULMRSSpatialNode& child : *node.m_Children) {
            hasChanged = Visit(child, bounds, operation) || hasChanged;
        }
        return hasChanged;
    }
    const bool hasChanged = CutLeaf(node, bounds, operation);
    RefineCrowded(node);
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

bool ZULMRSLeafCutter::CutLeaf(ZULMRSSpatialNode& node, const Range& bounds, Operation operation)
{
    m_Remaining.clear();
    m_New.clear();
    bool hasChanged = false;
    for (ZULMRSCell* cell : node.m_Cells) {
        hasChanged = CutCell(cell, bounds, operation) || hasChanged;
    }
    for (ZULMRSCell* cell : m_New) {
        if (!cell->m_Vertices.empty()) {
            m_Splitter.Merge(*cell);
        }
    }
    const auto isEmptied = [](const ZULMRSCell* cell) { return cell->m_Vertices.empty(); };
    m_Remaining.erase(std::remove_if(m_Remaining.begin(), m_Remaining.end(), isEmptied), m_Remaining.end());
    node.m_Cells.assign(m_Remaining.begin(), m_Remaining.end());
    return hasChanged;
}

/// Puts a part with the remaining cells or removes it; true when it was removed.
bool ZULMRSLeafCutter::Settle(ZULMRSCell* part, bool isKept, bool isNew)
{
    if (!isKept) {
        m_Splitter.Remove(part);
        return true;
    }
    if (isNew) {
        m_Splitter.Fit(*part);
        m_New.push_back(part);
    }
    m_Remaining.push_back(part);
    return false;
}

/// Applies the tool to one cell; what is left of it joins the remaining cells. True when anything was
/// removed.
bool ZULMRSLeafCutter::CutCell(ZULMRSCell* cell, const Range& bounds, Operation operation)
{
    using Position = ZULMRSCellSplitter::Position;
    const bool isSubtract = operation == Operation::Subtract;
    if (!FindCrossing(*cell, bounds)) {
        return Settle(cell, isSubtract, false);
    }
    if (m_Crossing.size() > 1) {
        const ZULMRSCellOutline& outline = m_Splitter.GetOutline(*cell);
        if (!m_Probe.Sort(*cell, outline, m_Splitter.GetTable(), m_Crossing) &&
            (m_Separation.Misses(outline, m_Splitter.GetTable(), m_Crossing) || Misses(*cell))) {
            return Settle(cell, isSubtract, false);
        }
    }
    bool hasChanged = false;
    bool isNew = false;
    for (const Bound* bound : m_Crossing) {
        const Position position = Locate(*cell, *bound);
        if (position == Position::InFront) {
            return Settle(cell, isSubtract, isNew) || hasChanged;
        }
        if (position == Position::Crossing) {
            ZULMRSCell* front = m_Splitter.Split(*cell, bound->m_Plane);
            ZULMRSCell* outside = bound->m_Sign > 0 ? front : cell;
            cell = bound->m_Sign > 0 ? cell : front;
            isNew = true;
            hasChanged = Settle(outside, isSubtract, true) || hasChanged;
        }
    }
    return Settle(cell, !isSubtract, isNew) || hasChanged;
}

/// Whether the tool, all of whose bounds in question cross a cell, has nothing inside it. Tried out apart:
/// splits that lead to nothing would stay.
bool ZULMRSLeafCutter::Misses(const ZULMRSCell& cell)
{
    ZULMRSCell* part = ZULMRSCellSplitter::CopyAlone(cell);
    for (const Bound* bound : m_Crossing) {
        const ZULMRSCellSplitter::Position position = LocateByVertices(*part, *bound);
        if (position == ZULMRSCellSplitter::Position::InFront) {
            m_Splitter.Remove(part);
            return true;
        }
        if (position == ZULMRSCellSplitter::Position::Crossing) {
            ZULMRSCell* front = m_Splitter.Split(*part, bound->m_Plane);
            m_Splitter.Remove(bound->m_Sign > 0 ? front : part);
            part = bound->m_Sign > 0 ? part : front;
        }
    }
    m_Splitter.Remove(part);
    return false;
}

/// Collects the bounds that cross a cell, in the given order; false when the cell lies outside one of them.
bool ZULMRSLeafCutter::FindCrossing(const ZULMRSCell& cell, const Range& bounds)
{
    m_Crossing.clear();
    for (std::size_t index = bounds.m_First; index < bounds.m_First + bounds.m_Count; ++index) {
        const Bound* bound = m_Stack.At(index);
        const ZULMRSLeafBox::Position position = cell.m_Box.Locate(bound->m_Outward);
        if (position == ZULMRSLeafBox::Position::InFront) {
            return false;
        }
        if (position == ZULMRSLeafBox::Position::Unknown) {
            m_Crossing.push_back(bound);
        }
    }
    std::size_t nbCrossing = 0;
    for (const Bound* bound : m_Crossing) {
        const ZULMRSCellSplitter::Position position = LocateByVertices(cell, *bound);
        if (position == ZULMRSCellSplitter::Position::InFront) {
            return false;
        }
        if (position == ZULMRSCellSplitter::Position::Crossing) {
            m_Crossing[nbCrossing++] = bound;
        }
    }
    m_Crossing.resize(nbCrossing);
    return true;
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
    return LocateByVertices(cell, bound);
}

ZULMRSCellSplitter::Position ZULMRSLeafCutter::LocateByVertices(const ZULMRSCell& cell, const Bound& bound)
{
    using Position = ZULMRSCellSplitter::Position;
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
        return SplitLeaf(node, bound);
    }
    std::size_t count = 0;
    for (ZULMRSSpatialNode& child : *node.m_Children) {
        count += SplitIn(child, bound);
    }
    return count;
}

std::size_t ZULMRSLeafCutter::SplitLeaf(ZULMRSSpatialNode& node, const Bound& bound)
{
    std::vector<ZULMRSCell*>& cells = node.m_Cells;
    const std::size_t before = cells.size();
    for (std::size_t index = 0; index < before; ++index) {
        if (Locate(*cells[index], bound) == ZULMRSCellSplitter::Position::Crossing) {
            ZULMRSCell* front = m_Splitter.Split(*cells[index], bound.m_Plane);
            m_Splitter.Fit(*front);
            m_Splitter.Fit(*cells[index]);
            cells.push_back(front);
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
    const Bound bound{wall, 1, wall->GetCoords()};
    SplitLeaf(node, bound);

    node.m_Children = std::make_unique<std::array<ZULMRSSpatialNode, 2>>();
    ZULMRSSpatialNode& low = (*node.m_Children)[0];
    ZULMRSSpatialNode& high = (*node.m_Children)[1];
    low.m_Box = high.m_Box = box;
    low.m_Box.m_High[axis] = middle;
    high.m_Box.m_Low[axis] = middle;
    for (ZULMRSCell* cell : node.m_Cells) {
        const bool isInFront = Locate(*cell, bound) == ZULMRSCellSplitter::Position::InFront;
        ZULMRSSpatialNode& child = isInFront != isOpposite ? high : low;
        child.m_Cells.push_back(cell);
        cell->m_Leaf = &child;
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
