#include "ZULMRSBSPPlane.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <ostream>

#include "ZULKLOOutput.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPInstanceCounters.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULSystem.h"

namespace
{
constexpr int SmallNormLine = 211;
constexpr double SmallestSquaredNorm = 1.e-7;

/// Prints the four counters when the library is unloaded, in this order.
class CounterPrinter
{
public:
    CounterPrinter() = default;
    CounterPrinter(const CounterPrinter&) = delete;
    CounterPrinter& operator=(const CounterPrinter&) = delete;
    ~CounterPrinter()
    {
        Print("*** ZULMRSBSPPolyhedron Counter :\t", ZULMRSBSPInstanceCounters::GetPolyhedra());
        Print("*** ZULMRSBSPPolygon Counter :\t", ZULMRSBSPInstanceCounters::GetPolygons());
        Print("*** ZULMRSBSPPoint Counter :\t", ZULMRSBSPInstanceCounters::GetPoints());
        Print("*** ZULMRSBSPPlane Counter :\t", ZULMRSBSPInstanceCounters::GetPlanes());
    }

private:
    static void Print(const char* label, unsigned int counter)
    {
        ZULKLOOutput::GetOut() << label << counter << "\t ***"
                               << "\n";
    }
};
const CounterPrinter g_CounterPrinter;

double Approximation(const ZULExpDynamic& number)
{
    return number.GetValue();
}
double Approximation(const ZULExpInterval& number)
{
    return number.Estimate();
}
double Approximation(const ZULExpFloatRingExtensionTS& number)
{
    return number.Estimate();
}

/// Gives the cheapest equation that the plane delivers to the reader; nothing when it delivers none.
template <class Reader>
void ReadCheapestEquation(const ZULMRSBSPPlane& plane, const Reader& reader)
{
    if (const ZULMRSBSPQuadrupleHolder equation(plane.GetStdEquation_ExpDynamic()); equation) {
        reader(*equation);
        return;
    }
    if (const ZULMRSBSPQuadrupleHolder equation(plane.GetStdEquation_ExpInterval()); equation) {
        reader(*equation);
        return;
    }
    if (const ZULMRSBSPQuadrupleHolder equation(plane.GetStdEquation_FloatRing()); equation) {
        reader(*equation);
    }
}

std::array<double, 3> ArrayOf(const ZULMathPoint& point)
{
    return {point.x, point.y, point.z};
}
std::array<double, 3> ArrayOf(const ZULMathVector& vector)
{
    return {vector.x, vector.y, vector.z};
}
}  // namespace

unsigned int ZULMRSBSPPlane::m_GID = 0;

ZULMRSBSPPlane::ZULMRSBSPPlane()
{
    ZULMRSBSPInstanceCounters::Increment(m_GID);
}

ZULMRSBSPPlane::ZULMRSBSPPlane(const ZULMRSBSPPlane&) = default;
ZULMRSBSPPlane& ZULMRSBSPPlane::operator=(const ZULMRSBSPPlane&) = default;
ZULMRSBSPPlane::~ZULMRSBSPPlane() = default;

std::array<double, 4> ZULMRSBSPPlane::GetCoords() const
{
    std::array<double, 4> coords{};
    ReadCheapestEquation(*this, [&coords](const auto& equation) {
        for (std::size_t i = 0; i < coords.size(); ++i) {
            coords[i] = Approximation(equation[i]);
        }
    });
    return coords;
}

double ZULMRSBSPPlane::GetDouble(int index) const
{
    double coefficient = 0.0;
    ReadCheapestEquation(*this, [&coefficient, index](const auto& equation) {
        coefficient = Approximation(equation[static_cast<std::size_t>(index)]);
    });
    return coefficient;
}

ZULMathVector ZULMRSBSPPlane::GetNormalVector() const
{
    const std::array<double, 4> coords = GetCoords();
    return {coords[0], coords[1], coords[2]};
}

