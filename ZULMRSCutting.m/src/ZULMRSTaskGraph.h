#ifndef ZULMRSTaskGraph_h
#define ZULMRSTaskGraph_h

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// Tasks, some of which must wait for others, and threads that carry them out. Whoever waits starts after
/// what it waits for has ended, so that the outcome does not depend on the number of threads.
class ZULMRSTaskGraph
{
public:
    using Task = std::uint32_t;
    /// Carries out a task; the worker's number is below the number of threads, and no two tasks have the same
    /// one at a time.
    using Body = std::function<void(Task task, std::size_t worker)>;

    /// A task of some expected cost. Later tasks wait for earlier ones, never the other way round.
    Task Add(double cost);
    void Wait(Task later, Task earlier);
    std::size_t GetSize() const { return m_Nodes.size(); }

    /// Carries out every task and returns when all have ended. One thread, the caller's, does so in the order
    /// in which they were added. What a task throws is thrown here, and tasks that have not started are then
    /// left out.
    void Run(std::size_t nbThreads, const Body& body);

private:
    class Execution;

    struct Node {
        std::vector<Task> m_Waiting;  // for this one
        std::uint32_t m_NbAwaited = 0;
        double m_Cost = 0.0;
    };

    /// For each task the cost of the longest chain that starts with it.
    std::vector<double> FindUrgencies() const;

    std::vector<Node> m_Nodes;
};

/// Calls body(index, worker) for every index below the count, in any order, with some threads.
void ZULMRSParallelFor(std::size_t count, std::size_t nbThreads,
                       const std::function<void(std::size_t index, std::size_t worker)>& body);

#endif
