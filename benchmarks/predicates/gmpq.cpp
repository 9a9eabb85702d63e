// GMP's rational numbers.
#include <gmpxx.h>

#include "HomogeneousPeer.h"
#include "ZULBenchMain.h"

namespace
{
struct Rationals {
    using Number = mpq_class;
    template <std::size_t N>
    static std::array<Number, N> ToRow(const std::array<double, N>& row)
    {
        std::array<Number, N> numbers;
        for (std::size_t i = 0; i < N; ++i) {
            numbers[i] = row[i];
        }
        return numbers;
    }
    static int Sign(const Number& value) { return sgn(value); }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<ZULBench::HomogeneousPeer<Rationals>>();
}
