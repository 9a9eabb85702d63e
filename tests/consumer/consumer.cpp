#include <cmath>
#include <cstdio>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCuttingSolid.h"

int main()
{
    const ZULMathOBB box(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, {0, 0, 0}));
    auto* polyhedron = new ZULMRSBSPPolyhedron(box, nullptr);
    const bool isInside = polyhedron->PointIsInside(ZULMathPoint(1.0, 2.0, 3.0)) &&
                          !polyhedron->PointIsInside(ZULMathPoint(1.0, 2.0, 3.0000000000000004));
    polyhedron->Release();

    ZULMRSCuttingSolid solid(box);
    solid.Subtract({{{-1, 0, 0, 0}}});
    std::printf("%s %g\n", isInside ? "exact" : "wrong", solid.GetVolume());
    return isInside && std::fabs(solid.GetVolume() - 24.0) < 1e-9 ? 0 : 1;
}
