// Straight doubles: the limit of what the processor can do, with wrong answers near zero.
#include "HomogeneousPeer.h"
#include "ZULBenchMain.h"

namespace
{
struct Doubles {
    using Number = double;
    template <std::size_t N>
    static std::array<double, N> ToRow(const std::array<double, N>& row)
    {
        return row;
    }
    static int Sign(double value) { return (value > 0.0) - (value < 0.0); }
};
struct Peer : ZULBench::HomogeneousPeer<Doubles> {
    /// Where products leave the range of doubles, every answer is arbitrary.
    static bool Handles(const ZULBench::Kind& kind) { return kind.m_Scale == 0; }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<Peer>();
}
