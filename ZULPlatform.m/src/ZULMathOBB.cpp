#include "ZULMathOBB.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "ZULMRSMathUtilities.h"

namespace
{
using Frame = std::array<ZULMathVector, 3>;

constexpr double RoundingUnit = 0x1p-53;

double Component(const ZULMathVector& v, int index)
{
    return index == 0 ? v.x : (index == 1 ? v.y : v.z);
}

double LargestComponent(const ZULMathVector& v)
{
    return std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
}

bool IsFinite(const ZULMathPoint& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

constexpr Frame StandardFrame()
{
    return {ZULMathVector(1.0, 0.0, 0.0), ZULMathVector(0.0, 1.0, 0.0), ZULMathVector(0.0, 0.0, 1.0)};
}

/// The points about the middle of their axis-aligned box, scaled by a power of two to components of at most
/// 1, so that neither a far origin nor an extreme unit disturbs the choice of the frame.
struct CenteredPoints {
    std::vector<ZULMathVector> m_Points;
    ZULMathPoint m_Middle;
    int m_Exponent = 0;
    /// What the input's own rounding and the projections can make of a thickness of zero.
    double m_Noise = 0.0;
};

CenteredPoints CenterPoints(const ZULMathPoint* points, std::size_t count)
{
    ZULMathPoint low = points[0];
    ZULMathPoint high = points[0];
    for (std::size_t i = 1; i < count; ++i) {
        low = {std::min(low.x, points[i].x), std::min(low.y, points[i].y), std::min(low.z, points[i].z)};
        high = {std::max(high.x, points[i].x), std::max(high.y, points[i].y), std::max(high.z, points[i].z)};
    }
    const auto middle = [](double a, double b) { return 0.5 * a + 0.5 * b; };
    CenteredPoints centered;
    centered.m_Middle = {middle(low.x, high.x), middle(low.y, high.y), middle(low.z, high.z)};
    const double radius =
        std::max(LargestComponent(high - centered.m_Middle), LargestComponent(low - centered.m_Middle));
    std::frexp(radius, &centered.m_Exponent);
    const auto scaled = [&](double value) { return std::ldexp(value, -centered.m_Exponent); };
    centered.m_Points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const ZULMathVector d = points[i] - centered.m_Middle;
        centered.m_Points.emplace_back(scaled(d.x), scaled(d.y), scaled(d.z));
    }
    const ZULMathPoint origin;
    const double farthest = std::max(LargestComponent(high - origin), LargestComponent(low - origin));
    centered.m_Noise = RoundingUnit * (8.0 * scaled(farthest) + 64.0);
    return centered;
}

/// What a frame costs: the volume of its box; among boxes without volume the surface; then the length.
struct Cost {
    double m_Volume;
    double m_Surface;
    double m_Length;

    bool IsClearlyLessThan(const Cost& other) const
    {
        // A difference within rounding is none: of such frames the first, the simplest, stays.
        constexpr double keep = 1.0 - 1e-13;
        if (m_Volume != other.m_Volume &&
            (m_Volume < keep * other.m_Volume || other.m_Volume < keep * m_Volume)) {
            return m_Volume < other.m_Volume;
        }
        if (m_Surface < keep * other.m_Surface || other.m_Surface < keep * m_Surface) {
            return m_Surface < other.m_Surface;
        }
        return m_Length < keep * other.m_Length;
    }
};

struct Range {
    double m_Low;
    double m_High;
};

std::array<Range, 3> ProjectPoints(const Frame& frame, const std::vector<ZULMathVector>& points)
{
    std::array<Range, 3> ranges;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double first = points[0] * frame[axis];
        Range range{first, first};
        for (const ZULMathVector& p : points) {
            const double value = p * frame[axis];
            range.m_Low = std::min(range.m_Low, value);
            range.m_High = std::max(range.m_High, value);
        }
        ranges[axis] = range;
    }
    return ranges;
}

Cost CostOf(const Frame& frame, const std::vector<ZULMathVector>& points, double noise)
{
    std::array<double, 3> size{};
    const std::array<Range, 3> ranges = ProjectPoints(frame, points);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double width = ranges[axis].m_High - ranges[axis].m_Low;
        size[axis] = width <= noise ? 0.0 : width;
    }
    return {size[0] * size[1] * size[2], size[0] * size[1] + size[1] * size[2] + size[2] * size[0],
            size[0] + size[1] + size[2]};
}

