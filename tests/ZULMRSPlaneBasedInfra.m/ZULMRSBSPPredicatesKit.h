#ifndef ZULMRSBSPPredicatesKit_h
#define ZULMRSBSPPredicatesKit_h

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <utility>

#include "ZULKLOOutput.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPCartesianPoint.h"
#include "ZULTestDyadic.h"
#include "ZULTestGeometry.h"
#include "ZULTestSupport.h"

// Sanitizers make everything some twenty times slower.
#ifndef ZUL_TEST_CASES_DIVISOR
#define ZUL_TEST_CASES_DIVISOR 1
#endif

/// Random input for the tests of the predicates, and its exact value.
namespace ZULTest
{
/// How many cases a predicate is held against exact arithmetic, at least.
constexpr std::size_t CasesPerPredicate = 1'000'000 / ZUL_TEST_CASES_DIVISOR;

/// Whether an input is in general position, exactly degenerate, or a few rounding units beside it. In every
/// regime of sizes.
enum class Position { General, Degenerate, Near };
constexpr std::array<Position, 3> AllPositions = {Position::General, Position::Degenerate, Position::Near};

/// Calls run(regime, position, count) for every combination; the counts sum up to at least the total.
template <class Run>
void ForAllKinds(std::size_t total, const Run& run)
{
    const std::size_t count = total / (AllRegimes.size() * AllPositions.size()) + 1;
    for (const Regime regime : AllRegimes) {
        for (const Position position : AllPositions) {
            run(regime, position, count);
        }
    }
}

/// Diagnostic lines lead nowhere: points without a meeting point report themselves by the thousand.
class Silence
{
public:
    Silence() : m_Nowhere(nullptr), m_Previous(ZULKLOOutput::Redirect(&m_Nowhere)) {}
    ~Silence() { ZULKLOOutput::Redirect(m_Previous); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    std::ostream m_Nowhere;
    std::ostream* m_Previous;
};

/// The range of powers of two by which small integers are scaled into a regime.
inline std::pair<int, int> ScaleOf(Regime regime)
{
    switch (regime) {
        case Regime::Tiny:
            return {-1012, -1000};
        case Regime::Denormal:
            return {-1074, -1070};
        case Regime::Huge:
            return {985, 1000};
        case Regime::Mixed:
            return {-1074, 1000};
        default:
            return {-8, 8};
    }
}

/// A few rounding units beside each number, or not.
template <std::size_t Size>
void Blur(Random& random, Position position, std::array<double, Size>& numbers)
{
    if (position == Position::Near) {
        for (double& number : numbers) {
            number = random.Nudged(number, 2);
        }
    }
}

inline Point3 SmallVector(Random& random, int bound)
{
    Point3 vector{};
    for (double& component : vector) {
        component = random.Integer(-bound, bound);
    }
    return vector;
}

/// A plane of either kind and its exact equation.
struct PlaneCase {
    Owner<ZULMRSBSPPlane> m_Plane;
    DyadicPlane m_Exact;

    static PlaneCase Cartesian(const Plane4& equation)
    {
        return {Own<ZULMRSBSPPlane>(new ZULMRSBSPCartesianPlane(equation)), ToDyadic(equation)};
    }
    static PlaneCase ThreePoints(const std::array<Point3, 3>& points)
    {
        return {Own<ZULMRSBSPPlane>(new ZULMRSBSP3PointsPlane(points)), DyadicThroughPoints(points)};
    }
};

/// Planes of both kinds and a point; not in general position they all meet in the point, or nearly so.
class Scene
{
public:
    Scene(Random& random, Regime regime, Position position)
        : m_Random(random), m_Regime(regime), m_Position(position)
    {
        m_Scale = Scale();
        m_Integers = SmallVector(random, 20);
        m_Point = position == Position::General ? random.Point(regime) : m_Integers;
        if (position != Position::General) {
            random.ScaleByPowerOfTwo(m_Point, m_Scale, m_Scale);
            Blur(random, position, m_Point);
        }
    }

    const Point3& GetPoint() const { return m_Point; }

    PlaneCase Plane() { return m_Random.OneIn(2) ? CartesianPlane() : ThreePointsPlane(); }
    PlaneCase CartesianPlane() { return PlaneCase::Cartesian(Equation()); }
    PlaneCase ThreePointsPlane() { return PlaneCase::ThreePoints(DefiningPoints()); }

private:
    int Scale()
    {
        const std::pair<int, int> range = ScaleOf(m_Regime);
        return m_Random.Integer(range.first, range.second);
    }

    Plane4 Equation()
    {
        if (m_Position == Position::General) {
            return m_Random.Plane(m_Regime);
        }
        const Point3 normal = Normal();
        const double d = -(normal[0] * m_Integers[0] + normal[1] * m_Integers[1] + normal[2] * m_Integers[2]);
        // The offset scales as the normal and the point together: kept in range, so that nothing is rounded.
        const int scale =
            std::clamp(Scale(), std::max(-1074, -1074 - m_Scale), std::min(1000, 1000 - m_Scale));
        Plane4 equation = {std::ldexp(normal[0], scale), std::ldexp(normal[1], scale),
                           std::ldexp(normal[2], scale), std::ldexp(d, scale + m_Scale)};
        Blur(m_Random, m_Position, equation);
        return equation;
    }
    // Axis-parallel ones are frequent in practice.
    Point3 Normal()
    {
        Point3 normal{};
        if (m_Random.OneIn(4)) {
            normal[static_cast<std::size_t>(m_Random.Integer(0, 2))] = m_Random.Sign();
            return normal;
        }
        do {
            normal = SmallVector(m_Random, 20);
        } while (normal == Point3{});
        return normal;
    }

    std::array<Point3, 3> DefiningPoints()
    {
        if (m_Position == Position::General) {
            return {m_Random.Point(m_Regime), m_Random.Point(m_Regime), m_Random.Point(m_Regime)};
        }
        const Point3 u = SmallVector(m_Random, 6);
        const Point3 v = SmallVector(m_Random, 6);
        std::array<Point3, 3> points;
        for (Point3& point : points) {
            const int s = m_Random.Integer(-3, 3);
            const int t = m_Random.Integer(-3, 3);
            for (std::size_t i = 0; i < 3; ++i) {
                point[i] = std::ldexp(m_Integers[i] + s * u[i] + t * v[i], m_Scale);
            }
        }
        Blur(m_Random, m_Position, points[static_cast<std::size_t>(m_Random.Integer(0, 2))]);
        return points;
    }

    Random& m_Random;
    Regime m_Regime;
    Position m_Position;
    int m_Scale = 0;
    Point3 m_Integers{};
    Point3 m_Point{};
};
}  // namespace ZULTest

#endif
