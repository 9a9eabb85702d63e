#include "ZULBlockPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
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
constexpr std::size_t NbChunksOfRegion = 16;
constexpr std::size_t CacheLine = 64;

/// A block that nobody uses, in a chain.
struct Block {
    Block* m_Next;
};
static_assert(sizeof(Block) <= ZULBlockPool::Granularity);

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

/// A piece of memory at a multiple of its size, of which one bit tells for each block whether it is here to
/// be taken. So blocks are taken in the order of their addresses, in whatever order they came back: memory is
/// walked through, not jumped about in.
class Chunk
{
public:
    explicit Chunk(std::size_t index) : m_Index(index), m_NbHere((ChunkSize - sizeof(Chunk)) / SizeOf(index))
    {
        for (std::size_t i = 0; i < m_NbHere; ++i) {
            m_IsHere[i / 64] |= std::uint64_t{1} << (i % 64);
        }
    }
    static Chunk* Of(void* block)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(block);
        return reinterpret_cast<Chunk*>(address - address % ChunkSize);
    }

    bool IsEmpty() const { return m_NbHere == 0; }

    void Put(void* block)
    {
        // Exact for all offsets in a chunk: sizes are at least 2^4 and offsets below 2^16.
        const auto offset = static_cast<std::size_t>(static_cast<char*>(block) - GetBlocks());
        const std::size_t i = offset / ZULBlockPool::Granularity * m_Inverse >> 32;
        m_IsHere[i / 64] |= std::uint64_t{1} << (i % 64);
        m_FirstWord = std::min(m_FirstWord, i / 64);
        ++m_NbHere;
    }
    /// Appends blocks to a chain, so many or as many as there are; nb is reduced by their number.
    Block** Take(Block** end, std::size_t& nb)
    {
        std::size_t wanted = std::min(nb, m_NbHere);
        nb -= wanted;
        m_NbHere -= wanted;
        const std::size_t size = SizeOf(m_Index);
        for (; wanted != 0; ++m_FirstWord) {
            std::uint64_t word = m_IsHere[m_FirstWord];
            char* const blocks = GetBlocks() + 64 * m_FirstWord * size;
            for (; word != 0 && wanted != 0; --wanted, word &= word - 1) {
                *end = new (blocks + static_cast<std::size_t>(std::countr_zero(word)) * size) Block;
                end = &(*end)->m_Next;
            }
            m_IsHere[m_FirstWord] = word;
            if (word != 0) {
                break;
            }
        }
        return end;
    }

    bool Contains(const void* block) const
    {
        const auto* begin = reinterpret_cast<const char*>(this);
        return block >= begin && block < begin + ChunkSize;
    }

    Chunk* m_Next = nullptr;       ///< in the depot's queue
    Chunk* m_NextOfAll = nullptr;  ///< in the depot's list of all

private:
    char* GetBlocks() { return reinterpret_cast<char*>(this + 1); }

    std::size_t m_Index;
    std::size_t m_Inverse = ((std::size_t{1} << 32) + m_Index) / (m_Index + 1);
    std::size_t m_NbHere;
    std::size_t m_FirstWord = 0;
    alignas(CacheLine) std::array<std::uint64_t, ChunkSize / ZULBlockPool::Granularity / 64> m_IsHere{};
};
static_assert(sizeof(Chunk) % CacheLine == 0);

//---------------------------------------------------------------- shared by all threads

/// Where chunks come from; they stay with the process.
class Regions
{
public:
    /// Null when memory is exhausted.
    void* TakeChunk()
    {
        const std::lock_guard lock(m_Mutex);
        if (m_Fresh == m_End) {
            constexpr std::size_t size = NbChunksOfRegion * ChunkSize;
            m_Fresh = static_cast<char*>(::operator new (size, std::align_val_t{ChunkSize}, std::nothrow));
            m_End = m_Fresh != nullptr ? m_Fresh + size : nullptr;
        }
        void* const chunk = m_Fresh;
        m_Fresh += m_Fresh != nullptr ? ChunkSize : 0;
        return chunk;
    }

private:
    std::mutex m_Mutex;
    char* m_Fresh = nullptr;
    char* m_End = nullptr;
};
static_assert(std::is_trivially_destructible_v<Regions>, "objects may outlive all static ones");

