#include "ZULBenchData.h"

#include <cmath>
#include <limits>
#include <random>

namespace ZULBench
{
namespace
{
using Integer = std::int64_t;
template <std::size_t N>
using Row = std::array<Integer, N>;

/// Powers of two by which numbers are scaled out of the range of products: multiples of the 64 bits in which
/// the peers count, so that a number has the same length there.
constexpr int PlaneScale = 6 * 64;   // X is of degree 3 in the planes
constexpr int PointScale = 3 * 64;   // X is of degree 7 in the points of the planes
constexpr int FactorScale = 9 * 64;  // products of two

/// Brings the long integers below 1, also for the same reason.
constexpr int LongExponent = -54;

/// Fixed seeds, one per workload and kind.
enum class Workload : std::uint64_t { Side = 1, PointsSide, Vertex, Matrix, Parallel, Coincident, PointPair };

/// Random integers of a kind, and their way to doubles.
class Source
{
public:
    Source(Workload workload, const Kind& kind, int scale)
        : m_Random(100 * static_cast<std::uint64_t>(workload) +
                   static_cast<std::uint64_t>(&kind - Kinds.data())),
          m_Kind(kind),
          m_Exponent(kind.m_Scale * scale)
    {
        if (kind.m_Shape != Shape::DegenerateShort) {
            m_Exponent += LongExponent;
        }
    }

    /// From -bound to bound.
    Integer Next(Integer bound)
    {
        const auto range = static_cast<std::uint64_t>(2 * bound + 1);
        return static_cast<Integer>(m_Random() % range) - bound;
    }
    template <std::size_t N>
    Row<N> NextRow(Integer bound)
    {
        Row<N> row{};
        for (Integer& number : row) {
            number = Next(bound);
        }
        return row;
    }
    /// The largest number of the kind such that a sum of a few stays exact.
    Integer GetBound() const
    {
        switch (m_Kind.m_Shape) {
            case Shape::Random:
                return Integer{1} << 52U;
            case Shape::DegenerateShort:
                return 300;
            default:
                return Integer{1} << 49U;
        }
    }
    bool IsRandom() const { return m_Kind.m_Shape == Shape::Random; }
    bool IsScaled() const { return m_Kind.m_Scale != 0; }

