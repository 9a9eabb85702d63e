#ifndef ZULTestTools_h
#define ZULTestTools_h

#include <array>
#include <vector>

#include "ZULMRSConvexTool.h"
#include "ZULMathOBB.h"
#include "ZULTestGeometry.h"

/// Stocks and tools for the tests of the cutter.
namespace ZULTest
{
inline ZULMathOBB AxisBox(double x0, double y0, double z0, double x1, double y1, double z1)
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1},
                                     {0.5 * (x1 - x0), 0.5 * (y1 - y0), 0.5 * (z1 - z0)},
                                     {0.5 * (x0 + x1), 0.5 * (y0 + y1), 0.5 * (z0 + z1)}));
}

inline ZULMRSConvexTool BoxTool(double x0, double y0, double z0, double x1, double y1, double z1)
{
    return {{{1, 0, 0, -x1}, {-1, 0, 0, x0}, {0, 1, 0, -y1}, {0, -1, 0, y0}, {0, 0, 1, -z1}, {0, 0, -1, z0}}};
}

/// A bounded tool about a centre: a box cut by a few random planes.
inline ZULMRSConvexTool RandomTool(Random& random, double reach, int nbPlanes)
{
    const Point3 center{random.Between(0, 10), random.Between(0, 10), random.Between(0, 10)};
    ZULMRSConvexTool tool = BoxTool(center[0] - reach, center[1] - reach, center[2] - reach,
                                    center[0] + reach, center[1] + reach, center[2] + reach);
    for (int index = 0; index < nbPlanes; ++index) {
        const Point3 normal{random.Between(-1, 1), random.Between(-1, 1), random.Between(-1, 1)};
        const double distance = random.Between(0.2, 1.0) * reach;
        const double offset = normal[0] * center[0] + normal[1] * center[1] + normal[2] * center[2];
        tool.m_HalfSpaces.push_back({normal[0], normal[1], normal[2], -offset - distance});
    }
    return tool;
}

/// A tool of small integer coordinates: its planes meet each other and the stock's in common points, lines
/// and faces.
inline ZULMRSConvexTool LatticeTool(Random& random)
{
    const auto low = [&] { return static_cast<double>(random.Integer(0, 8)); };
    const double x = low();
    const double y = low();
    const double z = low();
    ZULMRSConvexTool tool =
        BoxTool(x, y, z, x + random.Integer(1, 4), y + random.Integer(1, 4), z + random.Integer(1, 4));
    if (random.OneIn(2)) {
        const double a = random.Integer(-1, 1);
        const double b = random.Integer(-1, 1);
        tool.m_HalfSpaces.push_back({a, b, 1.0, -(a * (x + 1.0) + b * (y + 1.0) + z + 1.0)});
    }
    if (random.OneIn(3)) {
        tool.m_HalfSpaces.push_back(tool.m_HalfSpaces[static_cast<std::size_t>(random.Integer(0, 5))]);
        for (double& coefficient : tool.m_HalfSpaces.back()) {
            coefficient *= 2.0;
        }
    }
    return tool;
}
}  // namespace ZULTest

#endif
