#include "ZULMRSCuttingSolidImpl.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <span>
#include <thread>
#include <utility>

#include "ZULExpFloatStatus.h"
#include "ZULMRSCellVolume.h"
#include "ZULMRSCompensatedSum.h"
#include "ZULMRSCutPlan.h"
#include "ZULMRSExactPlanes.h"
#include "ZULMRSFlatMesh.h"
#include "ZULMRSPolygonLoop.h"
#include "ZULMRSTaskGraph.h"

namespace
{
constexpr double LeafSizesPerExtent = 12.0;
/// Parts of the division that are cut by one thread at a time, where there is enough to do in them.
constexpr double PartSizePerLeafSize = 0.5;
/// Planes in the factory that are not worth looking through.
constexpr std::uint64_t LeastCompactAt = 1U << 14;

bool HasVolume(const ZULMathOBB& box)
{
    const double volume = box.Volume();
    return volume > 0.0 && std::isfinite(volume);
}

/// Whether the first of the normal's components that is not zero is negative.
bool LooksDown(const std::array<double, 4>& equation)
{
    const auto first =
        std::find_if(equation.begin(), equation.begin() + 3, [](double value) { return value != 0.0; });
    return first != equation.begin() + 3 && *first < 0.0;
}

double PartOf(std::size_t count, std::size_t total)
{
    auto dividend = static_cast<double>(count);
    auto divisor = static_cast<double>(total);
    const ZULExpFloatScope scope;
    ZULExpProcessor::Pin(dividend);
    ZULExpProcessor::Pin(divisor);
    double quotient = dividend / divisor;
    ZULExpProcessor::Pin(quotient);
    return quotient;
}
}  // namespace

ZULMRSCuttingSolid::Impl::Impl(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options)
    : m_Options(options), m_Factory(ZULMRSCreateObjectFactory(false)), m_CompactAt(LeastCompactAt)
{
    if (m_Options.m_NbThreads == 0) {
        m_Options.m_NbThreads = std::max(1U, std::thread::hardware_concurrency());
    }
    if (m_Options.m_GriddingTolerance > 0.0 &&
        m_Factory->SetGriddingTolerance(stock, m_Options.m_GriddingTolerance) != ZULMRSNoError) {
        m_Options.m_GriddingTolerance = 0.0;
    }
    ZULMRSCell* cell = HasVolume(stock) ? MakeStock(stock) : nullptr;
    if (cell == nullptr) {
        return;
    }
    m_Root = std::make_unique<ZULMRSSpatialNode>();
    m_Root->m_Box = cell->m_Box;
    m_Root->m_Cells.push_back(cell);
    if (m_Options.m_LeafSize <= 0.0) {
        m_Options.m_LeafSize = m_Root->LongestSide() / LeafSizesPerExtent;
    }
    for (std::size_t thread = 0; thread < m_Options.m_NbThreads; ++thread) {
        m_Cutters.push_back(std::make_unique<ZULMRSLeafCutter>(*m_Factory, m_Options));
    }
}

ZULMRSCuttingSolid::Impl::~Impl()
{
    m_Cutters.clear();
    std::vector<const ZULMRSSpatialNode*> leaves;
    if (m_Root != nullptr) {
        m_Root->ForEachLeaf([&](const ZULMRSSpatialNode& leaf) { leaves.push_back(&leaf); });
    }
    ZULMRSParallelFor(leaves.size(), m_Options.m_NbThreads, [&](std::size_t leaf, std::size_t) {
        for (ZULMRSCell* cell : leaves[leaf]->m_Cells) {
            cell->Release();
        }
    });
}

ZULMRSCell* ZULMRSCuttingSolid::Impl::MakeStock(const ZULMathOBB& stock)
{
    if (m_Options.m_GriddingTolerance > 0.0) {
        return ZULMRSMakeBoxCell(stock, *m_Factory);
    }
    ZULMRSExactPlanes exactPlanes(*m_Factory);
    return ZULMRSMakeBoxCell(stock, exactPlanes);
}

