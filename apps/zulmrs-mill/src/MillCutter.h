#ifndef MillCutter_h
#define MillCutter_h

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
    MillCutter(const MillBox& stock, const MillPath& path);

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
    void Cut(const MillPathSegment& segment);

    MillBox m_Stock;
    const MillPath& m_Path;
    ZULMRSCuttingSolid m_Solid;
    std::size_t m_SweptCount = 0;
    std::vector<int> m_RapidTouchLines;
};

#endif
