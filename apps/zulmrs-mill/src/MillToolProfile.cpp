#include "MillToolProfile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "MillError.h"

namespace
{

constexpr double kPi = std::numbers::pi;
/// Keeps a value that should be whole from being rounded to its neighbour.
constexpr double kRoundingSlack = 1e-9;
/// A ball has at most this many facets from tip to shank; more would not make it rounder than its sides.
constexpr int kMostBallRings = 8;

/// The radius of the base polygon and the factor that makes it the cutter.
struct Scale {
    std::int64_t m_Base;
    std::int64_t m_Factor;
};

/// Splits the radius into a small polygon and a whole factor, missing the radius by as little as can be:
/// small polygons give short normals, and planes with short normals pass exactly through the corners of the
/// tool. The polygon is fine enough to stay convex when its corners are rounded, the factor for the given
/// number of steps along the profile.
Scale ChooseScale(std::int64_t radius, int sides, std::int64_t fewestSteps, MillSidesKind kind)
{
    const std::int64_t lowest = std::max<std::int64_t>(256, static_cast<std::int64_t>(sides) * sides / 2);
    const std::int64_t highest = std::min(2 * lowest, radius / std::max<std::int64_t>(1, fewestSteps));
    Scale best{radius, 1};
    std::int64_t leastMiss = radius;
    for (std::int64_t base = lowest; base <= highest; ++base) {
        const bool outward = kind == MillSidesKind::Circumscribed;
        const std::int64_t factor = outward ? (radius + base - 1) / base : radius / base;
        const std::int64_t miss = std::abs(factor * base - radius);
        if (miss < leastMiss) {
            leastMiss = miss;
            best = {base, factor};
        }
    }
    return best;
}

/// For a multiple of four: corners of one quadrant, rounded away from or towards the axes, then turned. What
/// is rounded away from both axes contains what it was, by symmetry.
std::vector<MillVector> SymmetricPolygon(std::int64_t radius, int sides, MillSidesKind kind)
{
    const bool outward = kind == MillSidesKind::Circumscribed;
    const double corner = static_cast<double>(radius) / (outward ? std::cos(kPi / sides) : 1.0);
    const int quarter = sides / 4;
    std::vector<std::int64_t> x;
    for (int j = 0; j < quarter; ++j) {
        const double exact = corner * std::cos((2 * j + 1) * kPi / sides);
        x.push_back(static_cast<std::int64_t>(outward ? std::ceil(exact - kRoundingSlack)
                                                      : std::floor(exact + kRoundingSlack)));
    }
    std::vector<MillVector> polygon;
    for (int turn = 0; turn < 4; ++turn) {
        for (int j = 0; j < quarter; ++j) {
            MillVector v{x[static_cast<std::size_t>(j)], x[static_cast<std::size_t>(quarter - 1 - j)], 0};
            for (int i = 0; i < turn; ++i) {
                v = {-v.m_Y, v.m_X, 0};
            }
            polygon.push_back(v);
        }
    }
    return polygon;
}

/// For other numbers: one unit of rounding is allowed for in the radius.
std::vector<MillVector> PlainPolygon(std::int64_t radius, int sides, MillSidesKind kind)
{
    const bool outward = kind == MillSidesKind::Circumscribed;
    const auto whole = static_cast<double>(radius);
    const double corner = outward ? (whole + 1.0) / std::cos(kPi / sides) : whole - 1.0;
    std::vector<MillVector> polygon;
    for (int j = 0; j < sides; ++j) {
        const double angle = (2 * j + 1) * kPi / sides;
        polygon.push_back({static_cast<std::int64_t>(std::round(corner * std::cos(angle))),
                           static_cast<std::int64_t>(std::round(corner * std::sin(angle))), 0});
    }
    return polygon;
}

std::vector<MillVector> MakePolygon(std::int64_t radius, int sides, MillSidesKind kind)
{
    return sides % 4 == 0 ? SymmetricPolygon(radius, sides, kind) : PlainPolygon(radius, sides, kind);
}

bool IsConvex(const std::vector<MillVector>& polygon)
{
    const std::size_t n = polygon.size();
    for (std::size_t j = 0; j < n; ++j) {
        const MillVector& b = polygon[(j + 1) % n];
        if (MillCross(b - polygon[j], polygon[(j + 2) % n] - b).m_Z <= 0) {
            return false;
        }
    }
    return true;
}

/// Widening upwards, ever more steeply, and upright at the last.
bool IsConvex(const std::vector<MillToolProfile::Ring>& rings)
{
    for (std::size_t k = 1; k < rings.size(); ++k) {
        const MillVector step{rings[k].m_Factor - rings[k - 1].m_Factor, rings[k].m_Z - rings[k - 1].m_Z, 0};
        if (step.m_X <= 0 || step.m_Y <= 0) {
            return false;
        }
        if (k + 1 == rings.size()) {
            break;
        }
        const MillVector next{rings[k + 1].m_Factor - rings[k].m_Factor, rings[k + 1].m_Z - rings[k].m_Z, 0};
        if (MillCross(step, next).m_Z <= 0) {
            return false;
        }
    }
    return true;
}

MillToolProfile MakeFlat(std::int64_t radius, int sides, MillSidesKind kind)
{
    const Scale scale = ChooseScale(radius, sides, 1, kind);
    return {MakePolygon(scale.m_Base, sides, kind), {{scale.m_Factor, 0}}};
}

MillToolProfile MakeVee(std::int64_t radius, double angle, int sides)
{
    const Scale scale = ChooseScale(radius, sides, 1, MillSidesKind::Circumscribed);
    // A height that is a multiple of the factor gives the tip's facets the shortest normals; it misses by no
    // more than half the factor, a fraction of a thousandth of the radius.
    const double cotangent = 1.0 / std::tan(angle * kPi / 360.0);
    const double steps = std::max(1.0, std::round(static_cast<double>(scale.m_Base) * cotangent));
    return {MakePolygon(scale.m_Base, sides, MillSidesKind::Circumscribed),
            {{0, 0}, {scale.m_Factor, scale.m_Factor * static_cast<std::int64_t>(steps)}}};
}

/// The ball's profile is a polygon round a quarter of a circle, from the facet at the tip to the shank;
/// corners are rounded outwards and down.
MillToolProfile MakeBall(std::int64_t radius, int sides, int ringCount)
{
    const std::int64_t fewestSteps = 7 * ringCount * ringCount;
    const Scale scale = ChooseScale(radius, sides, fewestSteps, MillSidesKind::Circumscribed);
    MillToolProfile profile;
    profile.m_Polygon = MakePolygon(scale.m_Base, sides, MillSidesKind::Circumscribed);
    const auto whole = static_cast<double>(radius);
    const double grid = std::max(1.0, std::pow(10.0, std::floor(std::log10(whole / 5000.0))));
    const double step = kPi / 2.0 / ringCount;
    const double corner = whole / std::cos(step / 2.0);
    for (int k = 0; k < ringCount; ++k) {
        const double angle = (k + 0.5) * step;
        const double factor = corner * std::sin(angle) / static_cast<double>(scale.m_Base);
        const double z = (whole - corner * std::cos(angle)) / grid;
        profile.m_Rings.push_back({static_cast<std::int64_t>(std::ceil(factor - kRoundingSlack)),
                                   static_cast<std::int64_t>(std::floor(z + kRoundingSlack) * grid)});
    }
    profile.m_Rings.back().m_Factor = scale.m_Factor;
    profile.m_Rings.front().m_Z = 0;
    return profile;
}

MillToolProfile MakeProfile(const MillShape& shape, std::int64_t radius, int sides, MillSidesKind kind,
                            int ringCount)
{
    switch (shape.m_Kind) {
        case MillShapeKind::Ball:
            return MakeBall(radius, sides, ringCount);
        case MillShapeKind::Vee:
            return MakeVee(radius, shape.m_Angle, sides);
        case MillShapeKind::Flat:
            break;
    }
    return MakeFlat(radius, sides, kind);
}

}  // namespace

MillToolProfile MillMakeToolProfile(const MillShape& shape, int sides, MillSidesKind kind,
                                    const std::string& subject)
{
    std::int64_t radius = 0;
    if (MillSnap(shape.m_Diameter / 2.0, radius) && radius > 0) {
        // A small ball makes do with fewer facets along its profile.
        for (int ringCount = std::clamp(sides / 4, 2, kMostBallRings); ringCount >= 2; --ringCount) {
            MillToolProfile profile = MakeProfile(shape, radius, sides, kind, ringCount);
            if (IsConvex(profile.m_Polygon) && IsConvex(profile.m_Rings)) {
                return profile;
            }
        }
    }
    throw MillError(subject, fmt::format("'{}': too small for {} sides", shape.GetText(), sides));
}