bool ZULMRSCuttingSolid::Impl::Apply(const ZULMRSConvexTool& tool, Operation operation)
{
    if (m_Root == nullptr) {
        return false;
    }
    const Bounds bounds = AcquireBounds(tool);
    const bool hasChanged = m_Cutters.front()->Apply(*m_Root, bounds, operation);
    ReleaseBounds(bounds);
    CompactWhenDue();
    return hasChanged;
}

std::vector<bool> ZULMRSCuttingSolid::Impl::SubtractAll(const std::vector<ZULMRSConvexTool>& tools,
                                                        const ProgressCall& progress)
{
    std::vector<bool> hasCut(tools.size(), false);
    if (m_Root == nullptr) {
        return hasCut;
    }
    std::vector<Bounds> bounds(tools.size());
    ZULMRSParallelFor(tools.size(), m_Options.m_NbThreads,
                      [&](std::size_t tool, std::size_t) { bounds[tool] = AcquireBounds(tools[tool]); });
    ZULMRSCutPlan plan = Plan(bounds);
    RunPlan(plan, bounds, hasCut, progress);
    std::for_each(bounds.begin(), bounds.end(), ReleaseBounds);
    CompactWhenDue();
    return hasCut;
}

/// Divides the solid where the tools cut, and tells which of them cut in which part.
ZULMRSCutPlan ZULMRSCuttingSolid::Impl::Plan(const std::vector<Bounds>& bounds)
{
    const ZULExpFloatScope scope;
    const double partSize = m_Options.m_LeafSize * PartSizePerLeafSize;
    for (const Bounds& tool : bounds) {
        m_Cutters.front()->Prepare(*m_Root, tool, partSize);
    }
    ZULMRSCutPlan plan(*m_Root, partSize);
    for (std::size_t tool = 0; tool < bounds.size(); ++tool) {
        plan.AddTool(static_cast<std::uint32_t>(tool), bounds[tool]);
    }
    return plan;
}

/// The progress call has the caller's floating-point environment, what the parts are cut in has not.
void ZULMRSCuttingSolid::Impl::RunPlan(ZULMRSCutPlan& plan, const std::vector<Bounds>& bounds,
                                       std::vector<bool>& hasCut, const ProgressCall& progress)
{
    const std::size_t nbCuts = plan.GetNbCuts();
    std::size_t nbDone = 0;
    std::mutex guard;
    plan.Run(m_Options.m_NbThreads, [&](const ZULMRSCutPlan::Task& task, std::size_t worker) {
        std::vector<std::uint32_t> effective;
        {
            const ZULExpFloatScope scope;
            for (const std::uint32_t tool : task.m_Tools) {
                if (m_Cutters[worker]->Apply(*task.m_Node, bounds[tool], Operation::Subtract)) {
                    effective.push_back(tool);
                }
            }
        }
        const std::lock_guard<std::mutex> lock(guard);
        for (const std::uint32_t tool : effective) {
            hasCut[tool] = true;
        }
        nbDone += task.m_Tools.size();
        if (worker == 0 && progress) {
            progress(PartOf(nbDone, nbCuts));
        }
    });
}

std::size_t ZULMRSCuttingSolid::Impl::Split(const std::array<double, 4>& equation)
{
    Bounds bounds;
    std::size_t count = 0;
    if (m_Root != nullptr && AcquireBound(equation, bounds)) {
        count = m_Cutters.front()->Split(*m_Root, bounds.front());
        ReleaseBounds(bounds);
    }
    return count;
}

std::size_t ZULMRSCuttingSolid::Impl::GetNbCells() const
{
    std::size_t count = 0;
    if (m_Root != nullptr) {
        m_Root->ForEachLeaf([&](const ZULMRSSpatialNode& leaf) { count += leaf.m_Cells.size(); });
    }
    return count;
}

std::size_t ZULMRSCuttingSolid::Impl::GetNbSurfaceFaces() const
{
    return FindSurface().size();
}

/// What ZULMRSFindSurface gives, from what the polygons know.
std::vector<ZULMRSSurfacePolygon> ZULMRSCuttingSolid::Impl::FindSurface() const
{
    std::vector<ZULMRSSurfacePolygon> surface;
    for (const ZULMRSBSPPolyhedron* cell : GetCellsInTreeOrder()) {
        ZULMRSForEachFace(*cell, [&](const ZULMRSBSPPolygon& polygon, signed char orientation) {
            if (static_cast<const ZULMRSFace&>(polygon).IsOnSurface()) {
                surface.push_back({&polygon, orientation});
            }
        });
    }
    return surface;
}

