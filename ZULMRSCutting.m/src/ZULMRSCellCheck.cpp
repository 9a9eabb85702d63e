#include "ZULMRSCellCheck.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

#include "ZULMRSEdgeGroups.h"
#include "ZULMRSNumbering.h"
#include "ZULMRSPolygonCheck.h"

namespace
{
// Where a polygon stands: position of its cell, and its position there.
struct Place {
    std::size_t m_Cell;
    std::size_t m_Position;
};

struct PolygonRecord {
    std::vector<std::uint32_t> m_Loop;  // point numbers
    std::vector<Place> m_Holders;
    bool m_IsSound;
};

std::ostream& operator<<(std::ostream& stream, const Place& place)
{
    return stream << "Cell " << place.m_Cell << ", polygon " << place.m_Position;
}

class CellChecker
{
public:
    CellChecker(const std::vector<ZULMRSBSPPolyhedron*>& cells, std::size_t maxFaults)
        : m_Cells(cells),
          m_MaxFaults(std::max<std::size_t>(maxFaults, 1)),
          m_PolygonNumbers(4 * cells.size()),
          m_PointNumbers(4 * cells.size())
    {
    }

    ZULMRSCellCheckReport Run()
    {
        for (std::size_t cell = 0; cell < m_Cells.size() && !IsFull(); ++cell) {
            CheckCell(cell);
        }
        CheckHolders();
        if (m_AreLoopsKnown && !IsFull()) {
            CheckSurface();
        }
        return std::move(m_Report);
    }

private:
    bool IsFull() const { return m_Report.m_Faults.size() >= m_MaxFaults; }

    template <class... Parts>
    void Add(const Parts&... parts)
    {
        if (IsFull()) {
            return;
        }
        std::ostringstream text;
        (text << ... << parts);
        text << '.';
        m_Report.m_Faults.push_back(text.str());
    }

    std::string NameOf(const Place& place) const
    {
        std::ostringstream text;
        text << place << " (" << static_cast<const void*>(m_Cells[place.m_Cell]->GetPolygon(place.m_Position))
             << ')';
        return text.str();
    }

    int OrientationOf(const Place& place) const
    {
        return static_cast<signed char>(m_Cells[place.m_Cell]->GetPolygonOrientation(place.m_Position));
    }

    const PolygonRecord& RecordOf(const Place& place)
    {
        return m_Polygons[m_PolygonNumbers.GetNumber(m_Cells[place.m_Cell]->GetPolygon(place.m_Position))];
    }

    void CheckCell(std::size_t cell)
    {
        if (m_Cells[cell] == nullptr) {
            Add("Cell ", cell, " is null");
            return;
        }
        const std::size_t nbPolygons = m_Cells[cell]->GetNbPolygons();
        const std::size_t nbOrientations = m_Cells[cell]->GetPolygonsOrientations().size();
        if (nbPolygons != nbOrientations) {
            Add("Cell ", cell, " has ", nbPolygons, " polygons, but ", nbOrientations, " orientations");
            m_AreLoopsKnown = false;
            return;
        }
        bool isSound = true;
        for (std::size_t position = 0; position < nbPolygons; ++position) {
            isSound = CheckFace({cell, position}) && isSound;
        }
        m_AreLoopsKnown = m_AreLoopsKnown && isSound;
        if (isSound) {
            GatherPoints(cell);
            CheckEdges(cell);
            CheckConvexity(cell);
        }
    }

    // False when the face is at fault.
    bool CheckFace(const Place& place)
    {
        const ZULMRSBSPPolygon* polygon = m_Cells[place.m_Cell]->GetPolygon(place.m_Position);
        if (polygon == nullptr) {
            Add(place, " is null");
            return false;
        }
        const int orientation = OrientationOf(place);
        if (orientation != 1 && orientation != -1) {
            Add(NameOf(place), " has orientation ", orientation, ", which is neither 1 nor -1");
            return false;
        }
        const std::uint32_t number = m_PolygonNumbers.GetNumber(polygon);
        if (number == m_Polygons.size()) {
            Register(*polygon, place);
        }
        PolygonRecord& record = m_Polygons[number];
        if (!record.m_Holders.empty() && record.m_Holders.back().m_Cell == place.m_Cell) {
            Add(NameOf(place), " stands in the cell already, as polygon ",
                record.m_Holders.back().m_Position);
            return false;
        }
        record.m_Holders.push_back(place);
        return record.m_IsSound;
    }

    void Register(const ZULMRSBSPPolygon& polygon, const Place& place)
    {
        const std::string fault = ZULMRSFindPolygonFault(polygon);
        PolygonRecord record{{}, {}, fault.empty()};
        if (record.m_IsSound) {
            for (const ZULMRSBSPPoint* point : polygon.GetPoints()) {
                record.m_Loop.push_back(m_PointNumbers.GetNumber(point));
            }
        } else {
            Add(NameOf(place), ' ', fault);
        }
        m_Polygons.push_back(std::move(record));
    }

    // Numbers the points of one cell among themselves.
    void GatherPoints(std::size_t cell)
    {
        for (const std::uint32_t point : m_CellPoints) {
            m_LocalNumbers[point] = None;
        }
        m_CellPoints.clear();
        m_LocalNumbers.resize(m_PointNumbers.GetObjects().size(), None);
        for (std::size_t position = 0; position < m_Cells[cell]->GetNbPolygons(); ++position) {
            for (const std::uint32_t point : RecordOf({cell, position}).m_Loop) {
                if (m_LocalNumbers[point] == None) {
                    m_LocalNumbers[point] = static_cast<std::uint32_t>(m_CellPoints.size());
                    m_CellPoints.push_back(point);
                }
            }
        }
    }

