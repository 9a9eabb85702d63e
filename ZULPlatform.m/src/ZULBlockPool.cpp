#include "ZULBlockPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <new>
#include <type_traits>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ZUL_IS_WATCHED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZUL_IS_WATCHED
#endif

namespace
{
constexpr std::size_t NbSizes = ZULBlockPool::LargestSize / ZULBlockPool::Granularity;
constexpr std::size_t ChunkSize = std::size_t{1} << 16;
constexpr std::size_t CacheLine = 64;

/// A block that nobody uses.
struct Block {
    Block* m_Next;
    /// The next batch, in the first block of one that lies in a depot.
    Block* m_NextBatch;
};
static_assert(sizeof(Block) <= ZULBlockPool::Granularity);

/// The head of a chunk; blocks of one size follow.
struct alignas(CacheLine) Chunk {
    Chunk* m_Next;
};

constexpr std::size_t IndexOf(std::size_t size)
{
    return (size - 1) / ZULBlockPool::Granularity;  // beyond all indices for the size 0
}
constexpr std::size_t SizeOf(std::size_t index)
{
    return (index + 1) * ZULBlockPool::Granularity;
}
/// How many blocks move at once between a thread and the depot.
constexpr std::size_t BatchOf(std::size_t index)
{
    constexpr std::size_t bytes = 4096;
    return std::clamp<std::size_t>(bytes / SizeOf(index), 8, 64);
}

//---------------------------------------------------------------- shared by all threads

/// The blocks of one size that no thread has: whole batches, single ones, and those that no one has had yet.
class alignas(CacheLine) Depot
{
public:
    /// A chain of blocks; nb is how many are wanted, then how many there are. Null when memory is exhausted.
    Block* Take(std::size_t index, std::size_t& nb)
    {
        Block* chain = nullptr;
        {
            const std::lock_guard lock(m_Mutex);
            if (m_Batches != nullptr) {
                chain = m_Batches;
                m_Batches = chain->m_NextBatch;
                nb = BatchOf(index);
                return chain;
            }
            if (m_Singles != nullptr) {
                return TakeSingles(nb);
            }
            if (m_Fresh == m_End && !AddChunk(index)) {
                nb = 0;
                return nullptr;
            }
            nb = std::min(nb, static_cast<std::size_t>(m_End - m_Fresh) / SizeOf(index));
            chain = reinterpret_cast<Block*>(m_Fresh);
            m_Fresh += nb * SizeOf(index);
        }
        Link(chain, nb, SizeOf(index));
        return chain;
    }

    void PutBatch(Block* batch)
    {
        const std::lock_guard lock(m_Mutex);
        batch->m_NextBatch = m_Batches;
        m_Batches = batch;
    }

    /// One by one, however many there are.
    void PutSingles(Block* chain)
    {
        if (chain == nullptr) {
            return;
        }
        Block* last = chain;
        while (last->m_Next != nullptr) {
            last = last->m_Next;
        }
        const std::lock_guard lock(m_Mutex);
        last->m_Next = m_Singles;
        m_Singles = chain;
    }

    bool Contains(const void* block)
    {
        const std::lock_guard lock(m_Mutex);
        const auto* place = static_cast<const char*>(block);
        for (const Chunk* chunk = m_Chunks; chunk != nullptr; chunk = chunk->m_Next) {
            const auto* begin = reinterpret_cast<const char*>(chunk);
            if (place >= begin && place < begin + ChunkSize) {
                return true;
            }
        }
        return false;
    }

private:
    Block* TakeSingles(std::size_t& nb)
    {
        Block* const chain = m_Singles;
        Block* last = chain;
        std::size_t count = 1;
        for (; count < nb && last->m_Next != nullptr; ++count) {
            last = last->m_Next;
        }
        m_Singles = last->m_Next;
        last->m_Next = nullptr;
        nb = count;
        return chain;
    }

    bool AddChunk(std::size_t index)
    {
        void* const memory = ::operator new (ChunkSize, std::align_val_t{alignof(Chunk)}, std::nothrow);
        if (memory == nullptr) {
            return false;
        }
        m_Chunks = new (memory) Chunk{m_Chunks};
        m_Fresh = static_cast<char*>(memory) + sizeof(Chunk);
        m_End = m_Fresh + (ChunkSize - sizeof(Chunk)) / SizeOf(index) * SizeOf(index);
        return true;
    }

    static void Link(Block* chain, std::size_t nb, std::size_t size)
    {
        auto* place = reinterpret_cast<char*>(chain);
        for (std::size_t i = 0; i + 1 < nb; ++i, place += size) {
            new (place) Block{reinterpret_cast<Block*>(place + size), nullptr};
        }
        new (place) Block{nullptr, nullptr};
    }

