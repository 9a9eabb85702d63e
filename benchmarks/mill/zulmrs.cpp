// The milling program as it is installed, and the cutting library by its public calls.
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>

#include "MillRun.h"
#include "Workloads.h"
#include "ZULBenchMain.h"
#include "ZULMRSCuttingSolid.h"

namespace
{
/// Each run is made once and serves several rows.
const ZULBench::MillRun& RunOnce(std::size_t nbMoves, std::size_t nbThreads)
{
    static std::map<std::pair<std::size_t, std::size_t>, ZULBench::MillRun> runs;
    const auto [entry, isNew] = runs.try_emplace({nbMoves, nbThreads});
    if (isNew) {
        entry->second = ZULBench::RunMill(nbMoves, nbThreads);
    }
    return entry->second;
}

/// Registers a row; its time is the processor's or that on the clock.
void RegisterRun(const std::string& name, std::size_t nbMoves, std::size_t nbThreads,
                 double ZULBench::MillRun::*seconds)
{
    const auto run = [=](benchmark::State& state) {
        const ZULBench::MillRun& result = RunOnce(nbMoves, nbThreads);
        for ([[maybe_unused]] auto _ : state) {
            state.SetIterationTime(result.*seconds);
        }
        if (result.m_Checksum != RunOnce(nbMoves, 1).m_Checksum) {
            state.SkipWithError("other bytes than with one thread");
        }
        state.counters["peak_bytes_a_move"] = result.m_PeakBytes / static_cast<double>(nbMoves);
        state.SetItemsProcessed(static_cast<std::int64_t>(nbMoves));
    };
    benchmark::RegisterBenchmark((name + "/" + std::to_string(nbMoves)).c_str(), run)
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(1);
}

std::vector<ZULMRSConvexTool> MakeTools(const std::vector<ZULBench::Sweep>& sweeps)
{
    std::vector<ZULMRSConvexTool> tools;
    for (const ZULBench::Sweep& sweep : sweeps) {
        tools.push_back({sweep.m_Planes});
    }
    return tools;
}

double Subtract(const std::vector<ZULMRSConvexTool>& tools)
{
    ZULMathVector extents(0, 0, 0);
    ZULMathPoint centre(0, 0, 0);
    double* const halves[] = {&extents.x, &extents.y, &extents.z};
    double* const middles[] = {&centre.x, &centre.y, &centre.z};
    for (std::size_t i = 0; i < 3; ++i) {
        *halves[i] = (ZULBench::Stock[1][i] - ZULBench::Stock[0][i]) / 2;
        *middles[i] = (ZULBench::Stock[1][i] + ZULBench::Stock[0][i]) / 2;
    }
    ZULMRSCuttingSolid part(ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, extents, centre)));
    part.SubtractAll(tools);
    return part.GetVolume();
}
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterSubtraction(MakeTools, Subtract);
    const bool isQuick = std::getenv("ZUL_BENCH_QUICK") != nullptr;
    for (const std::size_t nbMoves : {1000, 10000, 100000}) {
        if (nbMoves <= 10000 || !isQuick) {
            RegisterRun("mill_processor", nbMoves, 1, &ZULBench::MillRun::m_ProcessorSeconds);
            RegisterRun("mill_by_1", nbMoves, 1, &ZULBench::MillRun::m_Seconds);
            RegisterRun("mill_by_2", nbMoves, 2, &ZULBench::MillRun::m_Seconds);
        }
    }
}
