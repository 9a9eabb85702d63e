// CGAL's floating-point numbers of any length: always exact, no filter.
#include <CGAL/Mpzf.h>

#include "HomogeneousPeer.h"
#include "ZULBenchMain.h"

namespace
{
struct LongFloats {
    using Number = CGAL::Mpzf;
    template <std::size_t N>
    static std::array<Number, N> ToRow(const std::array<double, N>& row)
    {
        std::array<Number, N> numbers;
        for (std::size_t i = 0; i < N; ++i) {
            numbers[i] = Number(row[i]);
        }
        return numbers;
    }
    static int Sign(const Number& value) { return CGAL::sign(value); }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<ZULBench::HomogeneousPeer<LongFloats>>();
}
