#include "ZULMRSCuttingSolidImpl.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "ZULMRSExactPlanes.h"

namespace
{
constexpr double LeafSizesPerExtent = 16.0;
constexpr double LeastLeafPerLeafSize = 1.0 / 16.0;

bool HasVolume(const ZULMathOBB& box)
{
    const double volume = box.Volume();
    return volume > 0.0 && std::isfinite(volume);
}

}  // namespace

ZULMRSCuttingSolid::Impl::Impl(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options)
    : m_Options(options),
      m_Factory(ZULMRSCreateObjectFactory(false)),
      m_Complex(std::make_unique<ZULMRSCellComplex>(*m_Factory))
{
    if (m_Options.m_GriddingTolerance > 0.0 &&
        m_Factory->SetGriddingTolerance(stock, m_Options.m_GriddingTolerance) != ZULMRSNoError) {
        m_Options.m_GriddingTolerance = 0.0;
    }
    const CellId cell = HasVolume(stock) ? AddStock(stock) : ZULMRSCellComplex::NoCell;
    if (cell == ZULMRSCellComplex::NoCell) {
        return;
    }
    UpdateBox(cell);
    m_Nodes.push_back({m_CellBoxes[cell], 0, {cell}});
    if (m_Options.m_LeafSize <= 0.0) {
        m_Options.m_LeafSize = LongestSide(0) / LeafSizesPerExtent;
    }
}

ZULMRSCuttingSolid::Impl::CellId ZULMRSCuttingSolid::Impl::AddStock(const ZULMathOBB& stock)
{
    if (m_Options.m_GriddingTolerance > 0.0) {
        return m_Complex->AddBox(stock, *m_Factory);
    }
    ZULMRSExactPlanes exactPlanes(*m_Factory);
    return m_Complex->AddBox(stock, exactPlanes);
}

bool ZULMRSCuttingSolid::Impl::Apply(const ZULMRSConvexTool& tool, Operation operation)
{
    if (m_Nodes.empty()) {
        return false;
    }
    Bounds bounds;
    for (const std::array<double, 4>& equation : tool.m_HalfSpaces) {
        AcquireBound(equation, bounds);
    }
    const bool hasChanged = Visit(0, bounds, operation);
    ReleaseBounds(bounds);
    if (m_Complex->IsCompactDue()) {
        Compact();
    }
    return hasChanged;
}

std::size_t ZULMRSCuttingSolid::Impl::Split(const std::array<double, 4>& equation)
{
    Bounds bounds;
    std::size_t count = 0;
    if (!m_Nodes.empty() && AcquireBound(equation, bounds)) {
        SplitIn(0, bounds.front(), count);
        ReleaseBounds(bounds);
    }
    return count;
}

std::vector<ZULMRSBSPPolyhedron*> ZULMRSCuttingSolid::Impl::GetCellsInTreeOrder() const
{
    std::vector<ZULMRSBSPPolyhedron*> cells;
    cells.reserve(m_Complex->GetNbCells());
    if (!m_Nodes.empty()) {
        CollectCells(0, cells);
    }
    return cells;
}

/// Takes a reference on the shared plane of a half-space; a plane given twice is taken once. False when it is
/// refused.
bool ZULMRSCuttingSolid::Impl::AcquireBound(const std::array<double, 4>& equation, Bounds& bounds)
{
    const bool isFinite =
        std::all_of(equation.begin(), equation.end(), [](double value) { return std::isfinite(value); });
    if (!isFinite || (equation[0] == 0.0 && equation[1] == 0.0 && equation[2] == 0.0)) {
        return false;
    }
    const unsigned int flags = m_Options.m_GriddingTolerance > 0.0
                                   ? ZULMRSBSPCreatePlane_AcceptOpposite | ZULMRSBSPCreatePlane_Quantize
                                   : ZULMRSBSPCreatePlane_AcceptOpposite;
    bool isOpposite = false;
    ZULMRSBSPPlane* plane = m_Factory->CreatePlane(equation, isOpposite, flags);
    if (plane == nullptr) {
        return false;
    }
    const int sign = isOpposite ? -1 : 1;
    const bool isKnown = std::any_of(bounds.begin(), bounds.end(), [&](const Bound& bound) {
        return bound.m_Plane == plane && bound.m_Sign == sign;
    });
    if (isKnown) {
        plane->Release();
        return true;
    }
    std::array<double, 4> outward = plane->GetCoords();
    for (double& coefficient : outward) {
        coefficient *= sign;
    }
    bounds.push_back({plane, sign, outward});
    return true;
}

void ZULMRSCuttingSolid::Impl::ReleaseBounds(const Bounds& bounds)
{
    m_Complex->ForgetPlanes();
    for (const Bound& bound : bounds) {
        bound.m_Plane->Release();
    }
}

