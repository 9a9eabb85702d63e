#ifndef ZULMRSCell_h
#define ZULMRSCell_h

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSLeafBox.h"

class ZULMRSCell;

/// A polygon that knows the cells that hold it. Links are borrowed.
class ZULMRSFace final : public ZULMRSBSPPolygon
{
public:
    using ZULMRSBSPPolygon::ZULMRSBSPPolygon;

    /// The cell that holds the polygon with this orientation (1 or -1), null where there is none.
    ZULMRSCell*& HolderWith(char orientation) { return m_Holders[static_cast<signed char>(orientation) > 0]; }
    ZULMRSCell* GetOtherHolder(const ZULMRSCell* cell) const
    {
        return m_Holders[0] == cell ? m_Holders[1] : m_Holders[0];
    }
    bool IsOnSurface() const { return (m_Holders[0] == nullptr) != (m_Holders[1] == nullptr); }

private:
    std::array<ZULMRSCell*, 2> m_Holders{};
};

/// A convex cell, all of whose polygons are ZULMRSFace, with every vertex cached.
class ZULMRSCell final : public ZULMRSBSPPolyhedron
{
public:
    using ZULMRSBSPPolyhedron::GetPolygon;
    ZULMRSFace* GetFace(std::size_t position) const
    {
        return static_cast<ZULMRSFace*>(GetPolygons()[position]);
    }

    /// Each vertex once; borrowed from the polygons.
    std::vector<ZULMRSBSPPoint*> m_Vertices;
    /// Contains the cell for certain.
    ZULMRSLeafBox m_Box{};
    /// The leaf of the spatial division that holds the cell; only compared.
    const void* m_Leaf = nullptr;
};

#endif