ZULMathPoint ZULMRSBSPPlane::GetPointOnPlane() const
{
    return ProjectPointOnPlane(ZULMathPoint(0.0, 0.0, 0.0));
}

double ZULMRSBSPPlane::GetSquareDistanceTo(const ZULMathPoint& point) const
{
    const auto [a, b, c, d] = GetCoords();
    const double sum = ((b * point.y + a * point.x) + c * point.z) + d;
    const double squaredNorm = (b * b + a * a) + c * c;
    return sum * sum / squaredNorm;
}

ZULMathPoint ZULMRSBSPPlane::ProjectPointOnPlane(const ZULMathPoint& point) const
{
    const ZULMathVector normal = GetNormalVector();
    const double squaredNorm = (normal.x * normal.x + normal.y * normal.y) + normal.z * normal.z;
    const double dot = (normal.y * point.y + normal.x * point.x) + normal.z * point.z;
    if (!(std::fabs(squaredNorm) > SmallestSquaredNorm)) {
        ZULFatalError("AssertionFailed:fabs(SquarredNorm) > 1.e-7", nullptr, nullptr, nullptr,
                      "ZULMRSBSPPlane", SmallNormLine);
    }
    const auto [a, b, c, d] = GetCoords();
    const double t = (d + dot) / squaredNorm;
    return {point.x - a * t, point.y - b * t, point.z - c * t};
}

ZULMRSBSPPlane* ZULMRSBSPPlaneNS::Create3PointsPlane(const std::array<std::array<double, 3>, 3>& points)
{
    try {
        return new ZULMRSBSP3PointsPlane(points);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

ZULMRSBSPPlane* ZULMRSBSPPlaneNS::Create3PointsPlane(const std::array<double, 3>& p1,
                                                     const std::array<double, 3>& p2,
                                                     const std::array<double, 3>& p3)
{
    return Create3PointsPlane({p1, p2, p3});
}

ZULMRSBSPPlane* ZULMRSBSPPlaneNS::Create3PointsPlane(const ZULMathPoint& p1, const ZULMathPoint& p2,
                                                     const ZULMathPoint& p3)
{
    return Create3PointsPlane({ArrayOf(p1), ArrayOf(p2), ArrayOf(p3)});
}

ZULMRSBSPPlane* ZULMRSBSPPlaneNS::CreateCartesianPlane(const std::array<double, 4>& equation)
{
    using ZULMRSBSPFormulas::IsExactlyZero;
    if (IsExactlyZero(equation[0]) && IsExactlyZero(equation[1]) && IsExactlyZero(equation[2])) {
        return nullptr;
    }
    return new (std::nothrow) ZULMRSBSPCartesianPlane(equation);
}

ZULMRSBSPPlane* ZULMRSBSPPlaneNS::CreateCartesianPlane(double a, double b, double c, double d)
{
    return CreateCartesianPlane({a, b, c, d});
}

std::array<double, 4> ZULMRSBSPPlaneNS::CreatePlaneEquation(const ZULMathPoint& p1, const ZULMathPoint& p2,
                                                            const ZULMathPoint& p3)
{
    return ZULMRSBSPFormulas::PlaneThroughPoints(ArrayOf(p1), ArrayOf(p2), ArrayOf(p3));
}

std::array<double, 4> ZULMRSBSPPlaneNS::CreatePlaneEquation(const ZULMathPoint& point, const ZULMathVector& u,
                                                            const ZULMathVector& v)
{
    return ZULMRSBSPFormulas::PlaneAtPoint(ZULMRSBSPFormulas::CrossProduct(ArrayOf(u), ArrayOf(v)),
                                           ArrayOf(point));
}

std::array<double, 4> ZULMRSBSPPlaneNS::CreatePlaneEquation(const ZULMathPoint& point,
                                                            const ZULMathVector& normal)
{
    return ZULMRSBSPFormulas::PlaneAtPoint(ArrayOf(normal), ArrayOf(point));
}
