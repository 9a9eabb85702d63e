// Makes objects and ends: what the library writes when it is unloaded is the test's.
#include <array>
#include <iostream>
#include <streambuf>
#include <string>

#include "ZULKLOOutput.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"

namespace
{
const std::array<std::array<double, 3>, 3> Points = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}};

void MakePlanes()
{
    for (int i = 0; i < 5; ++i) {
        ZULMRSBSPPlane::ReleaseObject(ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 2, 3, i));
        ZULMRSBSPPlane::ReleaseObject(ZULMRSBSPPlaneNS::Create3PointsPlane(Points));
    }
    const ZULMRSBSPCartesianPlane cartesian({1, 0, 0, 0});
    const ZULMRSBSP3PointsPlane threePoints(Points);
    ZULMRSBSPCartesianPlane copy(cartesian);
    ZULMRSBSP3PointsPlane otherCopy(threePoints);
    copy = cartesian;
    otherCopy = threePoints;
    ZULMRSBSPPlane::ReleaseObject(ZULMRSBSPPlaneNS::CreateCartesianPlane(0, 0, 0, 1));
}

void MakePoints()
{
    ZULMRSBSPPoint::ReleaseObject(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)));
    ZULMRSBSPPoint* point = ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(4, 5, 6));
    bool isValid = false;
    ZULMRSBSPPoint::ReleaseObject(ZULMRSBSPPointNS::CreatePoint(point->GetPlane(0), point->GetPlane(1),
                                                                point->GetPlane(2), isValid, false));
    point->Release();
}

void MakePolyhedra()
{
    (new ZULMRSBSPPolygon)->Release();
    (new ZULMRSBSPPolyhedron)->Release();
    (new ZULMRSBSPPolyhedron)->Release();
}

/// A host's stream: it lives as long as the process and marks each write.
class HostBuffer : public std::streambuf
{
protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        std::cout << "host: " << std::string(text, static_cast<std::size_t>(count));
        return count;
    }
    int sync() override
    {
        std::cout.flush();
        return 0;
    }
};

void Redirect()
{
    ZULKLOOutput::Redirect(new std::ostream(new HostBuffer));
    ZULMRSBSPPlane::ReleaseObject(ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 2, 3, 4));
}

/// Lets go of its plane when the program ends.
struct LateOwner {
    ZULMRSBSPPlane* m_Plane = nullptr;
    ~LateOwner() { ZULMRSBSPPlane::ReleaseObject(m_Plane); }
};
LateOwner g_Cartesian;
LateOwner g_ThreePoints;
ZULMRSBSPPlane* volatile g_Leaked = nullptr;  // volatile: kept in memory, where leak checkers see it

void MakeLatePlanes()
{
    g_Cartesian.m_Plane = ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 2, 3, 4);
    g_ThreePoints.m_Plane = ZULMRSBSPPlaneNS::Create3PointsPlane(Points);
    g_Leaked = ZULMRSBSPPlaneNS::Create3PointsPlane(Points);
}
}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "planes") {
        MakePlanes();
    } else if (mode == "points") {
        MakePoints();
    } else if (mode == "polyhedra") {
        MakePolyhedra();
    } else if (mode == "redirected") {
        Redirect();
    } else if (mode == "late") {
        MakeLatePlanes();
    } else if (mode != "nothing") {
        std::cerr << "unknown mode\n";
        return 2;
    }
    return 0;
}
