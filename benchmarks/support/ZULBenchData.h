#ifndef ZULBenchData_h
#define ZULBenchData_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZULBenchKinds.h"

/// The cases of the predicates: the same for every peer, from fixed seeds. All numbers are integers times one
/// power of two per kind, so that degeneracies are exact by construction. Three planes that make a point
/// always meet in one.
namespace ZULBench
{
constexpr std::size_t NbCases = 2048;

using Equation = std::array<double, 4>;
using Triple = std::array<double, 3>;
using ThreePlanes = std::array<Equation, 3>;
using ThreePoints = std::array<Triple, 3>;

/// A point as three planes, and a plane to test it against.
struct SideCase {
    ThreePlanes m_Point;
    Equation m_Plane;
};
/// The same with every plane given by three points.
struct PointsSideCase {
    std::array<ThreePoints, 3> m_Point;
    ThreePoints m_Plane;
};
/// A point by its coordinates, and a plane.
struct VertexCase {
    Triple m_Vertex;
    Equation m_Plane;
};
using MatrixCase = std::array<Triple, 3>;
struct PlanePair {
    Equation m_P;
    Equation m_Q;
};
struct PointPair {
    ThreePlanes m_P;
    ThreePlanes m_Q;
};

std::vector<SideCase> MakeSideCases(const Kind& kind);
std::vector<PointsSideCase> MakePointsSideCases(const Kind& kind);
std::vector<VertexCase> MakeVertexCases(const Kind& kind);
std::vector<MatrixCase> MakeMatrixCases(const Kind& kind);
/// Degenerate: the normals are proportional, the equations not.
std::vector<PlanePair> MakeParallelCases(const Kind& kind);
/// Degenerate: the equations are proportional, by a positive factor.
std::vector<PlanePair> MakeCoincidentCases(const Kind& kind);
/// Degenerate: one point made by two triples without a plane in common.
std::vector<PointPair> MakePointPairs(const Kind& kind);
}  // namespace ZULBench

#endif
