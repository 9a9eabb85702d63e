#ifndef ZULMRSBSPPredicatesKit_h
#define ZULMRSBSPPredicatesKit_h

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
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
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

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

#if ZUL_HAS_SSE2
/// Asks under every hostile control word: the answer is always the expected one, the word stays.
template <class Ask>
testing::AssertionResult HoldsInEveryEnvironment(int expected, const Ask& ask)
{
    for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
        int answer = 99;
        const auto left = RunUnder(word, [&] { answer = ask(); });
        if (answer != expected || left != word) {
            return testing::AssertionFailure() << "under control word " << std::hex << word
                                               << " the answer is " << answer << ", the word left " << left;
        }
    }
    return testing::AssertionSuccess();
}
#endif

inline ZULMathPoint ToMathPoint(const Point3& point)
{
    return {point[0], point[1], point[2]};
}

inline Owner<ZULMRSBSPPlane> Cartesian(double a, double b, double c, double d)
{
    return Own<ZULMRSBSPPlane>(new ZULMRSBSPCartesianPlane(Plane4{a, b, c, d}));
}
inline Owner<ZULMRSBSPPlane> ThreePoints(const Point3& p1, const Point3& p2, const Point3& p3)
{
    return Own<ZULMRSBSPPlane>(new ZULMRSBSP3PointsPlane({p1, p2, p3}));
}
/// The meeting point of three planes, whether they have one or not.
inline Owner<ZULMRSBSPPoint> Meeting(const Owner<ZULMRSBSPPlane>& p1, const Owner<ZULMRSBSPPlane>& p2,
                                     const Owner<ZULMRSBSPPlane>& p3)
{
    bool isValid = false;
    return Own<ZULMRSBSPPoint>(new ZULMRSBSP3PlanesPoint({p1.get(), p2.get(), p3.get()}, isValid));
}
inline Owner<ZULMRSBSPPoint> AtCoordinates(const Point3& p)
{
    return Own<ZULMRSBSPPoint>(new ZULMRSBSPCartesianPoint(ToMathPoint(p)));
}

inline Point3 SmallVector(Random& random, int bound)
{
    Point3 vector{};
    for (double& component : vector) {
        component = random.Integer(-bound, bound);
    }
    return vector;
}

inline Point3 Cross(const Point3& u, const Point3& v)
{
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}
/// s u + t v.
inline Point3 Combined(int s, const Point3& u, int t, const Point3& v)
{
    return {s * u[0] + t * v[0], s * u[1] + t * v[1], s * u[2] + t * v[2]};
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

/// A point of either kind and its exact representation (X, Y, Z, W), W positive; zero where its planes do not
/// meet.
struct PointCase {
    Owner<ZULMRSBSPPoint> m_Point;
    DyadicPlane m_Exact;

    bool IsValid() const { return m_Exact[3].Sign() != 0; }

    static PointCase Cartesian(const Point3& p)
    {
        return {AtCoordinates(p), {Dyadic(p[0]), Dyadic(p[1]), Dyadic(p[2]), Dyadic(1.0)}};
    }
    static PointCase Meeting(const PlaneCase& p1, const PlaneCase& p2, const PlaneCase& p3)
    {
        return {ZULTest::Meeting(p1.m_Plane, p2.m_Plane, p3.m_Plane),
                DyadicWithPositiveW(DyadicMeetingPoint({p1.m_Exact, p2.m_Exact, p3.m_Exact}))};
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
        MoveTo(SmallVector(random, 20));
    }
    /// Of the same sizes, at another place of small integers.
    Scene(const Scene& other, const Point3& integers) : Scene(other) { MoveTo(integers); }

    const Point3& GetPoint() const { return m_Point; }
    /// What the point's coordinates are before they are scaled.
    const Point3& GetIntegers() const { return m_Integers; }
    /// Coordinates of small integers, scaled like the point's.
    Point3 Scaled(Point3 integers) const
    {
        m_Random.ScaleByPowerOfTwo(integers, m_Scale, m_Scale);
        Blur(m_Random, m_Position, integers);
        return integers;
    }

    /// A point of either kind that exists; not in general position it is the scene's, or nearly.
    PointCase AnyPoint()
    {
        return m_Random.OneIn(3)
                   ? PointCase::Cartesian(m_Position == Position::General ? m_Point : Scaled(m_Integers))
                   : MeetingPoint();
    }
    PointCase MeetingPoint()
    {
        while (true) {
            const PlaneCase p1 = Plane();
            const PlaneCase p2 = Plane();
            const PlaneCase p3 = Plane();
            PointCase point = PointCase::Meeting(p1, p2, p3);
            if (point.IsValid()) {
                return point;
            }
        }
    }

    PlaneCase Plane() { return m_Random.OneIn(2) ? CartesianPlane() : ThreePointsPlane(); }
    PlaneCase CartesianPlane() { return PlaneCase::Cartesian(Equation()); }
    PlaneCase ThreePointsPlane() { return PlaneCase::ThreePoints(DefiningPoints()); }

    /// A plane of either kind through a place of small integers with a normal of small integers, or nearly
    /// so; any plane in general position.
    PlaneCase PlaneThrough(const Point3& integers, const Point3& normal)
    {
        if (m_Position == Position::General) {
            return Plane();
        }
        return m_Random.OneIn(2) ? PlaneCase::Cartesian(EquationThrough(integers, normal))
                                 : PlaneCase::ThreePoints(DefiningPointsThrough(integers, normal));
    }
    PlaneCase PlaneWithNormal(const Point3& normal)
    {
        return PlaneThrough(SmallVector(m_Random, 20), normal);
    }

private:
    void MoveTo(const Point3& integers)
    {
        m_Integers = integers;
        m_Point = m_Position == Position::General ? m_Random.Point(m_Regime) : Scaled(integers);
    }

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
        return EquationThrough(m_Integers, Normal());
    }
    Plane4 EquationThrough(const Point3& integers, const Point3& normal)
    {
        const double d = -(normal[0] * integers[0] + normal[1] * integers[1] + normal[2] * integers[2]);
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

    std::array<Point3, 3> DefiningPointsThrough(const Point3& integers, const Point3& normal)
    {
        const Point3 u = AcrossAnyAxis(normal);
        const Point3 v = Cross(normal, u);
        const int s = m_Random.Integer(-2, 2);
        const int t = m_Random.Integer(-2, 2);
        std::array<Point3, 3> points;
        for (std::size_t i = 0; i < 3; ++i) {
            const double base = integers[i] + s * u[i] + t * v[i];
            points[0][i] = std::ldexp(base, m_Scale);
            points[1][i] = std::ldexp(base + u[i], m_Scale);
            points[2][i] = std::ldexp(base + v[i], m_Scale);
        }
        Blur(m_Random, m_Position, points[static_cast<std::size_t>(m_Random.Integer(0, 2))]);
        return points;
    }

    /// At right angles to a vector and to an axis to which it is not parallel.
    Point3 AcrossAnyAxis(const Point3& vector)
    {
        const int first = m_Random.Integer(0, 2);
        Point3 across{};
        for (int i = 0; i < 3 && across == Point3{}; ++i) {
            Point3 axis{};
            axis[static_cast<std::size_t>((first + i) % 3)] = 1.0;
            across = Cross(vector, axis);
        }
        return across;
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