    std::mutex m_Mutex;
    Block* m_Batches = nullptr;
    Block* m_Singles = nullptr;
    char* m_Fresh = nullptr;
    char* m_End = nullptr;
    Chunk* m_Chunks = nullptr;
};
static_assert(std::is_trivially_destructible_v<Depot>, "objects may outlive all static ones");

constinit std::array<Depot, NbSizes> g_Depots{};

enum class Source { Undecided, Pool, GlobalHeap };
#if defined(ZUL_IS_WATCHED)
constinit std::atomic<Source> g_Source{Source::GlobalHeap};
#else
constinit std::atomic<Source> g_Source{Source::Undecided};
#endif

/// The first to ask decides; whether it has become, or was, this one.
bool DecideFor(Source wanted)
{
    Source seen = Source::Undecided;
    return g_Source.compare_exchange_strong(seen, wanted) || seen == wanted;
}

//---------------------------------------------------------------- of one thread

/// The blocks of one size that a thread has: those in use first, and a full batch or none.
struct List {
    Block* m_Head;
    Block* m_Spare;
    /// How many blocks the list before the spare one still takes; full, it is a batch.
    std::size_t m_Room;
};
using Lists = std::array<List, NbSizes>;

/// Of a thread that has none, or has none any more: nothing to take and no room, so never written.
constinit Lists g_NoLists{};

// The pointer is found without a call; the lists would be too long for that part of a thread's memory.
[[gnu::tls_model("initial-exec")]] constinit thread_local Lists* t_Lists = &g_NoLists;
constinit thread_local bool t_IsEnding = false;
constinit thread_local Lists t_OwnLists{};

class ThreadEnd
{
public:
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd()
    {
        t_IsEnding = true;
        t_Lists = &g_NoLists;
        for (std::size_t i = 0; i < NbSizes; ++i) {
            if (t_OwnLists[i].m_Spare != nullptr) {
                g_Depots[i].PutBatch(t_OwnLists[i].m_Spare);
            }
            g_Depots[i].PutSingles(t_OwnLists[i].m_Head);
        }
    }
};

/// The thread's lists of blocks; null when it is ending.
Lists* GetLists()
{
    if (t_IsEnding) {
        return nullptr;
    }
    if (t_Lists == &g_NoLists) {
        static thread_local const ThreadEnd end;
        static_cast<void>(end);
        for (std::size_t i = 0; i < NbSizes; ++i) {
            t_OwnLists[i].m_Room = BatchOf(i);
        }
        t_Lists = &t_OwnLists;
    }
    return t_Lists;
}

Block* Pop(List& list)
{
    Block* const block = list.m_Head;
    list.m_Head = block->m_Next;
    ++list.m_Room;
    return block;
}

void Push(List& list, void* memory)
{
    list.m_Head = new (memory) Block{list.m_Head, nullptr};
    --list.m_Room;
}

Block* TakeOne(std::size_t index)
{
    std::size_t nb = 1;
    Block* const block = g_Depots[index].Take(index, nb);
    if (nb > 1) {
        g_Depots[index].PutSingles(block->m_Next);
    }
    return block;
}

[[gnu::noinline]] void* AllocateOtherwise(std::size_t size)
{
    const std::size_t index = IndexOf(size);
    if (index >= NbSizes || !DecideFor(Source::Pool)) {
        return ::operator new(size, std::nothrow);
    }
    Lists* const lists = GetLists();
    if (lists == nullptr) {
        return TakeOne(index);
    }
    List& list = (*lists)[index];
    if (list.m_Spare != nullptr) {
        list = {list.m_Spare, nullptr, 0};
        return Pop(list);
    }
    std::size_t nb = BatchOf(index);
    list.m_Head = g_Depots[index].Take(index, nb);
    if (list.m_Head == nullptr) {
        return nullptr;
    }
    list.m_Room = BatchOf(index) - nb;
    return Pop(list);
}

[[gnu::noinline]] void FreeOtherwise(void* memory, std::size_t size)
{
    const std::size_t index = IndexOf(size);
    if (index >= NbSizes || g_Source.load(std::memory_order_relaxed) == Source::GlobalHeap) {
        ::operator delete(memory);
        return;
    }
    Lists* const lists = GetLists();
    if (lists == nullptr) {
        g_Depots[index].PutSingles(new (memory) Block{nullptr, nullptr});
        return;
    }
    List& list = (*lists)[index];
    if (list.m_Room == 0) {
        if (list.m_Spare != nullptr) {
            g_Depots[index].PutBatch(list.m_Spare);
        }
        list = {nullptr, list.m_Head, BatchOf(index)};
    }
    Push(list, memory);
}
}  // namespace

void* ZULBlockPool::Allocate(std::size_t size) noexcept
{
    const std::size_t index = IndexOf(size);
    if (index < NbSizes) [[likely]] {
        List& list = (*t_Lists)[index];
        if (list.m_Head != nullptr) [[likely]] {
            return Pop(list);
        }
    }
    return AllocateOtherwise(size);
}

void ZULBlockPool::Free(void* block, std::size_t size) noexcept
{
    if (block == nullptr) {
        return;
    }
    const std::size_t index = IndexOf(size);
    if (index < NbSizes) [[likely]] {
        List& list = (*t_Lists)[index];
        if (list.m_Room != 0) [[likely]] {
            Push(list, block);
            return;
        }
    }
    FreeOtherwise(block, size);
}

void ZULBlockPool::FreeOfUnknownSize(void* block) noexcept
{
    if (block == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < NbSizes; ++i) {
        if (g_Depots[i].Contains(block)) {
            Free(block, SizeOf(i));
            return;
        }
    }
    ::operator delete(block);
}

bool ZULBlockPool::UseGlobalHeap() noexcept
{
    return DecideFor(Source::GlobalHeap);
}