/// The orthonormal frame with its first axis along u and its second in the plane of u and v. False when u or
/// what v adds to it vanishes beside points of size 1.
bool MakeFrame(ZULMathVector u, ZULMathVector v, Frame& frame)
{
    constexpr double shortest = 1e-100;  // its square is still an ordinary number
    const double length = v.Norm();
    if (!(u.Norm() > shortest && length > shortest)) {
        return false;
    }
    u.Normalize();
    // The second pass removes what cancellation left of u in v.
    v = v - (u * v) * u;
    if (!(v.Norm() > 1e-12 * length)) {
        return false;
    }
    v.Normalize();
    v = v - (u * v) * u;
    v.Normalize();
    ZULMathVector w = u ^ v;
    w.Normalize();
    frame = {u, v, w};
    return true;
}

/// One step of Jacobi's method: turns the symmetric matrix and the axes in the plane of rows p and q so that
/// the entry (p, q) vanishes.
void RotateAway(std::array<std::array<double, 3>, 3>& matrix, std::array<std::array<double, 3>, 3>& axes,
                std::size_t p, std::size_t q)
{
    if (matrix[p][q] == 0.0) {
        return;
    }
    const double theta = (matrix[q][q] - matrix[p][p]) / (2.0 * matrix[p][q]);
    const double t = (theta < 0.0 ? -1.0 : 1.0) / (std::fabs(theta) + std::hypot(theta, 1.0));
    const double c = 1.0 / std::hypot(t, 1.0);
    const double s = t * c;
    const auto turn = [c, s](double& x, double& y) {
        const double before = x;
        x = c * before - s * y;
        y = s * before + c * y;
    };
    for (std::size_t k = 0; k < 3; ++k) {
        turn(matrix[k][p], matrix[k][q]);
    }
    for (std::size_t k = 0; k < 3; ++k) {
        turn(matrix[p][k], matrix[q][k]);
        turn(axes[p][k], axes[q][k]);
    }
    matrix[p][q] = 0.0;
    matrix[q][p] = 0.0;
}

/// The principal axes of the points, the frame that suits elongated and symmetric sets.
bool MakePrincipalFrame(const std::vector<ZULMathVector>& points, Frame& frame)
{
    ZULMathVector mean;
    const double weight = 1.0 / static_cast<double>(points.size());
    for (const ZULMathVector& p : points) {
        mean = mean + weight * p;
    }
    std::array<std::array<double, 3>, 3> matrix{};
    for (const ZULMathVector& p : points) {
        const ZULMathVector d = p - mean;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                matrix[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] +=
                    weight * Component(d, row) * Component(d, column);
            }
        }
    }
    std::array<std::array<double, 3>, 3> axes{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    constexpr int nbSweeps = 12;  // convergence is quadratic; five are usual
    for (int sweep = 0; sweep < nbSweeps; ++sweep) {
        RotateAway(matrix, axes, 0, 1);
        RotateAway(matrix, axes, 0, 2);
        RotateAway(matrix, axes, 1, 2);
    }
    return MakeFrame({axes[0][0], axes[0][1], axes[0][2]}, {axes[1][0], axes[1][1], axes[1][2]}, frame);
}

bool LexicographicallyLess(const ZULMathVector& p, const ZULMathVector& q)
{
    if (p.x != q.x) {
        return p.x < q.x;
    }
    return p.y != q.y ? p.y < q.y : p.z < q.z;
}

void RemoveRepeated(std::vector<ZULMathVector>& points)
{
    std::sort(points.begin(), points.end(), LexicographicallyLess);
    const auto same = [](const ZULMathVector& p, const ZULMathVector& q) {
        return p.x == q.x && p.y == q.y && p.z == q.z;
    };
    points.erase(std::unique(points.begin(), points.end(), same), points.end());
}

/// The farthest points both ways along the coordinate axes, the diagonals and the given frame.
std::vector<ZULMathVector> ExtremePoints(const std::vector<ZULMathVector>& points, const Frame& frame)
{
    const std::array<ZULMathVector, 10> directions = {ZULMathVector(1.0, 0.0, 0.0),
                                                      ZULMathVector(0.0, 1.0, 0.0),
                                                      ZULMathVector(0.0, 0.0, 1.0),
                                                      ZULMathVector(1.0, 1.0, 1.0),
                                                      ZULMathVector(1.0, 1.0, -1.0),
                                                      ZULMathVector(1.0, -1.0, 1.0),
                                                      ZULMathVector(1.0, -1.0, -1.0),
                                                      frame[0],
                                                      frame[1],
                                                      frame[2]};
    std::vector<ZULMathVector> extremes;
    for (const ZULMathVector& direction : directions) {
        const auto less = [&](const ZULMathVector& p, const ZULMathVector& q) {
            return p * direction < q * direction;
        };
        const auto [low, high] = std::minmax_element(points.begin(), points.end(), less);
        extremes.push_back(*low);
        extremes.push_back(*high);
    }
    RemoveRepeated(extremes);
    return extremes;
}

