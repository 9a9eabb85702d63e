#ifndef ZULBenchMillSweeps_h
#define ZULBenchMillSweeps_h

#include <array>
#include <vector>

/// The first moves of the relief with a simple ball-nose cutter of eight sides, in micrometres: what both
/// sides of the comparison subtract, exactly the same solids. The mill's own sweeps are finer and not told to
/// others.
namespace ZULBench
{
using Corner = std::array<double, 3>;
using Equation = std::array<double, 4>;

/// A convex solid, by its corners and by its planes (behind which it lies); all numbers are whole.
struct Sweep {
    std::vector<Corner> m_Corners;
    std::vector<Equation> m_Planes;
};

/// Opposite corners of the stock.
constexpr std::array<Corner, 2> Stock = {{{0, 0, -8000}, {32000, 24000, 0}}};

std::vector<Sweep> MakeSweeps(std::size_t nbMoves);
}  // namespace ZULBench

#endif