bool ZULMRSCuttingSolid::Impl::Visit(std::uint32_t node, const Bounds& bounds, Operation operation)
{
    Bounds active;
    for (const Bound& bound : bounds) {
        switch (m_Nodes[node].m_Box.Locate(bound.m_Outward)) {
            case ZULMRSLeafBox::Position::InFront:
                return operation == Operation::KeepInside && RemoveAll(node);
            case ZULMRSLeafBox::Position::Unknown:
                active.push_back(bound);
                break;
            case ZULMRSLeafBox::Position::Behind:
                break;
        }
    }
    if (active.empty()) {
        return operation == Operation::Subtract && RemoveAll(node);
    }
    if (!IsLeaf(node)) {
        return VisitChildren(node, active, operation);
    }
    if (m_Nodes[node].m_Cells.empty()) {
        return false;
    }
    if (LongestSide(node) > m_Options.m_LeafSize && Refine(node)) {
        return VisitChildren(node, active, operation);
    }
    const bool hasChanged = CutLeaf(node, active, operation);
    RefineCrowded(node);
    return hasChanged;
}

void ZULMRSCuttingSolid::Impl::RefineCrowded(std::uint32_t node)
{
    const bool isCrowded = m_Nodes[node].m_Cells.size() > m_Options.m_MaxCellsPerLeaf &&
                           LongestSide(node) > m_Options.m_LeafSize * LeastLeafPerLeafSize;
    if (isCrowded && Refine(node)) {
        const std::uint32_t first = m_Nodes[node].m_FirstChild;
        RefineCrowded(first);
        RefineCrowded(first + 1);
    }
}

bool ZULMRSCuttingSolid::Impl::VisitChildren(std::uint32_t node, const Bounds& bounds, Operation operation)
{
    const std::uint32_t first = m_Nodes[node].m_FirstChild;
    const bool hasChangedFirst = Visit(first, bounds, operation);
    const bool hasChangedSecond = Visit(first + 1, bounds, operation);
    return hasChangedFirst || hasChangedSecond;
}

bool ZULMRSCuttingSolid::Impl::RemoveAll(std::uint32_t node)
{
    if (!IsLeaf(node)) {
        const bool hasChangedFirst = RemoveAll(m_Nodes[node].m_FirstChild);
        const bool hasChangedSecond = RemoveAll(m_Nodes[node].m_FirstChild + 1);
        return hasChangedFirst || hasChangedSecond;
    }
    std::vector<CellId>& cells = m_Nodes[node].m_Cells;
    const bool hasChanged = !cells.empty();
    for (const CellId cell : cells) {
        m_Complex->Remove(cell);
    }
    cells.clear();
    cells.shrink_to_fit();
    return hasChanged;
}

bool ZULMRSCuttingSolid::Impl::CutLeaf(std::uint32_t node, const Bounds& bounds, Operation operation)
{
    std::vector<CellId> remaining;
    bool hasChanged = false;
    for (const CellId cell : m_Nodes[node].m_Cells) {
        hasChanged = CutCell(cell, bounds, operation, remaining) || hasChanged;
    }
    m_Nodes[node].m_Cells.swap(remaining);
    return hasChanged;
}

/// Applies the tool to one cell; what is left of it joins the remaining cells. True when anything was
/// removed.
bool ZULMRSCuttingSolid::Impl::CutCell(CellId cell, const Bounds& bounds, Operation operation,
                                       std::vector<CellId>& remaining)
{
    const bool isSubtract = operation == Operation::Subtract;
    const auto settle = [&](CellId part, bool isKept) {
        if (isKept) {
            remaining.push_back(part);
        } else {
            m_Complex->Remove(part);
        }
        return !isKept;
    };
    Bounds crossing;
    for (const Bound& bound : bounds) {
        switch (Locate(cell, bound)) {
            case ZULMRSCellComplex::Position::InFront:
                return settle(cell, isSubtract);
            case ZULMRSCellComplex::Position::Crossing:
                crossing.push_back(bound);
                break;
            case ZULMRSCellComplex::Position::Behind:
                break;
        }
    }
    if (crossing.size() > 1) {
        m_Probe.Sort(m_Complex->GetCell(cell), crossing);
    }
    bool hasChanged = false;
    for (const Bound& bound : crossing) {
        const ZULMRSCellComplex::Position position = Locate(cell, bound);
        if (position == ZULMRSCellComplex::Position::InFront) {
            return settle(cell, isSubtract) || hasChanged;
        }
        if (position == ZULMRSCellComplex::Position::Crossing) {
            const CellId front = SplitCell(cell, bound.m_Plane);
            const CellId outside = bound.m_Sign > 0 ? front : cell;
            cell = bound.m_Sign > 0 ? cell : front;
            hasChanged = settle(outside, isSubtract) || hasChanged;
        }
    }
    return settle(cell, !isSubtract) || hasChanged;
}

