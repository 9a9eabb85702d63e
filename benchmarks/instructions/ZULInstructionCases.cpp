// Runs one case of the guard many times: instruction-cases NAME REPETITIONS. instructions.py counts what that
// costs; without arguments the names are listed.

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSCuttingSolid.h"

namespace
{
using namespace ZULMRSBSPPredicates;

using Plane4 = std::array<double, 4>;

constexpr double Third = 1.0 / 3.0;

ZULMRSBSPPlane* Plane(const Plane4& equation)
{
    return ZULMRSBSPPlaneNS::CreateCartesianPlane(equation);
}

ZULMRSBSPPoint* Meeting(ZULMRSBSPPlane* p, ZULMRSBSPPlane* q, ZULMRSBSPPlane* r)
{
    bool isValid = false;
    return ZULMRSBSPPointNS::CreatePoint(p, q, r, isValid, false);
}

/// Objects of the cases, made once; the process ends with them.
struct Objects {
    // Full mantissas; the sum of the three rows meets their point exactly only where nothing is rounded.
    ZULMRSBSPPlane* m_P = Plane({0.7, 0.1, 0.2, Third});
    ZULMRSBSPPlane* m_Q = Plane({0.1, 0.9, 0.3, 0.1});
    ZULMRSBSPPlane* m_R = Plane({0.3, 0.2, 0.8, 0.7});
    ZULMRSBSPPoint* m_Point = Meeting(m_P, m_Q, m_R);
    ZULMRSBSPPlane* m_Away = Plane({0.3, 0.4, 0.5, 9.0});
    ZULMRSBSPPlane* m_Through = Plane({0x1p-1, 0x1p-2, 0x1p-3, 0.0});
    ZULMRSBSPPlane* m_Short1 = Plane({3, 1, 2, -6});
    ZULMRSBSPPlane* m_Short2 = Plane({1, 5, 1, -7});
    ZULMRSBSPPlane* m_Short3 = Plane({2, 1, 7, -10});
    ZULMRSBSPPoint* m_ShortPoint = Meeting(m_Short1, m_Short2, m_Short3);
    ZULMRSBSPPlane* m_ShortThrough = Plane({6, 7, 10, -23});
    ZULMRSBSPPlane* m_Opposite = Plane({-3, -1, -2, 6});
    ZULMRSBSPPlane* m_Fourth = Plane({8, 11, 17, -36});
    ZULMRSBSPPoint* m_EqualPoint = Meeting(m_ShortThrough, m_Short2, m_Fourth);
    // 50-bit mantissas, the last plane the sum of the others.
    ZULMRSBSPPlane* m_Long1 = Plane(Long(1));
    ZULMRSBSPPlane* m_Long2 = Plane(Long(2));
    ZULMRSBSPPlane* m_Long3 = Plane(Long(3));
    ZULMRSBSPPoint* m_LongPoint = Meeting(m_Long1, m_Long2, m_Long3);
    ZULMRSBSPPlane* m_LongThrough = Plane(LongSum());
    ZULMRSBSPPlane* m_ThreePoints = ZULMRSBSPPlaneNS::Create3PointsPlane(
        ZULMathPoint(0.1, 0.2, 0.3), ZULMathPoint(1.3, 0.1, 0.7), ZULMathPoint(0.4, 1.6, 0.2));

    static Plane4 Long(int row)
    {
        Plane4 plane{};
        for (std::size_t i = 0; i < 4; ++i) {
            const double irrational =
                std::sqrt(static_cast<double>(7 * row) + static_cast<double>(i * i + 2));
            plane[i] = std::ldexp(std::trunc(std::ldexp(irrational - std::floor(irrational), 50)), -50);
        }
        return plane;
    }
    static Plane4 LongSum()
    {
        Plane4 sum{};
        for (int row = 1; row <= 3; ++row) {
            for (std::size_t i = 0; i < 4; ++i) {
                sum[i] += Long(row)[i];
            }
        }
        return sum;
    }
};

void NewPoint(const Objects& o)
{
    Meeting(o.m_P, o.m_Q, o.m_R)->Release();
}

void SharedPoint(const Objects& o)
{
    static ZULMRSBSPObjectFactory* const factory = ZULMRSCreateObjectFactory(false);
    bool isValid = false;
    factory->CreatePoint(o.m_P, o.m_Q, o.m_R, isValid)->Release();
}

void SharedPlane(const Objects& /*o*/)
{
    static ZULMRSBSPObjectFactory* const factory = ZULMRSCreateObjectFactory(false);
    bool isOpposite = false;
    factory->CreatePlane({0.25, 0.5, 0.75, 1.0}, isOpposite, true)->Release();
}

ZULMathOBB Box(double x, double y, double z)
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z}, {0, 0, 0}));
}

