#include "MillCutter.h"

#include <algorithm>
#include <array>

#include "MillSweep.h"

namespace
{

/// Exact: the sum of two whole numbers of this size, halved, fits a double.
ZULMathOBB ToBox(const MillBox& box)
{
    const auto half = [](std::int64_t value) { return static_cast<double>(value) / 2.0; };
    const MillVector sum = box.m_Min + box.m_Max;
    const MillVector size = box.m_Max - box.m_Min;
    return ZULMathOBB(ZULMathOBBBase({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0},
                                     {half(size.m_X), half(size.m_Y), half(size.m_Z)},
                                     {half(sum.m_X), half(sum.m_Y), half(sum.m_Z)}));
}

/// Segments that are cut together: enough to keep many threads busy, few enough to hold all their planes at
/// once. The solid does not depend on the number, its division into cells does.
constexpr std::size_t kBatchSize = 2048;

/// Leaves twice as wide as the tool: larger ones collect the cells of many moves, smaller ones cut each sweep
/// into many pieces and the part into many cells.
ZULMRSCuttingOptions OptionsFor(const MillPath& path, std::size_t nbThreads)
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = 4.0 * static_cast<double>(path.GetLargestReach());
    options.m_NbThreads = nbThreads;
    return options;
}

}  // namespace

MillCutter::MillCutter(const MillBox& stock, const MillPath& path, std::size_t nbThreads)
    : m_Stock(stock), m_Path(path), m_Solid(ToBox(stock), OptionsFor(path, nbThreads))
{
}

void MillCutter::CutAll(MillProgress& progress)
{
    const std::size_t total = m_Path.m_Segments.size();
    for (std::size_t begin = 0; begin < total; begin += kBatchSize) {
        progress.Update(begin, total);
        const std::size_t end = std::min(begin + kBatchSize, total);
        CutBatch(begin, end, [&](double part) {
            progress.Update(begin + static_cast<std::size_t>(part * static_cast<double>(end - begin)), total);
        });
    }
    progress.Update(total, total);
    progress.Finish();
}

bool MillCutter::IsClearOfStock(const MillPathSegment& segment) const
{
    const std::int64_t reach = m_Path.m_Tools[segment.m_Tool].m_Tool.GetReach();
    const auto misses = [reach](std::int64_t from, std::int64_t to, std::int64_t low, std::int64_t high) {
        return std::max(from, to) + reach <= low || std::min(from, to) - reach >= high;
    };
    return std::min(segment.m_Start.m_Z, segment.m_End.m_Z) >= m_Stock.m_Max.m_Z ||
           misses(segment.m_Start.m_X, segment.m_End.m_X, m_Stock.m_Min.m_X, m_Stock.m_Max.m_X) ||
           misses(segment.m_Start.m_Y, segment.m_End.m_Y, m_Stock.m_Min.m_Y, m_Stock.m_Max.m_Y);
}

void MillCutter::CutBatch(std::size_t begin, std::size_t end,
                          const ZULMRSCuttingSolid::ProgressCall& progress)
{
    std::vector<const MillPathSegment*> segments;
    std::vector<ZULMRSConvexTool> sweeps;
    for (std::size_t i = begin; i < end; ++i) {
        const MillPathSegment& segment = m_Path.m_Segments[i];
        if (!IsClearOfStock(segment)) {
            segments.push_back(&segment);
            sweeps.push_back(
                MillSweep(m_Path.m_Tools[segment.m_Tool].m_Tool, segment.m_Start, segment.m_End));
        }
    }
    const std::vector<bool> hasCut = m_Solid.SubtractAll(sweeps, progress);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (hasCut[i] && segments[i]->m_IsRapid) {
            m_RapidTouchLines.push_back(segments[i]->m_Line);
        }
    }
    m_SweptCount += segments.size();
}

double MillCutter::GetVolume() const
{
    constexpr double kCube = kMillNanometresPerMm * kMillNanometresPerMm * kMillNanometresPerMm;
    return m_Solid.GetVolume() / kCube;
}

ZULMRSSurfaceMesh MillCutter::ExtractSurface() const
{
    ZULMRSSurfaceMesh mesh = m_Solid.ExtractSurface();
    for (ZULMathPoint& p : mesh.m_Vertices) {
        p = {p.x / kMillNanometresPerMm, p.y / kMillNanometresPerMm, p.z / kMillNanometresPerMm};
    }
    return mesh;
}
