#ifndef ZULMRSLeafCutter_h
#define ZULMRSLeafCutter_h

#include <cstddef>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSCellProbe.h"
#include "ZULMRSCellSplitter.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULMRSSeparation.h"
#include "ZULMRSSpatialNode.h"
#include "ZULMRSToolBound.h"

/// Applies tools to the leaves of the spatial division and refines them. What one thread needs for it; see
/// ZULMRSCellSplitter for what several may do at once.
class ZULMRSLeafCutter
{
public:
    using Bound = ZULMRSToolBound;
    using Bounds = std::vector<Bound>;
    enum class Operation { Subtract, KeepInside };

    /// Both are borrowed.
    ZULMRSLeafCutter(ZULMRSBSPObjectFactory& factory, const ZULMRSCuttingOptions& options)
        : m_Factory(factory), m_Options(options)
    {
    }

    /// Applies a tool to what is below a node; true when anything was removed.
    bool Apply(ZULMRSSpatialNode& node, const Bounds& bounds, Operation operation);
    /// Splits every cell below a node that the plane crosses; their number.
    std::size_t Split(ZULMRSSpatialNode& node, const Bound& bound);
    /// Refines the leaves that a tool may cut until they are no longer than the size.
    void Prepare(ZULMRSSpatialNode& node, const Bounds& bounds, double size);

private:
    using Range = ZULMRSBoundStack::Range;

    void PrepareBelow(ZULMRSSpatialNode& node, const Range& bounds, double size);
    bool Visit(ZULMRSSpatialNode& node, const Range& bounds, Operation operation);
    bool VisitCrossed(ZULMRSSpatialNode& node, const Range& bounds, Operation operation);
    bool RemoveAll(ZULMRSSpatialNode& node);
    bool CutLeaf(ZULMRSSpatialNode& node, const Range& bounds, Operation operation);
    bool CutCell(ZULMRSCell* cell, const Range& bounds, Operation operation);
    bool Settle(ZULMRSCell* part, bool isKept, bool isNew);
    bool Misses(const ZULMRSCell& cell);
    bool FindCrossing(const ZULMRSCell& cell, const Range& bounds);
    ZULMRSCellSplitter::Position Locate(const ZULMRSCell& cell, const Bound& bound);
    ZULMRSCellSplitter::Position LocateByVertices(const ZULMRSCell& cell, const Bound& bound);
    std::size_t SplitLeaf(ZULMRSSpatialNode& node, const Bound& bound);
    std::size_t SplitIn(ZULMRSSpatialNode& node, const Bound& bound);
    bool Refine(ZULMRSSpatialNode& node);
    void RefineCrowded(ZULMRSSpatialNode& node);

    ZULMRSBSPObjectFactory& m_Factory;
    const ZULMRSCuttingOptions& m_Options;
    ZULMRSCellSplitter m_Splitter;
    ZULMRSCellProbe m_Probe;
    ZULMRSSeparation m_Separation;
    ZULMRSBoundStack m_Stack;
    // Scratch.
    std::vector<ZULMRSCell*> m_Remaining;
    std::vector<ZULMRSCell*> m_New;  // those of them that have just been cut
    std::vector<const Bound*> m_Crossing;
};

#endif
