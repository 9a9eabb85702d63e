#ifndef ZULMRSCuttingSolidImpl_h
#define ZULMRSCuttingSolidImpl_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZULMRSCellComplex.h"
#include "ZULMRSCellProbe.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULMRSLeafBox.h"

/// The spatial division over a cell complex: a binary tree whose leaves own the cells inside their boxes.
class ZULMRSCuttingSolid::Impl
{
public:
    Impl(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options);

    bool Subtract(const ZULMRSConvexTool& tool) { return Apply(tool, Operation::Subtract); }
    bool KeepInside(const ZULMRSConvexTool& tool) { return Apply(tool, Operation::KeepInside); }
    std::size_t Split(const std::array<double, 4>& equation);

    const ZULMRSCellComplex& GetComplex() const { return *m_Complex; }
    ZULMRSBSPObjectFactory& GetFactory() { return *m_Factory; }
    std::vector<ZULMRSBSPPolyhedron*> GetCellsInTreeOrder() const;
    void Compact() { m_Complex->Compact(); }

private:
    using CellId = ZULMRSCellComplex::CellId;
    enum class Operation { Subtract, KeepInside };

    struct Node {
        ZULMRSLeafBox m_Box;
        std::uint32_t m_FirstChild = 0;  // 0: a leaf; the second child follows the first
        std::vector<CellId> m_Cells;     // of a leaf
    };

    using Bound = ZULMRSToolBound;
    using Bounds = std::vector<Bound>;

    CellId AddStock(const ZULMathOBB& stock);
    bool Apply(const ZULMRSConvexTool& tool, Operation operation);
    bool AcquireBound(const std::array<double, 4>& equation, Bounds& bounds);
    void ReleaseBounds(const Bounds& bounds);

    bool Visit(std::uint32_t node, const Bounds& bounds, Operation operation);
    bool VisitChildren(std::uint32_t node, const Bounds& bounds, Operation operation);
    bool RemoveAll(std::uint32_t node);
    bool CutLeaf(std::uint32_t node, const Bounds& bounds, Operation operation);
    bool CutCell(CellId cell, const Bounds& bounds, Operation operation, std::vector<CellId>& remaining);
    ZULMRSCellComplex::Position Locate(CellId cell, const Bound& bound);
    CellId SplitCell(CellId cell, ZULMRSBSPPlane* plane);
    void UpdateBox(CellId cell);
    std::size_t SplitLeaf(std::uint32_t node, ZULMRSBSPPlane* plane);
    void SplitIn(std::uint32_t node, const Bound& bound, std::size_t& count);

    bool IsLeaf(std::uint32_t node) const { return m_Nodes[node].m_FirstChild == 0; }
    bool Refine(std::uint32_t node);
    void RefineCrowded(std::uint32_t node);
    double LongestSide(std::uint32_t node) const;
    void CollectCells(std::uint32_t node, std::vector<ZULMRSBSPPolyhedron*>& cells) const;

    ZULMRSCuttingOptions m_Options;
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory;
    std::unique_ptr<ZULMRSCellComplex> m_Complex;
    ZULMRSCellProbe m_Probe;
    std::vector<ZULMRSLeafBox> m_CellBoxes;  // by cell
    std::vector<Node> m_Nodes;               // the root first; empty for an empty solid
};

#endif