/// A frame of low cost for the points. Beside the coordinate axes and the principal axes it tries the frames
/// that two edges from a common vertex span: one of them is the frame of any box given by its corners.
class FrameSearch
{
public:
    explicit FrameSearch(const CenteredPoints& centered)
        : m_Points(centered.m_Points), m_Noise(centered.m_Noise)
    {
    }

    Frame Run()
    {
        m_Best = StandardFrame();
        m_BestCost = CostOf(m_Best, m_Points, m_Noise);
        Frame principal = StandardFrame();
        if (MakePrincipalFrame(m_Points, principal)) {
            TryOnAll(principal);
        }
        std::vector<ZULMathVector> sample = m_Points;
        RemoveRepeated(sample);
        std::size_t nbBases = 1;
        if (sample.size() > NbPointsOfSmallSet) {
            sample = ExtremePoints(m_Points, principal);
            nbBases = sample.size();
        }
        m_BestSampleCost = CostOf(m_Best, sample, m_Noise);
        for (std::size_t base = 0; base < nbBases; ++base) {
            TryEdgesFrom(sample, base);
        }
        return m_Best;
    }

private:
    static constexpr std::size_t NbPointsOfSmallSet = 16;

    /// Tries the frames of the pairs of edges that leave one point, and of each edge alone: a set may have no
    /// second direction.
    void TryEdgesFrom(const std::vector<ZULMathVector>& sample, std::size_t base)
    {
        Frame frame;
        for (std::size_t i = 0; i < sample.size(); ++i) {
            if (i == base) {
                continue;
            }
            const ZULMathVector first = sample[i] - sample[base];
            for (std::size_t j = 0; j < sample.size(); ++j) {
                if (j != base && j != i && MakeFrame(first, sample[j] - sample[base], frame)) {
                    TryOnSample(frame, sample);
                }
            }
            ZULMathVector u1;
            ZULMathVector u2;
            if (ZULMRSMathUtilities::CompleteOrthogonalBasis(first, u1, u2) == 0 &&
                MakeFrame(first, u1, frame)) {
                TryOnSample(frame, sample);
            }
        }
    }

    /// Of many points the few outermost decide which frames are worth a look at all of them.
    void TryOnSample(const Frame& frame, const std::vector<ZULMathVector>& sample)
    {
        const Cost cost = CostOf(frame, sample, m_Noise);
        if (cost.IsClearlyLessThan(m_BestSampleCost)) {
            m_BestSampleCost = cost;
            TryOnAll(frame);
        }
    }

    void TryOnAll(const Frame& frame)
    {
        const Cost cost = CostOf(frame, m_Points, m_Noise);
        if (cost.IsClearlyLessThan(m_BestCost)) {
            m_Best = frame;
            m_BestCost = cost;
        }
    }

    const std::vector<ZULMathVector>& m_Points;
    double m_Noise;
    Frame m_Best = StandardFrame();
    Cost m_BestCost{};
    Cost m_BestSampleCost{};
};

double NextUp(double value)
{
    return std::nextafter(value, std::numeric_limits<double>::infinity());
}

/// |a - b| rounded upwards.
double DistanceRoundedUp(double a, double b)
{
    const double difference = a - b;
    // The rounding error of a difference, exactly.
    const double bb = a - difference;
    const double error = (a - (difference + bb)) + (bb - b);
    const bool isShort = difference < 0.0 ? error < 0.0 : error > 0.0;
    return isShort ? NextUp(std::fabs(difference)) : std::fabs(difference);
}

/// The index of the coordinate axis that the unit vector is, -1 when it is none.
int CoordinateAxis(const ZULMathVector& axis)
{
    for (int index = 0; index < 3; ++index) {
        if (std::fabs(Component(axis, index)) == 1.0 &&
            std::fabs(axis.x) + std::fabs(axis.y) + std::fabs(axis.z) == 1.0) {
            return index;
        }
    }
    return -1;
}

