#ifndef ZULBenchHarness_h
#define ZULBenchHarness_h

#include <benchmark/benchmark.h>
#include <time.h>

#include <cstdint>
#include <string>

#include "ZULBenchKinds.h"

namespace ZULBench
{
/// The answer of a peer that cannot decide.
constexpr int Undecided = 2;

/// A checksum of answers that depends on their order; below 2^50, so that a double holds it.
class Checksum
{
public:
    void Add(std::int64_t answer)
    {
        m_Value = (m_Value * 6364136223846793005U + static_cast<std::uint64_t>(answer) + 7U) & Mask;
    }
    double Get() const { return static_cast<double>(m_Value); }

private:
    static constexpr std::uint64_t Mask = (std::uint64_t{1} << 50U) - 1U;
    std::uint64_t m_Value = 0;
};

/// What a peer wants to tell of the pass that is not timed: Begin() before it, End() after it. Where there is
/// one, it is for all workloads of the program.
class Observer
{
public:
    virtual ~Observer() = default;
    virtual void Begin() = 0;
    virtual void End(benchmark::State& state) = 0;

    static Observer*& OfThisProgram()
    {
        static Observer* observer = nullptr;
        return observer;
    }
};

/// The observer's Begin() and End() around a block.
class Observed
{
public:
    explicit Observed(benchmark::State& state) : m_State(state)
    {
        if (Observer* const observer = Observer::OfThisProgram()) {
            observer->Begin();
        }
    }
    ~Observed()
    {
        if (Observer* const observer = Observer::OfThisProgram()) {
            observer->End(m_State);
        }
    }
    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;

private:
    benchmark::State& m_State;
};

/// One pass that keeps the checksum of the answers and how many could not be decided.
template <class Items, class Answer>
void CountAnswers(benchmark::State& state, const Items& items, Answer answer)
{
    const Observed observed(state);
    Checksum checksum;
    int nbUndecided = 0;
    for (const auto& item : items) {
        const int given = answer(item);
        checksum.Add(given);
        nbUndecided += given == Undecided ? 1 : 0;
    }
    state.counters["answers"] = checksum.Get();
    if (nbUndecided > 0) {
        state.counters["undecided"] = nbUndecided;
    }
}

/// One pass as it is timed.
template <class Items, class Answer>
void AnswerAll(const Items& items, Answer answer)
{
    int sum = 0;
    for (const auto& item : items) {
        sum += answer(item);
    }
    benchmark::DoNotOptimize(sum);
    benchmark::ClobberMemory();
}

/// Registers "workload/kind" for a kind: prepare() gives the items, answer(item) an int. Each iteration is
/// one pass over all items, which are kept: every timed answer has been given once before. Scope lives while
/// items are prepared and answers given.
template <class Scope, class Prepare, class Answer>
void RegisterKept(const std::string& workload, const Kind& kind, Prepare prepare, Answer answer)
{
    const auto run = [prepare, answer](benchmark::State& state) {
        [[maybe_unused]] const Scope scope;
        const auto items = prepare();
        CountAnswers(state, items, answer);
        benchmark::DoNotOptimize(items.data());
        for ([[maybe_unused]] auto _ : state) {
            AnswerAll(items, answer);
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
    };
    benchmark::RegisterBenchmark((workload + "/" + kind.m_Name).c_str(), run);
}

/// Processor time of this thread, which other jobs on the machine do not lengthen.
inline double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// The same on items that are prepared anew, untimed, before every pass: each timed answer is an item's
/// first.
template <class Scope, class Prepare, class Answer>
void RegisterFresh(const std::string& workload, const Kind& kind, Prepare prepare, Answer answer)
{
    const auto run = [prepare, answer](benchmark::State& state) {
        [[maybe_unused]] const Scope scope;
        std::int64_t nbItems = 0;
        CountAnswers(state, prepare(), answer);
        for ([[maybe_unused]] auto _ : state) {
            const auto items = prepare();
            benchmark::DoNotOptimize(items.data());
            const double start = ThreadSeconds();
            AnswerAll(items, answer);
            state.SetIterationTime(ThreadSeconds() - start);
            nbItems += static_cast<std::int64_t>(items.size());
        }
        state.SetItemsProcessed(nbItems);
    };
    benchmark::RegisterBenchmark((workload + "/" + kind.m_Name).c_str(), run)->UseManualTime();
}
}  // namespace ZULBench

#endif
