#ifndef ZULMRSCellOutline_h
#define ZULMRSCellOutline_h

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ZULMRSCell.h"
#include "ZULMRSVertexTable.h"

/// A cell in numbers: its vertices, in its own order, and the loops of its faces by positions among them.
/// Scratch; true until the cell or one of its neighbours is split.
class ZULMRSCellOutline
{
public:
    using Index = ZULMRSVertexTable::Index;

    /// Reads the vertices unless it is the cell's outline already.
    void Open(const ZULMRSCell& cell, ZULMRSVertexTable& table)
    {
        if (m_Cell == &cell) {
            return;
        }
        m_Cell = &cell;
        m_HasLoops = false;
        m_Vertices.clear();
        for (ZULMRSBSPPoint* point : cell.m_Vertices) {
            m_Vertices.push_back(table.IndexOf(point));
        }
    }
    /// The same with the loops.
    void OpenLoops(const ZULMRSCell& cell, ZULMRSVertexTable& table)
    {
        Open(cell, table);
        if (m_HasLoops) {
            return;
        }
        m_HasLoops = true;
        for (std::size_t local = 0; local < m_Vertices.size(); ++local) {
            table.SetLocal(m_Vertices[local], static_cast<Index>(local));
        }
        m_Corners.clear();
        m_Starts.assign(1, 0);
        for (const ZULMRSBSPPolygon* polygon : cell.GetPolygons()) {
            for (ZULMRSBSPPoint* point : polygon->GetPoints()) {
                m_Corners.push_back(table.LocalOf(table.IndexOf(point)));
            }
            m_Starts.push_back(m_Corners.size());
        }
    }
    void Forget() { m_Cell = nullptr; }

    std::size_t GetNbVertices() const { return m_Vertices.size(); }
    /// The numbers of the vertices in the table.
    const std::vector<Index>& GetVertices() const { return m_Vertices; }
    /// The corners of a face: positions among the vertices.
    std::span<const Index> GetLoop(std::size_t face) const
    {
        return {m_Corners.data() + m_Starts[face], m_Starts[face + 1] - m_Starts[face]};
    }

private:
    const ZULMRSCell* m_Cell = nullptr;
    bool m_HasLoops = false;
    std::vector<Index> m_Vertices;
    std::vector<Index> m_Corners;
    std::vector<std::size_t> m_Starts;
};

#endif