    double ToDouble(Integer number) const { return std::ldexp(static_cast<double>(number), m_Exponent); }
    template <std::size_t N>
    std::array<double, N> ToDoubles(const Row<N>& row) const
    {
        std::array<double, N> numbers{};
        for (std::size_t i = 0; i < N; ++i) {
            numbers[i] = ToDouble(row[i]);
        }
        return numbers;
    }
    /// For near data: moves a number by one unit in its last place.
    void Nudge(double& number)
    {
        const bool isUp = m_Random() % 2 == 0;
        if (m_Kind.m_Shape == Shape::Near && number != 0.0) {
            const double infinity = std::numeric_limits<double>::infinity();
            number = std::nextafter(number, isUp ? infinity : -infinity);
        }
    }
    template <std::size_t N>
    void NudgeOne(std::array<double, N>& numbers)
    {
        Nudge(numbers[m_Random() % N]);
    }

private:
    std::mt19937_64 m_Random;
    const Kind& m_Kind;
    int m_Exponent;
};

template <std::size_t N>
Row<N> Plus(const Row<N>& u, const Row<N>& v, Integer factor = 1)
{
    Row<N> sum = u;
    for (std::size_t i = 0; i < N; ++i) {
        sum[i] += factor * v[i];
    }
    return sum;
}

/// Arithmetic modulo the prime 2^61 - 1. A polynomial of integers that is not zero there is not zero.
class Residue
{
public:
    Residue(Integer value) : m_Value(value % Prime) {}
    Residue operator*(Residue other) const
    {
        __extension__ using Wide = __int128;
        return {static_cast<Integer>(static_cast<Wide>(m_Value) * other.m_Value % Prime)};
    }
    Residue operator+(Residue other) const { return {m_Value + other.m_Value}; }
    Residue operator-(Residue other) const { return {m_Value - other.m_Value}; }
    bool IsZero() const { return m_Value == 0; }

private:
    static constexpr Integer Prime = (Integer{1} << 61U) - 1;
    Integer m_Value;
};
using ResidueRow = std::vector<Residue>;

ResidueRow Cross(const ResidueRow& u, const ResidueRow& v)
{
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}
bool IsIndependent(const ResidueRow& u, const ResidueRow& v, const ResidueRow& w)
{
    const ResidueRow normal = Cross(u, v);
    return !(normal[0] * w[0] + normal[1] * w[1] + normal[2] * w[2]).IsZero();
}

template <std::size_t N>
ResidueRow Normal(const Row<N>& row)
{
    return {row[0], row[1], row[2]};
}
ResidueRow Normal(const std::array<Row<3>, 3>& points)
{
    return Cross(Normal(Plus(points[1], points[0], -1)), Normal(Plus(points[2], points[0], -1)));
}

/// Three planes, made by `make`, that meet in one point.
template <class Make>
auto MeetingPlanes(Make make)
{
    while (true) {
        const std::array planes = {make(), make(), make()};
        if (IsIndependent(Normal(planes[0]), Normal(planes[1]), Normal(planes[2]))) {
            return planes;
        }
    }
}
std::array<Row<4>, 3> MeetingPlanes(Source& source)
{
    return MeetingPlanes([&source] { return source.NextRow<4>(source.GetBound()); });
}

template <class Rows>
auto ToDoubles(const Source& source, const Rows& rows)
{
    return std::array{source.ToDoubles(rows[0]), source.ToDoubles(rows[1]), source.ToDoubles(rows[2])};
}

/// Three points of a plane: random, or for degenerate data such that the plane passes through `centre`.
std::array<Row<3>, 3> PointsOfPlane(Source& source, const Row<3>& centre)
{
    while (true) {
        std::array<Row<3>, 3> points = {source.NextRow<3>(source.GetBound() / 2),
                                        source.NextRow<3>(source.GetBound() / 2),
                                        source.NextRow<3>(source.GetBound() / 2)};
        if (!source.IsRandom()) {
            points[2] = Plus(Plus(centre, points[0], -1), points[1], -1);
            points[0] = Plus(points[0], centre);
            points[1] = Plus(points[1], centre);
        }
        const ResidueRow normal = Normal(points);
        if (!normal[0].IsZero() || !normal[1].IsZero() || !normal[2].IsZero()) {
            return points;
        }
    }
}

template <class Make>
auto MakeCases(Make make)
{
    std::vector<decltype(make())> cases;
    cases.reserve(NbCases);
    while (cases.size() < NbCases) {
        cases.push_back(make());
    }
    return cases;
}

/// Two planes of which the first `nbProportional` coefficients are proportional on degenerate data.
std::vector<PlanePair> MakePlanePairs(Workload workload, const Kind& kind, std::size_t nbProportional)
{
    Source source(workload, kind, FactorScale);
    const bool isShort = kind.m_Shape == Shape::DegenerateShort;
    const Integer factorBound = isShort ? 15 : Integer{1} << 9U;
    const Integer bound = isShort ? 30 : Integer{1} << 40U;
    return MakeCases([&] {
        if (source.IsRandom()) {
            return PlanePair{source.ToDoubles(source.NextRow<4>(source.GetBound())),
                             source.ToDoubles(source.NextRow<4>(source.GetBound()))};
        }
        Row<4> base = source.NextRow<4>(bound);
        base[0] += base[0] == 0 ? 1 : 0;
        const Integer factors[2] = {factorBound + 1 + source.Next(factorBound),
                                    factorBound + 1 + source.Next(factorBound)};
        Row<4> p{};
        Row<4> q{};
        for (std::size_t i = 0; i < 4; ++i) {
            p[i] = factors[0] * base[i];
            q[i] = i < nbProportional ? factors[1] * base[i] : source.Next(bound);
        }
        PlanePair pair{source.ToDoubles(p), source.ToDoubles(q)};
        source.Nudge(pair.m_Q[static_cast<std::size_t>(source.Next(1) + 1)]);
        return pair;
    });
}
}  // namespace

std::vector<SideCase> MakeSideCases(const Kind& kind)
{
    Source source(Workload::Side, kind, PlaneScale);
    return MakeCases([&source] {
        const auto planes = MeetingPlanes(source);
        const Row<4> tested = source.IsRandom() ? source.NextRow<4>(source.GetBound())
                                                : Plus(Plus(planes[0], planes[1]), planes[2]);
        SideCase one{ToDoubles(source, planes), source.ToDoubles(tested)};
        source.NudgeOne(one.m_Plane);
        return one;
    });
}

std::vector<PointsSideCase> MakePointsSideCases(const Kind& kind)
{
    Source source(Workload::PointsSide, kind, PointScale);
    return MakeCases([&source] {
        const Row<3> centre = source.NextRow<3>(source.GetBound() / 2);
        const auto planes = MeetingPlanes([&] { return PointsOfPlane(source, centre); });
        const auto tested = PointsOfPlane(source, centre);
        PointsSideCase one{
            {ToDoubles(source, planes[0]), ToDoubles(source, planes[1]), ToDoubles(source, planes[2])},
            ToDoubles(source, tested)};
        source.NudgeOne(one.m_Plane[0]);
        return one;
    });
}

std::vector<VertexCase> MakeVertexCases(const Kind& kind)
{
    Source source(Workload::Vertex, kind, FactorScale);
    return MakeCases([&source] {
        Row<3> vertex = source.NextRow<3>(source.GetBound());
        Row<4> plane = source.NextRow<4>(source.GetBound());
        const Integer unit = source.GetBound() / 8;
        if (!source.IsRandom()) {
            // The normal is at a right angle to the vertex, which then moves by a short offset, and d with
            // it.
            const Row<3> base = source.NextRow<3>(4 * unit);
            const Row<3> steps = source.IsScaled() ? Row<3>{0, 0, 0} : source.NextRow<3>(3);
            plane = {base[1] - base[2], base[2] - base[0], base[0] - base[1], 0};
            plane[3] = -(plane[0] * steps[0] + plane[1] * steps[1] + plane[2] * steps[2]);
            vertex = Plus(base, steps, unit);
        } else if (source.IsScaled()) {
            plane[3] = 0;  // of degree 2, and so out of the range of doubles
        }
        VertexCase one{source.ToDoubles(vertex), source.ToDoubles(plane)};
        if (!source.IsRandom()) {
            one.m_Plane[3] *= source.ToDouble(unit);
        }
        source.NudgeOne(one.m_Vertex);
        return one;
    });
}

std::vector<MatrixCase> MakeMatrixCases(const Kind& kind)
{
    Source source(Workload::Matrix, kind, PlaneScale);
    return MakeCases([&source] {
        std::array<Row<3>, 3> rows = {source.NextRow<3>(source.GetBound()),
                                      source.NextRow<3>(source.GetBound()),
                                      source.NextRow<3>(source.GetBound())};
        if (!source.IsRandom()) {
            rows[2] = Plus(rows[0], rows[1]);
        }
        MatrixCase one = ToDoubles(source, rows);
        source.NudgeOne(one[2]);
        return one;
    });
}

std::vector<PlanePair> MakeParallelCases(const Kind& kind)
{
    return MakePlanePairs(Workload::Parallel, kind, 3);
}

std::vector<PlanePair> MakeCoincidentCases(const Kind& kind)
{
    return MakePlanePairs(Workload::Coincident, kind, 4);
}

std::vector<PointPair> MakePointPairs(const Kind& kind)
{
    Source source(Workload::PointPair, kind, PlaneScale);
    return MakeCases([&source] {
        const auto p = MeetingPlanes(source);
        const Row<4> sum = Plus(p[0], p[1]);
        // Of determinant 1 in terms of p, and so meeting in the same point.
        const auto q =
            source.IsRandom() ? MeetingPlanes(source) : std::array{sum, Plus(p[1], p[2]), Plus(sum, p[2])};
        PointPair pair{ToDoubles(source, p), ToDoubles(source, q)};
        source.Nudge(pair.m_Q[static_cast<std::size_t>(source.Next(1) + 1)][3]);
        return pair;
    });
}
}  // namespace ZULBench
