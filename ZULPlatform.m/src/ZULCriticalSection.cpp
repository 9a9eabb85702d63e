#include "ZULCriticalSection.h"

#include <system_error>

void ZULCriticalSection::lock()
{
    // Only this thread can have stored its own id, so a relaxed load is enough to recognise it.
    if (m_Owner.load(std::memory_order_relaxed) == std::this_thread::get_id()) {
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur),
                                "ZULCriticalSection::lock");
    }
    m_Mutex.lock();
    m_Owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
}

bool ZULCriticalSection::try_lock()
{
    const std::thread::id self = std::this_thread::get_id();
    if (m_Owner.load(std::memory_order_relaxed) == self || !m_Mutex.try_lock()) {
        return false;
    }
    m_Owner.store(self, std::memory_order_relaxed);
    return true;
}

void ZULCriticalSection::unlock()
{
    m_Owner.store(std::thread::id(), std::memory_order_relaxed);
    m_Mutex.unlock();
}
