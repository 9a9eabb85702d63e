#ifndef ZULMRSBSPReferenceCount_h
#define ZULMRSBSPReferenceCount_h

#include <atomic>
#include <cstdint>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define ZULMRS_KNOWS_SINGLE_THREAD 1
#endif

/// Number of owners minus one of a shared object: 0 means one owner, and the object dies when that one lets
/// go. Copying takes the source's current value over. Every operation is safe from any thread. Where the C
/// library tells that the process has one thread only, which nobody can see, the processor is spared locked
/// instructions, each the price of some twenty others.
class ZULMRSBSPReferenceCount
{
public:
    ZULMRSBSPReferenceCount() = default;
    ZULMRSBSPReferenceCount(const ZULMRSBSPReferenceCount& other) : m_Count(other.m_Count.load()) {}
    ZULMRSBSPReferenceCount& operator=(const ZULMRSBSPReferenceCount& other)
    {
        m_Count.exchange(other.m_Count.load());
        return *this;
    }

    void Add() { AddAndGetFormer(1); }
    /// True when the caller was the last owner and must destroy the object.
    bool Drop() { return AddAndGetFormer(-1) == 0; }
    std::int32_t Get() const { return m_Count.load(std::memory_order_relaxed); }

private:
    std::int32_t AddAndGetFormer(std::int32_t difference)
    {
#if defined(ZULMRS_KNOWS_SINGLE_THREAD)
        if (__libc_single_threaded != 0) {
            const std::int32_t former = m_Count.load(std::memory_order_relaxed);
            m_Count.store(former + difference, std::memory_order_relaxed);
            return former;
        }
#endif
        return m_Count.fetch_add(difference);
    }

    std::atomic<std::int32_t> m_Count{0};
};

namespace ZULMRSBSPReference
{
/// Lets go of an object; null is ignored.
template <class Object>
void Release(Object* object)
{
    if (object != nullptr) {
        object->Release();
    }
}

/// Puts another object into a slot that holds a reference. The new reference is taken before the old one is
/// released, so an object that lives only through the old one survives.
template <class Object>
void Replace(Object*& slot, Object* object)
{
    if (slot == object) {
        return;
    }
    if (object != nullptr) {
        object->AddRef();
    }
    Release(slot);
    slot = object;
}
}  // namespace ZULMRSBSPReference

#endif
