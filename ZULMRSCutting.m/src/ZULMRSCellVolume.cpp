#include "ZULMRSCellVolume.h"

#include "ZULExpFloatStatus.h"
#include "ZULMRSCellCheck.h"
#include "ZULMRSNumbering.h"
#include "ZULMRSPointLocation.h"
#include "ZULMRSPolygonLoop.h"
#include "ZULMathPoint.h"

namespace
{
class CellVolume
{
public:
    explicit CellVolume(std::size_t nbCells) : m_Numbers(4 * nbCells) {}

    // Signed tetrahedra from the first vertex met, which keeps the terms as small as the cell.
    void Add(const ZULMRSBSPPolyhedron& cell)
    {
        bool hasApex = false;
        ZULMathPoint apex;
        ZULMRSForEachFace(cell, [&](const ZULMRSBSPPolygon& polygon, signed char orientation) {
            if (!ZULMRSHasCompleteLoop(polygon)) {
                return;
            }
            const auto& points = polygon.GetPoints();
            if (!hasApex) {
                apex = Locate(points[0]);
                hasApex = true;
            }
            AddFace(points, apex, orientation > 0 ? 1.0 : -1.0);
        });
    }

    const ZULMRSCompensatedSum& GetSixTimes() const { return m_SixTimes; }

private:
    void AddFace(const std::vector<ZULMRSBSPPoint*>& points, const ZULMathPoint& apex, double sign)
    {
        const ZULMathVector first = Locate(points[0]) - apex;
        ZULMathVector before = Locate(points[1]) - apex;
        for (std::size_t i = 2; i < points.size(); ++i) {
            const ZULMathVector next = Locate(points[i]) - apex;
            m_SixTimes.Add(sign * (first * (before ^ next)));
            before = next;
        }
    }

    ZULMathPoint Locate(const ZULMRSBSPPoint* point)
    {
        const std::uint32_t number = m_Numbers.GetNumber(point);
        if (number == m_Locations.size()) {
            m_Locations.push_back(ZULMRSLocatePoint(*point));
        }
        return m_Locations[number];
    }

    ZULMRSNumbering<ZULMRSBSPPoint> m_Numbers;
    std::vector<ZULMathPoint> m_Locations;
    ZULMRSCompensatedSum m_SixTimes;
};
}  // namespace

ZULMRSCompensatedSum ZULMRSSumVolumes(std::span<ZULMRSBSPPolyhedron* const> cells)
{
    CellVolume volume(cells.size());
    for (const ZULMRSBSPPolyhedron* cell : cells) {
        if (cell != nullptr) {
            volume.Add(*cell);
        }
    }
    return volume.GetSixTimes();
}

double ZULMRSVolumeOfCells(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    const ZULExpFloatScope scope;
    double volume = ZULMRSSumVolumes(cells).Get() / 6.0;
    ZULExpProcessor::Pin(volume);
    return volume;
}
