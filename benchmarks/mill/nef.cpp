// CGAL's Nef polyhedra on the kernel of exact constructions.
#include <CGAL/Nef_polyhedron_3.h>
#include <CGAL/boost/graph/convert_nef_polyhedron_to_polygon_mesh.h>

#include "EpeckMesh.h"
#include "Workloads.h"
#include "ZULBenchMain.h"

namespace
{
using Nef = CGAL::Nef_polyhedron_3<ZULBench::Kernel>;

std::vector<Nef> MakeTools(const std::vector<ZULBench::Sweep>& sweeps)
{
    std::vector<Nef> tools;
    for (const ZULBench::Sweep& sweep : sweeps) {
        tools.emplace_back(ZULBench::MakeHull(sweep.m_Corners));
    }
    return tools;
}

double Subtract(const std::vector<Nef>& tools)
{
    Nef part(ZULBench::MakeStock());
    for (const Nef& tool : tools) {
        part -= tool;
    }
    ZULBench::Mesh mesh;
    CGAL::convert_nef_polyhedron_to_polygon_mesh(part.regularization(), mesh, true);
    return ZULBench::VolumeOf(mesh);
}
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterSubtraction(MakeTools, Subtract);
}
