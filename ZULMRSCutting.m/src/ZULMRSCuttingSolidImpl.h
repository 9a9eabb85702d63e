#ifndef ZULMRSCuttingSolidImpl_h
#define ZULMRSCuttingSolidImpl_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZULMRSCutPlan.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULMRSLeafCutter.h"
#include "ZULMRSSpatialNode.h"
#include "ZULMRSSurfaceGraph.h"

/// The spatial division of the stock, the factory of its planes, and what each thread needs to cut.
class ZULMRSCuttingSolid::Impl
{
public:
    using Operation = ZULMRSLeafCutter::Operation;

    Impl(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options);
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    bool Apply(const ZULMRSConvexTool& tool, Operation operation);
    std::vector<bool> SubtractAll(const std::vector<ZULMRSConvexTool>& tools, const ProgressCall& progress);
    std::size_t Split(const std::array<double, 4>& equation);

    std::size_t GetNbCells() const;
    std::size_t GetNbSurfaceFaces() const;
    ZULMRSBSPObjectFactory& GetFactory() { return *m_Factory; }
    std::vector<ZULMRSBSPPolyhedron*> GetCellsInTreeOrder() const;
    double GetVolume() const;
    ZULMRSSurfaceMesh ExtractSurface() const;
    void Compact();

private:
    using Bound = ZULMRSLeafCutter::Bound;
    using Bounds = ZULMRSLeafCutter::Bounds;

    std::vector<ZULMRSSurfacePolygon> FindSurface() const;
    ZULMRSCell* MakeStock(const ZULMathOBB& stock);
    Bounds AcquireBounds(const ZULMRSConvexTool& tool);
    bool AcquireBound(const std::array<double, 4>& equation, Bounds& bounds);
    static void ReleaseBounds(const Bounds& bounds);
    ZULMRSCutPlan Plan(const std::vector<Bounds>& bounds);
    void RunPlan(ZULMRSCutPlan& plan, const std::vector<Bounds>& bounds, std::vector<bool>& hasCut,
                 const ProgressCall& progress);
    void CompactWhenDue();

    ZULMRSCuttingOptions m_Options;
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory;
    std::unique_ptr<ZULMRSSpatialNode> m_Root;                 // null for an empty solid
    std::vector<std::unique_ptr<ZULMRSLeafCutter>> m_Cutters;  // one a thread
    std::uint64_t m_CompactAt;
};

#endif
