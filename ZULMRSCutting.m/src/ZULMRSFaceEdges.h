#ifndef ZULMRSFaceEdges_h
#define ZULMRSFaceEdges_h

#include <algorithm>
#include <cstddef>
#include <vector>

#include "ZULMRSCell.h"

/// The position of the edge between two points of a loop, in either direction; the number of points when it
/// does not have it.
inline std::size_t ZULMRSFindEdge(const std::vector<ZULMRSBSPPoint*>& points, const ZULMRSBSPPoint* start,
                                  const ZULMRSBSPPoint* end)
{
    const std::size_t count = points.size();
    const auto found = std::find(points.begin(), points.end(), start);
    if (found == points.end()) {
        return count;
    }
    const auto position = static_cast<std::size_t>(found - points.begin());
    const std::size_t next = position + 1 == count ? 0 : position + 1;
    if (points[next] == end) {
        return next;
    }
    return points[position == 0 ? count - 1 : position - 1] == end ? position : count;
}

/// A face of a cell by its position in it, and the position of an edge in the face.
struct ZULMRSFaceEdge {
    ZULMRSFace* m_Face = nullptr;
    std::size_t m_Position = 0;
    std::size_t m_Edge = 0;
};

/// The face of a cell, other than the given one, that has an edge; null when there is none.
inline ZULMRSFaceEdge ZULMRSFindOtherFace(const ZULMRSCell& cell, const ZULMRSFace* face,
                                          const ZULMRSBSPPoint* start, const ZULMRSBSPPoint* end)
{
    for (std::size_t position = 0; position < cell.GetNbPolygons(); ++position) {
        ZULMRSFace* candidate = cell.GetFace(position);
        if (candidate != face) {
            const std::size_t edge = ZULMRSFindEdge(candidate->GetPoints(), start, end);
            if (edge < candidate->GetNbPoints()) {
                return {candidate, position, edge};
            }
        }
    }
    return {};
}

/// Hands a polygon to a cell with a reference of the caller's.
inline void ZULMRSHandOver(ZULMRSCell& cell, ZULMRSFace* face, char orientation)
{
    cell.GetPolygons().push_back(face);
    cell.GetPolygonsOrientations().push_back(orientation);
    face->HolderWith(orientation) = &cell;
}

#endif