ZULMRSSurfaceMesh ZULMRSCuttingSolid::Impl::ExtractSurface() const
{
    return ZULMRSMeshSurface(FindSurface());
}

/// Summed by groups of cells of one size, so that it does not depend on the number of threads.
double ZULMRSCuttingSolid::Impl::GetVolume() const
{
    constexpr std::size_t groupSize = 1024;
    const std::vector<ZULMRSBSPPolyhedron*> cells = GetCellsInTreeOrder();
    std::vector<ZULMRSCompensatedSum> sums((cells.size() + groupSize - 1) / groupSize);
    ZULMRSParallelFor(sums.size(), m_Options.m_NbThreads, [&](std::size_t group, std::size_t) {
        const std::size_t first = group * groupSize;
        const std::size_t count = std::min(groupSize, cells.size() - first);
        sums[group] = ZULMRSSumVolumes(std::span(cells).subspan(first, count));
    });
    ZULMRSCompensatedSum sum;
    for (const ZULMRSCompensatedSum& ofGroup : sums) {
        sum.Add(ofGroup);
    }
    return sum.Get() / 6.0;
}

std::vector<ZULMRSBSPPolyhedron*> ZULMRSCuttingSolid::Impl::GetCellsInTreeOrder() const
{
    std::vector<ZULMRSBSPPolyhedron*> cells;
    if (m_Root != nullptr) {
        cells.reserve(GetNbCells());
        m_Root->ForEachLeaf([&](const ZULMRSSpatialNode& leaf) {
            cells.insert(cells.end(), leaf.m_Cells.begin(), leaf.m_Cells.end());
        });
    }
    return cells;
}

void ZULMRSCuttingSolid::Impl::Compact()
{
    m_Factory->Tass();
    m_CompactAt = std::max(LeastCompactAt, 2 * m_Factory->Size());
}

void ZULMRSCuttingSolid::Impl::CompactWhenDue()
{
    if (m_Factory->Size() > m_CompactAt) {
        Compact();
    }
}

ZULMRSCuttingSolid::Impl::Bounds ZULMRSCuttingSolid::Impl::AcquireBounds(const ZULMRSConvexTool& tool)
{
    const ZULExpFloatScope scope;
    Bounds bounds;
    bounds.reserve(tool.m_HalfSpaces.size());
    for (const std::array<double, 4>& equation : tool.m_HalfSpaces) {
        AcquireBound(equation, bounds);
    }
    return bounds;
}

/// Takes a reference on the shared plane of a half-space; a plane given twice is taken once. False when it is
/// refused. A half-space and its opposite ask for the same numbers, none of them a negative zero: which of
/// several threads asks first must not show.
bool ZULMRSCuttingSolid::Impl::AcquireBound(const std::array<double, 4>& equation, Bounds& bounds)
{
    const bool isFinite =
        std::all_of(equation.begin(), equation.end(), [](double value) { return std::isfinite(value); });
    if (!isFinite || (equation[0] == 0.0 && equation[1] == 0.0 && equation[2] == 0.0)) {
        return false;
    }
    const double turn = LooksDown(equation) ? -1.0 : 1.0;
    std::array<double, 4> turned = equation;
    for (double& coefficient : turned) {
        coefficient = coefficient * turn + 0.0;
    }
    const unsigned int flags = m_Options.m_GriddingTolerance > 0.0
                                   ? ZULMRSBSPCreatePlane_AcceptOpposite | ZULMRSBSPCreatePlane_Quantize
                                   : ZULMRSBSPCreatePlane_AcceptOpposite;
    bool isOpposite = false;
    ZULMRSBSPPlane* plane = m_Factory->CreatePlane(turned, isOpposite, flags);
    if (plane == nullptr) {
        return false;
    }
    const int sign = isOpposite != (turn < 0.0) ? -1 : 1;
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
    for (const Bound& bound : bounds) {
        bound.m_Plane->Release();
    }
}
