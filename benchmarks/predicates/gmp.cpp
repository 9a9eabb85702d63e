// GMP's integers: every row of doubles made integer by one power of two.
#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "HomogeneousPeer.h"
#include "ZULBenchMain.h"

namespace
{
struct Integers {
    using Number = mpz_class;
    template <std::size_t N>
    static std::array<Number, N> ToRow(const std::array<double, N>& row)
    {
        // The last binary place that any number of the row uses.
        int place = std::numeric_limits<int>::max();
        for (const double number : row) {
            if (number != 0.0) {
                place = std::min(place, std::ilogb(number) - std::numeric_limits<double>::digits + 1);
            }
        }
        std::array<Number, N> numbers;
        for (std::size_t i = 0; i < N; ++i) {
            if (row[i] != 0.0) {
                // In two steps: the number may be out of the range of doubles.
                const int shift = std::numeric_limits<double>::digits - 1 - std::ilogb(row[i]);
                numbers[i] = std::ldexp(row[i], shift);
                numbers[i] <<= static_cast<mp_bitcnt_t>(-shift - place);
            }
        }
        return numbers;
    }
    static int Sign(const Number& value) { return sgn(value); }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterPredicates<ZULBench::HomogeneousPeer<Integers>>();
}
