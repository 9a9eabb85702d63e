#ifndef ZULBenchCellsWorkloads_h
#define ZULBenchCellsWorkloads_h

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Sequences.h"
#include "ZULBenchHarness.h"

/// The workloads of the cells. A peer is a class, whose object makes a cell: Begin() makes the box,
/// Cut(equation) cuts it, Finish() brings the result into its last form; NbVertices() and NbFaces() tell what
/// there is between cuts, 0 for an empty cell, IsSound() whether that holds together. An object IsReusable
/// when the next cell may be made by it at no other price; otherwise each has its own, which is made and
/// destroyed outside the time taken. A peer Handles() sequences.
namespace ZULBench
{
template <class Maker>
void MakeCell(Maker& maker, const Sequence& sequence)
{
    maker.Begin();
    for (const Equation& equation : sequence.m_Planes) {
        maker.Cut(equation);
    }
    maker.Finish();
}

/// One cell, with the checksum of its numbers of vertices and faces after every cut.
template <class Maker>
void CheckCell(benchmark::State& state, const Sequence& sequence)
{
    // Without the checks, which decide more than the cuts.
    {
        const Observed observed(state);
        Maker maker;
        MakeCell(maker, sequence);
    }
    Maker maker;
    Checksum checksum;
    maker.Begin();
    for (const Equation& equation : sequence.m_Planes) {
        maker.Cut(equation);
        checksum.Add(static_cast<std::int64_t>(maker.NbVertices()));
        checksum.Add(static_cast<std::int64_t>(maker.NbFaces()));
        if (!maker.IsSound()) {
            state.SkipWithError("a cell does not hold together");
        }
    }
    if (maker.NbVertices() != sequence.m_NbVertices) {
        state.SkipWithError(("vertices at the end: " + std::to_string(maker.NbVertices())).c_str());
    }
    maker.Finish();
    state.counters["answers"] = checksum.Get();
}

/// Seconds for some cells, each by a maker of its own.
template <class Maker>
double SecondsOfBatch(const Sequence& sequence, std::size_t nbCells)
{
    std::vector<Maker> makers(nbCells);
    const double start = ThreadSeconds();
    for (Maker& maker : makers) {
        MakeCell(maker, sequence);
    }
    return ThreadSeconds() - start;
}

template <class Maker>
void RegisterSequence(const Sequence& sequence)
{
    const auto nbCuts = static_cast<std::int64_t>(sequence.m_Planes.size());
    const auto reused = [=](benchmark::State& state) {
        CheckCell<Maker>(state, sequence);
        Maker maker;
        for ([[maybe_unused]] auto _ : state) {
            MakeCell(maker, sequence);
        }
        state.SetItemsProcessed(state.iterations() * nbCuts);
    };
    const auto single = [=](benchmark::State& state) {
        CheckCell<Maker>(state, sequence);
        // Some hundred cuts, so that they fill no more of the caches than the cells of a program at work.
        const std::size_t nbCells = std::clamp<std::size_t>(400 / sequence.m_Planes.size(), 2, 8);
        for ([[maybe_unused]] auto _ : state) {
            state.SetIterationTime(SecondsOfBatch<Maker>(sequence, nbCells));
        }
        state.SetItemsProcessed(state.iterations() * nbCuts * static_cast<std::int64_t>(nbCells));
    };
    const auto wholeLife = [=](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            Maker maker;
            MakeCell(maker, sequence);
        }
        state.SetItemsProcessed(state.iterations() * nbCuts);
    };
    if constexpr (Maker::IsReusable) {
        benchmark::RegisterBenchmark(("cut/" + sequence.m_Name).c_str(), reused);
    } else {
        benchmark::RegisterBenchmark(("cut/" + sequence.m_Name).c_str(), single)->UseManualTime();
        benchmark::RegisterBenchmark(("cut_and_release_all/" + sequence.m_Name).c_str(), wholeLife);
    }
}

template <class Maker>
void RegisterCells()
{
    for (const Sequence& sequence : MakeSequences()) {
        if (Maker::Handles(sequence)) {
            RegisterSequence<Maker>(sequence);
        }
    }
}
}  // namespace ZULBench

#endif
