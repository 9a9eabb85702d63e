// CGAL's Nef polyhedra on the kernel of exact constructions.
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Nef_polyhedron_3.h>
#include <CGAL/Polyhedron_3.h>
#include <CGAL/boost/graph/generators.h>

#include "Workloads.h"
#include "ZULBenchMain.h"

namespace
{
using Kernel = CGAL::Exact_predicates_exact_constructions_kernel;
using Nef = CGAL::Nef_polyhedron_3<Kernel>;

class Maker
{
public:
    static constexpr bool IsReusable = true;
    /// Longer ones take too long.
    static bool Handles(const ZULBench::Sequence& sequence) { return sequence.m_Planes.size() <= 31; }

    void Begin()
    {
        using Point = Kernel::Point_3;
        CGAL::Polyhedron_3<Kernel> box;
        CGAL::make_hexahedron(Point(-1, -1, -1), Point(1, -1, -1), Point(1, 1, -1), Point(-1, 1, -1),
                              Point(-1, 1, 1), Point(-1, -1, 1), Point(1, -1, 1), Point(1, 1, 1), box);
        m_Cell = Nef(box);
    }
    void Cut(const ZULBench::Equation& e)
    {
        m_Cell = m_Cell.intersection(Kernel::Plane_3(e[0], e[1], e[2], e[3]), Nef::CLOSED_HALFSPACE);
    }
    void Finish() {}
    // Without what is flat.
    std::size_t NbVertices() const { return m_Cell.regularization().number_of_vertices(); }
    std::size_t NbFaces() const { return m_Cell.regularization().number_of_facets(); }
    static bool IsSound() { return true; }

private:
    Nef m_Cell;
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterCells<Maker>();
}
