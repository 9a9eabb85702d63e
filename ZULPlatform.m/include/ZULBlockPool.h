#ifndef ZULBlockPool_h
#define ZULBlockPool_h

#include <cstddef>

#include "ZULPlatformExport.h"

/// Memory for small objects that come and go in great numbers. Each thread takes blocks from lists of its own
/// and gives them back there, without a lock; lists that grow too long, and those of a thread that ends, go
/// to a depot that all threads share. Blocks are cut from chunks that stay with the process. Every operation
/// is safe from any thread, at any time: while thread-local and static objects are destroyed as well.
class ZULPlatform_API ZULBlockPool
{
public:
    /// Blocks are multiples of this size, and aligned to it.
    static constexpr std::size_t Granularity = 16;
    /// Greater ones, in bytes, come from the global heap.
    static constexpr std::size_t LargestSize = 512;

    ZULBlockPool() = delete;

    /// A block of at least so many bytes, which the caller gives back by Free; null when memory is exhausted.
    static void* Allocate(std::size_t size) noexcept;
    /// Gives back a block that was allocated, by any thread, with this very size. Null is ignored.
    static void Free(void* block, std::size_t size) noexcept;
    /// The same where the size is no longer known: slow, for exceptional ends. Null is ignored.
    static void FreeOfUnknownSize(void* block) noexcept;

    /// From now on every block is one of the global heap, for programs that watch it. False, and without
    /// effect, when the pool has already given out a block of its own. Builds with an address or thread
    /// sanitizer are in this state from the beginning.
    static bool UseGlobalHeap() noexcept;
};

#endif
