#ifndef ZULTestBlocks_h
#define ZULTestBlocks_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULTestGeometry.h"
#include "ZULTestPolygons.h"

/// Conforming cells made by hand, without a cutter or a factory.
namespace ZULTest
{
/// A block of a grid: from one node to another.
struct Block {
    std::array<int, 3> m_Low;
    std::array<int, 3> m_High;
    bool m_IsSolid = true;
};

/// Divides a block again and again by walls that run through one part only.
inline std::vector<Block> DivideAtRandom(Random& random, const Block& whole, int nbDivisions)
{
    std::vector<Block> blocks{whole};
    for (int i = 0; i < nbDivisions; ++i) {
        Block& block =
            blocks[static_cast<std::size_t>(random.Integer(0, static_cast<int>(blocks.size()) - 1))];
        const auto axis = static_cast<std::size_t>(random.Integer(0, 2));
        if (block.m_High[axis] - block.m_Low[axis] < 2) {
            continue;
        }
        Block part = block;
        part.m_Low[axis] = random.Integer(block.m_Low[axis] + 1, block.m_High[axis] - 1);
        block.m_High[axis] = part.m_Low[axis];
        blocks.push_back(part);
    }
    return blocks;
}

/// All unit blocks of a grid; isSolid(i, j, k) tells which are solid.
template <class IsSolid>
std::vector<Block> DivideWholly(const std::array<int, 3>& size, IsSolid isSolid)
{
    std::vector<Block> blocks;
    for (int k = 0; k < size[2]; ++k) {
        for (int j = 0; j < size[1]; ++j) {
            for (int i = 0; i < size[0]; ++i) {
                blocks.push_back({{i, j, k}, {i + 1, j + 1, k + 1}, isSolid(i, j, k)});
            }
        }
    }
    return blocks;
}

/// A point whose numbers in every arithmetic are the negatives of the usual ones, which is the same point.
class NegatedPoint : public ZULMRSBSP3PlanesPoint
{
public:
    using ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint;

    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override
    {
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
    {
        return Negate(ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_ExpInterval());
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override
    {
        return Negate(ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_FloatRing());
    }

private:
    template <class Number>
    static ZULMRSBSPQuadruple<Number> Negate(const ZULMRSBSPQuadruple<Number>& quadruple)
    {
        const std::unique_ptr<const std::array<Number, 4>> numbers(std::get<0>(quadruple));
        return {new std::array<Number, 4>{-(*numbers)[0], -(*numbers)[1], -(*numbers)[2], -(*numbers)[3]},
                true};
    }
};

/// The solid blocks of a division of a grid as cells. The grid's planes are parallel to three given normals,
/// which must be right-handed; plane s of family a is normal . x = s. A face between two blocks is one
/// polygon, and every node that is the corner of any polygon is a vertex of every edge that it lies on.
class BlockCells
{
public:
    static constexpr std::array<Point3, 3> AxisNormals{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    static constexpr std::array<Point3, 3> SkewNormals{{{1, 0.3, 0.1}, {-0.2, 1, 0.7}, {0.15, -0.1, 1}}};

    /// With mixed planes, each plane comes as three objects, one of which faces the other way, and polygons
    /// use them in turn.
    explicit BlockCells(const std::vector<Block>& blocks, const std::array<Point3, 3>& normals = AxisNormals,
                        bool hasMixedPlanes = false, bool hasNegatedPoints = false)
        : m_Normals(normals), m_NbVariants(hasMixedPlanes ? 3 : 1), m_HasNegatedPoints(hasNegatedPoints)
    {
        CollectRectangles(blocks);
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            m_Cells.emplace_back(new ZULMRSBSPPolyhedron());
        }
        for (const Rectangle& rectangle : m_Rectangles) {
            AddPolygon(rectangle);
        }
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            if (blocks[i].m_IsSolid) {
                m_Solids.push_back(m_Cells[i].get());
            }
        }
    }

    const std::vector<ZULMRSBSPPolyhedron*>& GetCells() const { return m_Solids; }

private:
    using Node = std::array<int, 3>;
    static constexpr std::size_t NoBlock = static_cast<std::size_t>(-1);

    struct Rectangle {
        std::size_t m_Axis;
        Node m_Low;  // equal to m_High along the axis
        Node m_High;
        std::size_t m_Below;  // blocks, or NoBlock
        std::size_t m_Above;
    };

    struct LoopVertex {
        Node m_Node;
        std::size_t m_EdgeAxis;  // plane of the edge that arrives
        int m_EdgePosition;
        char m_EdgeOrientation;
    };

    static bool IsSolid(const std::vector<Block>& blocks, std::size_t i)
    {
        return i != NoBlock && blocks[i].m_IsSolid;
    }

    void CollectRectangles(const std::vector<Block>& blocks)
    {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                bool hasBelow = false;
                for (std::size_t j = 0; j < blocks.size(); ++j) {
                    hasBelow = AddSharedRectangle(blocks, j, i, axis) || hasBelow;
                }
                if (!hasBelow) {
                    Rectangle face{axis, blocks[i].m_Low, blocks[i].m_High, NoBlock, i};
                    face.m_High[axis] = face.m_Low[axis];
                    Add(blocks, face);
                }
                if (IsTop(blocks, i, axis)) {
                    Rectangle face{axis, blocks[i].m_Low, blocks[i].m_High, i, NoBlock};
                    face.m_Low[axis] = face.m_High[axis];
                    Add(blocks, face);
                }
            }
        }
    }

