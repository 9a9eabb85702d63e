#include "ZULCriticalSection.h"

#include <system_error>

#include "ZULExpFloatStatus.h"

namespace
{
constexpr std::uint32_t Free = 0;
constexpr std::uint32_t Held = 1;
/// Held, and somebody sleeps until it is free.
constexpr std::uint32_t Awaited = 2;

/// Between looks at the lock a waiting thread pauses twice as long each time, up to so many times.
constexpr int LongestPause = 64;
}  // namespace

void ZULCriticalSection::lock()
{
    const std::thread::id self = std::this_thread::get_id();
    // Only this thread can have stored its own id, so a relaxed load is enough to recognise it.
    if (m_Owner.load(std::memory_order_relaxed) == self) {
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur),
                                "ZULCriticalSection::lock");
    }
    std::uint32_t seen = Free;
    if (!m_State.compare_exchange_strong(seen, Held, std::memory_order_acquire, std::memory_order_relaxed)) {
        LockAfterWaiting();
    }
    m_Owner.store(self, std::memory_order_relaxed);
}

void ZULCriticalSection::LockAfterWaiting()
{
    // The longer the pauses, the more requests the owner answers before the lock's memory changes hands.
    for (int pauses = 1; pauses <= LongestPause; pauses *= 2) {
        for (int i = 0; i < pauses; ++i) {
            ZULExpProcessor::Pause();
        }
        std::uint32_t seen = m_State.load(std::memory_order_relaxed);
        if (seen == Free && m_State.compare_exchange_strong(seen, Held, std::memory_order_acquire,
                                                            std::memory_order_relaxed)) {
            return;
        }
    }
    // Others may sleep as well: whoever wakes up keeps the state that makes the owner wake the next.
    while (m_State.exchange(Awaited, std::memory_order_acquire) != Free) {
        m_State.wait(Awaited, std::memory_order_relaxed);
    }
}

bool ZULCriticalSection::try_lock()
{
    const std::thread::id self = std::this_thread::get_id();
    std::uint32_t seen = Free;
    if (m_Owner.load(std::memory_order_relaxed) == self ||
        !m_State.compare_exchange_strong(seen, Held, std::memory_order_acquire, std::memory_order_relaxed)) {
        return false;
    }
    m_Owner.store(self, std::memory_order_relaxed);
    return true;
}

void ZULCriticalSection::unlock()
{
    m_Owner.store(std::thread::id(), std::memory_order_relaxed);
    if (m_State.exchange(Free, std::memory_order_release) == Awaited) {
        m_State.notify_one();
    }
}
