#include "ZULMRSTaskGraph.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <queue>
#include <system_error>
#include <thread>
#include <utility>

#include "ZULExpFloatStatus.h"

namespace
{
/// Runs work(worker) on the calling thread and, as far as the system has them, on others; returns when all
/// have ended. The work must not throw. The others have the default floating-point environment, the calling
/// thread what it has.
template <class Work>
void RunOnThreads(std::size_t nbThreads, const Work& work)
{
    std::vector<std::thread> threads;
    threads.reserve(nbThreads);
    try {
        for (std::size_t worker = 1; worker < nbThreads; ++worker) {
            threads.emplace_back([&work, worker] {
                const ZULExpFloatScope scope;
                work(worker);
            });
        }
    } catch (const std::system_error&) {
        // The threads there are do it all.
    }
    work(0);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Keeps the first exception of several threads.
class FirstException
{
public:
    template <class Function>
    bool Guard(const Function& function)
    {
        try {
            function();
            return true;
        } catch (...) {
            const std::lock_guard<std::mutex> lock(m_Guard);
            m_Exception = m_Exception == nullptr ? std::current_exception() : m_Exception;
            return false;
        }
    }
    void Rethrow() const
    {
        if (m_Exception != nullptr) {
            std::rethrow_exception(m_Exception);
        }
    }

private:
    std::mutex m_Guard;
    std::exception_ptr m_Exception;
};
}  // namespace

/// The state of one parallel run.
class ZULMRSTaskGraph::Execution
{
public:
    Execution(const std::vector<Node>& nodes, std::vector<double> urgencies, const Body& body)
        : m_Nodes(nodes), m_Urgencies(std::move(urgencies)), m_Body(body), m_NbLeft(nodes.size())
    {
        for (Task task = 0; task < nodes.size(); ++task) {
            m_NbAwaited.push_back(nodes[task].m_NbAwaited);
            if (nodes[task].m_NbAwaited == 0) {
                m_Ready.emplace(m_Urgencies[task], task);
            }
        }
    }

    void Work(std::size_t worker)
    {
        Task task = 0;
        while (Take(task)) {
            const bool isDone = m_Exception.Guard([&] { m_Body(task, worker); });
            Finish(task, isDone);
        }
    }
    void Rethrow() const { m_Exception.Rethrow(); }

private:
    bool Take(Task& task)
    {
        std::unique_lock<std::mutex> lock(m_Guard);
        m_Changed.wait(lock, [this] { return m_NbLeft == 0 || !m_Ready.empty(); });
        if (m_NbLeft == 0) {
            return false;
        }
        task = m_Ready.top().second;
        m_Ready.pop();
        return true;
    }

    void Finish(Task task, bool isDone)
    {
        const std::lock_guard<std::mutex> lock(m_Guard);
        m_NbLeft = isDone && m_NbLeft != 0 ? m_NbLeft - 1 : 0;
        for (const Task waiting : m_Nodes[task].m_Waiting) {
            if (--m_NbAwaited[waiting] == 0) {
                m_Ready.emplace(m_Urgencies[waiting], waiting);
            }
        }
        m_Changed.notify_all();
    }

    const std::vector<Node>& m_Nodes;
    const std::vector<double> m_Urgencies;
    const Body& m_Body;
    std::mutex m_Guard;
    std::condition_variable m_Changed;
    std::vector<std::uint32_t> m_NbAwaited;
    std::priority_queue<std::pair<double, Task>> m_Ready;  // the most urgent first
    std::size_t m_NbLeft;                                  // 0 also once a task has failed
    FirstException m_Exception;
};

ZULMRSTaskGraph::Task ZULMRSTaskGraph::Add(double cost)
{
    m_Nodes.push_back({{}, 0, cost});
    return static_cast<Task>(m_Nodes.size() - 1);
}

void ZULMRSTaskGraph::Wait(Task later, Task earlier)
{
    m_Nodes[earlier].m_Waiting.push_back(later);
    ++m_Nodes[later].m_NbAwaited;
}

void ZULMRSTaskGraph::Run(std::size_t nbThreads, const Body& body)
{
    nbThreads = std::min(nbThreads, m_Nodes.size());
    if (nbThreads <= 1) {
        for (Task task = 0; task < m_Nodes.size(); ++task) {
            body(task, 0);
        }
        return;
    }
    Execution execution(m_Nodes, FindUrgencies(), body);
    RunOnThreads(nbThreads, [&execution](std::size_t worker) { execution.Work(worker); });
    execution.Rethrow();
}

std::vector<double> ZULMRSTaskGraph::FindUrgencies() const
{
    std::vector<double> urgencies(m_Nodes.size(), 0.0);
    for (std::size_t task = m_Nodes.size(); task-- > 0;) {
        for (const Task waiting : m_Nodes[task].m_Waiting) {
            urgencies[task] = std::max(urgencies[task], urgencies[waiting]);
        }
        urgencies[task] += m_Nodes[task].m_Cost;
    }
    return urgencies;
}

void ZULMRSParallelFor(std::size_t count, std::size_t nbThreads,
                       const std::function<void(std::size_t, std::size_t)>& body)
{
    std::atomic<std::size_t> next{0};
    FirstException exception;
    RunOnThreads(std::min(nbThreads, count), [&](std::size_t worker) {
        for (std::size_t index = next++; index < count; index = next++) {
            if (!exception.Guard([&] { body(index, worker); })) {
                next = count;
            }
        }
    });
    exception.Rethrow();
}