    // The edges of a face as seen from outside the solid, vertex i to vertex i + 1 of the loop for a plane
    // that faces outwards, the reverse for one that faces inwards.
    template <class Number>
    void AddEdges(const Place& place, Number number)
    {
        const std::vector<std::uint32_t>& loop = RecordOf(place).m_Loop;
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const std::uint32_t start = number(loop[i]);
            const std::uint32_t end = number(loop[(i + 1) % loop.size()]);
            m_Edges.push_back(OrientationOf(place) > 0 ? ZULMRSEdgeGroups::Edge{start, end}
                                                       : ZULMRSEdgeGroups::Edge{end, start});
            m_EdgeNames.emplace_back(place, i);
        }
    }

    void ClearEdges()
    {
        m_Edges.clear();
        m_EdgeNames.clear();
    }

    std::string NameOfEdge(std::uint32_t edge) const
    {
        std::ostringstream text;
        text << NameOf(m_EdgeNames[edge].first) << " has an edge after vertex " << m_EdgeNames[edge].second;
        return text.str();
    }

    void CheckEdges(std::size_t cell)
    {
        ClearEdges();
        const std::size_t nbFaces = m_Cells[cell]->GetNbPolygons();
        for (std::size_t position = 0; position < nbFaces; ++position) {
            AddEdges({cell, position}, [&](std::uint32_t point) { return m_LocalNumbers[point]; });
        }
        const ZULMRSEdgeGroups groups(m_Edges, m_CellPoints.size());
        std::size_t nbEdges = 0;
        bool isClosed = true;
        groups.ForEach([&](auto group) {
            ++nbEdges;
            if (group.size() == 2 && groups.GetImbalance(group) == 0) {
                return;
            }
            isClosed = false;
            Add(NameOfEdge(group[0]), " that the cell's polygons meet ", CountUses(groups, group),
                " times in its two directions, instead of once in each");
        });
        const auto characteristic =
            static_cast<std::int64_t>(m_CellPoints.size() + nbFaces) - static_cast<std::int64_t>(nbEdges);
        if (isClosed && characteristic != 2) {
            Add("Cell ", cell, " has Euler characteristic ", characteristic, " instead of 2");
        }
    }

    // How often the first edge of a group is met its own way and the other way, as text.
    std::string CountUses(const ZULMRSEdgeGroups& groups, std::span<const std::uint32_t> group) const
    {
        const auto size = static_cast<int>(group.size());
        const auto& first = m_Edges[group[0]];
        const int imbalance = first[0] < first[1] ? groups.GetImbalance(group) : -groups.GetImbalance(group);
        return std::to_string((size + imbalance) / 2) + " and " + std::to_string((size - imbalance) / 2);
    }

    void CheckConvexity(std::size_t cell)
    {
        const auto& points = m_PointNumbers.GetObjects();
        for (std::size_t position = 0; position < m_Cells[cell]->GetNbPolygons() && !IsFull(); ++position) {
            const Place place{cell, position};
            const ZULMRSBSPPlane& plane = *m_Cells[cell]->GetPolygon(position)->GetSupportingPlane();
            bool hasDepth = false;
            for (const std::uint32_t point : m_CellPoints) {
                const int height = OrientationOf(place) * ZULMRSTrueSide(plane, *points[point]);
                if (height > 0) {
                    Add(NameOf(place), " has a vertex of its cell outside");
                    return;
                }
                hasDepth = hasDepth || height < 0;
            }
            if (!hasDepth) {
                Add(NameOf(place), " has the whole cell in its plane");
                return;
            }
        }
    }

    void CheckHolders()
    {
        for (const PolygonRecord& record : m_Polygons) {
            const std::vector<Place>& holders = record.m_Holders;
            if (holders.size() > 2) {
                Add(NameOf(holders[0]), " is held by ", holders.size(), " cells instead of at most 2");
            } else if (holders.size() == 2 && OrientationOf(holders[0]) == OrientationOf(holders[1])) {
                Add(NameOf(holders[0]), " is held with the same orientation by cell ", holders[1].m_Cell);
            }
        }
    }

    void CheckSurface()
    {
        ClearEdges();
        for (const PolygonRecord& record : m_Polygons) {
            if (record.m_Holders.size() == 1) {
                AddEdges(record.m_Holders[0], [](std::uint32_t point) { return point; });
            }
        }
        const ZULMRSEdgeGroups groups(m_Edges, m_PointNumbers.GetObjects().size());
        groups.ForEach([&](auto group) {
            if (groups.GetImbalance(group) != 0) {
                Add(NameOfEdge(group[0]), " that surface faces meet ", CountUses(groups, group),
                    " times in its two directions, instead of equally often");
            }
        });
    }

    static constexpr std::uint32_t None = ZULMRSEdgeGroups::NoPartner;

    const std::vector<ZULMRSBSPPolyhedron*>& m_Cells;
    std::size_t m_MaxFaults;
    ZULMRSCellCheckReport m_Report;
    bool m_AreLoopsKnown = true;
    ZULMRSNumbering<ZULMRSBSPPolygon> m_PolygonNumbers;
    ZULMRSNumbering<ZULMRSBSPPoint> m_PointNumbers;
    std::vector<PolygonRecord> m_Polygons;
    std::vector<std::uint32_t> m_CellPoints;    // numbers of the points of the cell at hand
    std::vector<std::uint32_t> m_LocalNumbers;  // of each point in the cell at hand, or None
    std::vector<ZULMRSEdgeGroups::Edge> m_Edges;
    std::vector<std::pair<Place, std::size_t>> m_EdgeNames;
};
}  // namespace

ZULMRSCellCheckReport ZULMRSCheckCells(const std::vector<ZULMRSBSPPolyhedron*>& cells, std::size_t maxFaults)
{
    return CellChecker(cells, maxFaults).Run();
}