void BoxPolyhedron(const Objects& /*o*/)
{
    auto* box = new ZULMRSBSPPolyhedron(Box(1, 2, 3), nullptr);
    box->PointIsInside(ZULMathPoint(0.5, 0.5, 0.5));
    box->Release();
}

/// A cube cut round by planes tangent to a ball.
void RoundedCube(const Objects& /*o*/)
{
    ZULMRSCuttingSolid solid(Box(1, 1, 1));
    for (int i = 0; i < 20; ++i) {
        const double z = (i + 0.5) / 10.0 - 1.0;
        const double r = std::sqrt(1.0 - z * z);
        const double angle = 2.4 * i;
        solid.Subtract({{{-r * std::cos(angle), -r * std::sin(angle), -z, 1.0}}});
    }
}

/// Slots across a block, and its surface.
void SlottedBlock(const Objects& /*o*/)
{
    ZULMRSCuttingSolid solid(Box(20, 20, 5));
    for (int i = 0; i < 12; ++i) {
        const double x = -18.0 + 3.0 * i;
        solid.Subtract({{{-1, 0, 0, x}, {1, 0, 0, -x - 1.5}, {0, 0, -1, 2}}});
        solid.Subtract({{{0, -1, 0, x}, {0, 1, 0, -x - 1.5}, {0, 0, -1, 2}}});
    }
    solid.ExtractSurface();
}

struct Case {
    const char* m_Name;
    std::function<void(const Objects&)> m_Run;
};

const std::vector<Case>& Cases()
{
    using O = const Objects&;
    static const std::vector<Case> cases = {
        {"side_kept_easy", [](O o) { IsPointInFrontOfPlane(*o.m_Away, *o.m_Point); }},
        {"side_kept_zero_short", [](O o) { IsPointInFrontOfPlane(*o.m_ShortThrough, *o.m_ShortPoint); }},
        {"side_kept_zero_50bit", [](O o) { IsPointInFrontOfPlane(*o.m_LongThrough, *o.m_LongPoint); }},
        {"side_three_points_plane", [](O o) { IsPointInFrontOfPlane(*o.m_ThreePoints, *o.m_Point); }},
        {"side_of_coordinates", [](O o) { IsPointInFrontOfPlane(*o.m_Away, ZULMathPoint(0.1, 0.2, 0.3)); }},
        {"determinant_3x3", [](O) { SignOf3x3Determinant(0.1, 0.2, 0.3, 0.4, 0.6, 0.5, 0.9, 0.8, 0.7); }},
        {"planes_coincident", [](O o) { ArePlanesCoincident(*o.m_Short1, *o.m_Opposite); }},
        {"points_order", [](O o) { LexicographicOrder(*o.m_Point, *o.m_ShortPoint); }},
        {"points_equal", [](O o) { ArePointsEqual(*o.m_ShortPoint, *o.m_EqualPoint); }},
        {"point_new", NewPoint},
        {"point_shared", SharedPoint},
        {"plane_shared", SharedPlane},
        {"scenario_box", BoxPolyhedron},
        {"scenario_rounded_cube", RoundedCube},
        {"scenario_slotted_block", SlottedBlock},
    };
    return cases;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc == 1) {
        for (const Case& c : Cases()) {
            std::puts(c.m_Name);
        }
        return 0;
    }
    for (const Case& c : Cases()) {
        if (argc == 3 && std::strcmp(argv[1], c.m_Name) == 0) {
            const Objects objects;
            for (int i = std::atoi(argv[2]); i > 0; --i) {
                c.m_Run(objects);
            }
            return 0;
        }
    }
    std::fprintf(stderr, "usage: instruction-cases [NAME REPETITIONS]\n");
    return 2;
}
