#include "Sequences.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace ZULBench
{
namespace
{
constexpr std::uint64_t Seed = 53;
constexpr double Signs[] = {1.0, -1.0};

Sequence MakeTangents(std::size_t count)
{
    std::mt19937_64 random(Seed);
    std::normal_distribution<double> normal;
    Sequence sequence{"k" + std::to_string(count), {}, 2 * (count + 6) - 4};
    for (std::size_t i = 0; i < count; ++i) {
        const double x = normal(random);
        const double y = normal(random);
        const double z = normal(random);
        const double length = std::sqrt(x * x + y * y + z * z);
        sequence.m_Planes.push_back({x / length, y / length, z / length, -1.0});
    }
    return sequence;
}

/// |x| + |y| <= 1 and so on.
std::vector<Equation> MakeDodecahedron()
{
    std::vector<Equation> planes;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const double first : Signs) {
            for (const double second : Signs) {
                Equation equation{0, 0, 0, -1};
                equation[axis] = first;
                equation[(axis + 1) % 3] = second;
                planes.push_back(equation);
            }
        }
    }
    return planes;
}

Sequence MakeDegenerate()
{
    Sequence sequence{"degen20", MakeDodecahedron(), 6};
    for (const double x : Signs) {
        for (const double y : Signs) {
            for (const double z : Signs) {
                sequence.m_Planes.push_back({x, y, z, -1});
            }
        }
    }
    return sequence;
}

Equation Times(const Equation& equation, double factor)
{
    return {factor * equation[0], factor * equation[1], factor * equation[2], factor * equation[3]};
}

Sequence MakeCoincident()
{
    Sequence sequence{"coincident", {}, 0};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const double sign : Signs) {
            Equation equation{0, 0, 0, -2};
            equation[axis] = 2 * sign;
            sequence.m_Planes.push_back(equation);
        }
    }
    for (const Equation& plane : MakeDodecahedron()) {
        sequence.m_Planes.push_back(plane);
        sequence.m_Planes.push_back(Times(plane, 2));
    }
    sequence.m_Planes.push_back(Times(sequence.m_Planes.back(), -1));
    return sequence;
}
}  // namespace

std::vector<Sequence> MakeSequences()
{
    return {MakeTangents(10), MakeTangents(50), MakeTangents(200), MakeDegenerate(), MakeCoincident()};
}
}  // namespace ZULBench