/// Where a cell lies with respect to a tool's plane, front being the side that the tool leaves alone.
ZULMRSCellComplex::Position ZULMRSCuttingSolid::Impl::Locate(CellId cell, const Bound& bound)
{
    using Position = ZULMRSCellComplex::Position;
    switch (m_CellBoxes[cell].Locate(bound.m_Outward)) {
        case ZULMRSLeafBox::Position::InFront:
            return Position::InFront;
        case ZULMRSLeafBox::Position::Behind:
            return Position::Behind;
        case ZULMRSLeafBox::Position::Unknown:
            break;
    }
    const Position position = m_Complex->Locate(cell, *bound.m_Plane);
    if (bound.m_Sign > 0 || position == Position::Crossing) {
        return position;
    }
    return position == Position::InFront ? Position::Behind : Position::InFront;
}

ZULMRSCuttingSolid::Impl::CellId ZULMRSCuttingSolid::Impl::SplitCell(CellId cell, ZULMRSBSPPlane* plane)
{
    const CellId front = m_Complex->Split(cell, plane);
    UpdateBox(cell);
    UpdateBox(front);
    return front;
}

void ZULMRSCuttingSolid::Impl::UpdateBox(CellId cell)
{
    if (cell >= m_CellBoxes.size()) {
        m_CellBoxes.resize(cell + 1);
    }
    m_CellBoxes[cell] = ZULMRSLeafBox::Around(m_Complex->GetCell(cell));
}

void ZULMRSCuttingSolid::Impl::SplitIn(std::uint32_t node, const Bound& bound, std::size_t& count)
{
    if (m_Nodes[node].m_Box.Locate(bound.m_Outward) != ZULMRSLeafBox::Position::Unknown) {
        return;
    }
    if (IsLeaf(node)) {
        count += SplitLeaf(node, bound.m_Plane);
        return;
    }
    SplitIn(m_Nodes[node].m_FirstChild, bound, count);
    SplitIn(m_Nodes[node].m_FirstChild + 1, bound, count);
}

std::size_t ZULMRSCuttingSolid::Impl::SplitLeaf(std::uint32_t node, ZULMRSBSPPlane* plane)
{
    std::vector<CellId>& cells = m_Nodes[node].m_Cells;
    const std::size_t before = cells.size();
    for (std::size_t index = 0; index < before; ++index) {
        if (m_Complex->Locate(cells[index], *plane) == ZULMRSCellComplex::Position::Crossing) {
            cells.push_back(SplitCell(cells[index], plane));
        }
    }
    return cells.size() - before;
}

/// Divides a leaf by a wall across its longest side; false when there is no place for one.
bool ZULMRSCuttingSolid::Impl::Refine(std::uint32_t node)
{
    const ZULMRSLeafBox box = m_Nodes[node].m_Box;
    const std::size_t axis = box.LongestAxis();
    const double middle = box.Middle(axis);
    if (!(middle > box.m_Low[axis] && middle < box.m_High[axis])) {
        return false;
    }
    std::array<double, 4> equation{0.0, 0.0, 0.0, -middle};
    equation[axis] = 1.0;
    bool isOpposite = false;
    ZULMRSBSPPlane* wall = m_Factory->CreatePlane(equation, isOpposite, ZULMRSBSPCreatePlane_AcceptOpposite);
    SplitLeaf(node, wall);

    Node low{box, 0, {}};
    Node high{box, 0, {}};
    low.m_Box.m_High[axis] = middle;
    high.m_Box.m_Low[axis] = middle;
    for (const CellId cell : m_Nodes[node].m_Cells) {
        const bool isInFront = m_Complex->Locate(cell, *wall) == ZULMRSCellComplex::Position::InFront;
        (isInFront != isOpposite ? high : low).m_Cells.push_back(cell);
    }
    m_Complex->ForgetPlanes();
    wall->Release();

    m_Nodes[node].m_FirstChild = static_cast<std::uint32_t>(m_Nodes.size());
    m_Nodes[node].m_Cells.clear();
    m_Nodes[node].m_Cells.shrink_to_fit();
    m_Nodes.push_back(std::move(low));
    m_Nodes.push_back(std::move(high));
    return true;
}

double ZULMRSCuttingSolid::Impl::LongestSide(std::uint32_t node) const
{
    const ZULMRSLeafBox& box = m_Nodes[node].m_Box;
    return box.Length(box.LongestAxis());
}

void ZULMRSCuttingSolid::Impl::CollectCells(std::uint32_t node,
                                            std::vector<ZULMRSBSPPolyhedron*>& cells) const
{
    if (!IsLeaf(node)) {
        CollectCells(m_Nodes[node].m_FirstChild, cells);
        CollectCells(m_Nodes[node].m_FirstChild + 1, cells);
        return;
    }
    for (const CellId cell : m_Nodes[node].m_Cells) {
        cells.push_back(const_cast<ZULMRSBSPPolyhedron*>(&m_Complex->GetCell(cell)));
    }
}
