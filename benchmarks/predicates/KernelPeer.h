#ifndef ZULBenchKernelPeer_h
#define ZULBenchKernelPeer_h

#include "Workloads.h"

namespace ZULBench
{
/// What the kernels of CGAL have in common.
template <class Kernel>
struct KernelPeer : PeerBase {
    using Plane = typename Kernel::Plane_3;
    using Vertex = typename Kernel::Point_3;
    using Matrix = std::array<typename Kernel::Vector_3, 3>;

    static Plane MakePlane(const Equation& plane) { return {plane[0], plane[1], plane[2], plane[3]}; }
    static Plane MakePlane(const ThreePoints& points)
    {
        return {MakeVertex(points[0]), MakeVertex(points[1]), MakeVertex(points[2])};
    }
    static Vertex MakeVertex(const Triple& vertex) { return {vertex[0], vertex[1], vertex[2]}; }
    static int SideOfVertex(const Plane& plane, const Vertex& vertex) { return plane.oriented_side(vertex); }

    static Matrix MakeMatrix(const MatrixCase& rows)
    {
        const auto makeVector = [](const Triple& row) {
            return typename Kernel::Vector_3(row[0], row[1], row[2]);
        };
        return {makeVector(rows[0]), makeVector(rows[1]), makeVector(rows[2])};
    }
    static int Determinant(const Matrix& m) { return CGAL::orientation(m[0], m[1], m[2]); }

    static int Parallel(const Plane& p, const Plane& q) { return CGAL::parallel(p, q) ? 1 : 0; }
    /// Asks for equal sides as well, which the cases grant.
    static int Coincident(const Plane& p, const Plane& q) { return p == q ? 1 : 0; }
};
}  // namespace ZULBench

#endif
