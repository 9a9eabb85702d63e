// CGAL's corefinement of meshes on the kernel of exact constructions.
#include <CGAL/Polygon_mesh_processing/corefinement.h>

#include <stdexcept>

#include "EpeckMesh.h"
#include "Workloads.h"
#include "ZULBenchMain.h"

namespace
{
using ZULBench::Mesh;

std::vector<Mesh> MakeTools(const std::vector<ZULBench::Sweep>& sweeps)
{
    std::vector<Mesh> tools;
    for (const ZULBench::Sweep& sweep : sweeps) {
        tools.push_back(ZULBench::MakeHull(sweep.m_Corners));
    }
    return tools;
}

double Subtract(const std::vector<Mesh>& tools)
{
    Mesh part = ZULBench::MakeStock();
    for (Mesh tool : tools) {  // a copy: corefinement changes both
        if (!CGAL::Polygon_mesh_processing::corefine_and_compute_difference(part, tool, part)) {
            throw std::runtime_error("corefinement refuses a tool");
        }
    }
    return ZULBench::VolumeOf(part);
}
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterSubtraction(MakeTools, Subtract);
}
