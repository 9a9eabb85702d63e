#ifndef ZULBenchMillWorkloads_h
#define ZULBenchMillWorkloads_h

#include <cmath>
#include <cstdint>
#include <string>

#include "Sweeps.h"
#include "ZULBenchHarness.h"

namespace ZULBench
{
/// Registers the subtraction of the first moves of the relief from the stock. subtract(sweeps) gives the
/// volume left in cubic micrometres; the exact peers must agree in it up to a 10,000th of a cubic millimetre.
template <class Prepare, class Subtract>
void RegisterSubtraction(Prepare prepare, Subtract subtract)
{
    for (const std::size_t nbMoves : {10, 100}) {
        const auto run = [=](benchmark::State& state) {
            const auto tools = prepare(MakeSweeps(nbMoves));
            double volume = 0;
            for ([[maybe_unused]] auto _ : state) {
                const double start = ThreadSeconds();
                volume = subtract(tools);
                state.SetIterationTime(ThreadSeconds() - start);
            }
            state.counters["answers"] = std::round(volume / 1e5);
            state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nbMoves));
        };
        benchmark::RegisterBenchmark(("subtract/" + std::to_string(nbMoves)).c_str(), run)
            ->UseManualTime()
            ->Repetitions(1);
    }
}
}  // namespace ZULBench

#endif
