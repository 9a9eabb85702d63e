#ifndef MillCutter_h
#define MillCutter_h

#include <cstddef>
#include <vector>

#include "MillLattice.h"
#include "MillPath.h"
#include "MillProgress.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULMRSSurfaceMesh.h"

/// The stock under the tools. Takes places in nanometres, gives volumes and meshes in millimetres.
class MillCutter
{
public:
    /// With that many threads; 0: one a processor. Nothing but the time depends on it. The path is borrowed.
    MillCutter(const MillBox& stock, const MillPath& path, std::size_t nbThreads = 1);

    /// Sweeps every segment of the path in order.
    void CutAll(MillProgress& progress);

    std::size_t GetSweptCount() const { return m_SweptCount; }
    const std::vector<int>& GetRapidTouchLines() const { return m_RapidTouchLines; }
    double GetVolume() const;
    std::size_t GetNbCells() const { return m_Solid.GetNbCells(); }
    std::size_t GetNbSurfaceFaces() const { return m_Solid.GetNbSurfaceFaces(); }
    ZULMRSSurfaceMesh ExtractSurface() const;

private:
    bool IsClearOfStock(const MillPathSegment& segment) const;
    void CutBatch(std::size_t begin, std::size_t end, const ZULMRSCuttingSolid::ProgressCall& progress);

    MillBox m_Stock;
    const MillPath& m_Path;
    ZULMRSCuttingSolid m_Solid;
    std::size_t m_SweptCount = 0;
    std::vector<int> m_RapidTouchLines;
};

#endif
