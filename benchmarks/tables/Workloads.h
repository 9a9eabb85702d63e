#ifndef ZULBenchTablesWorkloads_h
#define ZULBenchTablesWorkloads_h

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Requests.h"
#include "ZULBenchHarness.h"

/// The workloads of the tables. A peer is a struct of three types, Points, Edges and Planes: tables, empty at
/// first, whose Request(item) gives the shared object of a request with one reference for the caller.
namespace ZULBench
{
constexpr std::size_t NbSmall = std::size_t{1} << 14U;
/// So many that one pass is long enough to be timed.
constexpr std::size_t NbLarge = std::size_t{1} << 20U;

/// Answers the part of the requests that falls to one of the threads.
template <class Table, class Item, class Object>
void RequestPart(Table& table, const std::vector<Item>& items, std::vector<Object*>& objects,
                 std::size_t thread, std::size_t nbThreads)
{
    const std::size_t end = items.size() * (thread + 1) / nbThreads;
    for (std::size_t i = items.size() * thread / nbThreads; i < end; ++i) {
        objects[i] = table.Request(items[i]);
    }
}

/// Seconds on the clock from the moment when all threads may start to the end of the last one.
template <class Table, class Item, class Object>
double SecondsOfThreads(Table& table, const std::vector<Item>& items, std::vector<Object*>& objects,
                        std::size_t nbThreads)
{
    std::atomic<std::size_t> nbReady{0};
    std::atomic<bool> mayStart{false};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < nbThreads; ++thread) {
        threads.emplace_back([&, thread] {
            ++nbReady;
            while (!mayStart) {
                std::this_thread::yield();
            }
            RequestPart(table, items, objects, thread, nbThreads);
        });
    }
    while (nbReady < nbThreads) {
        std::this_thread::yield();
    }
    const auto start = std::chrono::steady_clock::now();
    mayStart = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Table, class Item, class Object>
double SecondsOfOne(Table& table, const std::vector<Item>& items, std::vector<Object*>& objects)
{
    const double start = ThreadSeconds();
    RequestPart(table, items, objects, 0, 1);
    return ThreadSeconds() - start;
}

/// Which requests got the same object.
template <class Object>
void CountSharing(benchmark::State& state, const std::vector<Object*>& objects)
{
    std::unordered_map<const Object*, std::int64_t> numbers;
    Checksum checksum;
    for (const Object* object : objects) {
        checksum.Add(numbers.try_emplace(object, static_cast<std::int64_t>(numbers.size())).first->second);
    }
    state.counters["answers"] = checksum.Get();
}

/// Registers a workload on tables that are empty at first and released, untimed, after every pass.
template <class Table, class Object, class Make, class Time>
void RegisterPass(const std::string& name, std::size_t nbRequests, Make make, Time time)
{
    const auto run = [=](benchmark::State& state) {
        const auto requests = make(nbRequests);
        std::vector<Object*> objects(nbRequests);
        for ([[maybe_unused]] auto _ : state) {
            Table table;
            state.SetIterationTime(time(table, requests.m_Items, objects));
            if (state.counters.empty()) {
                CountSharing(state, objects);
            }
            std::for_each(objects.begin(), objects.end(), Releaser());
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nbRequests));
    };
    auto* registered = benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime();
    if (nbRequests > NbSmall) {
        registered->Iterations(1)->Repetitions(1);
    }
}

/// One thread by its processor time, at two sizes; then one and two threads by the clock.
template <class Table, class Object, class Make>
void RegisterTable(const std::string& workload, Make make)
{
    const auto one = [](auto& table, const auto& items, auto& objects) {
        return SecondsOfOne(table, items, objects);
    };
    RegisterPass<Table, Object>(workload + "/2^14", NbSmall, make, one);
    RegisterPass<Table, Object>(workload + "/2^20", NbLarge, make, one);
    for (const std::size_t nbThreads : {1, 2}) {
        RegisterPass<Table, Object>(workload + "/2^20_by_" + std::to_string(nbThreads), NbLarge, make,
                                    [nbThreads](auto& table, const auto& items, auto& objects) {
                                        return SecondsOfThreads(table, items, objects, nbThreads);
                                    });
    }
}

template <class Peer>
void RegisterTables()
{
    RegisterTable<typename Peer::Points, ZULMRSBSPPoint>("create_point", MakePointRequests);
    RegisterTable<typename Peer::Edges, ZULMRSBSPPoint>("create_point_on_edge", MakeEdgeRequests);
    RegisterTable<typename Peer::Planes, ZULMRSBSPPlane>("create_plane", MakePlaneRequests);
}
}  // namespace ZULBench

#endif
