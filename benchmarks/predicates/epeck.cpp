// CGAL's kernel of exact constructions, which are evaluated when intervals do not suffice.
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/intersections.h>

#include "KernelPeer.h"
#include "ZULBenchMain.h"

namespace
{
using Kernel = CGAL::Exact_predicates_exact_constructions_kernel;

struct Peer : ZULBench::KernelPeer<Kernel> {
    using Point = Kernel::Point_3;
    static constexpr bool KeepsMore = true;

    static Point MakePoint(const Plane& p, const Plane& q, const Plane& r)
    {
        return boost::get<Point>(*CGAL::intersection(p, q, r));
    }
    static int Side(const Plane& plane, const Point& point) { return plane.oriented_side(point); }
    static int IsAfter(const Point& p, const Point& q) { return CGAL::compare_xyz(p, q) == CGAL::LARGER; }
    static int Equal(const Point& p, const Point& q) { return p == q ? 1 : 0; }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<Peer>();
}
