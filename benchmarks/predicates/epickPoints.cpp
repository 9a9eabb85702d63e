// The same kernel on determinants in another guise, points instead of vectors, for which it has static
// filters.
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include "Workloads.h"
#include "ZULBenchMain.h"

namespace
{
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

struct Peer : ZULBench::PeerBase {
    using Matrix = std::array<Kernel::Point_3, 3>;

    static Matrix MakeMatrix(const ZULBench::MatrixCase& rows)
    {
        const auto makePoint = [](const ZULBench::Triple& row) {
            return Kernel::Point_3(row[0], row[1], row[2]);
        };
        return {makePoint(rows[0]), makePoint(rows[1]), makePoint(rows[2])};
    }
    static int Determinant(const Matrix& m)
    {
        // The determinant of q - p, r - p and s - p; seen from the last point it changes its sign.
        return -CGAL::orientation(m[0], m[1], m[2], Kernel::Point_3(CGAL::ORIGIN));
    }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<Peer>();
}