double Coordinate(const ZULMathPoint& p, int index)
{
    return index == 0 ? p.x : (index == 1 ? p.y : p.z);
}

ZULMathPoint CenterOf(const Frame& frame, const CenteredPoints& centered)
{
    const std::array<Range, 3> ranges = ProjectPoints(frame, centered.m_Points);
    ZULMathVector offset;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        offset = offset + (0.5 * (ranges[axis].m_Low + ranges[axis].m_High)) * frame[axis];
    }
    const auto unscaled = [&](double value) { return std::ldexp(value, centered.m_Exponent); };
    return centered.m_Middle + ZULMathVector(unscaled(offset.x), unscaled(offset.y), unscaled(offset.z));
}

/// The smallest half-length along one axis, rounded outwards, that holds every point. Along a coordinate axis
/// the projection is a mere difference; along any other it carries the rounding of three products and of the
/// axes themselves, which are orthonormal to a few units: 48 units of the distance bound both.
double ExtentAlong(const ZULMathVector& axis, const ZULMathPoint& center, const ZULMathPoint* points,
                   std::size_t count)
{
    const int coordinateAxis = CoordinateAxis(axis);
    double extent = 0.0;
    double radius = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        if (coordinateAxis >= 0) {
            extent = std::max(extent, DistanceRoundedUp(Coordinate(points[i], coordinateAxis),
                                                        Coordinate(center, coordinateAxis)));
        } else {
            const ZULMathVector d = points[i] - center;
            extent = std::max(extent, std::fabs(d * axis));
            radius = std::max(radius, LargestComponent(d));
        }
    }
    return radius == 0.0 ? extent : NextUp(extent + 48.0 * RoundingUnit * radius) + 0x1p-1070;
}

ZULMathOBBBase BoxOf(const Frame& frame, const ZULMathPoint& center, const ZULMathPoint* points,
                     std::size_t count)
{
    std::array<double, 3> extents{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        extents[axis] = ExtentAlong(frame[axis], center, points, count);
    }
    return {frame[0], frame[1], frame[2], {extents[0], extents[1], extents[2]}, center};
}

bool HasFiniteExtents(const ZULMathOBBBase& box)
{
    const ZULMathVector& e = box.GetExtents();
    return std::isfinite(e.x) && std::isfinite(e.y) && std::isfinite(e.z);
}
}  // namespace

ZULMathOBBBase::ZULMathOBBBase() : m_Axes(StandardFrame()) {}

ZULMathOBBBase::ZULMathOBBBase(const ZULMathVector& axisU, const ZULMathVector& axisV,
                               const ZULMathVector& axisW, const ZULMathVector& extents,
                               const ZULMathPoint& center)
    : m_Axes{axisU, axisV, axisW}, m_Extents(extents), m_Center(center)
{
}

ZULMathPoint ZULMathOBBBase::UVWtoXYZ(const ZULMathPoint& uvw) const
{
    const ZULMathVector offset = (uvw.x * m_Axes[0] + uvw.y * m_Axes[1]) + uvw.z * m_Axes[2];
    return {offset.x + m_Center.x, offset.y + m_Center.y, offset.z + m_Center.z};
}

ZULMathPoint ZULMathOBBBase::XYZtoUVW(const ZULMathPoint& xyz) const
{
    const ZULMathVector d = xyz - m_Center;
    return {d * m_Axes[0], d * m_Axes[1], d * m_Axes[2]};
}

double ZULMathOBBBase::Volume() const
{
    return 8.0 * (m_Extents.x * m_Extents.y * m_Extents.z);
}

int ZULMathOBBBase::DefineElements(const ZULMathPoint* points, std::size_t count)
{
    if (points == nullptr || count == 0 || !std::all_of(points, points + count, IsFinite)) {
        return -1;
    }
    const CenteredPoints centered = CenterPoints(points, count);
    const Frame frame = FrameSearch(centered).Run();
    *this = BoxOf(frame, CenterOf(frame, centered), points, count);
    if (!HasFiniteExtents(*this)) {
        // A turned box need not be representable; the box along the coordinate axes is.
        *this = BoxOf(StandardFrame(), centered.m_Middle, points, count);
    }
    return 0;
}

void ZULMathOBBBase::Inflate(double distance)
{
    const auto inflated = [distance](double extent) { return std::max(0.0, extent + distance); };
    m_Extents = {inflated(m_Extents.x), inflated(m_Extents.y), inflated(m_Extents.z)};
}
