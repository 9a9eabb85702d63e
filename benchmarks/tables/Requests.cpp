#include "Requests.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <utility>

namespace ZULBench
{
namespace
{
using Random = std::mt19937_64;
constexpr std::uint64_t Seed = 41;

/// Planes and points in a pool. Two to the 2 * PoolBits pairs are enough for every number of requests.
constexpr unsigned int PoolBits = 10;
constexpr std::size_t PoolSize = std::size_t{1} << PoolBits;

double Uniform(Random& random)
{
    return std::uniform_real_distribution(-1.0, 1.0)(random);
}

/// From - 1 to 1, the normal nearest to one axis, none of them along it.
Equation MakeEquation(Random& random, std::size_t axis)
{
    Equation equation{0.25 * Uniform(random), 0.25 * Uniform(random), 0.25 * Uniform(random),
                      Uniform(random)};
    equation[axis] += 1.0;
    return equation;
}

/// A pool of planes along each axis, one after the other.
Owned<ZULMRSBSPPlane> MakePlanes(Random& random)
{
    Owned<ZULMRSBSPPlane> planes;
    for (std::size_t i = 0; i < 3 * PoolSize; ++i) {
        planes.emplace_back(ZULMRSBSPPlaneNS::CreateCartesianPlane(MakeEquation(random, i / PoolSize)));
    }
    return planes;
}

/// The two pool positions of a key.
std::pair<std::size_t, std::size_t> PositionsOf(std::size_t key)
{
    return {key % PoolSize, key / PoolSize % PoolSize};
}

/// The planes of a key: no two keys have the first two in common.
PlaneTriple TripleOf(const Owned<ZULMRSBSPPlane>& planes, std::size_t key)
{
    const auto [first, second] = PositionsOf(key);
    return {planes[first].get(), planes[PoolSize + second].get(),
            planes[2 * PoolSize + (first ^ second)].get()};
}

/// Every key twice, in random order, each as item(key).
template <class Item>
auto TwiceEach(Random& random, std::size_t nbRequests, Item item)
{
    std::vector<std::size_t> keys(nbRequests);
    for (std::size_t i = 0; i < nbRequests; ++i) {
        keys[i] = i / 2;
    }
    std::shuffle(keys.begin(), keys.end(), random);
    std::vector<decltype(item(std::size_t{0}))> items;
    items.reserve(nbRequests);
    for (const std::size_t key : keys) {
        items.push_back(item(key));
    }
    return items;
}
}  // namespace

PointRequests MakePointRequests(std::size_t nbRequests)
{
    Random random(Seed);
    PointRequests requests{MakePlanes(random), {}};
    requests.m_Items = TwiceEach(random, nbRequests,
                                 [&requests](std::size_t key) { return TripleOf(requests.m_Planes, key); });
    return requests;
}

EdgeRequests MakeEdgeRequests(std::size_t nbRequests)
{
    Random random(Seed);
    EdgeRequests requests{MakePlanes(random), {}, {}};
    for (std::size_t i = 0; i < 2 * PoolSize; ++i) {
        const PlaneTriple planes = TripleOf(requests.m_Planes, i);
        bool isValid = false;
        requests.m_Points.emplace_back(
            ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], isValid, false));
    }
    requests.m_Items = TwiceEach(random, nbRequests, [&requests](std::size_t key) {
        const auto [first, second] = PositionsOf(key);
        return EdgeRequest{TripleOf(requests.m_Planes, key), requests.m_Points[first].get(),
                           requests.m_Points[PoolSize + second].get()};
    });
    return requests;
}

PlaneRequests MakePlaneRequests(std::size_t nbRequests)
{
    Random random(Seed);
    std::vector<Equation> equations;
    for (std::size_t i = 0; i < (nbRequests + 1) / 2; ++i) {
        equations.push_back(MakeEquation(random, i % 3));
    }
    return {TwiceEach(random, nbRequests, [&equations](std::size_t key) { return equations[key]; })};
}
}  // namespace ZULBench
