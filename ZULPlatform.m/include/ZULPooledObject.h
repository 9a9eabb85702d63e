#ifndef ZULPooledObject_h
#define ZULPooledObject_h

#include <cstddef>
#include <new>

#include "ZULBlockPool.h"

/// Base of classes whose objects, those of derived classes included, live in blocks of ZULBlockPool. Adds
/// nothing to them. A class whose objects are deleted through a base needs a virtual destructor there, which
/// tells the size.
class ZULPooledObject
{
public:
    static void* operator new(std::size_t size)
    {
        void* const block = ZULBlockPool::Allocate(size);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return block;
    }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept
    {
        return ZULBlockPool::Allocate(size);
    }
    static void operator delete(void* block, std::size_t size) noexcept { ZULBlockPool::Free(block, size); }
    /// Called where a constructor throws after the allocation that does not throw.
    static void operator delete(void* block, const std::nothrow_t&) noexcept
    {
        ZULBlockPool::FreeOfUnknownSize(block);
    }

    /// In memory of the caller's.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}

    /// Objects that ask for more alignment than blocks have come from the global heap.
    static void* operator new(std::size_t size, std::align_val_t alignment)
    {
        return ::operator new(size, alignment);
    }
    static void* operator new(std::size_t size, std::align_val_t alignment,
                              const std::nothrow_t& tag) noexcept
    {
        return ::operator new(size, alignment, tag);
    }
    static void operator delete(void* block, std::align_val_t alignment) noexcept
    {
        ::operator delete(block, alignment);
    }
    static void operator delete(void* block, std::align_val_t alignment, const std::nothrow_t& tag) noexcept
    {
        ::operator delete(block, alignment, tag);
    }

protected:
    ZULPooledObject() = default;
    ZULPooledObject(const ZULPooledObject&) = default;
    ZULPooledObject& operator=(const ZULPooledObject&) = default;
    ~ZULPooledObject() = default;
};

#endif