    static bool IsTop(const std::vector<Block>& blocks, std::size_t i, std::size_t axis)
    {
        for (const Block& other : blocks) {
            if (other.m_High[axis] > blocks[i].m_High[axis]) {
                return false;
            }
        }
        return true;
    }

    bool AddSharedRectangle(const std::vector<Block>& blocks, std::size_t below, std::size_t above,
                            std::size_t axis)
    {
        if (blocks[below].m_High[axis] != blocks[above].m_Low[axis]) {
            return false;
        }
        Rectangle face{axis, blocks[above].m_Low, blocks[above].m_High, below, above};
        face.m_High[axis] = face.m_Low[axis];
        for (const std::size_t other : {(axis + 1) % 3, (axis + 2) % 3}) {
            face.m_Low[other] = std::max(face.m_Low[other], blocks[below].m_Low[other]);
            face.m_High[other] = std::min(face.m_High[other], blocks[below].m_High[other]);
            if (face.m_Low[other] >= face.m_High[other]) {
                return false;
            }
        }
        Add(blocks, face);
        return true;
    }

    void Add(const std::vector<Block>& blocks, const Rectangle& face)
    {
        if (!IsSolid(blocks, face.m_Below) && !IsSolid(blocks, face.m_Above)) {
            return;
        }
        m_Rectangles.push_back(face);
        for (const LoopVertex& vertex : Corners(face)) {
            m_Vertices.insert(vertex.m_Node);
        }
    }

    // Counter-clockwise seen from above.
    static std::array<LoopVertex, 4> Corners(const Rectangle& face)
    {
        const std::size_t u = (face.m_Axis + 1) % 3;
        const std::size_t v = (face.m_Axis + 2) % 3;
        Node lowHigh = face.m_Low;
        lowHigh[v] = face.m_High[v];
        Node highLow = face.m_Low;
        highLow[u] = face.m_High[u];
        return {{{face.m_Low, u, face.m_Low[u], -1},
                 {highLow, v, face.m_Low[v], -1},
                 {face.m_High, u, face.m_High[u], 1},
                 {lowHigh, v, face.m_High[v], 1}}};
    }