constinit Regions g_Regions;

/// The blocks of one size that no thread has.
class alignas(CacheLine) Depot
{
public:
    /// A chain of blocks; nb is how many are wanted, then how many there are. Null when memory is exhausted.
    Block* Take(std::size_t index, std::size_t& nb)
    {
        const std::lock_guard lock(m_Mutex);
        const std::size_t nbWanted = nb;
        std::size_t nbMissing = nb;
        Block* chain = nullptr;
        Block** end = &chain;
        while (nbMissing != 0 && (m_First != nullptr || AddChunk(index))) {
            end = m_First->Take(end, nbMissing);
            if (m_First->IsEmpty()) {
                m_First = m_First->m_Next;
            }
        }
        *end = nullptr;
        nb = nbWanted - nbMissing;
        return chain;
    }

    void Put(Block* chain)
    {
        const std::lock_guard lock(m_Mutex);
        while (chain != nullptr) {
            Chunk* const chunk = Chunk::Of(chain);
            Block* const next = chain->m_Next;
            if (chunk->IsEmpty()) {
                Append(chunk);
            }
            chunk->Put(chain);
            chain = next;
        }
    }

    bool Contains(const void* block)
    {
        const std::lock_guard lock(m_Mutex);
        for (const Chunk* chunk = m_All; chunk != nullptr; chunk = chunk->m_NextOfAll) {
            if (chunk->Contains(block)) {
                return true;
            }
        }
        return false;
    }

private:
    /// Last in the queue: it has time to fill before it is taken from.
    void Append(Chunk* chunk)
    {
        chunk->m_Next = nullptr;
        (m_First == nullptr ? m_First : m_Last->m_Next) = chunk;
        m_Last = chunk;
    }
    bool AddChunk(std::size_t index)
    {
        void* const memory = g_Regions.TakeChunk();
        if (memory == nullptr) {
            return false;
        }
        auto* const chunk = new (memory) Chunk(index);
        chunk->m_NextOfAll = m_All;
        m_All = chunk;
        Append(chunk);
        return true;
    }

    std::mutex m_Mutex;
    Chunk* m_First = nullptr;  ///< of those that are not empty
    Chunk* m_Last = nullptr;
    Chunk* m_All = nullptr;
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
            for (Block* const chain : {t_OwnLists[i].m_Spare, t_OwnLists[i].m_Head}) {
                if (chain != nullptr) {
                    g_Depots[i].Put(chain);
                }
            }
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

/// Takes a block and has the next one fetched, which may lie anywhere.
Block* Pop(List& list)
{
    Block* const block = list.m_Head;
    list.m_Head = block->m_Next;
    ++list.m_Room;
    const auto* next = reinterpret_cast<const char*>(list.m_Head);
    __builtin_prefetch(next, 1);
    __builtin_prefetch(next + CacheLine, 1);
    __builtin_prefetch(next + 2 * CacheLine, 1);
    return block;
}

void Push(List& list, void* memory)
{
    list.m_Head = new (memory) Block{list.m_Head};
    --list.m_Room;
}

[[gnu::noinline]] void* AllocateOtherwise(std::size_t size)
{
    const std::size_t index = IndexOf(size);
    if (index >= NbSizes || !DecideFor(Source::Pool)) {
        return ::operator new(size, std::nothrow);
    }
    Lists* const lists = GetLists();
    if (lists == nullptr) {
        std::size_t one = 1;
        return g_Depots[index].Take(index, one);
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
        g_Depots[index].Put(new (memory) Block{nullptr});
        return;
    }
    List& list = (*lists)[index];
    if (list.m_Room == 0) {
        if (list.m_Spare != nullptr) {
            g_Depots[index].Put(list.m_Spare);
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
