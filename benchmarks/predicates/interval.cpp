// CGAL's intervals, the rounding mode set once for all answers: how far a filter without an exact stage gets.
#include <CGAL/Interval_nt.h>

#include "HomogeneousPeer.h"
#include "ZULBenchMain.h"

namespace
{
struct Intervals {
    using Number = CGAL::Interval_nt<false>;
    template <std::size_t N>
    static std::array<Number, N> ToRow(const std::array<double, N>& row)
    {
        std::array<Number, N> numbers;
        for (std::size_t i = 0; i < N; ++i) {
            numbers[i] = row[i];
        }
        return numbers;
    }
    static int Sign(const Number& value)
    {
        return value.inf() > 0.0                            ? 1
               : value.sup() < 0.0                          ? -1
               : (value.inf() == 0.0 && value.sup() == 0.0) ? 0
                                                            : ZULBench::Undecided;
    }
};
struct Peer : ZULBench::HomogeneousPeer<Intervals> {
    using Scope = CGAL::Interval_nt<false>::Protector;
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<Peer>();
}