    // The corners, and the other vertices on the edges between them.
    std::vector<LoopVertex> LoopOf(const Rectangle& face) const
    {
        const std::array<LoopVertex, 4> corners = Corners(face);
        std::vector<LoopVertex> loop;
        for (std::size_t i = 0; i < 4; ++i) {
            Node node = corners[(i + 3) % 4].m_Node;
            const Node& end = corners[i].m_Node;
            while (node != end) {
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    node[axis] += (node[axis] < end[axis] ? 1 : 0) - (node[axis] > end[axis] ? 1 : 0);
                }
                if (m_Vertices.count(node) != 0) {
                    loop.push_back(corners[i]);
                    loop.back().m_Node = node;
                }
            }
        }
        return loop;
    }

    void AddPolygon(const Rectangle& face)
    {
        std::vector<LoopVertex> loop = LoopOf(face);
        const int variant = m_NbVariants > 1 ? static_cast<int>(m_NbPlanesUsed++ % 3) : 0;
        ZULMRSBSPPlane* plane = PlaneOf(face.m_Axis, face.m_Low[face.m_Axis], variant);
        const bool isReversed = variant == 2;
        std::vector<ZULMRSBSPPlane*> edges;
        std::vector<ZULMRSBSPPoint*> points;
        std::vector<char> orientations;
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const std::size_t vertex = isReversed ? loop.size() - 1 - i : i;
            const LoopVertex& arrival = loop[isReversed ? (vertex + 1) % loop.size() : vertex];
            const int edgeVariant = m_NbVariants > 1 ? static_cast<int>(m_NbPlanesUsed++ % 3) : 0;
            edges.push_back(PlaneOf(arrival.m_EdgeAxis, arrival.m_EdgePosition, edgeVariant));
            points.push_back(PointAt(loop[vertex].m_Node));
            orientations.push_back(
                static_cast<char>(arrival.m_EdgeOrientation * (edgeVariant == 2 ? -1 : 1)));
        }
        m_Polygons.emplace_back(
            new ZULMRSBSPPolygon(plane, std::move(edges), std::move(points), std::move(orientations)));
        const int upward = isReversed ? -1 : 1;
        if (face.m_Below != NoBlock) {
            m_Cells[face.m_Below]->AddAPolygon(m_Polygons.back().get(), static_cast<char>(upward));
        }
        if (face.m_Above != NoBlock) {
            m_Cells[face.m_Above]->AddAPolygon(m_Polygons.back().get(), static_cast<char>(-upward));
        }
    }

    // Variants: 0, 1 the normal's way, 2 the other way.
    ZULMRSBSPPlane* PlaneOf(std::size_t axis, int position, int variant)
    {
        OwnedPlane& plane = m_Planes[{static_cast<int>(axis), position, variant}];
        if (plane == nullptr) {
            const double scale = std::array<double, 3>{1.0, 4.0, -2.0}[static_cast<std::size_t>(variant)];
            const Point3& normal = m_Normals[axis];
            plane = MakePlane(scale * normal[0], scale * normal[1], scale * normal[2], -scale * position);
        }
        return plane.get();
    }

    ZULMRSBSPPoint* PointAt(const Node& node)
    {
        OwnedPoint& point = m_Points[node];
        if (point == nullptr) {
            bool isValid = false;
            const std::array<ZULMRSBSPPlane*, 3> planes{PlaneOf(0, node[0], 0), PlaneOf(1, node[1], 0),
                                                        PlaneOf(2, node[2], 0)};
            point = OwnedPoint(m_HasNegatedPoints ? new NegatedPoint(planes, isValid)
                                                  : ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1],
                                                                                  planes[2], isValid, true));
        }
        return point.get();
    }

    std::array<Point3, 3> m_Normals;
    std::size_t m_NbVariants;
    bool m_HasNegatedPoints;
    std::size_t m_NbPlanesUsed = 0;
    std::vector<Rectangle> m_Rectangles;
    std::set<Node> m_Vertices;
    std::map<std::array<int, 3>, OwnedPlane> m_Planes;
    std::map<Node, OwnedPoint> m_Points;
    std::vector<OwnedPolygon> m_Polygons;
    std::vector<OwnedPolyhedron> m_Cells;
    std::vector<ZULMRSBSPPolyhedron*> m_Solids;
};
}  // namespace ZULTest

#endif
