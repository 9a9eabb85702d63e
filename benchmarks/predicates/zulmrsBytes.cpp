#include "zulmrsBytes.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "ZULBenchData.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPCartesianPoint.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSBSPPredicates.h"

namespace ZULBench
{
namespace
{
/// Bytes in memory, whichever heap they come from.
double ResidentBytes()
{
    std::size_t nbPages = 0;
    std::size_t nbResident = 0;
    std::ifstream("/proc/self/statm") >> nbPages >> nbResident;
    return static_cast<double>(nbResident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Registers one kind of object; make(i) creates the i-th.
template <class Object, class Make>
void RegisterObject(const std::string& name, Make make)
{
    const auto run = [make](benchmark::State& state) {
        constexpr std::size_t nbObjects = 1U << 16U;
        using Made = decltype(make(0));
        std::vector<Made> objects(nbObjects, nullptr);
        malloc_trim(0);
        const double before = ResidentBytes();
        for (std::size_t i = 0; i < nbObjects; ++i) {
            objects[i] = make(i);
        }
        state.counters["bytes"] = (ResidentBytes() - before) / static_cast<double>(nbObjects);
        state.counters["sizeof"] = sizeof(Object);
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(objects.data());
        }
        for (Made object : objects) {
            object->Release();
        }
    };
    benchmark::RegisterBenchmark(("bytes/" + name).c_str(), run)->Iterations(1)->Repetitions(1);
}

/// The planes of a box about the origin.
std::vector<ZULMRSBSPPlane*> BoxPlanes()
{
    std::vector<ZULMRSBSPPlane*> planes;
    for (const double side : {1.0, -1.0}) {
        planes.push_back(ZULMRSBSPPlaneNS::CreateCartesianPlane(side, 0, 0, -1));
        planes.push_back(ZULMRSBSPPlaneNS::CreateCartesianPlane(0, side, 0, -1));
        planes.push_back(ZULMRSBSPPlaneNS::CreateCartesianPlane(0, 0, side, -1));
    }
    return planes;
}

ZULMRSBSPPoint* MakePoint(ZULMRSBSPPlane* p, ZULMRSBSPPlane* q, ZULMRSBSPPlane* r)
{
    bool isValid = false;
    return ZULMRSBSPPointNS::CreatePoint(p, q, r, isValid, false);
}

/// Points of one and the same three planes, so that no planes are counted.
void RegisterPoints()
{
    const auto makePlane = [](const Equation& equation) {
        return ZULMRSBSPPlaneNS::CreateCartesianPlane(equation);
    };
    const SideCase one = MakeSideCases(Kinds[2]).front();
    ZULMRSBSPPlane* const p = makePlane(one.m_Point[0]);
    ZULMRSBSPPlane* const q = makePlane(one.m_Point[1]);
    ZULMRSBSPPlane* const r = makePlane(one.m_Point[2]);
    ZULMRSBSPPlane* const tested = makePlane(one.m_Plane);
    RegisterObject<ZULMRSBSP3PlanesPoint>("point", [=](std::size_t) { return MakePoint(p, q, r); });
    RegisterObject<ZULMRSBSP3PlanesPoint>("point_after_exact_test", [=](std::size_t) {
        ZULMRSBSPPoint* point = MakePoint(p, q, r);
        benchmark::DoNotOptimize(ZULMRSBSPPredicates::IsPointInFrontOfPlane(*tested, *point));
        return point;
    });
    RegisterObject<ZULMRSBSPCartesianPoint>("cartesian_point_of_given_planes", [=](std::size_t) {
        return ZULMRSBSPPointNS::CreatePoint(p, q, r, ZULMathPoint(1, 2, 3));
    });
}
}  // namespace

void RegisterBytes()
{
    RegisterObject<ZULMRSBSPCartesianPlane>("cartesian_plane", [](std::size_t i) {
        return ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 2, 3, static_cast<double>(i));
    });
    RegisterObject<ZULMRSBSP3PointsPlane>("three_points_plane", [](std::size_t i) {
        const auto x = static_cast<double>(i);
        return ZULMRSBSPPlaneNS::Create3PointsPlane(ZULMathPoint(x, 0, 1), ZULMathPoint(0, x + 1, 1),
                                                    ZULMathPoint(x, x, 2));
    });
    RegisterPoints();
    RegisterObject<ZULMRSBSPPolygon>("polygon_of_4_edges", [planes = BoxPlanes()](std::size_t) {
        static const std::vector<ZULMRSBSPPoint*> points = {
            MakePoint(planes[0], planes[1], planes[2]), MakePoint(planes[0], planes[2], planes[4]),
            MakePoint(planes[0], planes[4], planes[5]), MakePoint(planes[0], planes[5], planes[1])};
        return new ZULMRSBSPPolygon(planes[0], {planes[1], planes[2], planes[4], planes[5]},
                                    std::vector<ZULMRSBSPPoint*>(points), {1, 1, 1, 1});
    });
    RegisterObject<ZULMRSBSPPolyhedron>("box_polyhedron_with_all_its_own", [](std::size_t i) {
        const ZULMathOBB box(
            ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, {static_cast<double>(i), 0, 0}));
        return new ZULMRSBSPPolyhedron(box, nullptr);
    });
}
}  // namespace ZULBench
