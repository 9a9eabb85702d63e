#ifndef ZULCriticalSection_h
#define ZULCriticalSection_h

#include <atomic>
#include <cstdint>
#include <thread>

#include "ZULPlatformExport.h"

/// A lock that is not recursive and says so: the owner's second lock() throws std::system_error with
/// std::errc::resource_deadlock_would_occur instead of waiting for itself. Meets the standard Lockable
/// requirements. Made for short sections: whoever comes first gets it, not whoever has waited longest, and
/// who waits stays on the processor for some microseconds before it sleeps.
class ZULPlatform_API ZULCriticalSection
{
public:
    ZULCriticalSection() = default;
    ZULCriticalSection(const ZULCriticalSection&) = delete;
    ZULCriticalSection& operator=(const ZULCriticalSection&) = delete;

    /// Waits for the lock; throws where the caller holds it already.
    void lock();
    /// False when any thread, the caller included, holds the lock.
    bool try_lock();
    /// Only the owner may unlock.
    void unlock();

private:
    void LockAfterWaiting();

    std::atomic<std::uint32_t> m_State{0};
    std::atomic<std::thread::id> m_Owner{};
};

#endif
